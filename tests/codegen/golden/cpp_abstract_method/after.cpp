#include "before.h"

TShape::~TShape()
{
}
