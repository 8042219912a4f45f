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
      {.text = "Result:=-1;",
       .kinds = {ptIdentifier, ptAssign, ptUnknownPunctuator, ptNumber, ptSemicolon}},
      {.text = "BEGIN begin BeGiN",
       .kinds = {ptBegin, ptWhitespace, ptBegin, ptWhitespace, ptBegin}},
      {.text = "end.", .kinds = {ptEnd, ptDot}},
      {.text = "Name Index READ", .kinds = {ptName, ptWhitespace, ptIndex, ptWhitespace, ptRead}},
      // Numbers: decimal runs, $ hexadecimal runs, # character codes.
      {.text = "1.5", .kinds = {ptNumber, ptDot, ptNumber}},
      {.text = "1..5", .kinds = {ptNumber, ptDotDot, ptNumber}},
      {.text = "$1aF", .kinds = {ptHexNumber}},
      {.text = "$FFg", .kinds = {ptHexNumber, ptIdentifier}},
      {.text = "$", .kinds = {ptHexNumber}},
      {.text = "#$0D", .kinds = {ptCharCode, ptHexNumber}},
      {.text = "#13#10", .kinds = {ptCharCode, ptCharCode}},
      {.text = "#", .kinds = {ptCharCode}},
      // Strings: a doubled quote closes one piece and opens the next; an unclosed string
      // stops before the line end.
      {.text = "'It''s'", .kinds = {ptStringLiteral, ptStringLiteral}},
      {.text = "''", .kinds = {ptStringLiteral}},
      {.text = "'abc", .kinds = {ptStringLiteral}},
      {.text = "'ab\r\ncd'", .kinds = {ptStringLiteral, ptLineEnd, ptIdentifier, ptStringLiteral}},
      {.text = "'a\nb", .kinds = {ptStringLiteral, ptLineEnd, ptIdentifier}},
      // Braces: a directive when $ follows directly, otherwise a comment.
      {.text = "{$I x}", .kinds = {ptCompilerDirective}},
      {.text = "{ x }", .kinds = {ptBraceComment}},
      {.text = "{ $I x}", .kinds = {ptBraceComment}},
      {.text = "{}", .kinds = {ptBraceComment}},
      {.text = "{unclosed\r\nx", .kinds = {ptBraceComment}},
      {.text = "{$unclosed", .kinds = {ptCompilerDirective}},
      {.text = "{a}}", .kinds = {ptBraceComment, ptUnknownChar}},
      // Parenthesis comments and the bracket digraphs.
      {.text = "(* a *)x", .kinds = {ptParenComment, ptIdentifier}},
      {.text = "(**)", .kinds = {ptParenComment}},
      {.text = "(*) x *)", .kinds = {ptParenComment}},
      {.text = "(*)", .kinds = {ptParenComment}},
      {.text = "a(.1.)", .kinds = {ptIdentifier, ptOpenBracket, ptNumber, ptCloseBracket}},
      {.text = "( . )", .kinds = {ptOpenParen, ptWhitespace, ptDot, ptWhitespace, ptCloseParen}},
      // Line comments run to the next CR, taking it and one LF.
      {.text = "a//x\n\n\r\nb", .kinds = {ptIdentifier, ptLineComment, ptIdentifier}},
      {.text = "//x\r\r\n", .kinds = {ptLineComment, ptLineEnd}},
      {.text = "//", .kinds = {ptLineComment}},
      // Punctuators.
      {.text = ":= : = <> <= >= < >",
       .kinds = {ptAssign, ptWhitespace, ptColon, ptWhitespace, ptEqual, ptWhitespace, ptNotEqual,
                 ptWhitespace, ptLessEqual, ptWhitespace, ptGreaterEqual, ptWhitespace, ptLess,
                 ptWhitespace, ptGreater}},
      {.text = "..;,+*/&@^[]()",
       .kinds = {ptDotDot, ptSemicolon, ptComma, ptPlus, ptStar, ptSlash, ptAmpersand, ptAt,
                 ptCaret, ptOpenBracket, ptCloseBracket, ptOpenParen, ptCloseParen}},
      {.text = "-~!?\"%\\`",
       .kinds = {ptUnknownPunctuator, ptUnknownPunctuator, ptUnknownPunctuator, ptUnknownPunctuator,
                 ptUnknownPunctuator, ptUnknownPunctuator, ptUnknownPunctuator,
                 ptUnknownPunctuator}},
      {.text = "|}\x7F\x80\xFF",
       .kinds = {ptUnknownChar, ptUnknownChar, ptUnknownChar, ptIdentifier}},
      // A byte above 127 is a letter (Windows-1252 `é` here, or part of a UTF-8 one).
      {.text = "a\xE9"
               "b",
       .kinds = {ptIdentifier}},
      // Identifiers longer than any keyword, and keywords with a character more.
      {.text = "initialization initializations",
       .kinds = {ptInitialization, ptWhitespace, ptIdentifier}},
      {.text = "ImplementationX _end end_",
       .kinds = {ptIdentifier, ptWhitespace, ptIdentifier, ptWhitespace, ptIdentifier}},
      {.text = "\n\r\r\n\r", .kinds = {ptLineEnd, ptLineEnd, ptLineEnd}},
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
      EXPECT_EQ(Scan<TPascalTokenizer>(text).kinds, std::vector<int>{ptAnd + place}) << text;
      // Also past the text's first eight characters, where the scanner reads whole words.
      EXPECT_EQ(Scan<TPascalTokenizer>("12345678 " + text + ";").kinds,
                (std::vector<int>{ptNumber, ptWhitespace, ptAnd + place, ptSemicolon}))
          << text;
    }
    EXPECT_EQ(PascalTokenKindName(ptAnd + place), "kw:" + word);
    EXPECT_EQ(Scan<TPascalTokenizer>(word + "1").kinds, std::vector<int>{ptIdentifier}) << word;
  }
}

TEST(PascalTokenizerTest, KeywordsAtTableEnds) {
  const struct {
    const char* text;
    int kind;
  } cases[] = {
      {"and", ptAnd},
      {"xor", ptXor},
      {"absolute", ptAbsolute},
      {"writeonly", ptWriteonly},
      {"class", ptClass},
      {"implementation", ptImplementation},
      {"interface", ptInterface},
      {"procedure", ptProcedure},
      {"property", ptProperty},
      {"record", ptRecord},
      {"type", ptType},
      {"unit", ptUnit},
      {"private", ptPrivate},
      {"published", ptPublished},
      {"read", ptRead},
      {"write", ptWrite},
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
