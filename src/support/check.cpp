#include "support/check.h"

#include <cstdio>
#include <cstdlib>

namespace velmora::support {

void DCheckFailed(const char* file, int line, const char* condition, const char* what) noexcept {
  std::fprintf(stderr, "%s:%d: check failed: %s (%s)\n", file, line, condition, what);
  std::fflush(stderr);
  std::abort();
}

}  // namespace velmora::support
