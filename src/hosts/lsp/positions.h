// Positions at the language server's boundary. Inside Velmora a place in a file is a byte
// offset into its buffer form (CR LF line ends); a client counts lines from 0 and
// characters within a line in UTF-16 code units (or UTF-8 bytes, or code points, as agreed
// at initialize), on the text as it holds it. Lines are the same in both forms, so a line
// index and the line's bytes are all a conversion needs. Bytes that are not UTF-8 (a
// Windows-1252 unit, say) count as one character each, as a client decoding them with a
// replacement character counts them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::lsp {

enum class TPositionEncoding { Utf16, Utf8, Utf32 };

/// The name the protocol gives the encoding ("utf-16", "utf-8", "utf-32").
std::string_view EncodingName(TPositionEncoding encoding);

struct TLspPosition {
  int Line = 0;
  int Character = 0;
  bool operator==(const TLspPosition&) const = default;
};

/// Line starts of one text. Any of CR LF, LF and a lone CR ends a line.
class TLineIndex {
 public:
  explicit TLineIndex(std::string_view text);

  int LineCount() const { return static_cast<int>(starts_.size()); }
  /// The line holding byte `offset` (clamped into the text).
  int LineOf(int64_t offset) const;
  /// The bytes of line `line` without its line end; empty past the last line.
  std::string_view LineText(int line) const;
  int64_t LineStart(int line) const;

  /// Byte offset -> client position.
  TLspPosition ToLsp(int64_t offset, TPositionEncoding encoding) const;
  /// Client position -> byte offset. A line past the end gives the end of the text, a
  /// character past the end of its line the end of that line (as the protocol asks).
  int64_t FromLsp(TLspPosition position, TPositionEncoding encoding) const;

 private:
  std::string_view text_;
  std::vector<int64_t> starts_;
};

/// Characters of `bytes` counted in `encoding`.
int CountUnits(std::string_view bytes, TPositionEncoding encoding);
/// The byte length of the longest prefix of `bytes` that holds at most `units` characters
/// in `encoding`; a position inside a surrogate pair stops before the pair.
std::size_t BytesForUnits(std::string_view bytes, int units, TPositionEncoding encoding);

/// `text` with the range [from, to) replaced by `with`, the ends given as client positions
/// on `text` itself (incremental document sync). Ends are clamped; a reversed range is
/// taken in order.
std::string ApplyEdit(std::string_view text, TLspPosition from, TLspPosition to,
                      std::string_view with, TPositionEncoding encoding);

/// The file a `file:` URI names, percent escapes decoded; empty for another scheme or a
/// URI with a host other than localhost.
std::string PathFromUri(std::string_view uri);
/// A `file://` URI for an absolute path, escaping what a URI may not hold as it is.
std::string UriFromPath(std::string_view path);

}  // namespace velmora::lsp
