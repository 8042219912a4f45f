// Source text as every parser, finder and editor buffer sees it: CR LF line ends and a
// NUL after the last character. Files with LF or lone CR line ends are converted when they
// are loaded; without that, a `//` comment (which runs to the next CR) would swallow the
// rest of an LF file.
#pragma once

#include <string>
#include <string_view>

namespace velmora {

enum class TLineEndStyle { CrLf, Lf, Cr };

/// The text with every LF not preceded by CR and every CR not followed by LF turned into
/// CR LF. Line numbers are the same before and after; offsets refer to the result.
std::string ToBufferForm(std::string_view text);

/// The line-end style of the first line end in `text` (CR LF when there is none), so an
/// editor buffer can be written back the way the file was.
TLineEndStyle DetectLineEndStyle(std::string_view text);

/// Buffer-form text turned back into the given style.
std::string FromBufferForm(std::string_view text, TLineEndStyle style);

/// Reads a file whole and returns it in buffer form. The returned string's terminating NUL
/// (std::string keeps one after size()) is the NUL the tokenizers stop at, so callers pass
/// `data()` and `size()` straight on. Raises EStreamError when the file cannot be read.
std::string LoadSourceText(const std::string& path);

}  // namespace velmora
