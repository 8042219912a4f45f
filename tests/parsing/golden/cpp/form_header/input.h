//---------------------------------------------------------------------------
#ifndef OrdersFormH
#define OrdersFormH
//---------------------------------------------------------------------------
#include <Classes.hpp>
#include <Controls.hpp>
#include <StdCtrls.hpp>
#include <Forms.hpp>
#include <ComCtrls.hpp>
#include "OrderTypes.h"
#include "CustomerLookup.h"
//---------------------------------------------------------------------------
class TOrdersForm : public TForm
{
__published:	// IDE-managed Components
	TListView *OrderList;
	TButton *AddButton;
	TButton *DeleteButton;
	TStatusBar *StatusBar;
	TEdit *FilterEdit;
	void __fastcall FormCreate(TObject *Sender);
	void __fastcall AddButtonClick(TObject *Sender);
	void __fastcall DeleteButtonClick(TObject *Sender);
	void __fastcall FilterEditChange(TObject *Sender);
	void __fastcall OrderListDblClick(TObject *Sender);
private:	// User declarations
	TOrderList *FOrders;
	int FSortColumn;
	bool FDescending;
	AnsiString FFilter;
	void __fastcall WMSize(TWMSize &Message);
	void __fastcall CMDialogKey(TCMDialogKey &Message);
	TOrder* __fastcall GetSelected();
	void __fastcall SetFilter(const AnsiString Value);
protected:
	virtual void __fastcall Loaded();
public:		// User declarations
	__fastcall TOrdersForm(TComponent* Owner);
	__fastcall ~TOrdersForm();
	void __fastcall Reload();
	__property TOrder* Selected = {read=GetSelected};
	__property AnsiString Filter = {read=FFilter, write=SetFilter};
BEGIN_MESSAGE_MAP
	VCL_MESSAGE_HANDLER(WM_SIZE, TWMSize, WMSize)
	VCL_MESSAGE_HANDLER(CM_DIALOGKEY, TCMDialogKey, CMDialogKey)
END_MESSAGE_MAP(TForm)
};
//---------------------------------------------------------------------------
extern PACKAGE TOrdersForm *OrdersForm;
//---------------------------------------------------------------------------
#endif
