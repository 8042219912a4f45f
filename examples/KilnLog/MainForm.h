//---------------------------------------------------------------------------
#ifndef MainFormH
#define MainFormH
//---------------------------------------------------------------------------
#include <Classes.hpp>
#include <Controls.hpp>
#include <StdCtrls.hpp>
#include <Forms.hpp>
#include <ComCtrls.hpp>
#include <ExtCtrls.hpp>
#include <Menus.hpp>
#include <Dialogs.hpp>
#include "FiringTypes.h"
//---------------------------------------------------------------------------
class PACKAGE TFormMain : public TForm
{
__published:	// IDE-managed Components
    TMainMenu *MainMenu;
    TMenuItem *FileMenu;
    TMenuItem *FileSaveItem;
    TMenuItem *FileExportItem;
    TMenuItem *FileExitItem;
    TPanel *ToolPanel;
    TButton *NewFiringButton;
    TButton *ScheduleButton;
    TButton *GlazeButton;
    TListView *FiringList;
    TStatusBar *StatusBar;
    TSaveDialog *SaveDialog;
    void __fastcall FormCreate(TObject *Sender);
    void __fastcall FormCloseQuery(TObject *Sender, bool &CanClose);
    void __fastcall NewFiringButtonClick(TObject *Sender);
    void __fastcall ScheduleButtonClick(TObject *Sender);
    void __fastcall GlazeButtonClick(TObject *Sender);
    void __fastcall FileSaveItemClick(TObject *Sender);
    void __fastcall FileExportItemClick(TObject *Sender);
    void __fastcall FileExitItemClick(TObject *Sender);
private:	// User declarations
    Kiln::TTypedList<Kiln::TFiring>* FFirings;
    Kiln::TCostModel* FCostModel;
    int FSelected;
    int FMinWidth, FMinHeight;
    bool FModified;
    AnsiString FFileName;

    Kiln::TFiring* __fastcall GetFiring(int Index);
    int __fastcall GetFiringCount();
    void __fastcall SetModified(bool Value);
    void __fastcall RefreshList();
    void __fastcall WMDropFiles(TMessage &Message);
    void __fastcall WMGetMinMaxInfo(TWMGetMinMaxInfo &Message);
protected:
    virtual void __fastcall CreateParams(TCreateParams &Params);
    bool __fastcall ConfirmDiscard();
public:		// User declarations
    __fastcall TFormMain(TComponent* Owner);
    __fastcall ~TFormMain();
    void __fastcall LoadFromFile(const AnsiString FileName);
    void __fastcall SaveToFile(const AnsiString FileName);

    __property Kiln::TFiring* Firings[int Index] = {read=GetFiring};
    __property int FiringCount = {read=GetFiringCount};
    __property bool Modified = {read=FModified, write=SetModified};
    __property AnsiString FileName = {read=FFileName};

BEGIN_MESSAGE_MAP
    VCL_MESSAGE_HANDLER(WM_DROPFILES, TMessage, WMDropFiles)
    VCL_MESSAGE_HANDLER(WM_GETMINMAXINFO, TWMGetMinMaxInfo, WMGetMinMaxInfo)
END_MESSAGE_MAP(TForm)
};
//---------------------------------------------------------------------------
extern PACKAGE TFormMain *FormMain;
//---------------------------------------------------------------------------
#endif
