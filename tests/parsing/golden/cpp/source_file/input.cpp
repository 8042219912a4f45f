//---------------------------------------------------------------------------
#include <vcl.h>
#pragma hdrstop

#include "Orders.h"
#include "Orders.h"
#include "..\Common\Log.h"
//---------------------------------------------------------------------------
#pragma package(smart_init)
#pragma resource "*.dfm"
TOrdersForm *OrdersForm;
static int Counter = 0;
static const char* Names[] = { "one", "two", "three" };
int Table[2][2] = { {1, 2}, {3, 4} };

static void __fastcall LogLine(const AnsiString& Line);
int __fastcall Compare(void* A, void* B);
//---------------------------------------------------------------------------
__fastcall TOrdersForm::TOrdersForm(TComponent* Owner)
    : TForm(Owner), FSortColumn(0)
{
    FOrders = new TOrderList();
}
//---------------------------------------------------------------------------
void __fastcall TOrdersForm::FormCreate(TObject *Sender)
{
    class TLocal { int X; };
    LogLine("created");
}
//---------------------------------------------------------------------------
int __fastcall Compare(void* A, void* B)
{
    return static_cast<TOrder*>(A)->Id - static_cast<TOrder*>(B)->Id;
}

struct TSortInfo { int Column; bool Descending; };
