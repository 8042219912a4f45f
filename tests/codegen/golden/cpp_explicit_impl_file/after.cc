// The parser's helpers.
#include "before.h"

@^bool TParser2::Reset(int Level)
{

}
