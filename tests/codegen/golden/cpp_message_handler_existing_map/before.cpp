#include "before.h"

void __fastcall TMainForm::WMSize(TWMSize &Message)
{
}
//ClassMarker_Method(TMainForm)
