#include "support/text_buffer.h"

#include <algorithm>
#include <cstring>

#include "support/stream.h"

namespace velmora {

namespace {

// The first `c` at or after `from`, or `end`: memchr steps over the long runs between
// line ends many bytes at a time, where a loop over every character would not.
const char* FindChar(const char* from, const char* end, char c) {
  const void* at = std::memchr(from, c, static_cast<size_t>(end - from));
  return at ? static_cast<const char*>(at) : end;
}

}  // namespace

std::string ToBufferForm(std::string_view text) {
  const char* const begin = text.data();
  const char* const end = begin + text.size();
  // Most project files already are CR LF: only copy when something must change. They are
  // when every LF follows a CR and there are as many CRs as LFs (each CR then has its LF).
  bool clean = true;
  size_t lineFeeds = 0, returns = 0;
  for (const char* lf = FindChar(begin, end, '\n'); lf != end && clean;
       lf = FindChar(lf + 1, end, '\n')) {
    clean = lf != begin && lf[-1] == '\r';
    ++lineFeeds;
  }
  if (clean) {
    for (const char* cr = FindChar(begin, end, '\r'); cr != end && returns <= lineFeeds;
         cr = FindChar(cr + 1, end, '\r'))
      ++returns;
    if (returns == lineFeeds) return std::string(text);
  }

  // A CR LF, a lone CR and a lone LF each become CR LF; the runs between them are copied
  // whole.
  std::string out;
  out.reserve(text.size() + text.size() / 16 + 2);
  const char* cr = FindChar(begin, end, '\r');
  const char* lf = FindChar(begin, end, '\n');
  for (const char* p = begin;;) {
    const char* const lineEnd = std::min(cr, lf);
    out.append(p, static_cast<size_t>(lineEnd - p));
    if (lineEnd == end) break;
    out += "\r\n";
    p = lineEnd + (*lineEnd == '\r' && lineEnd + 1 < end && lineEnd[1] == '\n' ? 2 : 1);
    if (cr < p) cr = FindChar(p, end, '\r');
    if (lf < p) lf = FindChar(p, end, '\n');
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
