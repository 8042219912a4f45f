#include "parsing/pascal_tokenizer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parsing/token_test_support.h"

namespace velmora {
namespace {

using testing::Scan;

TEST(PascalTokenizerTest, Kinds) {
  const struct {
    std::string text;
    std::vector<int> kinds;
  } cases[] = {
      {.text = "Result:=-1;", .kinds = {127, 116, 144, 134, 139}},
      {.text = "BEGIN begin BeGiN", .kinds = {13, 1, 13, 1, 13}},
      {.text = "end.", .kinds = {24, 136}},
      {.text = "Name Index READ", .kinds = {90, 1, 88, 1, 101}},
      // Numbers: decimal runs, $ hexadecimal runs, # character codes.
      {.text = "1.5", .kinds = {134, 136, 134}},
      {.text = "1..5", .kinds = {134, 122, 134}},
      {.text = "$1aF", .kinds = {128}},
      {.text = "$FFg", .kinds = {128, 127}},
      {.text = "$", .kinds = {128}},
      {.text = "#$0D", .kinds = {114, 128}},
      {.text = "#13#10", .kinds = {114, 114}},
      {.text = "#", .kinds = {114}},
      // Strings: a doubled quote closes one piece and opens the next; an unclosed string
      // stops before the line end.
      {.text = "'It''s'", .kinds = {150, 150}},
      {.text = "''", .kinds = {150}},
      {.text = "'abc", .kinds = {150}},
      {.text = "'ab\r\ncd'", .kinds = {150, 2, 127, 150}},
      {.text = "'a\nb", .kinds = {150, 2, 127}},
      // Braces: a directive when $ follows directly, otherwise a comment.
      {.text = "{$I x}", .kinds = {121}},
      {.text = "{ x }", .kinds = {118}},
      {.text = "{ $I x}", .kinds = {118}},
      {.text = "{}", .kinds = {118}},
      {.text = "{unclosed\r\nx", .kinds = {118}},
      {.text = "{$unclosed", .kinds = {121}},
      {.text = "{a}}", .kinds = {118, 145}},
      // Parenthesis comments and the bracket digraphs.
      {.text = "(* a *)x", .kinds = {113, 127}},
      {.text = "(**)", .kinds = {113}},
      {.text = "(*) x *)", .kinds = {113}},
      {.text = "(*)", .kinds = {113}},
      {.text = "a(.1.)", .kinds = {127, 142, 134, 141}},
      {.text = "( . )", .kinds = {138, 1, 136, 1, 137}},
      // Line comments run to the next CR, taking it and one LF.
      {.text = "a//x\n\n\r\nb", .kinds = {127, 140, 127}},
      {.text = "//x\r\r\n", .kinds = {140, 2}},
      {.text = "//", .kinds = {140}},
      // Punctuators.
      {.text = ":= : = <> <= >= < >",
       .kinds = {116, 1, 119, 1, 123, 1, 133, 1, 130, 1, 126, 1, 129, 1, 125}},
      {.text = "..;,+*/&@^[]()",
       .kinds = {122, 139, 120, 135, 143, 146, 147, 148, 149, 142, 141, 138, 137}},
      {.text = "-~!?\"%\\`", .kinds = {144, 144, 144, 144, 144, 144, 144, 144}},
      {.text = "|}\x7F\x80\xFF", .kinds = {145, 145, 145, 127}},
      // A byte above 127 is a letter (Windows-1252 `é` here, or part of a UTF-8 one).
      {.text = "a\xE9"
               "b",
       .kinds = {127}},
      // Identifiers longer than any keyword, and keywords with a character more.
      {.text = "initialization initializations", .kinds = {37, 1, 127}},
      {.text = "ImplementationX _end end_", .kinds = {127, 1, 127, 1, 127}},
      {.text = "\n\r\r\n\r", .kinds = {2, 2, 2}},
      {.text = "", .kinds = {}},
  };
  for (const auto& c : cases) EXPECT_EQ(Scan<TPascalTokenizer>(c.text).kinds, c.kinds) << c.text;
}

TEST(PascalTokenizerTest, EveryKeywordHasTheKindOfItsPlaceInAnyCase) {
  // Written out independently of the scanner's table, in the order that fixes the kinds.
  const char* const keywords[] = {"and",
                                  "array",
                                  "as",
                                  "begin",
                                  "case",
                                  "class",
                                  "const",
                                  "constructor",
                                  "destructor",
                                  "dispinterface",
                                  "div",
                                  "do",
                                  "downto",
                                  "else",
                                  "end",
                                  "except",
                                  "exports",
                                  "file",
                                  "finalization",
                                  "finally",
                                  "for",
                                  "function",
                                  "goto",
                                  "if",
                                  "implementation",
                                  "in",
                                  "inherited",
                                  "initialization",
                                  "inline",
                                  "interface",
                                  "is",
                                  "label",
                                  "library",
                                  "mod",
                                  "nil",
                                  "not",
                                  "object",
                                  "of",
                                  "or",
                                  "out",
                                  "packed",
                                  "procedure",
                                  "program",
                                  "property",
                                  "raise",
                                  "record",
                                  "repeat",
                                  "resourcestring",
                                  "set",
                                  "shl",
                                  "shr",
                                  "string",
                                  "then",
                                  "threadvar",
                                  "to",
                                  "try",
                                  "type",
                                  "unit",
                                  "until",
                                  "uses",
                                  "var",
                                  "while",
                                  "with",
                                  "xor",
                                  "absolute",
                                  "abstract",
                                  "assembler",
                                  "automated",
                                  "cdecl",
                                  "contains",
                                  "default",
                                  "dispid",
                                  "dynamic",
                                  "export",
                                  "external",
                                  "far",
                                  "forward",
                                  "implements",
                                  "index",
                                  "message",
                                  "name",
                                  "near",
                                  "nodefault",
                                  "overload",
                                  "override",
                                  "package",
                                  "pascal",
                                  "private",
                                  "protected",
                                  "public",
                                  "published",
                                  "read",
                                  "readonly",
                                  "register",
                                  "reintroduce",
                                  "requires",
                                  "resident",
                                  "safecall",
                                  "stdcall",
                                  "stored",
                                  "virtual",
                                  "write",
                                  "writeonly"};
  ASSERT_EQ(std::size(keywords), 103u);
  for (int place = 0; place < 103; ++place) {
    const std::string word = keywords[place];
    std::string upper = word, mixed = word;
    for (size_t i = 0; i < word.size(); ++i) {
      upper[i] -= 32;
      if (i % 2 == 0) mixed[i] -= 32;
    }
    for (const std::string& text : {word, upper, mixed}) {
      EXPECT_EQ(Scan<TPascalTokenizer>(text).kinds, std::vector<int>{10 + place}) << text;
      // Also past the text's first eight characters, where the scanner reads whole words.
      EXPECT_EQ(Scan<TPascalTokenizer>("12345678 " + text + ";").kinds,
                (std::vector<int>{134, 1, 10 + place, 139}))
          << text;
    }
    EXPECT_EQ(PascalTokenKindName(10 + place), "kw:" + word);
    EXPECT_EQ(Scan<TPascalTokenizer>(word + "1").kinds, std::vector<int>{127}) << word;
  }
}

TEST(PascalTokenizerTest, KeywordsAtTableEnds) {
  const struct {
    const char* text;
    int kind;
  } cases[] = {
      {"and", 10},        {"xor", 73},        {"absolute", 74},
      {"writeonly", 112}, {"class", 15},      {"implementation", 34},
      {"interface", 39},  {"procedure", 51},  {"property", 53},
      {"record", 55},     {"type", 66},       {"unit", 67},
      {"private", 97},    {"published", 100}, {"read", 101},
      {"write", 111},
  };
  for (const auto& c : cases)
    EXPECT_EQ(Scan<TPascalTokenizer>(c.text).kinds, std::vector<int>{c.kind}) << c.text;
}

TEST(PascalTokenizerTest, Offsets) {
  const struct {
    std::string text;
    std::vector<int> offsets;
  } cases[] = {
      {.text = "", .offsets = {0}},
      {.text = "x := 'It''s';", .offsets = {0, 1, 2, 4, 5, 9, 12, 13}},
      {.text = "{$R *.res}\r\nend.", .offsets = {0, 10, 12, 15, 16}},
      {.text = "a//x\n\n\r\nb", .offsets = {0, 1, 8, 9}},
      {.text = "'ab\r\n", .offsets = {0, 3, 5}},
      {.text = "#13#$0A", .offsets = {0, 3, 4, 7}},
  };
  for (const auto& c : cases)
    EXPECT_EQ(Scan<TPascalTokenizer>(c.text).offsets, c.offsets) << c.text;
}

}  // namespace
}  // namespace velmora
