#include "before.h"

__fastcall TMainForm::TMainForm(TComponent *Owner) : TForm(Owner)
{
}

@^void __fastcall TMainForm::WMGetMinMaxInfo(TWMGetMinMaxInfo & Message)
{

}
