// The parameter text reader and the comparison that tells overloads apart.
#include <gtest/gtest.h>

#include <random>

#include <string>
#include <vector>

#include "model/parameters.h"

namespace velmora {
namespace {

constexpr TLanguage P = TLanguage::Pascal;
constexpr TLanguage C = TLanguage::Cpp;

// One parameter as "name|modifier|type|default".
std::vector<std::string> Read(TLanguage lang, std::string_view text) {
  TParameterList list(lang);
  list.Parse(text);
  std::vector<std::string> out;
  for (const TParameter& p : list.Items)
    out.push_back(p.Name + "|" + p.Modifier + "|" + p.ParamType + "|" + p.DefaultValue);
  return out;
}

TEST(ParameterParserTest, Cpp) {
  struct Case {
    const char* text;
    std::vector<std::string> params;
  } cases[] = {
      {"int a = 5, char *b[]", {"a||int|5", "b|[]|char *|"}},
      {"", {}},
      {" void ", {}},
      {"int", {"||int|"}},
      {"int, int", {"||int|", "||int|"}},
      {"TObject*", {"||TObject*|"}},
      {"TObject *Sender", {"Sender||TObject *|"}},
      {"const AnsiString &S", {"S||const AnsiString &|"}},
      {"TObject* const", {"||TObject* const|"}},
      {"unsigned long", {"||unsigned long|"}},
      {"unsigned x", {"x||unsigned|"}},
      {"const TFoo", {"||const TFoo|"}},
      {"struct tm", {"||struct tm|"}},
      {"const struct tm t", {"t||const struct tm|"}},
      {"Foo::Bar", {"||Foo::Bar|"}},
      {"std::map<int, int> m", {"m||std::map<int, int>|"}},
      {"std::function<void(int)> f", {"f||std::function<void(int)>|"}},
      {"void (*cb)(int, int), int x", {"cb||void (*)(int, int)|", "x||int|"}},
      {"void (__closure *OnClick)(TObject* Sender)",
       {"OnClick||void (__closure *)(TObject* Sender)|"}},
      {"void (*)(int)", {"||void (*)(int)|"}},
      {"int m[2][3]", {"m|[2][3]|int|"}},
      {"int a[] = {1, 2}", {"a|[]|int|{1, 2}"}},
      {"const char *s = \"a, \\\"b\", int n = f(1, 2)",
       {"s||const char *|\"a, \\\"b\"", "n||int|f(1, 2)"}},
      // Inside a default value '<' is an operator, not a template bracket.
      {"int a = x < y ? 1 : 2, int b", {"a||int|x < y ? 1 : 2", "b||int|"}},
      {"bool b = a >= 2", {"b||bool|a >= 2"}},
      {"char c = ',', ...", {"c||char|','", "||...|"}},
      {"int a,", {"a||int|"}},
      // Broken text still ends, with whatever it holds.
      {"int (*f", {"f||int (*|"}},
      {"int a[3", {"||int a[3|"}},
  };
  for (const Case& c : cases) EXPECT_EQ(Read(C, c.text), c.params) << c.text;
}

TEST(ParameterParserTest, Pascal) {
  struct Case {
    const char* text;
    std::vector<std::string> params;
  } cases[] = {
      {"var A, B: Integer; const S: string = 'x'",
       {"A|var|Integer|", "B|var|Integer|", "S|const|string|'x'"}},
      {"Sender: TObject", {"Sender||TObject|"}},
      {"const Args: array of const", {"Args|const|array of const|"}},
      {"var X", {"X|var||"}},
      {"out Value; Flags: Integer = 0", {"Value|out||", "Flags||Integer|0"}},
      {"Output: TStrings", {"Output||TStrings|"}},
      {"CONST S: string", {"S|CONST|string|"}},
      {"constref R: TRec", {"R|constref|TRec|"}},
      {"S: string = 'a;b''c'; N: Integer", {"S||string|'a;b''c'", "N||Integer|"}},
      {"A: Integer;", {"A||Integer|"}},
      {"", {}},
      {": Integer", {"||Integer|"}},
  };
  for (const Case& c : cases) EXPECT_EQ(Read(P, c.text), c.params) << c.text;
}

TEST(ParameterListTest, SameAsTellsOverloadsApart) {
  struct Case {
    TLanguage lang;
    const char *a, *b;
    bool same;
  } cases[] = {
      {C, "char *p", "char* q", true},
      {C, "char *p", "char **p", false},
      {C, "int a[]", "int *a", false},
      {C, "int a = 1", "int b", true},
      {C, "std::map<int, int> m", "std::map<int,int>", true},
      {C, "unsigned  int", "unsigned int x", true},
      {C, "unsigned int", "unsignedint", false},
      {C, "int", "long", false},
      {C, "int, int", "int", false},
      {C, "", "void", true},
      {C, "TObject *Sender", "tobject *Sender", false},
      {P, "S: string", "s: STRING", true},
      {P, "var A: Integer", "A: Integer", false},
      {P, "VAR A: Integer", "var B: integer", true},
      {P, "A, B: Integer", "A: Integer; B: Integer", true},
  };
  for (const Case& c : cases) {
    TParameterList a(c.lang), b(c.lang);
    a.Parse(c.a);
    b.Parse(c.b);
    EXPECT_EQ(a.SameAs(b), c.same) << c.a << " vs " << c.b;
    EXPECT_EQ(b.SameAs(a), c.same) << c.b << " vs " << c.a;
  }
}

// SameAs compares the types without building their normalized texts; on random texts it
// must agree with comparing the normalized texts themselves.
TEST(ParameterListTest, SameAsAgreesWithNormalizedTexts) {
  const std::string_view pieces[] = {"a", "B", "b", " ",    "\t",   "  ",
                                     "*", "_", "1", "\xE9", "\xC9", ":"};
  std::mt19937 random(7);
  auto randomText = [&] {
    std::string s;
    for (int n = static_cast<int>(random() % 7); n > 0; --n)
      s += pieces[random() % std::size(pieces)];
    return s;
  };
  for (TLanguage lang : {C, P}) {
    for (int round = 0; round < 20000; ++round) {
      const std::string ta = randomText(), tb = randomText();
      const std::string ma = randomText(), mb = randomText();
      TParameterList a(lang), b(lang);
      a.Add("x", ta, ma, "");
      b.Add("y", tb, mb, "");
      const bool expected = SameName(NormalizeTypeText(ta), NormalizeTypeText(tb), lang) &&
                            SameName(NormalizeTypeText(ma), NormalizeTypeText(mb), lang);
      ASSERT_EQ(a.SameAs(b), expected)
          << "[" << ta << "|" << ma << "] vs [" << tb << "|" << mb << "]";
    }
  }
}

TEST(ParameterListTest, NormalizeTypeText) {
  struct Case {
    const char *text, *normal;
  } cases[] = {{"  char   * ", "char*"},
               {"unsigned \t long  int", "unsigned long int"},
               {"std::map < int , int >", "std::map<int,int>"},
               {"const TFoo &", "const TFoo&"},
               {"", ""}};
  for (const Case& c : cases) EXPECT_EQ(NormalizeTypeText(c.text), c.normal) << c.text;
}

}  // namespace
}  // namespace velmora
