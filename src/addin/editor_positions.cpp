#include "addin/editor_positions.h"

#include <algorithm>

#include "addin/editor_streams.h"

namespace velmora {

int32_t LineStartOfPosition(const std::string& fileName, int32_t position) {
  TEditorReadStream stream(fileName, true);
  const int32_t start = std::max<int32_t>(0, position - kLineStartBlock);
  stream.SetPosition(start);
  std::string block;
  const int n = stream.Read(block, kLineStartBlock);
  int32_t lineStart = -1;
  bool afterBreak = false;
  for (int i = 0; i < n; ++i) {
    const int32_t offset = start + i;
    if (offset == position) {
      // The character at the position may itself begin its line (an empty line's CR
      // does too); the LF of a CR LF pair does not.
      if (afterBreak && block[static_cast<size_t>(i)] != '\n') lineStart = offset;
      break;
    }
    const char c = block[static_cast<size_t>(i)];
    if (c == '\r' || c == '\n') {
      afterBreak = true;
    } else if (afterBreak) {
      afterBreak = false;
      lineStart = offset;
    }
  }
  return lineStart;
}

int32_t LineOfPosition(const std::string& fileName, int32_t position) {
  TEditorReadStream stream(fileName, true);
  if (!stream.Valid()) return -1;
  std::string block;
  int32_t passed = 0;
  int32_t line = 1;
  for (;;) {
    if (passed >= position) return line;
    const int n = stream.Read(block, kCountBlock);
    if (n <= 0) return -1;
    const int upTo = std::min<int32_t>(n, position - passed);
    line += static_cast<int32_t>(std::count(block.begin(), block.begin() + upTo, '\r'));
    passed += n;
  }
}

int32_t PositionOfLine(const std::string& fileName, int32_t line) {
  TEditorReadStream stream(fileName, true);
  if (!stream.Valid()) return -1;
  std::string block;
  int32_t passed = 0;
  int32_t current = 1;
  if (current >= line) return 0;
  for (;;) {
    const int n = stream.Read(block, kCountBlock);
    if (n <= 0) return -1;
    for (int i = 0; i < n; ++i) {
      if (block[static_cast<size_t>(i)] == '\r' && ++current >= line) return passed + i + 1;
    }
    passed += n;
  }
}

}  // namespace velmora
