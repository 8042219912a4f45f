// Lines and character offsets of a file's editor buffer, read through TEditorReadStream
// (the file is opened when it is not yet). Offsets are 0-based, lines 1-based.
//
// The two counting functions take only carriage returns as line ends, while the
// line-start search takes a carriage return or a line feed; the buffers hold CR LF
// pairs, for which both agree. Main thread only.
#pragma once

#include <cstdint>
#include <string>

namespace velmora {

/// How far back the line-start search looks: one block of this many characters.
inline constexpr int kLineStartBlock = 1025;
/// The block size of the counting functions.
inline constexpr int kCountBlock = 16384;

/// The offset of the start of the line that holds `position`, looked for in the
/// kLineStartBlock characters before it: -1 when that block holds no line break before
/// `position` (position 0, or a line that began further back) or the buffer cannot be
/// read.
int32_t LineStartOfPosition(const std::string& fileName, int32_t position);

/// 1 plus the carriage returns before `position`; -1 when the buffer ends before it or
/// cannot be read.
int32_t LineOfPosition(const std::string& fileName, int32_t position);

/// The offset just past the carriage return that ends line `line` - 1 (0 for line 1 and
/// below): in a buffer of CR LF pairs that is the pair's line feed, so LineOfPosition of
/// the result is `line` again. -1 when the buffer ends first or cannot be read.
int32_t PositionOfLine(const std::string& fileName, int32_t line);

}  // namespace velmora
