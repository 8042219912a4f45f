// A model header that includes a parser header: the layer check must name this include.
#pragma once

#include "parsing/tokenizer.h"
#include "support/ansi.h"
