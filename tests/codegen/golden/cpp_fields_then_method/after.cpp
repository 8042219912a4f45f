#include "before.h"

__fastcall TShape::TShape()
{
}

void __fastcall TShape::Resize(int w, int h)
{

}
