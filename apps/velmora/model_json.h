// The JSON form of a class list printed by `velmora dump --json`. Other tools read it, so
// its keys and value words are fixed.
#pragma once

#include <string>

namespace velmora {
class TClasslist;
}

namespace velmora::app {

/// {"classes": [...], "routines": [...], "includes": [...]}, indented by two blanks.
std::string ModelToJson(const TClasslist& list);

}  // namespace velmora::app
