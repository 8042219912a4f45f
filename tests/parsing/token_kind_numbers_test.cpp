// The kind numbers and names that `velmora tokens` prints are an interface: scripts and
// golden files read them. This test pins every number of both languages to its name, so a
// token added in the wrong place, or a renumbering, shows up as a changed table line.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

#include "parsing/cpp_tokenizer.h"
#include "parsing/pascal_tokenizer.h"

namespace velmora {
namespace {

// "NUMBER NAME" for every number a kind can have, "unused" ones included.
std::string KindTable(std::string_view (*name)(int)) {
  std::string out;
  for (int kind = 0; kind < 256; ++kind) {
    out += std::to_string(kind);
    out += ' ';
    out += name(kind);
    out += '\n';
  }
  return out;
}

std::string ReadGolden(const std::string& name) {
  std::ifstream in(std::string(VELMORA_TEST_DATA) + "/parsing/token_kinds/" + name,
                   std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

TEST(TokenKindNumbers, AreThoseVelmoraTokensHasAlwaysPrinted) {
  const struct {
    const char* golden;
    std::string_view (*name)(int);
  } kLanguages[] = {{"cpp.txt", CppTokenKindName}, {"pascal.txt", PascalTokenKindName}};
  for (const auto& language : kLanguages) {
    const std::string expected = ReadGolden(language.golden);
    ASSERT_FALSE(expected.empty()) << language.golden;
    EXPECT_EQ(KindTable(language.name), expected) << language.golden;
  }
}

TEST(TokenKindNumbers, NamesOutsideTheTableAreUnused) {
  for (const int kind : {-1, 256, 1000}) {
    EXPECT_EQ(CppTokenKindName(kind), "unused") << kind;
    EXPECT_EQ(PascalTokenKindName(kind), "unused") << kind;
  }
}

TEST(TokenKindNumbers, BracketPairs) {
  const struct {
    const char* name;
    int open;
    int close;
    int (*closing)(int);
    int (*opening)(int);
  } kPairs[] = {
      {.name = "C++ braces",
       .open = ctOpenBrace,
       .close = ctCloseBrace,
       .closing = [](int k) { return CppClosingKind(k); },
       .opening = [](int k) { return CppOpeningKind(k); }},
      {.name = "C++ parens",
       .open = ctOpenParen,
       .close = ctCloseParen,
       .closing = [](int k) { return CppClosingKind(k); },
       .opening = [](int k) { return CppOpeningKind(k); }},
      {.name = "C++ brackets",
       .open = ctOpenBracket,
       .close = ctCloseBracket,
       .closing = [](int k) { return CppClosingKind(k); },
       .opening = [](int k) { return CppOpeningKind(k); }},
      {.name = "Pascal parens",
       .open = ptOpenParen,
       .close = ptCloseParen,
       .closing = [](int k) { return PascalClosingKind(k); },
       .opening = [](int k) { return PascalOpeningKind(k); }},
      {.name = "Pascal brackets",
       .open = ptOpenBracket,
       .close = ptCloseBracket,
       .closing = [](int k) { return PascalClosingKind(k); },
       .opening = [](int k) { return PascalOpeningKind(k); }},
  };
  for (const auto& pair : kPairs) {
    EXPECT_EQ(pair.closing(pair.open), pair.close) << pair.name;
    EXPECT_EQ(pair.opening(pair.close), pair.open) << pair.name;
    EXPECT_EQ(pair.closing(pair.close), -1) << pair.name;
    EXPECT_EQ(pair.opening(pair.open), -1) << pair.name;
  }
  // The touching pairs are tokens of their own and neither open nor close a group; `<`
  // pairs with `>` only where the parsers read template argument lists.
  for (const int kind :
       {int{ctParens}, int{ctBrackets}, int{ctBraces}, int{ctLess}, int{ctIdentifier}})
    EXPECT_EQ(CppClosingKind(kind), -1) << CppTokenKindName(kind);
  for (const int kind : {int{ptRecord}, int{ptLess}, int{ptIdentifier}})
    EXPECT_EQ(PascalClosingKind(kind), -1) << PascalTokenKindName(kind);
}

}  // namespace
}  // namespace velmora
