// The Pascal file and class parser on small texts: the bracket operations, type heads,
// class bodies, unit-level routines and includes, positions, re-parses and hostile input.
// Larger units are golden cases under golden/pascal/.
#include "parsing/pascal_parser.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "model/class_list.h"
#include "parse_snippet.h"
#include "parsing/pascal_tokenizer.h"
#include "support/text_buffer.h"

namespace velmora {
namespace {

// One line per record, fields before methods as the lists hold them:
//   class|interface|dispatch interface Name(Ancestor, ...) {GUID}
//   field <visibility> Name: Type
//   property <visibility> Name[IndexParams]: Type read X write Y ...   (non-empty ones)
//   method <visibility> <kind> Name(Parameters): Result 0xDIRECTIVES message X
//   routine <kind> Name(Parameters): Result
//   includes A B
std::string MethodLine(const TMethodDescription& m) {
  char bits[8];
  std::snprintf(bits, sizeof bits, "0x%04x", m.Directives);
  std::string s =
      std::string(MethodKindText(m.Kind)) + " " + m.Name + "(" + m.Parameters.GetText() + ")";
  if (!m.ResultType.empty()) s += ": " + m.ResultType;
  s += std::string(" ") + bits;
  if (!m.MessageName.empty()) s += " message " + m.MessageName;
  return s;
}

std::string Summary(const TClasslist& list, const std::vector<std::string>& includes = {}) {
  std::string out;
  const auto line = [&out](const std::string& s) { out += (out.empty() ? "" : "\n") + s; };
  for (int i = 0; i < list.Count(); ++i) {
    const TClassDescription& c = *list.Items(i);
    std::string head = std::string(ClassKindText(c.ClassKind)) + " " + c.Name;
    for (int a = 0; a < c.Ancestors.Count(); ++a)
      head += (a == 0 ? "(" : ", ") + c.Ancestors[a].AncestorName;
    if (c.Ancestors.Count() > 0) head += ")";
    if (!c.Guid.empty()) head += " {" + c.Guid + "}";
    line(head);
    for (int j = 0; j < c.Fields.Count(); ++j) {
      const TFieldDescription& f = *c.Fields.Items(j);
      std::string s = std::string(f.IsProperty ? "property " : "field ") +
                      std::string(VisibilityText(f.Visibility, TLanguage::Pascal)) + " " + f.Name;
      if (f.IsProperty && !f.Property->IndexParams.empty())
        s += "[" + f.Property->IndexParams + "]";
      s += ": " + f.FieldType;
      if (f.IsProperty) {
        const TPropertyDescription& p = *f.Property;
        for (const auto& [word, value] : {std::pair{"index", &p.IndexSpec},
                                          {"read", &p.ReadSpec},
                                          {"write", &p.WriteSpec},
                                          {"stored", &p.StoredSpec},
                                          {"default", &p.DefaultSpec}})
          if (!value->empty()) s += std::string(" ") + word + " " + *value;
      }
      line(s);
    }
    for (int j = 0; j < c.Methods.Count(); ++j) {
      const TMethodDescription& m = *c.Methods.Items(j);
      line("method " + std::string(VisibilityText(m.Visibility, TLanguage::Pascal)) + " " +
           MethodLine(m));
    }
  }
  for (int i = 0; i < list.Routines.Count(); ++i)
    line("routine " + MethodLine(*list.Routines.Items(i)));
  if (!includes.empty()) {
    std::string s = "includes";
    for (const std::string& name : includes) s += " " + name;
    line(s);
  }
  return out;
}

struct TParseResult {
  std::string summary;
  bool inImplementation;
};

TParseResult ParseUnit(TClasslist& list, const std::string& text, bool parseImplementation = true,
                       bool wantPositions = false) {
  const TParsedSnippet parsed = ParseSnippetInto(
      list, TLanguage::Pascal, text,
      {.WantPositions = wantPositions, .ParseImplementation = parseImplementation});
  return {Summary(list, parsed.Includes), parsed.InImplementation};
}

std::string Describe(const std::string& text) {
  TClasslist list;
  return ParseUnit(list, text).summary;
}

// The member lines of class `TC` declared with `body`.
std::string Members(const std::string& body) {
  const std::string s = Describe("type TC = class\n" + body + "\nend;");
  const size_t first = s.find('\n');
  return first == std::string::npos ? "" : s.substr(first + 1);
}

// ---- Bracket operations ----

struct TCursorCase {
  std::string text;  // the cursor starts on token 0
  int kind = 0;      // CollectBracket: the opener; ReadTo: the stop kind
  int result = 0;    // CollectBracket: 1 or 0; SkipTo and ReadTo: the kind returned
  std::string collected = "";
  std::string stopText = "";  // text of the token the cursor ends on
};

TEST(PascalBracketTest, CollectBracket) {
  // clang-format off
  const TCursorCase cases[] = {
      {.text = "(a, b)x", .kind = ptOpenParen, .result = 1, .collected = "a, b", .stopText = ")"},
      {.text = "( a  (b)\r\n c )", .kind = ptOpenParen, .result = 1, .collected = "a (b) c", .stopText = ")"},
      {.text = "(a{c}b(*d*)e//f\r\ng)", .kind = ptOpenParen, .result = 1, .collected = "a b e g", .stopText = ")"},
      {.text = "(a [)", .kind = ptOpenParen, .result = 1, .collected = "a [", .stopText = ")"},
      {.text = "[1..2]", .kind = ptOpenBracket, .result = 1, .collected = "1..2", .stopText = "]"},
      {.text = "(.1.)", .kind = ptOpenBracket, .result = 1, .collected = "1", .stopText = ".)"},
      {.text = "record a: record b: c; end; end; x", .kind = ptRecord, .result = 1, .collected = "a: record b: c; end;", .stopText = "end"},
      {.text = "RECORD case x of 1: (a: b); END", .kind = ptRecord, .result = 1, .collected = "case x of 1: (a: b);", .stopText = "END"},
      {.text = "(a (b)", .kind = ptOpenParen, .result = 0, .collected = "a (b)", .stopText = ""},
      {.text = "(a]", .kind = ptOpenParen, .result = 0, .collected = "a]", .stopText = ""},
      {.text = "a)", .kind = ptIdentifier, .result = 0, .collected = "", .stopText = "a"},
  };
  // clang-format on
  for (const TCursorCase& c : cases) {
    TPascalTokenizer t;
    t.SetText(c.text.c_str(), static_cast<int32_t>(c.text.size()));
    std::string text = "old";
    EXPECT_EQ(PascalCollectBracket(t, c.kind, &text), c.result == 1) << c.text;
    EXPECT_EQ(text, c.collected) << c.text;
    EXPECT_EQ(t.Text(), c.stopText) << c.text;
  }
}

TEST(PascalBracketTest, SkipToAndReadTo) {
  const TTokenKindSet semicolon = {ptSemicolon};
  // clang-format off
  const TCursorCase skips[] = {
      {.text = "a ( ; ) [ ; ] record ; end ; x", .result = ptSemicolon, .stopText = ";"},
      {.text = "; x", .result = ptSemicolon, .stopText = ";"},
      {.text = "a ( ; ) b", .result = ptUnknownChar, .stopText = ""},
      // Each group counts its own pair only: the `(` does not hide the record's `end`.
      {.text = "a record b; ( end ; )", .result = ptSemicolon, .stopText = ";"},
      {.text = "a record b; c", .result = ptUnknownChar, .stopText = ""},
      {.text = "", .result = ptUnknownChar, .stopText = ""},
  };
  // clang-format on
  for (const TCursorCase& c : skips) {
    TPascalTokenizer t;
    t.SetText(c.text.c_str(), static_cast<int32_t>(c.text.size()));
    EXPECT_EQ(PascalSkipTo(t, semicolon), c.result) << c.text;
    EXPECT_EQ(t.Text(), c.stopText) << c.text;
    if (c.stopText == ";") {
      EXPECT_EQ(t.Offset(), static_cast<int32_t>(c.text.rfind(';'))) << c.text;
    }
  }

  // clang-format off
  const TCursorCase reads[] = {
      {.text = ": array[0..1] of Integer; x", .kind = ptSemicolon, .result = ptSemicolon, .collected = "array[0..1] of Integer", .stopText = ";"},
      {.text = ": procedure(A: Integer; B: Byte) of object;", .kind = ptSemicolon, .result = ptSemicolon, .collected = "procedure(A: Integer; B: Byte) of object", .stopText = ";"},
      {.text = ":\r\n  record a: x; end ;", .kind = ptSemicolon, .result = ptSemicolon, .collected = "record a: x; end", .stopText = ";"},
      {.text = ": Integer{c}deprecated;", .kind = ptSemicolon, .result = ptSemicolon, .collected = "Integer deprecated", .stopText = ";"},
      // A stray closer does not make the depth negative.
      {.text = "x ) ;", .kind = ptSemicolon, .result = ptSemicolon, .collected = ")", .stopText = ";"},
      {.text = ": Integer", .kind = ptSemicolon, .result = 0, .collected = "Integer", .stopText = ""},
      {.text = ": (a; b", .kind = ptSemicolon, .result = 0, .collected = "(a; b", .stopText = ""},
      {.text = ": Integer end;", .kind = ptEnd, .result = ptEnd, .collected = "Integer", .stopText = "end"},
  };
  // clang-format on
  for (const TCursorCase& c : reads) {
    TPascalTokenizer t;
    t.SetText(c.text.c_str(), static_cast<int32_t>(c.text.size()));
    std::string text = "old";
    EXPECT_EQ(PascalReadTo(t, c.kind, text), c.result) << c.text;
    EXPECT_EQ(text, c.collected) << c.text;
    EXPECT_EQ(t.Text(), c.stopText) << c.text;
  }
  // Halting kinds stop the read only outside groups.
  const std::string text = ": procedure(a: (x, y)) of object end;";
  TPascalTokenizer t;
  t.SetText(text.c_str(), static_cast<int32_t>(text.size()));
  const TTokenKindSet halts = {ptEnd, ptObject};
  std::string collected;
  EXPECT_EQ(PascalReadTo(t, ptSemicolon, collected, &halts), ptObject);
  EXPECT_EQ(collected, "procedure(a: (x, y)) of");
}

// ---- Type declaration heads ----

struct TModelCase {
  std::string text;
  std::string expected;
};

TEST(PascalParserTest, TypeDeclarationHeads) {
  const TModelCase cases[] = {
      // Forward declarations, class references, records and aliases record nothing.
      {.text = "type TFoo = class; TFooClass = class of TFoo; IBar = interface;", .expected = ""},
      {.text = "type R = record a: Integer; end; E = (x, y); A = TFoo; P = procedure of object;",
       .expected = ""},
      {.text = "type TBar = class(TFoo);", .expected = "class TBar(TFoo)"},
      // Names with letters beyond ASCII, in UTF-8 and in Windows-1252, are read whole.
      {.text = "type TW\xC3\xA4rme = class(TB\xC3\xA4"
               "se) end; T\xE4gl = class(TW\xE4rme);",
       .expected = "class TW\xC3\xA4rme(TB\xC3\xA4"
                   "se)\nclass T\xE4gl(TW\xE4rme)"},
      {.text = "type TBar = packed class end;", .expected = "class TBar"},
      // Every name of the list, qualified ones by their last part.
      {.text = "type TBar = class(TFoo, IA, Sys.IB) end;", .expected = "class TBar(TFoo, IA, IB)"},
      {.text = "type IFoo = interface(IUnknown) ['{00000000-0000-0000-0000-000000000000}'] "
               "procedure A; end;",
       .expected = "interface IFoo(IUnknown) {00000000-0000-0000-0000-000000000000}\n"
                   "method published procedure A() 0x0000"},
      {.text = "type D = dispinterface ['{X}'] end;", .expected = "dispatch interface D {X}"},
      // Only a quoted, braced GUID with something inside counts.
      {.text = "type I = interface [SID_I] ['{}'] end;", .expected = "interface I"},
      // Records are passed whole: their methods are no routines.
      {.text = "type R = packed record procedure M; end; procedure P;",
       .expected = "routine procedure P() 0x0000"},
      // An ancestor list missing its `)` ends at the first member.
      {.text = "type T = class(TFoo procedure M; end;",
       .expected = "class T(TFoo)\nmethod published procedure M() 0x0000"},
      // Generics go by their plain names; type arguments are no ancestors, and neither is
      // `specialize`. `sealed` and `abstract` pass.
      {.text = "type TList<T> = class(TEnumerable<T>, IList<T>) procedure Add<U>(const X: U); end;",
       .expected =
           "class TList(TEnumerable, IList)\nmethod published procedure Add(const X: U) 0x0000"},
      {.text = "type TMap<K, V: class; W: record>=class abstract(TBase) end; "
               "generic TVec<T> = class sealed(specialize TFPGList<T>) end;",
       .expected = "class TMap(TBase)\nclass TVec(TFPGList)"},
      {.text = "type IGet<T> = interface ['{1}'] function Get<T>: T; end; "
               "function Max<T>(A, B: T): T;",
       .expected = "interface IGet {1}\nmethod published function Get(): T 0x0000\n"
                   "routine function Max(A: T; B: T): T 0x0000"},
      // A comparison is no type parameter list.
      {.text = "implementation procedure P; begin if A < B then C := D; X := Y <> Z; end;",
       .expected = ""},
  };
  for (const TModelCase& c : cases) EXPECT_EQ(Describe(c.text), c.expected) << c.text;
}

// ---- Class bodies ----

TEST(PascalParserTest, MethodsAndDirectives) {
  const TModelCase cases[] = {
      {.text = "procedure Paint; override;",
       .expected = "method published procedure Paint() 0x0004"},
      // Conditional directives inside a heading: every branch is read, no field appears.
      {.text = "procedure A{$IFDEF X}(const Why: string){$ENDIF}; "
               "function C{$IFDEF Y}(N: Integer){$ENDIF}: Integer; virtual;",
       .expected = "method published procedure A(const Why: string) 0x0000\n"
                   "method published function C(N: Integer): Integer 0x0001"},
      {.text = "procedure WMSize(var Msg: TWMSize); message WM_SIZE;",
       .expected = "method published procedure WMSize(var Msg: TWMSize) 0x0010 message WM_SIZE"},
      {.text = "procedure M; message WM_USER + 1;",
       .expected = "method published procedure M() 0x0010 message WM_USER + 1"},
      {.text = "procedure A; virtual; dynamic; override; abstract; stdcall; register; "
               "pascal; cdecl; safecall; overload;",
       .expected = "method published procedure A() 0x87af"},
      {.text = "class function Make(A, B: Integer): TFoo; virtual;",
       .expected = "method published function Make(A: Integer; B: Integer): TFoo 0x0041"},
      {.text = "constructor Create(AOwner: TComponent); destructor Destroy; override;",
       .expected = "method published constructor Create(AOwner: TComponent) 0x0000\n"
                   "method published destructor Destroy() 0x0004"},
      {.text = "function F: string; function G: Classes.TList;",
       .expected = "method published function F(): string 0x0000\n"
                   "method published function G(): Classes.TList 0x0000"},
      // Overloads stand side by side, each with its own directives.
      {.text = "procedure P(A: Integer); overload; procedure P(S: string); overload; virtual;",
       .expected = "method published procedure P(A: Integer) 0x8000\n"
                   "method published procedure P(S: string) 0x8001"},
      // Words without a bit keep the method for the directives after them; other tokens
      // between cut it off.
      {.text = "procedure A; reintroduce; overload; procedure B; dispid 3; stdcall;",
       .expected = "method published procedure A() 0x8000\n"
                   "method published procedure B() 0x0020"},
      {.text = "procedure A; {$IFDEF X} overload; {$ENDIF} F: Integer; virtual;",
       .expected = "field published F: Integer\nmethod published procedure A() 0x8000"},
      {.text = "virtual; property P: Integer; abstract;",
       .expected = "property published P: Integer"},
      // A method resolution clause declares nothing.
      {.text = "procedure IFoo.Bar = Baz; function IFoo.Q = R; virtual;", .expected = ""},
      // A directive word followed by `:` or `,` names a field.
      {.text = "procedure A; Message: TMessage; Register, Pascal: Byte;",
       .expected = "field published Message: TMessage\nfield published Register: Byte\n"
                   "field published Pascal: Byte\nmethod published procedure A() 0x0000"},
      // `class var` and `class property` go on from the word after `class`.
      {.text = "class var Count: Integer; class property Total: Integer read Count;",
       .expected = "field published Count: Integer\nproperty published Total: Integer read Count"},
  };
  for (const TModelCase& c : cases) EXPECT_EQ(Members(c.text), c.expected) << c.text;
}

TEST(PascalParserTest, VisibilityFieldsAndProperties) {
  const TModelCase cases[] = {
      // Published until the first visibility word; no colons; automated counts as public.
      {.text = "Button1: TButton; private FA: Integer; protected FB: Byte; public FC: Char; "
               "automated FD: Word; published FE: Real;",
       .expected = "field published Button1: TButton\nfield private FA: Integer\n"
                   "field protected FB: Byte\nfield public FC: Char\nfield public FD: Word\n"
                   "field published FE: Real"},
      {.text = "A, B, C: array[0..1] of Integer;",
       .expected = "field published A: array[0..1] of Integer\n"
                   "field published B: array[0..1] of Integer\n"
                   "field published C: array[0..1] of Integer"},
      {.text = "R: record X, Y: Integer; end; S: packed record end; T: Byte;",
       .expected = "field published R: record\nfield published S: record\nfield published T: Byte"},
      {.text = "FOnX: procedure(Sender: TObject; X: Integer) of object;",
       .expected = "field published FOnX: procedure(Sender: TObject; X: Integer) of object"},
      // A typed constant or a starting value ends the type; an `=` in brackets does not.
      {.text = "const Counts: array[1..2] of Integer = (2, 2); class var N: Integer = 5; "
               "FOnY: procedure(A: Integer = 1);",
       .expected = "field published Counts: array[1..2] of Integer\n"
                   "field published N: Integer\n"
                   "field published FOnY: procedure(A: Integer = 1)"},
      // A field missing its `;` ends at the next member; `strict` alone records nothing.
      {.text = "FA: Integer\nproperty P: Integer; strict private FB: Byte;",
       .expected = "field published FA: Integer\nproperty published P: Integer\n"
                   "field private FB: Byte"},
      // The property ends at its first `;`; the trailing `default;` records nothing.
      {.text = "property Items[Index: Integer]: string read GetItem write SetItem; default;",
       .expected = "property published Items[Index: Integer]: string read GetItem write SetItem"},
      {.text = "property Left: Integer index 0 read GetC write SetC stored IsStored default -1;",
       .expected = "property published Left: Integer index 0 read GetC write SetC stored IsStored "
                   "default -"},
      {.text = "property Tag: Longint read FTag write FTag nodefault; "
               "property Intf: IFoo read FIntf implements IFoo; property Caption;",
       .expected = "property published Tag: Longint read FTag write FTag default nodefault\n"
                   "property published Intf: IFoo read FIntf\nproperty published Caption: "},
      // A set is one value; directives before a value are passed, the first branch's
      // value taken.
      {.text = "property Anchors default [akLeft, akTop]; property Align: TAlign "
               "default {$ifdef UseNone}alNone{$else}alClient{$endif};",
       .expected = "property published Anchors:  default [akLeft, akTop]\n"
                   "property published Align: TAlign default alNone"},
      // A property missing its `;` ends at the next member.
      {.text = "property A: Integer read FA\nprocedure M;",
       .expected = "property published A: Integer read FA\nmethod published procedure M() 0x0000"},
  };
  for (const TModelCase& c : cases) EXPECT_EQ(Members(c.text), c.expected) << c.text;
}

// ---- Unit level ----

TEST(PascalParserTest, RoutinesIncludesAndImplementation) {
  const struct {
    std::string text;
    bool parseImplementation;
    std::string expected;
    bool inImplementation;
  } cases[] = {
      {.text = "function F(const S: string): Boolean; stdcall; procedure P;",
       .parseImplementation = true,
       .expected = "routine function F(const S: string): Boolean 0x0000\n"
                   "routine procedure P() 0x0000",
       .inImplementation = false},
      {.text = "{$I defs.inc} {$INCLUDE 'defs.inc'} {$i Other.INC} {$I+} {$IFDEF X} {$I }",
       .parseImplementation = true,
       .expected = "includes defs.inc Other.INC",
       .inImplementation = false},
      // After `implementation` no routine is recorded; classes are, unless the parse stops.
      {.text = "procedure P; implementation procedure Q; type T = class end;",
       .parseImplementation = true,
       .expected = "class T\nroutine procedure P() 0x0000",
       .inImplementation = true},
      {.text = "procedure P; implementation type T = class end; {$I x.inc}",
       .parseImplementation = false,
       .expected = "routine procedure P() 0x0000",
       .inImplementation = true},
      {.text = "procedure P; IMPLEMENTATION type T = class end;",
       .parseImplementation = false,
       .expected = "routine procedure P() 0x0000",
       .inImplementation = true},
      // A class missing its `end` still lets `implementation` stop the parse.
      {.text = "type T = class procedure M; implementation type U = class end;",
       .parseImplementation = false,
       .expected = "class T\nmethod published procedure M() 0x0000",
       .inImplementation = true},
      // Method headings and procedural types are no routines; a method heading shows the
      // code to be implementation code.
      {.text = "procedure TFoo.Bar; type P = procedure(X: Integer); F = function: Byte;",
       .parseImplementation = true,
       .expected = "",
       .inImplementation = true},
      // An `.inc` file included in an implementation section: the routines local to a
      // method body are no routines of the unit, and neither is what follows the method.
      {.text = "function Before: Integer; procedure TFoo.Bar;\n  procedure Local(A: Integer);\n"
               "  begin end;\nbegin Local(1); end;\nprocedure After; begin end;",
       .parseImplementation = false,
       .expected = "routine function Before(): Integer 0x0000",
       .inImplementation = true},
  };
  for (const auto& c : cases) {
    TClasslist list;
    const TParseResult r = ParseUnit(list, c.text, c.parseImplementation);
    EXPECT_EQ(r.summary, c.expected) << c.text;
    EXPECT_EQ(r.inImplementation, c.inImplementation) << c.text;
  }
}

// ---- Positions ----

TEST(PascalParserTest, PositionsAndPositionTable) {
  // Line 1 holds a directive spanning two lines: positions count lines from the text.
  const std::string text =
      "{$IFDEF X\r\n}\r\n"                   // lines 1-2
      "type TC = class(TObject)\r\n"         // line 3 from offset 14
      "    F: Integer;\r\n"                  // 4 from 40
      "    procedure M; virtual;\r\n"        // 5 from 57
      "  private\r\n"                        // 6 from 84
      "    property P: Integer read F;\r\n"  // 7 from 95
      "  end;\r\n"                           // 8 from 128
      "function R: Integer;\r\n";            // 9 from 136
  TClasslist list;
  ParseUnit(list, text, true, true);
  const TClassDescription* c = list.Find("TC");
  ASSERT_NE(c, nullptr);
  const auto at = [](const TCodeObject& o) {
    return std::to_string(o.StartLine) + ":" + std::to_string(o.StartOffset) + "-" +
           std::to_string(o.EndLine) + ":" + std::to_string(o.EndOffset);
  };
  EXPECT_EQ(at(*c), "3:19-8:130");
  EXPECT_EQ(at(*c->Fields.Find("F")), "4:44-4:54");
  EXPECT_EQ(at(*c->Methods.Find("M")), "5:61-5:81");  // ends at the directive's `;`
  EXPECT_EQ(at(*c->Fields.Find("P")), "7:99-7:125");
  EXPECT_EQ(at(*list.Routines.Items(list.Routines.IndexOfName("R"))), "9:136-9:155");

  TClassDescription* mc = list.Find("TC");
  const TPositionInfo* table = mc->GetPositionInfo(false);
  ASSERT_NE(table, nullptr);
  const auto block = [&](TVisibility v, TPositionInfo::Block b) {
    const TPositionInfo::Positions& p = table->At(v, b);
    return std::to_string(p.StartLine) + ":" + std::to_string(p.StartOffset) + "-" +
           std::to_string(p.EndLine) + ":" + std::to_string(p.EndOffset);
  };
  EXPECT_EQ(block(TVisibility::Published, TPositionInfo::LastField), "4:44-4:54");
  EXPECT_EQ(block(TVisibility::Published, TPositionInfo::LastMethod), "5:61-5:81");
  EXPECT_EQ(block(TVisibility::Private, TPositionInfo::Section), "6:86-6:93");
  EXPECT_EQ(block(TVisibility::Private, TPositionInfo::LastProperty), "7:99-7:125");
  EXPECT_EQ(block(TVisibility::Public, TPositionInfo::Section), "-1:-1--1:-1");

  // A parse without positions drops the stale table.
  ParseUnit(list, text, true, false);
  EXPECT_EQ(mc->GetPositionInfo(false), nullptr);
}

// ---- Re-parse ----

TEST(PascalParserTest, ReparseRefreshesInPlace) {
  // The caller's mark and sweep around a second parse of the unit: the same objects are
  // refilled, and what the old declaration said and the new one does not is gone (the
  // GUID, the message name, a property's specifiers, a field's property mark). Fields
  // keep their places in the list: views keep their items.
  TClasslist list;
  ParseUnit(list,
            "type TC = class(TA) ['{G}'] procedure M; message X; "
            "property P: Integer read FP write SetP; F: Integer; end;");
  TClassDescription* c = list.Find("TC");
  ASSERT_NE(c, nullptr);
  TMethodDescription* m = c->Methods.Find("M");
  list.Mark("u.pas", false);
  ParseUnit(list, "type TC = interface(TB) procedure M; property F: Byte; P: string; end;");
  list.Sweep(false, "u.pas");
  EXPECT_EQ(list.Find("TC"), c);
  EXPECT_EQ(c->Methods.Find("M"), m);
  EXPECT_EQ(Summary(list),
            "interface TC(TB)\nfield published P: string\nproperty published F: Byte\n"
            "method published procedure M() 0x0000");
}

// ---- Hostile input ----

// Every recorded position lies inside the text, end not before start.
void ExpectPositionsInside(const TCodeObject& o, int32_t size, const std::string& text) {
  EXPECT_TRUE(o.StartOffset >= 0 && o.StartOffset <= o.EndOffset && o.EndOffset <= size)
      << o.Name << " in " << text.substr(0, 40);
  EXPECT_TRUE(o.StartLine >= 1 && o.StartLine <= o.EndLine)
      << o.Name << " in " << text.substr(0, 40);
}

TEST(PascalParserTest, HostileInputEnds) {
  // clang-format off
  std::vector<std::string> texts = {
      "type T = class property", "type T = class procedure", "type T = class class",
      "type T = class F:", "type T = class message", "type T = class procedure M; message",
      "type T = class property P[", "type T = class property P: Integer read",
      "type T = class(", "type T =", "type T = class F: record", "type T = class { unclosed",
      "type T = class (* unclosed", "type T = class F: 'unclosed", "type T = class ['{",
      "procedure", "function F(", "{$I ", "implementation", "class",
      std::string("type T = class F\0: Integer; end;", 32),
  };
  // clang-format on
  std::string deep = "type T = class F: ";
  for (int i = 0; i < 10000; ++i) deep += "record ";
  texts.push_back(deep);
  texts.push_back("type T = class procedure M" + std::string(10000, '(') + "; end;");
  texts.push_back("type T = class F: " + std::string(10000, '[') + "; end;");
  texts.push_back("type T = class F: " + std::string(10000, '(') + "; end;");
  std::string classes;
  for (int i = 0; i < 10000; ++i) classes += "T" + std::to_string(i) + " = class(";
  texts.push_back("type " + classes);
  // Random bytes (NUL and above 127 included), and random soups of the words and brackets
  // the parser reacts to, which reach far more of its paths than bytes do.
  std::mt19937 random(12345);
  for (int n = 0; n < 200; ++n) {
    std::string bytes(1 + random() % 400, '\0');
    for (char& ch : bytes) ch = static_cast<char>(random() % 256);
    texts.push_back("type T = class " + bytes);
  }
  const char* const words[] = {
      "type",    "T",       "=",       "class",     "interface",      "packed",   "of",
      "(",       ")",       "[",       "]",         "record",         "end",      ";",
      ":",       ",",       ".",       "procedure", "function",       "property", "read",
      "default", "message", "virtual", "private",   "implementation", "{$I x}",   "'{a}'",
      "{",       "(*",      "\r\n"};
  for (int n = 0; n < 500; ++n) {
    std::string soup;
    for (int w = 0; w < 200; ++w) soup += std::string(words[random() % std::size(words)]) + " ";
    texts.push_back(soup);
  }
  for (const std::string& text : texts) {
    for (bool wantPositions : {false, true}) {
      TClasslist list;
      const TParsedSnippet parsed =
          ParseSnippetInto(list, TLanguage::Pascal, text, {.WantPositions = wantPositions});
      const int32_t size = static_cast<int32_t>(parsed.Text.size());
      for (int i = 0; i < list.Count(); ++i) {
        const TClassDescription& c = *list.Items(i);
        ExpectPositionsInside(c, size, text);
        for (int j = 0; j < c.Fields.Count(); ++j)
          ExpectPositionsInside(*c.Fields.Items(j), size, text);
        for (int j = 0; j < c.Methods.Count(); ++j)
          ExpectPositionsInside(*c.Methods.Items(j), size, text);
      }
      for (int i = 0; i < list.Routines.Count(); ++i)
        ExpectPositionsInside(*list.Routines.Items(i), size, text);
    }
  }
  // An unclosed record runs to the end of the text; the field before it is still kept.
  EXPECT_EQ(Describe(deep), "class T\nfield published F: record");
  // Ten thousand classes whose ancestor lists never close: the first list ends at `=`, and
  // the first class's body, never closed, takes the rest without recording anything.
  EXPECT_EQ(Describe("type " + classes), "class T0(T1)");
}

}  // namespace
}  // namespace velmora
