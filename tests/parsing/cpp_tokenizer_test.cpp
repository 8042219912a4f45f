#include "parsing/cpp_tokenizer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parsing/token_test_support.h"

namespace velmora {
namespace {

using testing::Scan;

struct KindsCase {
  std::string text;
  std::vector<int> kinds;
};

TEST(CppTokenizerTest, Kinds) {
  const KindsCase cases[] = {
      // Shifts, comparisons and template closers are whatever the characters make.
      {.text = "x>>=1", .kinds = {ctIdentifier, ctShiftRightAssign, ctNumber}},
      {.text = "x> >=1",
       .kinds = {ctIdentifier, ctGreater, ctWhitespace, ctGreaterEqual, ctNumber}},
      {.text = "a<b<c>>d",
       .kinds = {ctIdentifier, ctLess, ctIdentifier, ctLess, ctIdentifier, ctShiftRight,
                 ctIdentifier}},
      {.text = "> >", .kinds = {ctGreater, ctWhitespace, ctGreater}},
      {.text = "{}", .kinds = {ctBraces}},
      {.text = "{ }", .kinds = {ctOpenBrace, ctWhitespace, ctCloseBrace}},
      {.text = "f()", .kinds = {ctIdentifier, ctParens}},
      {.text = "f( )", .kinds = {ctIdentifier, ctOpenParen, ctWhitespace, ctCloseParen}},
      {.text = "a[]", .kinds = {ctIdentifier, ctBrackets}},
      {.text = "a[ ]", .kinds = {ctIdentifier, ctOpenBracket, ctWhitespace, ctCloseBracket}},
      // Directives: only a name right after # counts, letters only, case-sensitive.
      {.text = "#include <a.h>",
       .kinds = {ctHashInclude, ctWhitespace, ctLess, ctIdentifier, ctDot, ctIdentifier,
                 ctGreater}},
      {.text = "#  define X",
       .kinds = {ctHash, ctWhitespace, ctIdentifier, ctWhitespace, ctIdentifier}},
      {.text = "#Define", .kinds = {ctUnknownChar}},
      {.text = "#includes", .kinds = {ctUnknownChar}},
      {.text = "#ifdef_X", .kinds = {ctHashIfdef, ctIdentifier}},
      {.text = "#if1", .kinds = {ctHashIf, ctNumber}},
      {.text = "#1", .kinds = {ctHash, ctNumber}},
      {.text = "#", .kinds = {ctHash}},
      {.text = "a##b", .kinds = {ctIdentifier, ctHashHash, ctIdentifier}},
      {.text = "###", .kinds = {ctHashHash, ctHash}},
      {.text = "#abcdefghijklmnopqrstuvwxyz", .kinds = {ctUnknownChar}},
      // Numbers are digit runs only.
      {.text = "0x1F", .kinds = {ctNumber, ctIdentifier}},
      {.text = "1.5", .kinds = {ctNumber, ctDot, ctNumber}},
      {.text = "10L", .kinds = {ctNumber, ctIdentifier}},
      // Identifiers: case-sensitive keywords; $ and high bytes are not identifier chars.
      {.text = "Class class", .kinds = {ctIdentifier, ctWhitespace, ctClass}},
      {.text = "class_ _class classes",
       .kinds = {ctIdentifier, ctWhitespace, ctIdentifier, ctWhitespace, ctIdentifier}},
      {.text = "a$b", .kinds = {ctIdentifier, ctUnknownChar, ctIdentifier}},
      // A byte above 127 is a letter (Windows-1252 `é` here, or part of a UTF-8 one).
      {.text = "a\xE9"
               "b",
       .kinds = {ctIdentifier}},
      {.text = "__published:", .kinds = {ctPublished_2, ctColon}},
      {.text = "std::string", .kinds = {ctIdentifier, ctScope, ctIdentifier}},
      {.text = "read write stored index nodefault default",
       .kinds = {ctIdentifier, ctWhitespace, ctIdentifier, ctWhitespace, ctIdentifier, ctWhitespace,
                 ctIdentifier, ctWhitespace, ctIdentifier, ctWhitespace, ctDefault}},
      // Literals: no escapes, and they run over line ends.
      {.text = "'\\''", .kinds = {ctCharLiteral, ctCharLiteral}},
      {.text = "\"a\\\"b\"", .kinds = {ctStringLiteral, ctIdentifier, ctStringLiteral}},
      {.text = "\"ab\r\ncd\" x", .kinds = {ctStringLiteral, ctWhitespace, ctIdentifier}},
      {.text = "'unclosed\r\n", .kinds = {ctCharLiteral}},
      {.text = "\"unclosed", .kinds = {ctStringLiteral}},
      // Comments.
      {.text = "/**/x", .kinds = {ctBlockComment, ctIdentifier}},
      {.text = "/*/ x */y", .kinds = {ctBlockComment, ctIdentifier}},
      {.text = "/*/", .kinds = {ctBlockComment}},
      {.text = "/* unclosed\r\n", .kinds = {ctBlockComment}},
      {.text = "a//x\n\n\r\nb", .kinds = {ctIdentifier, ctLineComment, ctIdentifier}},
      {.text = "//x\r\r\n", .kinds = {ctLineComment, ctLineEnd}},
      {.text = "//x\n\r", .kinds = {ctLineComment}},
      {.text = "//x", .kinds = {ctLineComment}},
      {.text = "a/b/=c",
       .kinds = {ctIdentifier, ctSlash, ctIdentifier, ctSlashAssign, ctIdentifier}},
      // Line ends: CR LF and LF CR are one line end each, CR CR and LF LF two.
      {.text = "\r\n", .kinds = {ctLineEnd}},
      {.text = "\n\r", .kinds = {ctLineEnd}},
      {.text = "\r\r", .kinds = {ctLineEnd, ctLineEnd}},
      {.text = "\n\n", .kinds = {ctLineEnd, ctLineEnd}},
      {.text = "\n\r\n", .kinds = {ctLineEnd, ctLineEnd}},
      {.text = "\x01\t\x0B\x0C\x0E\x1F \x01", .kinds = {ctWhitespace}},
      // Unknown punctuators and characters.
      {.text = "?", .kinds = {ctUnknownPunctuator}},
      {.text = "? :", .kinds = {ctUnknownPunctuator, ctWhitespace, ctColon}},
      {.text = "@\\`", .kinds = {ctUnknownPunctuator, ctUnknownPunctuator, ctUnknownPunctuator}},
      {.text = "$\x7F\x80\xFF", .kinds = {ctUnknownChar, ctUnknownChar, ctIdentifier}},
      // Longest match stops at three characters.
      {.text = "....", .kinds = {ctEllipsis, ctDot}},
      {.text = "->**", .kinds = {ctArrowStar, ctStar}},
      {.text = "<<<=", .kinds = {ctShiftLeft, ctLessEqual}},
      {.text = "- >", .kinds = {ctMinus, ctWhitespace, ctGreater}},
      {.text = "", .kinds = {}},
  };
  for (const auto& c : cases) EXPECT_EQ(Scan<TCPPTokenizer>(c.text).kinds, c.kinds) << c.text;
}

TEST(CppTokenizerTest, EveryPunctuatorIsOneToken) {
  const struct {
    const char* text;
    int kind;
  } cases[] = {
      {"!", ctNot},
      {"!=", ctNotEqual},
      {"%", ctPercent},
      {"%=", ctPercentAssign},
      {"&", ctAmpersand},
      {"&&", ctLogicalAnd},
      {"&=", ctAndAssign},
      {"(", ctOpenParen},
      {"()", ctParens},
      {")", ctCloseParen},
      {"*", ctStar},
      {"*=", ctStarAssign},
      {"+", ctPlus},
      {"++", ctPlusPlus},
      {"+=", ctPlusAssign},
      {",", ctComma},
      {"-", ctMinus},
      {"--", ctMinusMinus},
      {"-=", ctMinusAssign},
      {"->", ctArrow},
      {"->*", ctArrowStar},
      {".", ctDot},
      {"..", ctDotDot},
      {"...", ctEllipsis},
      {".*", ctDotStar},
      {"/", ctSlash},
      {"/=", ctSlashAssign},
      {":", ctColon},
      {"::", ctScope},
      {";", ctSemicolon},
      {"<", ctLess},
      {"<=", ctLessEqual},
      {"<<", ctShiftLeft},
      {"<<=", ctShiftLeftAssign},
      {"=", ctAssign},
      {"==", ctEqual},
      {">", ctGreater},
      {">=", ctGreaterEqual},
      {">>", ctShiftRight},
      {">>=", ctShiftRightAssign},
      {"?:", ctQuestionColon},
      {"[", ctOpenBracket},
      {"[]", ctBrackets},
      {"]", ctCloseBracket},
      {"^", ctCaret},
      {"^=", ctCaretAssign},
      {"|", ctBar},
      {"||", ctLogicalOr},
      {"|=", ctBarAssign},
      {"~", ctTilde},
      {"{", ctOpenBrace},
      {"{}", ctBraces},
      {"}", ctCloseBrace},
      {"##", ctHashHash},
  };
  for (const auto& c : cases) {
    // Followed by an identifier so that a token that ran on too far would show.
    EXPECT_EQ(Scan<TCPPTokenizer>(std::string(c.text) + "x").kinds,
              (std::vector<int>{c.kind, ctIdentifier}))
        << c.text;
    EXPECT_EQ(CppTokenKindName(c.kind), c.text);
  }
}

TEST(CppTokenizerTest, EveryKeywordHasTheKindOfItsPlace) {
  // Written out independently of the scanner's table, in the order that fixes the kinds.
  const char* const keywords[] = {
      "__asm",        "_asm",        "asm",         "auto",     "__automated",
      "break",        "bool",        "case",        "catch",    "__cdecl",
      "_cdecl",       "cdecl",       "char",        "class",    "__classid",
      "__closure",    "const",       "const_cast",  "continue", "__declspec",
      "default",      "delete",      "__dispid",    "do",       "double",
      "dynamic_cast", "else",        "enum",        "__except", "explicit",
      "_export",      "__export",    "extern",      "false",    "__fastcall",
      "_fastcall",    "__finally",   "float",       "for",      "friend",
      "goto",         "if",          "__import",    "_import",  "inline",
      "int",          "__int8",      "__int16",     "__int32",  "__int64",
      "long",         "mutable",     "namespace",   "new",      "operator",
      "__pascal",     "_pascal",     "pascal",      "private",  "protected",
      "__property",   "public",      "__published", "register", "reinterpret_cast",
      "return",       "__rtti",      "short",       "signed",   "sizeof",
      "static",       "static_cast", "__stdcall",   "_stdcall", "struct",
      "switch",       "template",    "this",        "__thread", "throw",
      "true",         "__try",       "try",         "typedef",  "typename",
      "typeid",       "union",       "using",       "unsigned", "virtual",
      "void",         "volatile",    "wchar_t",     "while"};
  ASSERT_EQ(std::size(keywords), 94u);
  for (int place = 0; place < 94; ++place) {
    const std::string word = keywords[place];
    EXPECT_EQ(Scan<TCPPTokenizer>(word).kinds, std::vector<int>{ctAsm_2 + place}) << word;
    // Also past the text's first eight characters, where the scanner reads whole words.
    EXPECT_EQ(Scan<TCPPTokenizer>("12345678 " + word + ";").kinds,
              (std::vector<int>{ctNumber, ctWhitespace, ctAsm_2 + place, ctSemicolon}))
        << word;
    EXPECT_EQ(CppTokenKindName(ctAsm_2 + place), "kw:" + word);
    // Near misses are identifiers: a character more, the first letter in upper case.
    EXPECT_EQ(Scan<TCPPTokenizer>(word + "x").kinds, std::vector<int>{ctIdentifier}) << word;
    std::string upper = word;
    upper[upper.find_first_not_of('_')] -= 32;
    EXPECT_EQ(Scan<TCPPTokenizer>(upper).kinds, std::vector<int>{ctIdentifier}) << upper;
  }
}

TEST(CppTokenizerTest, KeywordsAtIrregularPlacesAndTableEnds) {
  const struct {
    const char* text;
    int kind;
  } cases[] = {
      {"__asm", ctAsm_2},       {"while", ctWhile},
      {"break", ctBreak},       {"bool", ctBool},
      {"_export", ctExport_1},  {"__export", ctExport_2},
      {"typename", ctTypename}, {"typeid", ctTypeid},
      {"using", ctUsing},       {"unsigned", ctUnsigned},
      {"class", ctClass},       {"struct", ctStruct},
      {"union", ctUnion},       {"__property", ctProperty_2},
      {"__int8", ctInt8_2},     {"__int64", ctInt64_2},
      {"wchar_t", ctWcharT},    {"reinterpret_cast", ctReinterpretCast},
  };
  for (const auto& c : cases)
    EXPECT_EQ(Scan<TCPPTokenizer>(c.text).kinds, std::vector<int>{c.kind}) << c.text;
}

TEST(CppTokenizerTest, EveryDirective) {
  const struct {
    const char* text;
    int kind;
  } cases[] = {
      {"#define", ctHashDefine}, {"#elif", ctHashElif},     {"#else", ctHashElse},
      {"#endif", ctHashEndif},   {"#error", ctHashError},   {"#if", ctHashIf},
      {"#ifdef", ctHashIfdef},   {"#ifndef", ctHashIfndef}, {"#include", ctHashInclude},
      {"#line", ctHashLine},     {"#pragma", ctHashPragma}, {"#undef", ctHashUndef},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Scan<TCPPTokenizer>(std::string(c.text) + " x").kinds,
              (std::vector<int>{c.kind, ctWhitespace, ctIdentifier}))
        << c.text;
    EXPECT_EQ(CppTokenKindName(c.kind), c.text);
  }
}

TEST(CppTokenizerTest, Offsets) {
  const struct {
    std::string text;
    std::vector<int> offsets;
  } cases[] = {
      {.text = "", .offsets = {0}},
      {.text = "a//x\n\n\r\nb", .offsets = {0, 1, 8, 9}},
      {.text = "int  x;\r\n", .offsets = {0, 3, 5, 6, 7, 9}},
      {.text = "/*/ */->*x", .offsets = {0, 6, 9, 10}},
      {.text = "#define\tX 1", .offsets = {0, 7, 8, 9, 10, 11}},
      {.text = "'a'\"b\"", .offsets = {0, 3, 6}},
      {.text = "\n\r\r\n", .offsets = {0, 2, 4}},
      // The scan ends at the first NUL whatever the size says.
      {.text = std::string("ab\0cd", 5), .offsets = {0, 2}},
  };
  for (const auto& c : cases) EXPECT_EQ(Scan<TCPPTokenizer>(c.text).offsets, c.offsets) << c.text;
}

TEST(CppTokenizerTest, EmptyTextHasOnlyTheEndEntry) {
  TCPPTokenizer t;
  t.SetText("", 0);
  EXPECT_EQ(t.LastIndex(), 0);
  EXPECT_EQ(t.Kind(), ctEndOfText);
  EXPECT_EQ(t.Offset(), 0);
  EXPECT_EQ(t.Text(), "");
  EXPECT_EQ(t.NextSignificant(), ctEndOfText);
  EXPECT_EQ(t.PrevSignificant(), ctEndOfText);
  EXPECT_EQ(t.Index(), 0);
}

}  // namespace
}  // namespace velmora
