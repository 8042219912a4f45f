//---------------------------------------------------------------------------
#ifndef ScheduleDlgH
#define ScheduleDlgH
//---------------------------------------------------------------------------
#include <Classes.hpp>
#include <Controls.hpp>
#include <StdCtrls.hpp>
#include <Forms.hpp>
#include <Grids.hpp>
#include "FiringTypes.h"
//---------------------------------------------------------------------------
const int MaxRamps = 8;

// The grid edits at most MaxRamps target temperatures; kept apart from the
// firing so that Cancel leaves the firing untouched.
class TRampTable : public TObject
{
private:
    int FTargets[MaxRamps];
    int FRates[MaxRamps];
    int FCount;
    int __fastcall GetItem(int Index);
    void __fastcall SetItem(int Index, int Value);
public:
    __fastcall TRampTable() : TObject(), FCount(0) {}
    void __fastcall Clear() { FCount = 0; }
    int __fastcall Add(int Rate, int Target);
    int __fastcall RateOf(int Index) const { return FRates[Index]; }

    __property int Items[int Index] = {read=GetItem, write=SetItem};
    __property int Count = {read=FCount, default=0};
};
//---------------------------------------------------------------------------
class TScheduleDialog : public TForm
{
__published:	// IDE-managed Components
    TLabel *PresetLabel;
    TComboBox *PresetCombo;
    TStringGrid *SegmentGrid;
    TLabel *TotalLabel;
    TButton *AddRowButton;
    TButton *OkButton;
    TButton *CancelButton;
    void __fastcall PresetComboChange(TObject *Sender);
    void __fastcall AddRowButtonClick(TObject *Sender);
    void __fastcall SegmentGridSetEditText(TObject *Sender, int ACol,
        int ARow, const AnsiString Value);
    __property int StartTemp = {read=FStartTemp, write=FStartTemp, default=20};
    __property bool Fahrenheit = {read=FFahrenheit, write=SetFahrenheit,
        stored=IsFahrenheitStored, nodefault};
private:	// User declarations
    TRampTable *FRamps;
    int FStartTemp;
    bool FFahrenheit;
    void __fastcall SetFahrenheit(bool Value);
    bool __fastcall IsFahrenheitStored();
    void __fastcall FillGrid();
    void __fastcall UpdateTotal();
    void __fastcall WMSysCommand(TWMSysCommand &Message);
protected:
    DYNAMIC void __fastcall DoShow(void);
public:		// User declarations
    __fastcall TScheduleDialog(TComponent* Owner);
    __fastcall ~TScheduleDialog();
    bool __fastcall Execute(Kiln::TFiring *Firing);
    static void __fastcall LoadPresets(TStrings *Target);

BEGIN_MESSAGE_MAP
    MESSAGE_HANDLER(WM_SYSCOMMAND, TWMSysCommand, WMSysCommand)
END_MESSAGE_MAP(TForm)
};
//---------------------------------------------------------------------------
extern PACKAGE TScheduleDialog *ScheduleDialog;
//---------------------------------------------------------------------------
#endif
