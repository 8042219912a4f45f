// The JSON form of a class list, as `velmora dump --json` prints it and the hosts hand it
// on. Other tools read it, so its keys and value words are fixed.
#pragma once

#include <string>

namespace velmora {

class TClasslist;

/// {"classes": [...], "routines": [...], "includes": [...]}, indented by two blanks.
std::string ModelToJson(const TClasslist& list);

}  // namespace velmora
