#include "support/ansi.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

TEST(AnsiTest, FoldsTheLatinOneLettersButNotTheirNeighbours) {
  struct Case {
    unsigned char lower, upper;
  } cases[] = {{'a', 'A'}, {'z', 'Z'}, {0xE0, 0xC0}, {0xFE, 0xDE}, {0x9A, 0x8A}, {0xFF, 0x9F}};
  for (auto c : cases) {
    EXPECT_EQ(kAnsiUpper[c.lower], c.upper) << int(c.lower);
    EXPECT_EQ(kAnsiLower[c.upper], c.lower) << int(c.upper);
  }
  // The division and multiplication signs sit inside the letter ranges but have no case.
  EXPECT_EQ(kAnsiUpper[0xF7], 0xF7);
  EXPECT_EQ(kAnsiLower[0xD7], 0xD7);
  EXPECT_EQ(kAnsiUpper[static_cast<unsigned char>('_')], '_');
  EXPECT_EQ(kAnsiUpper[0xDF], 0xDF);  // sharp s has no single-byte capital
}

TEST(AnsiTest, ComparesAfterFoldingToUpperCase) {
  struct Case {
    const char* a;
    const char* b;
    int text, str;
  } cases[] = {
      {"TForm", "tform", 0, -1},
      {"abc", "abd", -1, -1},
      {"ab", "abc", -1, -1},
      {"", "", 0, 0},
      {"b", "A", 1, 1},
      // Folding to upper case puts '_' after the letters, as the class views sort.
      {"a_b", "aZb", 1, 1},
      {"a_b", "azb", 1, -1},
  };
  for (auto c : cases) {
    EXPECT_EQ(CompareText(c.a, c.b), c.text) << c.a << " vs " << c.b;
    EXPECT_EQ(CompareStr(c.a, c.b), c.str) << c.a << " vs " << c.b;
  }
  EXPECT_TRUE(SameText("\xE4rger", "\xC4RGER"));
}

}  // namespace
}  // namespace velmora
