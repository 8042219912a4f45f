#include "before.h"

//Marker(Insert_End)
