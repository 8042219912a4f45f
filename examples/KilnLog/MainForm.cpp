//---------------------------------------------------------------------------
#include <vcl.h>
#include <shellapi.h>
#include <stdio.h>
#include <memory>
#pragma hdrstop

#include "MainForm.h"
#include "ScheduleDlg.h"
#include "GlazeForm.hpp"
#include "ExportUnit.hpp"
//---------------------------------------------------------------------------
#pragma package(smart_init)
#pragma resource "*.dfm"
TFormMain *FormMain;

using namespace Kiln;
//---------------------------------------------------------------------------
__fastcall TFormMain::TFormMain(TComponent* Owner)
    : TForm(Owner), FFirings(new TTypedList<TFiring>(true)), FCostModel(0),
      FSelected(-1), FMinWidth(480), FMinHeight(300), FModified(false)
{
}

__fastcall TFormMain::~TFormMain()
{
    delete FCostModel;
    delete FFirings;
}
//---------------------------------------------------------------------------
// The window accepts log files dropped from Explorer; asking for the style
// here keeps it across handle re-creation, unlike DragAcceptFiles.
void __fastcall TFormMain::CreateParams(TCreateParams &Params)
{
    TForm::CreateParams(Params);
    Params.ExStyle |= WS_EX_ACCEPTFILES;
}

void __fastcall TFormMain::FormCreate(TObject *Sender)
{
    FCostModel = new TElectricCost(9.6, 0.142);
    StatusBar->SimpleText = FCostModel->Describe();
    RefreshList();
}

void __fastcall TFormMain::FormCloseQuery(TObject *Sender, bool &CanClose)
{
    CanClose = ConfirmDiscard();
}
//---------------------------------------------------------------------------
TFiring* __fastcall TFormMain::GetFiring(int Index)
{
    return FFirings->At(Index);
}

int __fastcall TFormMain::GetFiringCount()
{
    return FFirings->Count;
}

void __fastcall TFormMain::SetModified(bool Value)
{
    FModified = Value;
    Caption = "Kiln Log - " + ExtractFileName(FFileName) + (Value ? " *" : "");
}

bool __fastcall TFormMain::ConfirmDiscard()
{
    return !FModified || Application->MessageBox("Discard the changes to this log?",
        "Kiln Log", MB_YESNO | MB_ICONQUESTION) == IDYES;
}
//---------------------------------------------------------------------------
void __fastcall TFormMain::RefreshList()
{
    FiringList->Items->BeginUpdate();
    try
    {
        FiringList->Items->Clear();
        for (int i = 0; i < FiringCount; i++)
        {
            TFiring* F = Firings[i];
            TListItem* Item = FiringList->Items->Add();
            Item->Caption = IntToStr(F->Number());
            Item->SubItems->Add(TFiring::KindName(F->Kind()));
            Item->SubItems->Add(IntToStr(F->PeakTemperature()));
            Item->SubItems->Add(FormatDuration(F->TotalMinutes()));
            Item->SubItems->Add(FormatFloat("0.00", FCostModel->Cost(*F)));
        }
    }
    __finally
    {
        FiringList->Items->EndUpdate();
    }
}
//---------------------------------------------------------------------------
void __fastcall TFormMain::NewFiringButtonClick(TObject *Sender)
{
    TFiring* F = new TFiring(TFiring::fkBisque);
    F->AddSegment(80, 600);
    F->AddSegment(150, ConeToCelsius(-4), 10);
    FFirings->AddItem(F);
    Modified = true;
    RefreshList();
}

void __fastcall TFormMain::ScheduleButtonClick(TObject *Sender)
{
    if (FiringList->Selected == NULL)
        return;
    FSelected = FiringList->Selected->Index;
    if (ScheduleDialog->Execute(Firings[FSelected]))
    {
        Modified = true;
        RefreshList();
    }
}

void __fastcall TFormMain::GlazeButtonClick(TObject *Sender)
{
    GlazeRecipeForm->BatchGrams = TGlazeRecipeForm::DefaultBatchGrams();
    GlazeRecipeForm->ShowModal();
}
//---------------------------------------------------------------------------
void __fastcall TFormMain::FileSaveItemClick(TObject *Sender)
{
    SaveDialog->DefaultExt = "kln";
    if (!FFileName.IsEmpty() || SaveDialog->Execute())
        SaveToFile(FFileName.IsEmpty() ? SaveDialog->FileName : FFileName);
}

void __fastcall TFormMain::FileExportItemClick(TObject *Sender)
{
    // The exporters are written in Pascal; hand them plain text lines.
    std::auto_ptr<TStringList> Lines(new TStringList);
    for (int i = 0; i < FiringCount; i++)
    {
        TFiring* F = Firings[i];
        Lines->Add(IntToStr(F->Number()) + ";" + TFiring::KindName(F->Kind()) + ";"
                   + IntToStr(F->PeakTemperature()) + ";" + IntToStr(F->TotalMinutes()));
    }
    SaveDialog->DefaultExt = "csv";
    if (SaveDialog->Execute())
        ExportToFile(SaveDialog->FileName, efCsv, Lines.get());
}

void __fastcall TFormMain::FileExitItemClick(TObject *Sender)
{
    Close();
}
//---------------------------------------------------------------------------
// Log file: one "F;kind" line per firing followed by its "S;rate;target;hold"
// lines, and a last "C;checksum" line over everything before it.
void __fastcall TFormMain::LoadFromFile(const AnsiString FileName)
{
    std::auto_ptr<TStringList> Lines(new TStringList);
    Lines->LoadFromFile(FileName);
    FFirings->Purge();
    TFiring* Current = NULL;
    for (int i = 0; i < Lines->Count; i++)
    {
        AnsiString Line = Lines->Strings[i];
        int Kind, Rate, Target, Hold;
        if (sscanf(Line.c_str(), "F;%d", &Kind) == 1)
            FFirings->AddItem(Current = new TFiring((TFiring::TFiringKind)Kind));
        else if (Current && sscanf(Line.c_str(), "S;%d;%d;%d", &Rate, &Target, &Hold) == 3)
            Current->AddSegment(Rate, Target, Hold);
    }
    FFileName = FileName;
    Modified = false;
    RefreshList();
}

void __fastcall TFormMain::SaveToFile(const AnsiString FileName)
{
    std::auto_ptr<TStringList> Lines(new TStringList);
    for (int i = 0; i < FiringCount; i++)
    {
        TFiring* F = Firings[i];
        Lines->Add("F;" + IntToStr((int)F->Kind()));
        for (int s = 0; s < F->SegmentCount(); s++)
        {
            TFiringSegment* Seg = F->Segment(s);
            Lines->Add(Format("S;%d;%d;%d", ARRAYOFCONST((Seg->RatePerHour,
                              Seg->TargetC, Seg->HoldMinutes))));
        }
    }
    AnsiString Text = Lines->Text;
    Lines->Add("C;" + IntToStr(StudioChecksum(Text.c_str(), Text.Length())));
    Lines->SaveToFile(FileName);
    FFileName = FileName;
    Modified = false;
}
//---------------------------------------------------------------------------
void __fastcall TFormMain::WMDropFiles(TMessage &Message)
{
    HDROP Drop = reinterpret_cast<HDROP>(Message.WParam);
    char Name[MAX_PATH];
    bool Got = DragQueryFile(Drop, 0, Name, sizeof(Name)) > 0;
    DragFinish(Drop);
    if (Got && ConfirmDiscard())
        LoadFromFile(Name);
}

void __fastcall TFormMain::WMGetMinMaxInfo(TWMGetMinMaxInfo &Message)
{
    // Below this the list view's columns stop being readable.
    Message.MinMaxInfo->ptMinTrackSize.x = FMinWidth;
    Message.MinMaxInfo->ptMinTrackSize.y = FMinHeight;
    Message.Result = 0;
}
//---------------------------------------------------------------------------
