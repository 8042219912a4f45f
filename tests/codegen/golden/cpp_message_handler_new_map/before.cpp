#include "before.h"

__fastcall TMainForm::TMainForm(TComponent *Owner) : TForm(Owner)
{
}
