#include "support/text_buffer.h"

#include "support/stream.h"

namespace velmora {

std::string ToBufferForm(std::string_view text) {
  // Most project files already are CR LF: only copy when something must change.
  bool clean = true;
  for (size_t i = 0; i < text.size() && clean; ++i) {
    if (text[i] == '\r') {
      if (i + 1 >= text.size() || text[i + 1] != '\n') clean = false;
      ++i;
    } else if (text[i] == '\n') {
      clean = false;
    }
  }
  if (clean) return std::string(text);

  std::string out;
  out.reserve(text.size() + text.size() / 16 + 2);
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '\r') {
      out += "\r\n";
      if (i + 1 < text.size() && text[i + 1] == '\n') ++i;
    } else if (c == '\n') {
      out += "\r\n";
    } else {
      out += c;
    }
  }
  return out;
}

TLineEndStyle DetectLineEndStyle(std::string_view text) {
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\n') return TLineEndStyle::Lf;
    if (text[i] == '\r')
      return i + 1 < text.size() && text[i + 1] == '\n' ? TLineEndStyle::CrLf : TLineEndStyle::Cr;
  }
  return TLineEndStyle::CrLf;
}

std::string FromBufferForm(std::string_view text, TLineEndStyle style) {
  if (style == TLineEndStyle::CrLf) return std::string(text);
  const char eol = style == TLineEndStyle::Lf ? '\n' : '\r';
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
      out += eol;
      ++i;
    } else {
      out += text[i];
    }
  }
  return out;
}

std::string LoadSourceText(const std::string& path) {
  return ToBufferForm(ReadWholeFile(path));
}

}  // namespace velmora
