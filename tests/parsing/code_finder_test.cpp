// The code finders on small texts: the raw-text search, and the C++ and Pascal searches
// for methods, routines, the implementation section, names and the end of a unit, with
// the cases that tell a real implementation from a look-alike.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "model/parameters.h"
#include "parsing/cpp_code_finder.h"
#include "parsing/pascal_code_finder.h"
#include "parsing/pattern_search.h"
#include "support/ansi.h"
#include "support/text_buffer.h"

namespace velmora {
namespace {

// Every start the search reports for `pattern` in `text`, in order.
std::vector<int32_t> AllHits(const std::string& text, std::string_view pattern,
                             const unsigned char* fold = nullptr) {
  TPatternSearch search(fold);
  search.Prepare(text.c_str(), static_cast<int32_t>(text.size()), pattern);
  std::vector<int32_t> hits;
  for (int guard = 0; !search.AtEnd() && guard < 10000; ++guard) {
    const int32_t p = search.FindNext();
    if (p >= 0) hits.push_back(p);
  }
  return hits;
}

TEST(PatternSearchTest, Hits) {
  struct Case {
    const char* name;
    std::string text;
    std::string pattern;
    bool fold = false;
    std::vector<int32_t> hits;
  };
  const Case cases[] = {
      {.name = "each occurrence", .text = "ab x ab y ab", .pattern = "ab", .hits = {0, 5, 10}},
      {.name = "at the very end", .text = "xxxxFoo", .pattern = "Foo", .hits = {4}},
      {.name = "inside longer names too", .text = "FooBar Foo", .pattern = "Foo", .hits = {0, 7}},
      {.name = "no overlap", .text = "aaaa", .pattern = "aa", .hits = {0, 2}},
      {.name = "case matters", .text = "foo FOO Foo", .pattern = "Foo", .hits = {8}},
      {.name = "folded", .text = "foo FOO Foo", .pattern = "FOO", .fold = true, .hits = {0, 4, 8}},
      {.name = "longer than the text", .text = "ab", .pattern = "abc", .hits = {}},
      {.name = "empty pattern", .text = "abc", .pattern = "", .hits = {}},
      {.name = "empty text", .text = "", .pattern = "a", .hits = {}},
      {.name = "single character", .text = "a.a.a", .pattern = "a", .hits = {0, 2, 4}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(AllHits(c.text, c.pattern, c.fold ? kAnsiLower : nullptr), c.hits) << c.name;
  }
}

// ---- C++ ----

struct CppQuery {
  int32_t token = -1;
  int32_t line = -1;
  int32_t offset = -1;
  std::string firstTokenText;
};

std::optional<TParameterList> CppParams(const std::optional<std::string>& text) {
  if (!text) return std::nullopt;
  TParameterList list(TLanguage::Cpp);
  list.Parse(*text);
  return list;
}

CppQuery FindMethod(const std::string& source, std::string_view cls, std::string_view method,
                    const std::optional<std::string>& params) {
  const std::string text = ToBufferForm(source);
  const std::optional<TParameterList> list = CppParams(params);
  const TParameterList* p = list ? &*list : nullptr;
  CppQuery q;
  {
    TCppCodeFinder f;
    f.SetText(text.c_str(), static_cast<int32_t>(text.size()));
    q.token = f.FindMethodImplementation(cls, method, p);
    if (q.token >= 0) q.firstTokenText = f.Tokenizer().TokenText(q.token);
  }
  TCppCodeFinder lines;
  lines.SetText(text.c_str(), static_cast<int32_t>(text.size()));
  q.line = lines.FindMethodImplementationLine(cls, method, p);
  TCppCodeFinder offsets;
  offsets.SetText(text.c_str(), static_cast<int32_t>(text.size()));
  q.offset = offsets.FindMethodImplementationOffset(cls, method, p);
  return q;
}

TEST(CppCodeFinderTest, MethodImplementation) {
  const std::string form1 =
      "#include \"Unit1.h\"\n"                                         // 1
      "TForm1 *Form1;\n"                                               // 2
      "__fastcall TForm1::TForm1(TComponent* Owner) : TForm(Owner)\n"  // 3
      "{\n}\n"                                                         // 4, 5
      "__fastcall TForm1::~TForm1()\n"                                 // 6
      "{\n}\n"                                                         // 7, 8
      "// TForm1::FormCreate is below\n"                               // 9
      "void __fastcall TForm1::FormCreate(TObject *Sender)\n"          // 10
      "{\n  ShowMessage(\"TForm1::FormCreate\");\n}\n";                // 11..13
  const std::string overloads =
      "void A::f(int i)\n{\n}\n"    // 1..3
      "void A::f(char *s)\n{\n}\n"  // 4..6
      "void B::f(char* s) {}\n";    // 7
  struct Case {
    const char* name;
    std::string text;
    std::string cls;
    std::string method;
    std::optional<std::string> params = std::nullopt;
    int32_t line;
    std::string first = "";  // text of the first token of the line, when found
  };
  const Case cases[] = {
      {.name = "method after a comment naming it",
       .text = form1,
       .cls = "TForm1",
       .method = "FormCreate",
       .line = 10,
       .first = "void"},
      {.name = "constructor is not the destructor",
       .text = form1,
       .cls = "TForm1",
       .method = "TForm1",
       .line = 3,
       .first = "__fastcall"},
      {.name = "destructor", .text = form1, .cls = "TForm1", .method = "~TForm1", .line = 6},
      {.name = "other class", .text = form1, .cls = "TForm2", .method = "FormCreate", .line = -1},
      {.name = "class names are case-sensitive",
       .text = form1,
       .cls = "tform1",
       .method = "FormCreate",
       .line = -1},
      {.name = "overload picked by parameters",
       .text = overloads,
       .cls = "A",
       .method = "f",
       .params = "char*",
       .line = 4},
      {.name = "overload, blanks differ",
       .text = overloads,
       .cls = "A",
       .method = "f",
       .params = "int  x",
       .line = 1},
      {.name = "not overloaded: first in file",
       .text = overloads,
       .cls = "A",
       .method = "f",
       .line = 1},
      {.name = "parameters of no overload",
       .text = overloads,
       .cls = "A",
       .method = "f",
       .params = "double",
       .line = -1},
      {.name = "qualified by an outer class",
       .text = "int Outer::Inner::Get() const { }\n",
       .cls = "Inner",
       .method = "Get",
       .line = 1},
      {.name = "outer class is not looked at",
       .text = "int Outer::Inner::Get() { }\n",
       .cls = "Outer",
       .method = "Get",
       .line = -1},
      {.name = "declaration in the class body",
       .text = "class A {\n  void f(int);\n};\n",
       .cls = "A",
       .method = "f",
       .line = -1},
      {.name = "part of a longer name",
       .text = "void A::ff() {}\nvoid A::f_() {}\n",
       .cls = "A",
       .method = "f",
       .line = -1},
      {.name = "inside a string and a comment only",
       .text = "char* s = \"A::f()\"; /* A::f() */\n",
       .cls = "A",
       .method = "f",
       .line = -1},
      {.name = "on the first line",
       .text = "void A::f() {}\n",
       .cls = "A",
       .method = "f",
       .line = 1,
       .first = "void"},
      {.name = "after a block comment on its line",
       .text = "\n/* x */ void A::f()\n{}\n",
       .cls = "A",
       .method = "f",
       .line = 2,
       .first = "/* x */"},
      {.name = "empty method name", .text = form1, .cls = "TForm1", .method = "", .line = -1},
      {.name = "tilde alone", .text = form1, .cls = "TForm1", .method = "~", .line = -1},
      {.name = "empty class name", .text = form1, .cls = "", .method = "FormCreate", .line = -1},
      {.name = "unclosed parameter list",
       .text = "void A::f(int i",
       .cls = "A",
       .method = "f",
       .params = "int",
       .line = 1},
  };
  for (const Case& c : cases) {
    const CppQuery q = FindMethod(c.text, c.cls, c.method, c.params);
    EXPECT_EQ(q.line, c.line) << c.name;
    if (c.line < 0) {
      EXPECT_EQ(q.token, -1) << c.name;
      EXPECT_EQ(q.offset, -1) << c.name;
      continue;
    }
    // The offset is that of the line's first token, which starts the line.
    const std::string text = ToBufferForm(c.text);
    EXPECT_TRUE(q.offset == 0 || text[q.offset - 1] == '\n') << c.name;
    if (!c.first.empty()) {
      EXPECT_EQ(q.firstTokenText, c.first) << c.name;
    }
  }
}

TEST(CppCodeFinderTest, MethodOnLineTwentyAfterACommentLine) {
  std::string text;
  for (int i = 1; i <= 18; ++i) text += "int v" + std::to_string(i) + ";\r\n";
  text += "// the form's start\r\n";
  const auto start = static_cast<int32_t>(text.size());
  text += "void TForm1::FormCreate(TObject *Sender)\r\n{\r\n}\r\n";
  TCppCodeFinder f;
  f.SetText(text.c_str(), static_cast<int32_t>(text.size()));
  EXPECT_EQ(f.FindMethodImplementationLine("TForm1", "FormCreate", nullptr), 20);
  TCppCodeFinder g;
  g.SetText(text.c_str(), static_cast<int32_t>(text.size()));
  EXPECT_EQ(g.FindMethodImplementationOffset("TForm1", "FormCreate", nullptr), start);
}

TEST(CppCodeFinderTest, RoutineImplementation) {
  struct Case {
    const char* name;
    std::string text;
    std::string routine;
    std::optional<std::string> params = std::nullopt;
    int32_t line;
  };
  const Case cases[] = {
      {.name = "body on the next line",
       .text = "\nint g(int a)\n{\n  return a;\n}\n",
       .routine = "g",
       .line = 2},
      {.name = "prototype alone", .text = "int g(int a);\n", .routine = "g", .line = -1},
      {.name = "prototype, then the body",
       .text = "int g(int a);\nint x;\nint g(int a)\n{\n}\n",
       .routine = "g",
       .line = 3},
      {.name = "empty body without a blank",
       .text = "int a;\nvoid f() {}\nint b;\n",
       .routine = "f",
       .line = 2},
      {.name = "const", .text = "int g() const { return 1; }\n", .routine = "g", .line = 1},
      {.name = "old-style parameter declaration",
       .text = "int g(a)\nint a;\n{\n}\n",
       .routine = "g",
       .line = 1},
      {.name = "exception specification",
       .text = "\nvoid g() throw(E)\n{\n}\n",
       .routine = "g",
       .line = 2},
      {.name = "a call is not a body",
       .text = "void h()\n{\n  g(1);\n}\n",
       .routine = "g",
       .line = -1},
      {.name = "no parameter list",
       .text = "int g;\nint x() { return g; }\n",
       .routine = "g",
       .line = -1},
      {.name = "first token of the file", .text = "g(int a) {}\n", .routine = "g", .line = -1},
      {.name = "in a comment and a string first",
       .text = "// g()\nchar* s = \"g()\";\nvoid g()\n{\n}\n",
       .routine = "g",
       .line = 3},
      {.name = "overload by parameters",
       .text = "void g(int a) {}\nvoid g(char* s) {}\n",
       .routine = "g",
       .params = "char *",
       .line = 2},
      {.name = "no such overload",
       .text = "void g(int a) {}\n",
       .routine = "g",
       .params = "char*",
       .line = -1},
      {.name = "keyword is not a routine",
       .text = "void x() { if (a) {} }\n",
       .routine = "if",
       .line = -1},
      {.name = "unclosed", .text = "void g(int a", .routine = "g", .line = -1},
      {.name = "empty name", .text = "void g() {}\n", .routine = "", .line = -1},
  };
  for (const Case& c : cases) {
    const std::string text = ToBufferForm(c.text);
    const std::optional<TParameterList> list = CppParams(c.params);
    TCppCodeFinder f;
    f.SetText(text.c_str(), static_cast<int32_t>(text.size()));
    EXPECT_EQ(f.FindRoutineImplementationLine(c.routine, list ? &*list : nullptr), c.line)
        << c.name;
  }
}

TEST(CppCodeFinderTest, MatchParametersKeepsOrMovesTheCursor) {
  const std::string text = "f(int a) g()";
  TParameterList intParam(TLanguage::Cpp);
  intParam.Parse("int");
  TCppCodeFinder f;
  f.SetText(text.c_str(), static_cast<int32_t>(text.size()));
  TCPPTokenizer& t = f.Tokenizer();
  t.SetIndex(0);
  EXPECT_TRUE(f.MatchParameters(&intParam));
  EXPECT_EQ(t.Index(), 0);
  EXPECT_TRUE(f.MatchParametersAt(&intParam));
  EXPECT_EQ(t.Kind(), ctCloseParen);
  t.SetIndex(t.Index() + 2);  // on g
  ASSERT_EQ(t.Text(), "g");
  EXPECT_TRUE(f.MatchParameters(nullptr));
  EXPECT_FALSE(f.MatchParameters(&intParam));
  EXPECT_TRUE(f.MatchParametersAt(nullptr));
  EXPECT_EQ(t.Kind(), ctParens);
  EXPECT_FALSE(f.MatchParametersAt(nullptr));  // nothing follows: a list is required
}

// ---- Pascal ----

const char* const kUnit =
    "unit Unit1;\n"                                          // 1
    "interface\n"                                            // 2
    "type\n"                                                 // 3
    "  TForm1 = class(TForm)\n"                              // 4
    "    procedure FormCreate(Sender: TObject);\n"           // 5
    "    function Read: Integer;\n"                          // 6
    "    class procedure Register;\n"                        // 7
    "  end;\n"                                               // 8
    "procedure Helper(A: Integer);\n"                        // 9
    "implementation\n"                                       // 10
    "{ TForm1.FormCreate comes below; 'implementation' }\n"  // 11
    "procedure Helper(A: Integer);\n"                        // 12
    "begin\nend;\n"                                          // 13, 14
    "procedure tform1.FORMCREATE(Sender: TObject);\n"        // 15
    "begin\n  Caption := 'TForm1.FormCreate';\nend;\n"       // 16..18
    "function TForm1.Read: Integer;\n"                       // 19
    "begin\nend;\n"                                          // 20, 21
    "class procedure TForm1.Register; begin end;\n"          // 22
    "constructor TOther.Create; begin end;\n"                // 23
    "initialization\n"                                       // 24
    "  Helper(1);\n"                                         // 25
    "end.\n";                                                // 26

TPascalCodeFinder& Load(TPascalCodeFinder& f, const std::string& text) {
  f.SetText(text.c_str(), static_cast<int32_t>(text.size()));
  return f;
}

TEST(PascalCodeFinderTest, MethodImplementation) {
  const std::string unit = ToBufferForm(kUnit);
  struct Case {
    const char* name;
    std::string cls;
    std::string method;
    int32_t line;
  };
  const Case cases[] = {
      {.name = "letter case ignored", .cls = "TForm1", .method = "FormCreate", .line = 15},
      {.name = "pattern case ignored", .cls = "TFORM1", .method = "formcreate", .line = 15},
      {.name = "directive word as name", .cls = "TForm1", .method = "Read", .line = 19},
      {.name = "class procedure", .cls = "TForm1", .method = "Register", .line = 22},
      {.name = "constructor", .cls = "TOther", .method = "Create", .line = 23},
      {.name = "other class", .cls = "TForm2", .method = "FormCreate", .line = -1},
      {.name = "a routine is no method", .cls = "TForm1", .method = "Helper", .line = -1},
      {.name = "empty", .cls = "", .method = "", .line = -1},
  };
  for (const Case& c : cases) {
    TPascalCodeFinder f;
    EXPECT_EQ(Load(f, unit).FindMethodImplementationLine(c.cls, c.method), c.line) << c.name;
  }
}

TEST(PascalCodeFinderTest, RoutineImplementation) {
  struct Case {
    const char* name;
    std::string text;
    std::string routine;
    int32_t line;
  };
  const Case cases[] = {
      {.name = "declared in the interface, found at the implementation",
       .text = kUnit,
       .routine = "helper",
       .line = 12},
      {.name = "a call is not a heading", .text = kUnit, .routine = "FormCreate", .line = -1},
      {.name = "no implementation keyword",
       .text = "program P;\nprocedure Run;\nbegin\nend;\nbegin Run; end.\n",
       .routine = "Run",
       .line = 2},
      {.name = "line comment before the heading",
       .text = "implementation\n// x\nfunction F: Integer; begin end;\n",
       .routine = "F",
       .line = 3},
      {.name = "empty", .text = kUnit, .routine = "", .line = -1},
  };
  for (const Case& c : cases) {
    const std::string text = ToBufferForm(c.text);
    TPascalCodeFinder f;
    EXPECT_EQ(Load(f, text).FindRoutineImplementationLine(c.routine), c.line) << c.name;
  }
}

TEST(PascalCodeFinderTest, SectionsNamesAndUnitEnd) {
  struct Case {
    const char* name;
    std::string text;
    int32_t implementation;  // line of the implementation section
    int32_t endWithInit;     // FindUnitEndLine(true)
    int32_t endWithoutInit;  // FindUnitEndLine(false)
  };
  const Case cases[] = {
      {.name = "unit with initialization",
       .text = kUnit,
       .implementation = 10,
       .endWithInit = 24,
       .endWithoutInit = 26},
      {.name = "lower case, comment and string ignored",
       .text = "unit U;\n{ implementation }\ninterface\nconst S = 'implementation';\n"
               "IMPLEMENTATION\nend.\n",
       .implementation = 5,
       .endWithInit = 6,
       .endWithoutInit = 6},
      {.name = "last end with a dot wins, end; is not one",
       .text = "unit U;\ninterface\nimplementation\nbegin\nend;\n  end.\nx end.\n",
       .implementation = 3,
       .endWithInit = 7,
       .endWithoutInit = 7},
      {.name = "the end's line start passes a line comment",
       .text = "unit U;\nimplementation\nx := 1; // done\nend.\n",
       .implementation = 2,
       .endWithInit = 3,
       .endWithoutInit = 3},
      {.name = "the last initialization wins",
       .text = "implementation\ninitialization\n{x}\n  initialization\nend.\n",
       .implementation = 1,
       .endWithInit = 4,
       .endWithoutInit = 5},
      {.name = "nothing",
       .text = "program P;\nbegin\nend;\n",
       .implementation = -1,
       .endWithInit = -1,
       .endWithoutInit = -1},
  };
  for (const Case& c : cases) {
    const std::string text = ToBufferForm(c.text);
    TPascalCodeFinder a, b, d;
    EXPECT_EQ(Load(a, text).FindImplementationSectionLine(), c.implementation) << c.name;
    EXPECT_EQ(Load(b, text).FindUnitEndLine(true), c.endWithInit) << c.name;
    EXPECT_EQ(Load(d, text).FindUnitEndLine(false), c.endWithoutInit) << c.name;
  }
}

TEST(PascalCodeFinderTest, FindIdentifier) {
  const std::string unit = ToBufferForm(kUnit);
  struct Case {
    const char* name;
    std::string identifier;
    int32_t line;
  };
  const Case cases[] = {
      {.name = "class name", .identifier = "tform1", .line = 4},
      {.name = "keyword", .identifier = "INTERFACE", .line = 2},
      {.name = "in a comment or string only", .identifier = "comes", .line = -1},
      {.name = "part of a name only", .identifier = "Form", .line = -1},
      {.name = "first token", .identifier = "unit", .line = 1},
  };
  for (const Case& c : cases) {
    TPascalCodeFinder f;
    EXPECT_EQ(Load(f, unit).FindIdentifierLine(c.identifier), c.line) << c.name;
  }
}

}  // namespace
}  // namespace velmora
