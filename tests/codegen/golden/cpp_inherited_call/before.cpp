#include "before.h"

__fastcall TInputDialog::TInputDialog(TComponent *Owner) : TForm(Owner)
{
}
