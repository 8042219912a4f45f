#include "before.h"

__fastcall TInputDialog::TInputDialog(TComponent *Owner) : TForm(Owner)
{
}

@^void __fastcall TInputDialog::CreateParams(TCreateParams & Params)
{
    TForm::CreateParams(Params);
}
