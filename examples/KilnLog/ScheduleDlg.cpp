//---------------------------------------------------------------------------
#include <vcl.h>
#pragma hdrstop

#include "ScheduleDlg.h"
//---------------------------------------------------------------------------
#pragma package(smart_init)
#pragma resource "*.dfm"
TScheduleDialog *ScheduleDialog;

// The studio's tested schedules, in the order of the preset combo box.
static const struct
{
    const char* Name;
    int FirstRate, FirstTarget, FinalRate, Cone;
} Presets[] = {
    { "Slow bisque (cone 04)", 60, 600, 150, -4 },
    { "Glaze (cone 6)", 100, 600, 150, 6 },
};
//---------------------------------------------------------------------------
int __fastcall TRampTable::GetItem(int Index)
{
    return FTargets[Index];
}

void __fastcall TRampTable::SetItem(int Index, int Value)
{
    if (Index < 0 || Index >= FCount)
        throw ERangeError("Ramp index out of range");
    FTargets[Index] = Value;
}

int __fastcall TRampTable::Add(int Rate, int Target)
{
    if (FCount == MaxRamps)
        return -1;
    FRates[FCount] = Rate;
    FTargets[FCount] = Target;
    return FCount++;
}
//---------------------------------------------------------------------------
__fastcall TScheduleDialog::TScheduleDialog(TComponent* Owner)
    : TForm(Owner), FRamps(new TRampTable), FStartTemp(STUDIO_ROOM_TEMP_C),
      FFahrenheit(false)
{
    LoadPresets(PresetCombo->Items);
}

__fastcall TScheduleDialog::~TScheduleDialog()
{
    delete FRamps;
}

void __fastcall TScheduleDialog::LoadPresets(TStrings *Target)
{
    Target->Clear();
    for (int i = 0; i < sizeof(Presets) / sizeof(Presets[0]); i++)
        Target->Add(Presets[i].Name);
}
//---------------------------------------------------------------------------
void __fastcall TScheduleDialog::PresetComboChange(TObject *Sender)
{
    int i = PresetCombo->ItemIndex;
    FRamps->Clear();
    FRamps->Add(Presets[i].FirstRate, Presets[i].FirstTarget);
    FRamps->Add(Presets[i].FinalRate, Kiln::ConeToCelsius(Presets[i].Cone));
    FillGrid();
}

void __fastcall TScheduleDialog::AddRowButtonClick(TObject *Sender)
{
    int Last = FRamps->Count > 0 ? FRamps->Items[FRamps->Count - 1] : FStartTemp;
    if (FRamps->Add(100, Last) >= 0)
        FillGrid();
}

void __fastcall TScheduleDialog::SegmentGridSetEditText(TObject *Sender, int ACol,
    int ARow, const AnsiString Value)
{
    int Row = ARow - SegmentGrid->FixedRows;
    if (ACol == 1 && Row >= 0 && Row < FRamps->Count)
    {
        int Temp = StrToIntDef(Value, FRamps->Items[Row]);
        FRamps->Items[Row] = FFahrenheit ? (Temp - 32) * 5 / 9 : Temp;
        UpdateTotal();
    }
}
//---------------------------------------------------------------------------
void __fastcall TScheduleDialog::SetFahrenheit(bool Value)
{
    FFahrenheit = Value;
    FillGrid();
}

// Only a studio that switched to Fahrenheit needs the value in the form file.
bool __fastcall TScheduleDialog::IsFahrenheitStored()
{
    return FFahrenheit;
}

void __fastcall TScheduleDialog::FillGrid()
{
    SegmentGrid->RowCount = FRamps->Count + SegmentGrid->FixedRows;
    for (int i = 0; i < FRamps->Count; i++)
    {
        int Target = FRamps->Items[i];
        SegmentGrid->Cells[0][i + 1] = IntToStr(FRamps->RateOf(i));
        SegmentGrid->Cells[1][i + 1] = FFahrenheit
            ? IntToStr((int)Kiln::CelsiusToFahrenheit(Target)) : IntToStr(Target);
    }
    UpdateTotal();
}

void __fastcall TScheduleDialog::UpdateTotal()
{
    int Minutes = 0, Temp = FStartTemp;
    for (int i = 0; i < FRamps->Count; i++)
    {
        Minutes += Kiln::TFiringSegment(FRamps->RateOf(i), FRamps->Items[i]).MinutesFrom(Temp);
        Temp = FRamps->Items[i];
    }
    TotalLabel->Caption = "Total " + Kiln::FormatDuration(Minutes);
}
//---------------------------------------------------------------------------
void __fastcall TScheduleDialog::DoShow(void)
{
    TForm::DoShow();
    PresetCombo->SetFocus();
}

// A schedule half typed in must not be lost by a stray click on the
// caption's close box, so ask before letting the form close.
void __fastcall TScheduleDialog::WMSysCommand(TWMSysCommand &Message)
{
    if ((Message.CmdType & 0xFFF0) == SC_CLOSE && FRamps->Count > 0
        && Application->MessageBox("Throw away this schedule?", "Schedule",
                                   MB_YESNO | MB_ICONQUESTION) != IDYES)
        return;
    TForm::Dispatch(&Message);
}
//---------------------------------------------------------------------------
bool __fastcall TScheduleDialog::Execute(Kiln::TFiring *Firing)
{
    FRamps->Clear();
    for (int i = 0; i < Firing->SegmentCount(); i++)
        FRamps->Add(Firing->Segment(i)->RatePerHour, Firing->Segment(i)->TargetC);
    FillGrid();
    if (ShowModal() != mrOk)
        return false;
    Firing->ClearSegments();
    for (int i = 0; i < FRamps->Count; i++)
        Firing->AddSegment(FRamps->RateOf(i), FRamps->Items[i]);
    return true;
}
//---------------------------------------------------------------------------
