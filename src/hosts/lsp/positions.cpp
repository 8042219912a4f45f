#include "hosts/lsp/positions.h"

#include <algorithm>
#include <cctype>

namespace velmora::lsp {
namespace {

// Length of the UTF-8 sequence that starts with `lead`, and how many UTF-16 units its
// code point takes; a byte that starts no valid sequence is one byte, one unit.
struct TSequence {
  int bytes;
  int utf16;
};

TSequence SequenceAt(std::string_view s, std::size_t i) {
  const auto c = static_cast<unsigned char>(s[i]);
  int need = 0;
  if (c < 0x80) return {1, 1};
  if ((c & 0xE0) == 0xC0 && c >= 0xC2)
    need = 1;
  else if ((c & 0xF0) == 0xE0)
    need = 2;
  else if ((c & 0xF8) == 0xF0 && c <= 0xF4)
    need = 3;
  else
    return {1, 1};
  if (i + need >= s.size()) return {1, 1};
  for (int k = 1; k <= need; ++k)
    if ((static_cast<unsigned char>(s[i + k]) & 0xC0) != 0x80) return {1, 1};
  // Overlong three-byte forms and surrogates encoded in UTF-8 are not valid either.
  if (need == 2) {
    const auto c1 = static_cast<unsigned char>(s[i + 1]);
    if ((c == 0xE0 && c1 < 0xA0) || (c == 0xED && c1 >= 0xA0)) return {1, 1};
  }
  if (need == 3) {
    const auto c1 = static_cast<unsigned char>(s[i + 1]);
    if ((c == 0xF0 && c1 < 0x90) || (c == 0xF4 && c1 >= 0x90)) return {1, 1};
    return {4, 2};
  }
  return {need + 1, 1};
}

int UnitsOf(const TSequence& seq, TPositionEncoding encoding) {
  switch (encoding) {
    case TPositionEncoding::Utf8:
      return seq.bytes;
    case TPositionEncoding::Utf16:
      return seq.utf16;
    case TPositionEncoding::Utf32:
      return 1;
  }
  return 1;
}

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

std::string_view EncodingName(TPositionEncoding encoding) {
  switch (encoding) {
    case TPositionEncoding::Utf8:
      return "utf-8";
    case TPositionEncoding::Utf32:
      return "utf-32";
    case TPositionEncoding::Utf16:
      break;
  }
  return "utf-16";
}

TLineIndex::TLineIndex(std::string_view text) : text_(text) {
  starts_.push_back(0);
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r') {
      if (i + 1 < text.size() && text[i + 1] == '\n') ++i;
      starts_.push_back(static_cast<int64_t>(i + 1));
    } else if (text[i] == '\n') {
      starts_.push_back(static_cast<int64_t>(i + 1));
    }
  }
}

int TLineIndex::LineOf(int64_t offset) const {
  offset = std::clamp<int64_t>(offset, 0, static_cast<int64_t>(text_.size()));
  const auto it = std::upper_bound(starts_.begin(), starts_.end(), offset);
  return static_cast<int>(it - starts_.begin()) - 1;
}

int64_t TLineIndex::LineStart(int line) const {
  if (line < 0) return 0;
  if (line >= LineCount()) return static_cast<int64_t>(text_.size());
  return starts_[line];
}

std::string_view TLineIndex::LineText(int line) const {
  if (line < 0 || line >= LineCount()) return {};
  const int64_t start = starts_[line];
  int64_t end = line + 1 < LineCount() ? starts_[line + 1] : static_cast<int64_t>(text_.size());
  while (end > start && (text_[end - 1] == '\n' || text_[end - 1] == '\r')) --end;
  return text_.substr(start, end - start);
}

TLspPosition TLineIndex::ToLsp(int64_t offset, TPositionEncoding encoding) const {
  offset = std::clamp<int64_t>(offset, 0, static_cast<int64_t>(text_.size()));
  const int line = LineOf(offset);
  const std::string_view lineText = LineText(line);
  const auto within = static_cast<std::size_t>(offset - starts_[line]);
  // An offset inside the line end (between CR and LF) stands at the line's end.
  return {line, CountUnits(lineText.substr(0, std::min(within, lineText.size())), encoding)};
}

int64_t TLineIndex::FromLsp(TLspPosition position, TPositionEncoding encoding) const {
  if (position.Line < 0) return 0;
  if (position.Line >= LineCount()) return static_cast<int64_t>(text_.size());
  const std::string_view lineText = LineText(position.Line);
  const int units = std::max(position.Character, 0);
  return starts_[position.Line] + static_cast<int64_t>(BytesForUnits(lineText, units, encoding));
}

int CountUnits(std::string_view bytes, TPositionEncoding encoding) {
  int units = 0;
  for (std::size_t i = 0; i < bytes.size();) {
    const TSequence seq = SequenceAt(bytes, i);
    units += UnitsOf(seq, encoding);
    i += static_cast<std::size_t>(seq.bytes);
  }
  return units;
}

std::size_t BytesForUnits(std::string_view bytes, int units, TPositionEncoding encoding) {
  std::size_t i = 0;
  int counted = 0;
  while (i < bytes.size()) {
    const TSequence seq = SequenceAt(bytes, i);
    const int n = UnitsOf(seq, encoding);
    if (counted + n > units) break;
    counted += n;
    i += static_cast<std::size_t>(seq.bytes);
  }
  return i;
}

std::string ApplyEdit(std::string_view text, TLspPosition from, TLspPosition to,
                      std::string_view with, TPositionEncoding encoding) {
  const TLineIndex index(text);
  int64_t a = index.FromLsp(from, encoding);
  int64_t b = index.FromLsp(to, encoding);
  if (b < a) std::swap(a, b);
  std::string out;
  out.reserve(text.size() - static_cast<std::size_t>(b - a) + with.size());
  out.append(text.substr(0, static_cast<std::size_t>(a)));
  out.append(with);
  out.append(text.substr(static_cast<std::size_t>(b)));
  return out;
}

std::string PathFromUri(std::string_view uri) {
  constexpr std::string_view kScheme = "file:";
  if (uri.size() < kScheme.size()) return {};
  for (std::size_t i = 0; i < kScheme.size(); ++i)
    if (static_cast<char>(std::tolower(static_cast<unsigned char>(uri[i]))) != kScheme[i])
      return {};
  std::string_view rest = uri.substr(kScheme.size());
  if (rest.substr(0, 2) == "//") {
    rest.remove_prefix(2);
    const std::size_t slash = rest.find('/');
    const std::string_view host = rest.substr(0, slash);
    if (!host.empty() && host != "localhost") return {};
    rest = slash == std::string_view::npos ? std::string_view() : rest.substr(slash);
  }
  // A query or fragment is no part of a file's name.
  rest = rest.substr(0, rest.find_first_of("?#"));
  std::string path;
  path.reserve(rest.size());
  for (std::size_t i = 0; i < rest.size(); ++i) {
    if (rest[i] == '%' && i + 2 < rest.size()) {
      const int hi = HexValue(rest[i + 1]);
      const int lo = HexValue(rest[i + 2]);
      if (hi >= 0 && lo >= 0) {
        path.push_back(static_cast<char>(hi * 16 + lo));
        i += 2;
        continue;
      }
    }
    path.push_back(rest[i]);
  }
  if (path.empty() || path.find('\0') != std::string::npos) return {};
  return path;
}

std::string UriFromPath(std::string_view path) {
  static const char kHex[] = "0123456789ABCDEF";
  std::string uri = "file://";
  for (const char ch : path) {
    const auto c = static_cast<unsigned char>(ch);
    const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                       std::string_view("-._~/!$&'()*+,;=@").find(ch) != std::string_view::npos;
    if (plain) {
      uri.push_back(ch);
    } else {
      uri.push_back('%');
      uri.push_back(kHex[c >> 4]);
      uri.push_back(kHex[c & 15]);
    }
  }
  return uri;
}

}  // namespace velmora::lsp
