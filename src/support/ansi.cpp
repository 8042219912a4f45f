#include "support/ansi.h"

#include <algorithm>
#include <array>

namespace velmora {
namespace {

// Windows-1252 pairs outside the two plain letter ranges.
constexpr std::pair<unsigned char, unsigned char> kExtraPairs[] = {
    {0x8A, 0x9A}, {0x8C, 0x9C}, {0x8E, 0x9E}, {0x9F, 0xFF}};

constexpr std::array<unsigned char, 256> MakeUpper() {
  std::array<unsigned char, 256> t{};
  for (int i = 0; i < 256; ++i) t[i] = static_cast<unsigned char>(i);
  for (int c = 'a'; c <= 'z'; ++c) t[c] = static_cast<unsigned char>(c - 32);
  for (int c = 0xE0; c <= 0xFE; ++c)
    if (c != 0xF7) t[c] = static_cast<unsigned char>(c - 32);
  for (auto [upper, lower] : kExtraPairs) t[lower] = upper;
  return t;
}

constexpr std::array<unsigned char, 256> MakeLower() {
  std::array<unsigned char, 256> t{};
  for (int i = 0; i < 256; ++i) t[i] = static_cast<unsigned char>(i);
  for (int c = 'A'; c <= 'Z'; ++c) t[c] = static_cast<unsigned char>(c + 32);
  for (int c = 0xC0; c <= 0xDE; ++c)
    if (c != 0xD7) t[c] = static_cast<unsigned char>(c + 32);
  for (auto [upper, lower] : kExtraPairs) t[upper] = lower;
  return t;
}

constexpr auto kUpperTable = MakeUpper();
constexpr auto kLowerTable = MakeLower();

}  // namespace

const unsigned char kAnsiUpper[256] = {
#define V(i) kUpperTable[i]
#define V8(i) V(i), V(i + 1), V(i + 2), V(i + 3), V(i + 4), V(i + 5), V(i + 6), V(i + 7)
#define V64(i) \
  V8(i), V8(i + 8), V8(i + 16), V8(i + 24), V8(i + 32), V8(i + 40), V8(i + 48), V8(i + 56)
    V64(0), V64(64), V64(128), V64(192)
#undef V
#define V(i) kLowerTable[i]
};
const unsigned char kAnsiLower[256] = {V64(0), V64(64), V64(128), V64(192)};
#undef V
#undef V8
#undef V64

std::string AnsiUpperCase(std::string_view s) {
  std::string r(s);
  for (char& c : r) c = AnsiUpperChar(c);
  return r;
}

std::string AnsiLowerCase(std::string_view s) {
  std::string r(s);
  for (char& c : r) c = AnsiLowerChar(c);
  return r;
}

int CompareStr(std::string_view a, std::string_view b) {
  int r = a.compare(b);
  return r < 0 ? -1 : (r > 0 ? 1 : 0);
}

int CompareText(std::string_view a, std::string_view b) {
  const size_t n = std::min(a.size(), b.size());
  for (size_t i = 0; i < n; ++i) {
    const unsigned char ca = kAnsiUpper[static_cast<unsigned char>(a[i])];
    const unsigned char cb = kAnsiUpper[static_cast<unsigned char>(b[i])];
    if (ca != cb) return ca < cb ? -1 : 1;
  }
  if (a.size() == b.size()) return 0;
  return a.size() < b.size() ? -1 : 1;
}

bool SameText(std::string_view a, std::string_view b) {
  return a.size() == b.size() && CompareText(a, b) == 0;
}

std::string_view Trim(std::string_view s) {
  size_t b = 0, e = s.size();
  while (b < e && static_cast<unsigned char>(s[b]) <= ' ') ++b;
  while (e > b && static_cast<unsigned char>(s[e - 1]) <= ' ') --e;
  return s.substr(b, e - b);
}

}  // namespace velmora
