#include "parsing/cpp_parser.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "model/class_list.h"
#include "parse_snippet.h"
#include "support/text_buffer.h"

namespace velmora {
namespace {

struct TParsed {
  std::string text;  // as the parser saw it (buffer form)
  std::unique_ptr<TClasslist> list = std::make_unique<TClasslist>();
  std::vector<std::string> includes;
};

void ParseInto(TParsed& p, bool positions = false, std::string_view unit = "input.h") {
  TParsedSnippet parsed =
      ParseSnippetInto(*p.list, TLanguage::Cpp, p.text, {.Unit = unit, .WantPositions = positions});
  p.text = std::move(parsed.Text);
  p.includes = std::move(parsed.Includes);
}

TParsed Parse(std::string_view source, bool positions = false) {
  TParsed p;
  p.text = source;
  ParseInto(p, positions);
  return p;
}

/// The model's text without the positions, which the position tests check on their own.
std::string Describe(const TClasslist& list) {
  return WithoutPositions(DescribeParse(list));
}

// ---- Positions: every one the parser sets must agree with the text ----

struct TLineCheck {
  const TTokenizer& lines;
  int32_t size;
  std::string context;

  void Pair(int32_t line, int32_t offset, std::string_view what) const {
    if (line == -1 && offset == -1) return;
    EXPECT_TRUE(offset >= 0 && offset <= size) << context << ": " << what << " offset " << offset;
    EXPECT_EQ(line, lines.LineOfOffset(offset)) << context << ": " << what << " at " << offset;
  }
  void Object(const TCodeObject& o) const {
    Pair(o.StartLine, o.StartOffset, o.Name + " start");
    Pair(o.EndLine, o.EndOffset, o.Name + " end");
    EXPECT_LE(o.StartOffset, o.EndOffset) << context << ": " << o.Name;
  }
  void Classes(const TCommonClassList& list) const {
    for (int i = 0; i < list.Count(); ++i) {
      TClassDescription& c = *list.Items(i);
      Object(c);
      for (int j = 0; j < c.Fields.Count(); ++j) Object(*c.Fields.Items(j));
      for (int j = 0; j < c.Methods.Count(); ++j) Object(*c.Methods.Items(j));
      if (const TPositionInfo* info = c.GetPositionInfo(false)) {
        for (const auto& visibility : info->Blocks)
          for (const auto& b : visibility) {
            Pair(b.StartLine, b.StartOffset, c.Name + " table start");
            Pair(b.EndLine, b.EndOffset, c.Name + " table end");
          }
        for (const auto& m : info->Macros) {
          Pair(m.StartLine, m.StartOffset, m.Name);
          Pair(m.EndLine, m.EndOffset, m.Name);
        }
      }
      if (const TCommonClassList* nested = c.NestedClassesIfAny()) Classes(*nested);
    }
  }
};

void ExpectPositionsAgree(const TParsed& p, const std::string& context) {
  TCPPTokenizer lines;
  lines.SetText(p.text.c_str(), static_cast<int32_t>(p.text.size()));
  const TLineCheck check{lines, lines.TokenOffset(lines.LastIndex()), context};
  check.Classes(*p.list);
  for (int i = 0; i < p.list->Routines.Count(); ++i) check.Object(*p.list->Routines.Items(i));
}

// ---- Records (the larger cases are golden files under golden/cpp) ----

struct RecordsCase {
  std::string text;
  std::string expected;
};

TEST(CppParserTest, Records) {
  // clang-format off
  const RecordsCase cases[] = {
      {.text = "class PACKAGE TForm1 : public TForm { __published: TButton *Button1; void __fastcall Button1Click(TObject *Sender); private: int FCount; public: __fastcall TForm1(TComponent* Owner); };",
       .expected = R"(class "TForm1" C++ unit="input.h"
  ancestor public "TForm"
  field published "Button1" type="TButton *" modifier=""
  field private "FCount" type="int" modifier=""
  method published function "Button1Click" result="void" directives=0x0800
    param name="Sender" modifier="" type="TObject *" default=""
  method public constructor "TForm1" result="" directives=0x0800
    param name="Owner" modifier="" type="TComponent*" default=""
)"},
      {.text = "struct S { int a; };", .expected = "struct \"S\" C++ unit=\"input.h\"\n  field public \"a\" type=\"int\" modifier=\"\"\n"},
      // Forward declarations and variables of class type record nothing.
      {.text = "class A; class A a; struct tm* localtime(long*);", .expected = ""},
      {.text = "class X { virtual void f() = 0; int g() const { return 1; } };",
       .expected = "class \"X\" C++ unit=\"input.h\"\n  method private function \"f\" result=\"void\" directives=0x0009\n  method private function \"g\" result=\"int\" directives=0x6000\n"},
      {.text = "namespace N { class C {}; }", .expected = "class \"C\" C++ unit=\"input.h\"\n"},
      {.text = "class P { __property int Count = {read=FCount, write=SetCount, default=0}; };",
       .expected = "class \"P\" C++ unit=\"input.h\"\n  property private \"Count\" type=\"int\" modifier=\"\" index_params=\"\" index=\"\" read=\"FCount\" write=\"SetCount\" stored=\"\" default=\"\"\n"},
      {.text = "class M { BEGIN_MESSAGE_MAP MESSAGE_HANDLER(WM_SIZE, TMessage, WMSize) END_MESSAGE_MAP(TForm) };", .expected = "class \"M\" C++ unit=\"input.h\"\n"},
      // Names with letters beyond ASCII (UTF-8, Windows-1252) are read whole.
      {.text = "class TW\xC3\xA4rme { int Gr\xE4" "de; };",
       .expected = "class \"TW\xC3\xA4rme\" C++ unit=\"input.h\"\n  field private \"Gr\xE4" "de\" type=\"int\" modifier=\"\"\n"},
      {.text = "typedef struct X { int a; } Y;", .expected = "struct \"X\" C++ unit=\"input.h\"\n  field public \"a\" type=\"int\" modifier=\"\"\n"},
      // Declarators after a nested body are dropped; an unnamed struct is passed whole.
      {.text = "class O { class I { int x; } a, *b; struct { int z; } s; public: int w; };",
       .expected = "class \"O\" C++ unit=\"input.h\"\n  field public \"w\" type=\"int\" modifier=\"\"\n  class \"I\" C++ unit=\"input.h\"\n    field private \"x\" type=\"int\" modifier=\"\"\n"},
      // Access is private until said otherwise; of a qualified name the last part counts.
      {.text = "class __declspec(delphiclass) D : A, protected virtual ns::B, public C<D<int>>, public ::E {};",
       .expected = "class \"D\" C++ unit=\"input.h\"\n  ancestor private \"A\"\n  ancestor protected \"B\"\n  ancestor public \"C\"\n  ancestor public \"E\"\n"},
      // Modifier words and what follows the parameter list set the directive bits.
      {.text = "class I { TFoo() : a(1), b(2) {} inline int __cdecl P(); void __pascal Q() throw(); };",
       .expected = "class \"I\" C++ unit=\"input.h\"\n  method private function \"P\" result=\"int\" directives=0x1200\n  method private function \"Q\" result=\"void\" directives=0x0100\n  method private function \"TFoo\" result=\"\" directives=0x2000\n"},
      // A visibility word without its colon changes nothing.
      {.text = "class V { __automated: int A; protected: int C; public int D; };",
       .expected = "class \"V\" C++ unit=\"input.h\"\n  field automated \"A\" type=\"int\" modifier=\"\"\n  field protected \"C\" type=\"int\" modifier=\"\"\n  field protected \"D\" type=\"int\" modifier=\"\"\n"},
      // The last declaration of a name decides whether it is a field or a property.
      {.text = "class R { int A; __property int A = {read=FA}; __property int B = {read=FB}; int B; };",
       .expected = "class \"R\" C++ unit=\"input.h\"\n  property private \"A\" type=\"int\" modifier=\"\" index_params=\"\" index=\"\" read=\"FA\" write=\"\" stored=\"\" default=\"\"\n  field private \"B\" type=\"int\" modifier=\"\"\n"},
      {.text = "class Sk { friend class G; using Base::f; enum E { e1, e2 }; union { int i; float f; }; typedef int (*TFn)(int); int kept; };",
       .expected = "class \"Sk\" C++ unit=\"input.h\"\n  field private \"kept\" type=\"int\" modifier=\"\"\n"},
      // The specifiers of later C++ after a parameter list are passed: the condition of
      // `noexcept(...)` and a trailing `decltype(...)` are no methods, and what follows them
      // still sets its bits.
      {.text = "class T { void a() noexcept; void b() noexcept(sizeof(int) > 2) { } int c() const & override; auto d(int x) -> decltype(x + 1); virtual void e() final = 0; void f() && noexcept override {} auto g() -> std::map<int, int> override; };",
       .expected = R"(class "T" C++ unit="input.h"
  method private function "a" result="void" directives=0x0000
  method private function "b" result="void" directives=0x2000
  method private function "c" result="int" directives=0x4000
  method private function "d" result="auto" directives=0x0000
    param name="x" modifier="" type="int" default=""
  method private function "e" result="void" directives=0x0009
  method private function "f" result="void" directives=0x2000
  method private function "g" result="auto" directives=0x0000
)"},
      // At file level `auto` starts no declaration (a storage class word of old), so `h` has
      // no result type.
      {.text = "void g() noexcept; auto h() -> int; int k() const noexcept(true); template <class T> auto m(T t) -> decltype(t.f()) { return t.f(); }",
       .expected = R"(routine file="input.h"
  method public function "g" result="void" directives=0x0000
routine file="input.h"
  method public function "h" result="" directives=0x0000
routine file="input.h"
  method public function "k" result="int" directives=0x0000
)"},
      // A friend function defined in the class ends with its body; a friend never runs
      // over the end of the class.
      {.text = "class F { friend bool operator==(F a, F b) noexcept { return true; } int after; friend class G; friend void h(F) {} int more; }; class F2 { friend int g() } int z;",
       .expected = R"(class "F" C++ unit="input.h"
  field private "after" type="int" modifier=""
  field private "more" type="int" modifier=""
class "F2" C++ unit="input.h"
)"},
      // An initializer ends its declarator: a call in it is no routine or method, and the
      // names of a list with initializers are all fields.
      {.text = "int x = f(1); char *names[] = { \"a\", \"b\" }; class C { int a = 1, b{2}, c = g(3); double d{0.5}; C() = default; C(const C&) = delete; };",
       .expected = R"(class "C" C++ unit="input.h"
  field private "a" type="int" modifier=""
  field private "b" type="int" modifier=""
  field private "c" type="int" modifier=""
  field private "d" type="double" modifier=""
  method private constructor "C" result="" directives=0x0000
  method private constructor "C" result="" directives=0x0000
    param name="" modifier="" type="const C&" default=""
)"},
      {.text = "class K { static const bool B = std::is_same_v<X, Y>, C = 1 < 2; int D = a < b; int E; };",
       .expected = R"(class "K" C++ unit="input.h"
  field private "B" type="const bool" modifier=""
  field private "C" type="const bool" modifier=""
  field private "D" type="int" modifier=""
  field private "E" type="int" modifier=""
)"},
      // Words of later C++ that take a group are no methods or routines: static_assert
      // declares nothing, alignas and __attribute__ pass, decltype is part of the type.
      {.text = "class A { static_assert(sizeof(int) == 4, \"int\"); alignas(16) char Buf[16]; decltype(1 + 2) Y; int Z __attribute__((aligned(8))); __attribute__((deprecated)) void G(); }; static_assert(true, \"x\");",
       .expected = R"x(class "A" C++ unit="input.h"
  field private "Buf" type="char" modifier="[16]"
  field private "Y" type="decltype(1 + 2)" modifier=""
  field private "Z" type="int" modifier=""
  method private function "G" result="void" directives=0x0000
)x"},
      // Annotation macros after a parameter list pass when the declaration ends after
      // them; a section macro's colon is never taken for an initializer list (`Q_SIGNALS:`
      // opens a public section), a macro called with no type before it and nothing after
      // it that only a function has is no method, and a macro that ends nothing starts the
      // next declaration.
      {.text = "extern int f(const char *s) __THROW __nonnull ((1)); class Q { int g() const Q_DECL_PURE_FUNCTION; QT_DECLARE_X(Q)\nQ_SIGNALS: void changed(); int h() NOT_A_MACRO_END int kept; };",
       .expected = R"x(class "Q" C++ unit="input.h"
  field public "kept" type="NOT_A_MACRO_END int" modifier=""
  method public function "changed" result="void" directives=0x0000
  method private function "g" result="int" directives=0x4000
  method public function "h" result="int" directives=0x0000
routine file="input.h"
  method public function "f" result="int" directives=0x0000
    param name="s" modifier="" type="const char *" default=""
)x"},
      // A pointer to a function is a field named in the first brackets; a missing `;`
      // before the class's end costs nothing else.
      {.text = "class T { void (__closure *FOnClick)(TObject *Sender); int (*Fp)(int) = nullptr; void (*Cb)(); int (__fastcall *)(int); }; class U { int (*G)(int) = F } int after;",
       .expected = R"x(class "T" C++ unit="input.h"
  field private "FOnClick" type="void (__closure *)(TObject *Sender)" modifier=""
  field private "Fp" type="int (*)(int)" modifier=""
  field private "Cb" type="void (*)()" modifier=""
class "U" C++ unit="input.h"
  field private "G" type="int (*)(int)" modifier=""
)x"},
      // Attributes pass wherever they stand.
      {.text = "[[nodiscard]] int f(); class A { [[deprecated(\"old\")]] int Y; [[nodiscard]] int F() const; int Z[2]; };",
       .expected = R"x(class "A" C++ unit="input.h"
  field private "Y" type="int" modifier=""
  field private "Z" type="int" modifier="[2]"
  method private function "F" result="int" directives=0x4000
routine file="input.h"
  method public function "f" result="int" directives=0x0000
)x"},
      // Framework section words: `public slots:` is a public section; `signals:` alone
      // leaves the visibility as it was.
      {.text = "class S { public slots: void a(); signals: void b(); protected Q_SLOTS: void c(); };",
       .expected = R"x(class "S" C++ unit="input.h"
  method public function "a" result="void" directives=0x0000
  method public function "b" result="void" directives=0x0000
  method protected function "c" result="void" directives=0x0000
)x"},
      // Broken input: a trailing type never takes the `}` that ends the class.
      {.text = "class U { auto f() -> int } int after;",
       .expected = "class \"U\" C++ unit=\"input.h\"\n  method private function \"f\" result=\"auto\" directives=0x0000\n"},
      {.text = "enum E { A, B }; union U { int i; }; class C {}; struct { int q; } anon; void m() const;",
       .expected = "class \"C\" C++ unit=\"input.h\"\nroutine file=\"input.h\"\n  method public function \"m\" result=\"void\" directives=0x0000\n"},
  };
  // clang-format on
  for (const RecordsCase& c : cases) {
    const TParsed p = Parse(c.text);
    EXPECT_EQ(Describe(*p.list), c.expected) << c.text;
    ExpectPositionsAgree(p, c.text);
  }
}

struct IncludesCase {
  std::string text;
  std::vector<std::string> names;
};

TEST(CppParserTest, IncludeNames) {
  // clang-format off
  const IncludesCase cases[] = {
      {.text = "#include \"a.h\"\r\n#include <vcl.h>\r\n", .names = {"a.h"}},
      // Sorted, and compared without case.
      {.text = "#include \"b.h\"\r\n#include \"A.h\"\r\n#include \"a.H\" // again\r\n", .names = {"A.h", "b.h"}},
      {.text = "class C {\r\n#include \"inner.h\"\r\n};", .names = {}},
      // Only a name right after `#` is a directive; a macro or an unclosed name is no file.
      {.text = "#  include \"x.h\"\r\n#include HEADER\r\n#include \"\"\r\n#include \"open.h", .names = {}},
  };
  // clang-format on
  for (const IncludesCase& c : cases) EXPECT_EQ(Parse(c.text).includes, c.names) << c.text;
}

// ---- The shared cursor operations ----

struct TCursor {
  std::string text;
  TCPPTokenizer t;
  explicit TCursor(std::string s) : text(std::move(s)) {
    t.SetText(text.c_str(), static_cast<int32_t>(text.size()));
  }
  std::string Here() const { return t.TokenText(t.Index()); }
};

struct CollectCase {
  std::string text;  // starts with the open bracket
  int openKind;
  bool result;
  std::string collected;
  int32_t offset;  // where the cursor ends: the close, or the end of text
};

TEST(CppParserTest, CollectBracket) {
  // clang-format off
  const CollectCase cases[] = {
      {.text = "(a, (b) c) x", .openKind = ctOpenParen, .result = true, .collected = "a, (b) c", .offset = 9},
      {.text = "( int\r\n  a /* c */)", .openKind = ctOpenParen, .result = true, .collected = " int a ", .offset = 18},
      {.text = "(a/**/b)", .openKind = ctOpenParen, .result = true, .collected = "a b", .offset = 7},
      {.text = "[x[1]]", .openKind = ctOpenBracket, .result = true, .collected = "x[1]", .offset = 5},
      {.text = "{a {} {b}}", .openKind = ctOpenBrace, .result = true, .collected = "a {} {b}", .offset = 9},
      // `>>` closes nothing, so this group runs to the end of the text.
      {.text = "<a<b>>c>", .openKind = ctLess, .result = false, .collected = "a<b>>c>", .offset = 8},
      {.text = "(a", .openKind = ctOpenParen, .result = false, .collected = "a", .offset = 2},
      {.text = "(a)", .openKind = ctSemicolon, .result = false, .collected = "", .offset = 0},
  };
  // clang-format on
  for (const CollectCase& c : cases) {
    TCursor cur(c.text);
    std::string text = "stale";
    EXPECT_EQ(CollectBracket(cur.t, c.openKind, text, true), c.result) << c.text;
    EXPECT_EQ(text, c.collected) << c.text;
    EXPECT_EQ(cur.t.Offset(), c.offset) << c.text;
    TCursor quiet(c.text);
    EXPECT_EQ(CollectBracket(quiet.t, c.openKind, text, false), c.result) << c.text;
    EXPECT_EQ(text, "") << c.text;
  }
}

struct SkipToCase {
  std::string text;
  TTokenKindSet stops;
  int result;
  int32_t offset;  // where the cursor ends
};

TEST(CppParserTest, SkipTo) {
  // clang-format off
  const SkipToCase cases[] = {
      {.text = "a (;) [;] {;} ; b", .stops = {ctSemicolon}, .result = ctSemicolon, .offset = 14},
      // The close of a passed group is a stop of its own.
      {.text = "f(x) y", .stops = {ctCloseParen}, .result = ctCloseParen, .offset = 3},
      {.text = "a {b} }", .stops = {ctCloseBrace}, .result = ctCloseBrace, .offset = 4},
      // `<` opens no group.
      {.text = "< ; >", .stops = {ctSemicolon}, .result = ctSemicolon, .offset = 2},
      {.text = "a (;", .stops = {ctSemicolon}, .result = ctUnknownChar, .offset = 4},
      {.text = "a b", .stops = {ctSemicolon}, .result = ctUnknownChar, .offset = 3},
  };
  // clang-format on
  for (const SkipToCase& c : cases) {
    TCursor cur(c.text);
    EXPECT_EQ(SkipTo(cur.t, c.stops), c.result) << c.text;
    EXPECT_EQ(cur.t.Offset(), c.offset) << c.text;
  }
}

struct RestOfLineCase {
  std::string text;  // starts with the directive
  std::string collected;
  std::string next;  // the next significant token after the line
  int32_t line;      // the tracked line there
};

TEST(CppParserTest, ReadRestOfLine) {
  // clang-format off
  const RestOfLineCase cases[] = {
      {.text = "#define A \\\r\n  B\r\nnext", .collected = " A \r\n B", .next = "next", .line = 3},
      {.text = "#define A \\ B\r\nnext", .collected = " A  B", .next = "next", .line = 2},
      {.text = "#pragma x // c\r\ny", .collected = " x", .next = "y", .line = 2},
      {.text = "#if A /* 1\r\n2 */ B\r\nz", .collected = " A /* 1\r\n2 */ B", .next = "z", .line = 3},
      {.text = "#endif", .collected = "", .next = "", .line = 1},
  };
  // clang-format on
  for (const RestOfLineCase& c : cases) {
    TCursor cur(c.text);
    cur.t.Kind();
    std::string text;
    ReadRestOfLine(cur.t, true, text);
    EXPECT_EQ(text, c.collected) << c.text;
    cur.t.NextSignificant();
    EXPECT_EQ(cur.Here(), c.next) << c.text;
    EXPECT_EQ(cur.t.GetLine(), c.line) << c.text;
  }
}

struct MacroCase {
  std::string text;  // starts with the macro name
  std::string last;  // the token the skip ends on
  std::string next;
};

TEST(CppParserTest, SkipMacro) {
  const MacroCase cases[] = {
      {.text = "M(a)(b) () x", .last = "()", .next = "x"},
      {.text = "M x", .last = "M", .next = "x"},
      {.text = "M /* c */\r\n(a) ;", .last = ")", .next = ";"},
      {.text = "M\r\n// c\r\n\r\nx", .last = "M", .next = "x"},
      {.text = "M(a", .last = "", .next = ""},
  };
  for (const MacroCase& c : cases) {
    TCursor cur(c.text);
    SkipMacro(cur.t);
    EXPECT_EQ(cur.Here(), c.last) << c.text;
    cur.t.NextSignificant();
    EXPECT_EQ(cur.Here(), c.next) << c.text;
    // The look past the macro was undone whole: no line end is counted twice.
    EXPECT_EQ(cur.t.GetLine(), cur.t.LineOfToken(cur.t.Index())) << c.text;
  }
}

TEST(CppParserTest, KnownMacros) {
  for (std::string_view name : {"BEGIN_MESSAGE_MAP", "VCL_MESSAGE_HANDLER", "STDMETHOD_",
                                "_ATL_DEBUG_ADDREF_RELEASE_IMPL", "DEFINE_OID_3", "WIN_TYPES"})
    EXPECT_TRUE(IsKnownMacroName(name)) << name;
  for (std::string_view name :
       {"begin_message_map", "BEGIN_MESSAGE_MAPX", "STDMETHOD__", "USE", ""})
    EXPECT_FALSE(IsKnownMacroName(name)) << name;
  TCursor literal("\"USEFORM\"");
  EXPECT_FALSE(IsKnownMacro(literal.t));
}

// ---- Positions ----

using TQuad = std::array<int32_t, 4>;  // start line, start offset, end line, end offset
TQuad Of(const TCodeObject& o) {
  return {o.StartLine, o.StartOffset, o.EndLine, o.EndOffset};
}
TQuad Of(const TPositionInfo::Positions& b) {
  return {b.StartLine, b.StartOffset, b.EndLine, b.EndOffset};
}
TQuad Of(const TPositionInfo::Macro* m) {
  return m ? TQuad{m->StartLine, m->StartOffset, m->EndLine, m->EndOffset} : TQuad{};
}

TEST(CppParserTest, PositionsOfAFormClass) {
  const std::string text =
      "class TForm1 : public TForm\r\n"                         // 1
      "{\r\n"                                                   // 2
      "__published:\r\n"                                        // 3
      "    TButton *Button1;\r\n"                               // 4
      "    void __fastcall Button1Click(TObject *Sender);\r\n"  // 5
      "private:\r\n"                                            // 6
      "    int FCount; // the count\r\n"                        // 7
      "    /* two\r\n       lines */\r\n"                       // 8, 9
      "    __property int Count = {read=FCount};\r\n"           // 10
      "public:\r\n"                                             // 11
      "    __fastcall TForm1(TComponent* Owner)\r\n"            // 12
      "        : TForm(Owner) {}\r\n"                           // 13
      "BEGIN_MESSAGE_MAP\r\n"                                   // 14
      "    VCL_MESSAGE_HANDLER(WM_SIZE, TMessage, WMSize)\r\n"  // 15
      "END_MESSAGE_MAP(TForm)\r\n"                              // 16
      "};\r\n";                                                 // 17
  auto at = [&](std::string_view s, std::string_view after = {}) {
    return static_cast<int32_t>(text.find(s, after.empty() ? 0 : text.find(after)));
  };
  const TParsed p = Parse(text, true);
  TClassDescription* c = p.list->Find("TForm1");
  ASSERT_NE(c, nullptr);
  // A class runs from the token after `class` to its `}`; a member from its first token to
  // its `;` or the end of its body; a section from its keyword to its colon; a macro from
  // its name to its last token.
  EXPECT_EQ(Of(*c), (TQuad{1, at("TForm1"), 17, at("};", "END_")}));
  EXPECT_EQ(Of(*c->Fields.Find("Button1")), (TQuad{4, at("TButton"), 4, at(";")}));
  EXPECT_EQ(Of(*c->Fields.Find("Count")), (TQuad{10, at("__property"), 10, at(";", "__property")}));
  EXPECT_EQ(Of(*c->Methods.Find("TForm1")), (TQuad{12, at("__fastcall TForm1"), 13, at("{}")}));
  const TPositionInfo* info = c->GetPositionInfo(false);
  ASSERT_NE(info, nullptr);
  const auto published = TVisibility::Published, priv = TVisibility::Private,
             pub = TVisibility::Public;
  EXPECT_EQ(Of(info->At(published, TPositionInfo::Section)),
            (TQuad{3, at("__published"), 3, at(":", "__published")}));
  EXPECT_EQ(Of(info->At(priv, TPositionInfo::Section)),
            (TQuad{6, at("private"), 6, at(":", "private")}));
  EXPECT_EQ(Of(info->At(pub, TPositionInfo::Section)),
            (TQuad{11, at("public:"), 11, at(":", "public:")}));
  EXPECT_EQ(Of(info->At(published, TPositionInfo::LastField)), Of(*c->Fields.Find("Button1")));
  EXPECT_EQ(Of(info->At(published, TPositionInfo::LastMethod)),
            (TQuad{5, at("void"), 5, at(";", "void")}));
  EXPECT_EQ(Of(info->At(priv, TPositionInfo::LastField)),
            (TQuad{7, at("int FCount"), 7, at("; //")}));
  EXPECT_EQ(Of(info->At(priv, TPositionInfo::LastProperty)), Of(*c->Fields.Find("Count")));
  EXPECT_EQ(Of(info->At(pub, TPositionInfo::LastMethod)), Of(*c->Methods.Find("TForm1")));
  EXPECT_EQ(Of(info->At(TVisibility::Protected, TPositionInfo::Section)), (TQuad{-1, -1, -1, -1}));
  EXPECT_EQ(info->Macros.size(), 3u);
  EXPECT_EQ(Of(info->LastMacro("BEGIN_MESSAGE_MAP")), (TQuad{14, at("BEGIN_"), 14, at("BEGIN_")}));
  EXPECT_EQ(Of(info->LastMacro("VCL_MESSAGE_HANDLER")),
            (TQuad{15, at("VCL_"), 15, at(")", "VCL_")}));
  EXPECT_EQ(Of(info->LastMacro("END_MESSAGE_MAP")), (TQuad{16, at("END_"), 16, at(")", "END_")}));
  // Without positions wanted no class gets a table.
  EXPECT_EQ(Parse(text).list->Find("TForm1")->GetPositionInfo(false), nullptr);
}

TEST(CppParserTest, NestedClassHasItsOwnPositionTable) {
  const TParsed p = Parse(
      "class O {\r\npublic:\r\n  class I {\r\n  protected:\r\n    int x;\r\n  };\r\n  int y;\r\n};",
      true);
  TClassDescription* o = p.list->Find("O");
  TClassDescription* i = o->NestedClassesIfAny()->Find("I");
  ASSERT_NE(i, nullptr);
  const TPositionInfo& outer = *o->GetPositionInfo(false);
  const TPositionInfo& inner = *i->GetPositionInfo(false);
  EXPECT_EQ(outer.At(TVisibility::Protected, TPositionInfo::Section).StartLine, -1);
  EXPECT_EQ(outer.At(TVisibility::Public, TPositionInfo::LastField).StartLine, 7);
  EXPECT_EQ(inner.At(TVisibility::Protected, TPositionInfo::Section).StartLine, 4);
  EXPECT_EQ(inner.At(TVisibility::Protected, TPositionInfo::LastField).StartLine, 5);
  EXPECT_EQ(i->EndLine, 6);
}

// `'\''` reads as `'\'` and a quote that runs on over the line end to the next one; lines
// are counted from the text, not from the line ends the cursor passed.
TEST(CppParserTest, LinesAfterALiteralOverALineEnd) {
  const TParsed p = Parse("char a = '\\'';\r\nchar b = '\\'';\r\nclass C {};");
  EXPECT_EQ(Of(*p.list->Find("C")), (TQuad{3, 38, 3, 40}));
}

// A re-parse refreshes the records in place, so views keep their items.
TEST(CppParserTest, ReparseWithMarkAndSweep) {
  TParsed p;
  p.text = ToBufferForm("class C { int a; void f(); int g(); };\r\nint r(int);");
  ParseInto(p, false, "u.h");
  TClassDescription* c = p.list->Find("C");
  TFieldDescription* a = c->Fields.Find("a");
  TMethodDescription* f = c->Methods.Find("f");
  p.list->Mark("u.h", false);
  p.text = ToBufferForm("class C { __property int a = {read=Fa}; void f(int x); };\r\nint r(int);");
  ParseInto(p, false, "u.h");
  p.list->Sweep(false, "u.h");
  EXPECT_EQ(p.list->Find("C"), c);
  EXPECT_EQ(c->Fields.Find("a"), a);
  EXPECT_TRUE(a->IsProperty);
  EXPECT_EQ(c->Methods.Find("f"), f);
  EXPECT_EQ(f->Parameters.Count(), 1);
  EXPECT_EQ(c->Methods.Find("g"), nullptr);
  EXPECT_EQ(p.list->Routines.Count(), 1);
}

// Golden inputs: whatever their records, every position agrees with the text.
TEST(CppParserTest, GoldenInputPositionsAgree) {
  const auto root = std::filesystem::path(VELMORA_TEST_DATA) / "parsing/golden/cpp";
  int inputs = 0;
  for (const auto& folder : std::filesystem::directory_iterator(root))
    for (const auto& file : std::filesystem::directory_iterator(folder.path())) {
      if (file.path().stem() != "input") continue;
      TParsed p;
      p.text = LoadSourceText(file.path().string());
      ParseInto(p, true);
      ExpectPositionsAgree(p, file.path().string());
      ++inputs;
    }
  EXPECT_GE(inputs, 10);
}

// ---- Bad input: every text ends the parse without a fault ----

std::string Repeat(std::string_view s, int n) {
  std::string r;
  for (int i = 0; i < n; ++i) r += s;
  return r;
}

TEST(CppParserTest, AdversarialTexts) {
  // clang-format off
  const std::string texts[] = {
      Repeat("{", 10000), Repeat("(", 10000), Repeat("[", 10000), "template " + Repeat("<", 10000),
      "class A : " + Repeat("B<", 10000), "class A { int x" + Repeat(" = a < b", 5000),
      "/* unclosed", "class A { int x; /* unclosed", "class A { char* s = \"unclosed",
      "class A { void f(int a,", "class A { __property", "class A { __property int P = { read",
      "__property", "class A { int operator", "int operator", "operator", "class A : public",
      "class", "#define X \\", "extern", "namespace", "class A { public", "class A { BEGIN_MESSAGE_MAP(",
      "}}}} class A {}; }}}", std::string("class A { int a;\0 int b; };", 27),
      "class \x80\xff A { int \xfe b; };\x01\x02",
  };
  // clang-format on
  for (const std::string& text : texts) {
    TParsed p;
    p.text = text;
    ParseInto(p, true);
    ExpectPositionsAgree(p, text.substr(0, 40));
  }
  // Class heads nested far beyond any real source: the recursion stops at its cap.
  TParsed deep;
  deep.text = Repeat("class A {", 10000);
  ParseInto(deep, true);
  EXPECT_EQ(deep.list->CountAll(), kMaxClassNesting + 1);
}

TEST(CppParserTest, RandomTexts) {
  // clang-format off
  static const char* const kPieces[] = {
      "class ", "struct ", "A", "B ", " ", "\r\n", "{", "}", "{}", "(", ")", "()", "[", "]", "<", ">",
      ">>", ";", ",", ":", "::", "=", "0", "*", "&", "~", "__property ", "operator", "template ",
      "typedef ", "extern \"C\" ", "namespace ", "#define X \\\r\n", "#include \"a.h\"\r\n", "/*", "*/",
      "//", "\"", "'", "public:", "virtual ", "const ", "__fastcall ", "BEGIN_MESSAGE_MAP ",
      "MESSAGE_HANDLER(", "read", "{read=F}", "int ", "void ", "enum ", "union ", "friend ", "\x01", "\xff",
  };
  // clang-format on
  std::mt19937 random(20260101);
  std::uniform_int_distribution<size_t> piece(0, std::size(kPieces) - 1);
  std::uniform_int_distribution<int> byte(0, 255);
  for (int round = 0; round < 3000 && !::testing::Test::HasFailure(); ++round) {
    TParsed p;
    for (int i = 0; i < 60; ++i) {
      if (round % 10 == 0)  // raw bytes, a NUL among them now and then
        p.text += static_cast<char>(byte(random));
      else
        p.text += kPieces[piece(random)];
    }
    ParseInto(p, true);
    ExpectPositionsAgree(p, "round " + std::to_string(round));
  }
}

}  // namespace
}  // namespace velmora
