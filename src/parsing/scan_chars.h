// Character classes and run scanners shared by the C++ and Pascal scanners (and the
// character classes by the parsers). Every function takes the text and a position and
// stops at the NUL at the latest; none reads past it.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>

namespace velmora::scan {

enum : unsigned char { fBlank = 1, fDigit = 2, fIdentStart = 4, fIdentChar = 8, fHexDigit = 16 };

constexpr std::array<unsigned char, 256> MakeFlags() {
  std::array<unsigned char, 256> t{};
  // Blanks are the control characters and the space, except NUL, LF and CR.
  for (int c = 1; c <= 32; ++c)
    if (c != '\n' && c != '\r') t[c] |= fBlank;
  for (int c = '0'; c <= '9'; ++c) t[c] |= fDigit | fIdentChar | fHexDigit;
  for (int c = 'A'; c <= 'Z'; ++c) t[c] |= fIdentStart | fIdentChar;
  for (int c = 'a'; c <= 'z'; ++c) t[c] |= fIdentStart | fIdentChar;
  for (int c = 'A'; c <= 'F'; ++c) t[c] |= fHexDigit;
  for (int c = 'a'; c <= 'f'; ++c) t[c] |= fHexDigit;
  t['_'] |= fIdentStart | fIdentChar;
  // Every byte above 127 is a letter: of a UTF-8 sequence (`TWärme` is C3 A4 in the
  // middle) or of a Windows-1252 text (E4), the two ways real sources spell such names. A
  // byte of either that is no letter (`©`, `«`) stands in strings and comments, where no
  // identifier is read.
  for (int c = 128; c <= 255; ++c) t[c] |= fIdentStart | fIdentChar;
  return t;
}
inline constexpr std::array<unsigned char, 256> kFlags = MakeFlags();

constexpr bool IsBlank(unsigned char c) {
  return kFlags[c] & fBlank;
}
constexpr bool IsIdentStart(unsigned char c) {
  return kFlags[c] & fIdentStart;
}
constexpr bool IsIdentChar(unsigned char c) {
  return kFlags[c] & fIdentChar;
}

inline int32_t SkipBlanks(const unsigned char* s, int32_t p) {
  while (kFlags[s[p]] & fBlank) ++p;
  return p;
}
inline int32_t SkipDigits(const unsigned char* s, int32_t p) {
  while (kFlags[s[p]] & fDigit) ++p;
  return p;
}
inline int32_t SkipHexDigits(const unsigned char* s, int32_t p) {
  while (kFlags[s[p]] & fHexDigit) ++p;
  return p;
}
inline int32_t SkipIdentChars(const unsigned char* s, int32_t p) {
  while (kFlags[s[p]] & fIdentChar) ++p;
  return p;
}

/// The position of the first character from `p` on that is in `set`, or of the NUL.
/// strcspn is the C library's vectorised search that stops at the NUL as well; comments
/// and literals are long enough for it to pay.
inline int32_t FindAny(const unsigned char* s, int32_t p, const char* set) {
  return p + static_cast<int32_t>(std::strcspn(reinterpret_cast<const char*>(s) + p, set));
}

/// Just past the next `close` from `p` on, or the NUL's position.
inline int32_t PastClosing(const unsigned char* s, int32_t p, char close) {
  const char set[2] = {close, 0};
  p = FindAny(s, p, set);
  return s[p] ? p + 1 : p;
}

/// Just past the first `*` followed by `close` from `p` on, or the NUL's position.
inline int32_t PastStarClose(const unsigned char* s, int32_t p, char close) {
  for (;;) {
    p = FindAny(s, p, "*");
    if (!s[p]) return p;
    if (s[p + 1] == static_cast<unsigned char>(close)) return p + 2;
    ++p;
  }
}

/// The end of a line comment whose text starts at `p`: it runs to the next CR and takes
/// that CR and one LF right after it. A LF alone does not end it.
inline int32_t PastLineCommentEnd(const unsigned char* s, int32_t p) {
  p = FindAny(s, p, "\r");
  if (!s[p]) return p;
  ++p;
  return s[p] == '\n' ? p + 1 : p;
}

/// How many tokens to reserve room for before scanning `textSize` characters. Real
/// sources run at about one token for every three or four characters (whitespace runs
/// and line ends included); reserving a little more than that once saves the lists from
/// growing in small steps over and over on big files, while a text that turns out denser
/// still works, the lists growing by their own rule beyond the estimate.
inline int32_t EstimateTokenCount(int32_t textSize) {
  if (textSize < 0) textSize = 0;
  return textSize / 3 + 64;
}

}  // namespace velmora::scan
