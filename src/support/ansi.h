// Single-byte ("ANSI", Windows-1252) case folding. Every case-insensitive comparison of
// the system goes through these two fixed tables, so that sorting and lookup agree on
// every machine whatever its locale.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velmora {

extern const unsigned char kAnsiUpper[256];
extern const unsigned char kAnsiLower[256];

inline char AnsiUpperChar(char c) {
  return static_cast<char>(kAnsiUpper[static_cast<unsigned char>(c)]);
}
inline char AnsiLowerChar(char c) {
  return static_cast<char>(kAnsiLower[static_cast<unsigned char>(c)]);
}

std::string AnsiUpperCase(std::string_view s);
std::string AnsiLowerCase(std::string_view s);

/// Ordinal comparison of the bytes: negative, zero or positive.
int CompareStr(std::string_view a, std::string_view b);
/// Comparison after folding both sides to upper case: negative, zero or positive.
int CompareText(std::string_view a, std::string_view b);
bool SameText(std::string_view a, std::string_view b);

/// CompareText when `caseSensitive` is false, CompareStr otherwise.
inline int CompareNames(std::string_view a, std::string_view b, bool caseSensitive) {
  return caseSensitive ? CompareStr(a, b) : CompareText(a, b);
}

/// Blanks (codes up to 32) removed from both ends.
std::string_view Trim(std::string_view s);

}  // namespace velmora
