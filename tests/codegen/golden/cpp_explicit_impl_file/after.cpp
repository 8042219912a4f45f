#include "before.h"

int TParser2::Parse(const char *Text)
{
    return 0;
}
