// The parser's helpers.
#include "before.h"
