#include "ide/module_base.h"

#include "support/ansi.h"
#include "support/paths.h"

namespace velmora {

bool IsBufferFile(const std::string& fileName, const std::string& bufferFileName) {
  return SameText(ToPosixSeparators(fileName), ToPosixSeparators(bufferFileName));
}

}  // namespace velmora
