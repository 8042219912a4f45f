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
      {.text = "x>>=1", .kinds = {172, 141, 185}},
      {.text = "x> >=1", .kinds = {172, 170, 1, 171, 185}},
      {.text = "a<b<c>>d", .kinds = {172, 178, 172, 178, 172, 196, 172}},
      {.text = "> >", .kinds = {170, 1, 170}},
      {.text = "{}", .kinds = {147}},
      {.text = "{ }", .kinds = {146, 1, 145}},
      {.text = "f()", .kinds = {172, 192}},
      {.text = "f( )", .kinds = {172, 191, 1, 190}},
      {.text = "a[]", .kinds = {172, 201}},
      {.text = "a[ ]", .kinds = {172, 200, 1, 199}},
      // Directives: only a name right after # counts, letters only, case-sensitive.
      {.text = "#include <a.h>", .kinds = {163, 1, 178, 172, 188, 172, 170}},
      {.text = "#  define X", .kinds = {165, 1, 172, 1, 172}},
      {.text = "#Define", .kinds = {206}},
      {.text = "#includes", .kinds = {206}},
      {.text = "#ifdef_X", .kinds = {161, 172}},
      {.text = "#if1", .kinds = {160, 185}},
      {.text = "#1", .kinds = {165, 185}},
      {.text = "#", .kinds = {165}},
      {.text = "a##b", .kinds = {172, 144, 172}},
      {.text = "###", .kinds = {144, 165}},
      {.text = "#abcdefghijklmnopqrstuvwxyz", .kinds = {206}},
      // Numbers are digit runs only.
      {.text = "0x1F", .kinds = {185, 172}},
      {.text = "1.5", .kinds = {185, 188, 185}},
      {.text = "10L", .kinds = {185, 172}},
      // Identifiers: case-sensitive keywords; $ and high bytes are not identifier chars.
      {.text = "Class class", .kinds = {172, 1, 23}},
      {.text = "class_ _class classes", .kinds = {172, 1, 172, 1, 172}},
      {.text = "a$b", .kinds = {172, 206, 172}},
      // A byte above 127 is a letter (Windows-1252 `é` here, or part of a UTF-8 one).
      {.text = "a\xE9"
               "b",
       .kinds = {172}},
      {.text = "__published:", .kinds = {72, 150}},
      {.text = "std::string", .kinds = {172, 151, 172}},
      {.text = "read write stored index nodefault default",
       .kinds = {172, 1, 172, 1, 172, 1, 172, 1, 172, 1, 30}},
      // Literals: no escapes, and they run over line ends.
      {.text = "'\\''", .kinds = {148, 148}},
      {.text = "\"a\\\"b\"", .kinds = {203, 172, 203}},
      {.text = "\"ab\r\ncd\" x", .kinds = {203, 1, 172}},
      {.text = "'unclosed\r\n", .kinds = {148}},
      {.text = "\"unclosed", .kinds = {203}},
      // Comments.
      {.text = "/**/x", .kinds = {129, 172}},
      {.text = "/*/ x */y", .kinds = {129, 172}},
      {.text = "/*/", .kinds = {129}},
      {.text = "/* unclosed\r\n", .kinds = {129}},
      {.text = "a//x\n\n\r\nb", .kinds = {172, 198, 172}},
      {.text = "//x\r\r\n", .kinds = {198, 2}},
      {.text = "//x\n\r", .kinds = {198}},
      {.text = "//x", .kinds = {198}},
      {.text = "a/b/=c", .kinds = {172, 197, 172, 132, 172}},
      // Line ends: CR LF and LF CR are one line end each, CR CR and LF LF two.
      {.text = "\r\n", .kinds = {2}},
      {.text = "\n\r", .kinds = {2}},
      {.text = "\r\r", .kinds = {2, 2}},
      {.text = "\n\n", .kinds = {2, 2}},
      {.text = "\n\r\n", .kinds = {2, 2}},
      {.text = "\x01\t\x0B\x0C\x0E\x1F \x01", .kinds = {1}},
      // Unknown punctuators and characters.
      {.text = "?", .kinds = {204}},
      {.text = "? :", .kinds = {204, 1, 150}},
      {.text = "@\\`", .kinds = {204, 204, 204}},
      {.text = "$\x7F\x80\xFF", .kinds = {206, 206, 172}},
      // Longest match stops at three characters.
      {.text = "....", .kinds = {205, 188}},
      {.text = "->**", .kinds = {154, 202}},
      {.text = "<<<=", .kinds = {195, 179}},
      {.text = "- >", .kinds = {180, 1, 170}},
      {.text = "", .kinds = {}},
  };
  for (const auto& c : cases) EXPECT_EQ(Scan<TCPPTokenizer>(c.text).kinds, c.kinds) << c.text;
}

TEST(CppTokenizerTest, EveryPunctuatorIsOneToken) {
  const struct {
    const char* text;
    int kind;
  } cases[] = {
      {"!", 183},  {"!=", 184}, {"%", 182},   {"%=", 136}, {"&", 142},   {"&&", 176},  {"&=", 131},
      {"(", 191},  {"()", 192}, {")", 190},   {"*", 202},  {"*=", 137},  {"+", 186},   {"++", 187},
      {"+=", 139}, {",", 149},  {"-", 180},   {"--", 181}, {"-=", 138},  {"->", 193},  {"->*", 154},
      {".", 188},  {"..", 189}, {"...", 205}, {".*", 153}, {"/", 197},   {"/=", 132},  {":", 150},
      {"::", 151}, {";", 194},  {"<", 178},   {"<=", 179}, {"<<", 195},  {"<<=", 140}, {"=", 135},
      {"==", 169}, {">", 170},  {">=", 171},  {">>", 196}, {">>=", 141}, {"?:", 152},  {"[", 200},
      {"[]", 201}, {"]", 199},  {"^", 173},   {"^=", 133}, {"|", 174},   {"||", 177},  {"|=", 134},
      {"~", 207},  {"{", 146},  {"{}", 147},  {"}", 145},  {"##", 144},
  };
  for (const auto& c : cases) {
    // Followed by an identifier so that a token that ran on too far would show.
    EXPECT_EQ(Scan<TCPPTokenizer>(std::string(c.text) + "x").kinds, (std::vector<int>{c.kind, 172}))
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
    EXPECT_EQ(Scan<TCPPTokenizer>(word).kinds, std::vector<int>{10 + place}) << word;
    // Also past the text's first eight characters, where the scanner reads whole words.
    EXPECT_EQ(Scan<TCPPTokenizer>("12345678 " + word + ";").kinds,
              (std::vector<int>{185, 1, 10 + place, 194}))
        << word;
    EXPECT_EQ(CppTokenKindName(10 + place), "kw:" + word);
    // Near misses are identifiers: a character more, the first letter in upper case.
    EXPECT_EQ(Scan<TCPPTokenizer>(word + "x").kinds, std::vector<int>{172}) << word;
    std::string upper = word;
    upper[upper.find_first_not_of('_')] -= 32;
    EXPECT_EQ(Scan<TCPPTokenizer>(upper).kinds, std::vector<int>{172}) << upper;
  }
}

TEST(CppTokenizerTest, KeywordsAtIrregularPlacesAndTableEnds) {
  const struct {
    const char* text;
    int kind;
  } cases[] = {
      {"__asm", 10},    {"while", 103},           {"break", 15},    {"bool", 16},
      {"_export", 40},  {"__export", 41},         {"typename", 94}, {"typeid", 95},
      {"using", 97},    {"unsigned", 98},         {"class", 23},    {"struct", 84},
      {"union", 96},    {"__property", 70},       {"__int8", 56},   {"__int64", 59},
      {"wchar_t", 102}, {"reinterpret_cast", 74},
  };
  for (const auto& c : cases)
    EXPECT_EQ(Scan<TCPPTokenizer>(c.text).kinds, std::vector<int>{c.kind}) << c.text;
}

TEST(CppTokenizerTest, EveryDirective) {
  const struct {
    const char* text;
    int kind;
  } cases[] = {
      {"#define", 155},  {"#elif", 156}, {"#else", 157},   {"#endif", 158},
      {"#error", 159},   {"#if", 160},   {"#ifdef", 161},  {"#ifndef", 162},
      {"#include", 163}, {"#line", 164}, {"#pragma", 166}, {"#undef", 167},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Scan<TCPPTokenizer>(std::string(c.text) + " x").kinds,
              (std::vector<int>{c.kind, 1, 172}))
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
  EXPECT_EQ(t.Kind(), 0);
  EXPECT_EQ(t.Offset(), 0);
  EXPECT_EQ(t.Text(), "");
  EXPECT_EQ(t.NextSignificant(), 0);
  EXPECT_EQ(t.PrevSignificant(), 0);
  EXPECT_EQ(t.Index(), 0);
}

}  // namespace
}  // namespace velmora
