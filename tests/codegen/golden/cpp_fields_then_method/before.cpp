#include "before.h"

__fastcall TShape::TShape()
{
}
