#include "before.h"

void __fastcall TMainForm::WMSize(TWMSize &Message)
{
}
@^void __fastcall TMainForm::WMPaint(TWMPaint & Message)
{

}

//ClassMarker_Method(TMainForm)
