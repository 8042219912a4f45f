// A parser header that includes only layers below it: the layer check must accept it.
#pragma once

#include "model/class_list.h"
#include "support/ansi.h"
