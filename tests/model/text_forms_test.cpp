// The text forms views and code generation write from the model, in both languages.
#include <gtest/gtest.h>

#include <initializer_list>

#include "model/class_description.h"
#include "model/members.h"

namespace velmora {
namespace {

constexpr TLanguage P = TLanguage::Pascal;
constexpr TLanguage C = TLanguage::Cpp;

uint16_t Dirs(std::initializer_list<TDirective> ds) {
  uint16_t bits = 0;
  for (TDirective d : ds) bits |= DirectiveBit(d);
  return bits;
}

struct MethodCase {
  TLanguage lang;
  const char* name;
  TMethodKind kind = TMethodKind::Procedure;
  const char* result = "";
  const char* params = "";
  uint16_t dirs = 0;
  unsigned options = 0;
  const char* expected;
};

std::unique_ptr<TMethodDescription> Make(const MethodCase& c) {
  auto m = std::make_unique<TMethodDescription>(c.name, c.lang);
  m->Kind = c.kind;
  m->ResultType = c.result;
  m->Parameters.Parse(c.params);
  m->Directives = c.dirs;
  m->MessageName = "WM_SIZE";
  return m;
}

TEST(TextFormsTest, MethodDeclaration) {
  using K = TMethodKind;
  using D = TDirective;
  // clang-format off
  const MethodCase cases[] = {
      {.lang = P, .name = "Foo", .expected = "procedure Foo;"},
      {.lang = P, .name = "Bar", .kind = K::Function, .result = "Boolean",
       .params = "A: Integer; var B: string", .dirs = Dirs({D::Virtual, D::Abstract}),
       .expected = "function Bar(A: Integer; var B: string): Boolean; virtual; abstract;"},
      {.lang = P, .name = "Bar", .kind = K::Function, .result = "Boolean",
       .params = "A: Integer; var B: string", .dirs = Dirs({D::Virtual, D::ClassMethod}),
       .options = toShortForm, .expected = "Bar(A; B);"},
      // The fixed order of the words, whatever the bit order.
      {.lang = P, .name = "P",
       .dirs = Dirs({D::Overload, D::Register, D::Pascal, D::Cdecl, D::SafeCall, D::StdCall,
                     D::Message, D::Dynamic, D::Override, D::Abstract, D::Virtual}),
       .expected = "procedure P; virtual; abstract; override; dynamic; message WM_SIZE; stdcall; "
                   "safecall; cdecl; pascal; register; overload;"},
      // "Class " goes in front of everything written so far, before the calling convention.
      {.lang = P, .name = "Handle", .params = "var Msg: TMessage",
       .dirs = Dirs({D::ClassMethod, D::Message, D::StdCall, D::Overload}),
       .expected = "Class procedure Handle(var Msg: TMessage); message WM_SIZE; stdcall; overload;"},
      {.lang = P, .name = "Foo", .dirs = Dirs({D::Override, D::Dynamic, D::ClassMethod, D::StdCall}),
       .options = toAbstractVirtual, .expected = "Class procedure Foo; virtual; stdcall; abstract;"},
      {.lang = P, .name = "Create", .kind = K::Constructor, .params = "AOwner: TComponent",
       .dirs = Dirs({D::Override}), .expected = "constructor Create(AOwner: TComponent); override;"},
      {.lang = P, .name = "Add", .kind = K::Operator, .result = "TVec", .params = "A, B: TVec",
       .expected = " Add(A: TVec; B: TVec);"},
      {.lang = C, .name = "Button1Click", .result = "void", .params = "TObject* Sender",
       .dirs = Dirs({D::FastCall}), .expected = "void __fastcall Button1Click(TObject* Sender);"},
      {.lang = C, .name = "Get", .kind = K::Function, .result = "int", .params = "int a, char c",
       .dirs = Dirs({D::Virtual, D::Const}), .expected = "virtual int Get(int a, char c) const;"},
      // Short form: names only, each keeping the blank that follows a type.
      {.lang = C, .name = "Get", .kind = K::Function, .result = "int", .params = "int a, char c",
       .dirs = Dirs({D::Virtual, D::Const, D::FastCall}), .options = toShortForm,
       .expected = "Get( a,  c);"},
      // Abstract virtual: "virtual " always, no calling convention, " = 0" before " const".
      {.lang = C, .name = "Get", .kind = K::Function, .result = "int",
       .dirs = Dirs({D::Const, D::FastCall}), .options = toAbstractVirtual,
       .expected = "virtual int Get() = 0 const;"},
      // The abstract directive alone writes no " = 0".
      {.lang = C, .name = "f", .result = "void", .dirs = Dirs({D::Virtual, D::Abstract}),
       .expected = "virtual void f();"},
      {.lang = C, .name = "f", .result = "void",
       .dirs = Dirs({D::Pascal, D::Cdecl, D::StdCall, D::FastCall}),
       .expected = "void __fastcall __stdcall __cdecl __pascal f();"},
      {.lang = C, .name = "TForm1", .kind = K::Constructor, .params = "TComponent* Owner",
       .dirs = Dirs({D::FastCall}), .expected = "__fastcall TForm1(TComponent* Owner);"},
      {.lang = C, .name = "==", .kind = K::Operator, .result = "bool", .params = "const T& o",
       .expected = "bool operator ==(const T& o);"},
  };
  // clang-format on
  for (const MethodCase& c : cases)
    EXPECT_EQ(Make(c)->GetDeclaration(c.options), c.expected) << c.name << " / " << c.options;
}

TEST(TextFormsTest, ImplementationSkeleton) {
  using K = TMethodKind;
  using D = TDirective;
  TClassDescription owner(nullptr, P);
  owner.Name = "TForm1";
  // clang-format off
  const MethodCase cases[] = {
      {.lang = P, .name = "Foo", .kind = K::Function, .result = "Boolean", .params = "A: Integer",
       .dirs = Dirs({D::Virtual, D::StdCall}),
       .expected = "function TForm1.Foo(A: Integer): Boolean;\r\nbegin\r\n\r\nend;"},
      {.lang = P, .name = "Foo", .dirs = Dirs({D::ClassMethod}), .options = toHeaderOnly,
       .expected = "Class procedure TForm1.Foo;\r\n"},
      {.lang = C, .name = "Click", .result = "void", .params = "TObject* Sender",
       .dirs = Dirs({D::FastCall, D::Virtual, D::Const}),
       .expected = "void __fastcall TForm1::Click(TObject* Sender)\r\n{\r\n\r\n}"},
      {.lang = C, .name = "TForm1", .kind = K::Constructor, .params = "TComponent* Owner",
       .dirs = Dirs({D::FastCall}), .options = toHeaderOnly,
       .expected = "__fastcall TForm1::TForm1(TComponent* Owner)\r\n"},
      {.lang = C, .name = "==", .kind = K::Operator, .result = "bool", .params = "int a",
       .options = toHeaderOnly, .expected = "bool TForm1::operator ==(int a)\r\n"},
  };
  // clang-format on
  for (const MethodCase& c : cases) {
    auto m = Make(c);
    m->SetOwnerClass(&owner);
    EXPECT_EQ(m->GetImplementation(c.options), c.expected) << c.name << " / " << c.options;
  }
  // A free routine has no class, even when one is linked.
  TProcDescription routine("Init", C);
  routine.ResultType = "int";
  routine.SetOwnerClass(&owner);
  EXPECT_EQ(routine.GetImplementation(toHeaderOnly), "int Init()\r\n");
  TProcDescription pascalRoutine("Init", P);
  EXPECT_EQ(pascalRoutine.GetImplementation(toHeaderOnly), "procedure Init;\r\n");
}

TEST(TextFormsTest, MethodDisplayText) {
  using K = TMethodKind;
  // clang-format off
  const MethodCase cases[] = {
      {.lang = P, .name = "Bar", .kind = K::Function, .result = "Boolean",
       .params = "A: Integer; var B: string", .options = 0, .expected = "Bar"},
      {.lang = P, .name = "Bar", .kind = K::Function, .result = "Boolean",
       .params = "A: Integer; var B: string", .options = toShowArguments,
       .expected = "Bar(A: Integer; var B: string): Boolean"},
      {.lang = P, .name = "Bar", .kind = K::Function, .result = "Boolean",
       .params = "A: Integer; var B: string", .options = toShowArguments | toNamesOnly,
       .expected = "Bar(A; B): Boolean"},
      {.lang = P, .name = "Foo", .options = toShowArguments, .expected = "Foo"},
      {.lang = C, .name = "Get", .kind = K::Function, .result = "int", .params = "int a = 1",
       .options = toShowArguments, .expected = "int Get(int a = 1)"},
      {.lang = C, .name = "f", .options = toShowArguments, .expected = "f()"},
      {.lang = C, .name = "Get", .kind = K::Function, .result = "int", .params = "int a",
       .options = toShowArguments | toNamesOnly, .expected = "int Get( a)"},
  };
  // clang-format on
  for (const MethodCase& c : cases)
    EXPECT_EQ(Make(c)->GetDisplayText(c.options), c.expected) << c.name << " / " << c.options;
}

TEST(TextFormsTest, Parameters) {
  // clang-format off
  struct Case {
    TLanguage lang;
    const char *name, *modifier, *type, *value;
    unsigned options;
    const char* expected;
  } cases[] = {
      {P, "A", "", "Integer", "", 0, "A: Integer"},
      {P, "S", "const", "string", "'x'", 0, "const S: string = 'x'"},
      {P, "S", "const", "string", "'x'", toNamesOnly, "S"},
      {P, "X", "var", "", "", 0, "var X"},
      {C, "b", "[]", "char *", "", 0, "char * b[]"},
      {C, "a", "", "int", "5", 0, "int a = 5"},
      {C, "", "", "TObject*", "", 0, "TObject*"},
      {C, "a", "[2]", "int", "", toNamesOnly, " a"},
  };
  // clang-format on
  for (const Case& c : cases) {
    TParameter p(c.lang);
    p.Name = c.name;
    p.Modifier = c.modifier;
    p.ParamType = c.type;
    p.DefaultValue = c.value;
    EXPECT_EQ(p.GetText(c.options), c.expected) << c.expected;
  }
}

TEST(TextFormsTest, Fields) {
  // clang-format off
  struct Case {
    TLanguage lang;
    const char *name, *type, *modifier;
    bool property;
    TPropertyDescription specs;
    const char *shortForm, *withType, *declaration, *withoutSpecifiers;
  } cases[] = {
      {P, "FCount", "Integer", "", false, {}, "FCount", "FCount: Integer", "FCount: Integer;",
       "FCount: Integer;"},
      {P, "FCount", "  ", "", false, {}, "FCount", "FCount", "FCount:   ;", "FCount:   ;"},
      {P, "X", "Integer", "class var", false, {}, "X", "X: Integer", "class var X: Integer;",
       "class var X: Integer;"},
      {P, "Items", "string", "", true,
       {"Index: Integer", "3", "GetItem", "SetItem", "False", "0"}, "Items", "Items: string",
       "property Items [Index: Integer]: string Index 3 read GetItem write SetItem stored False "
       "default 0;",
       "property Items [Index: Integer]: string;"},
      {P, "Count", "Integer", "", true, {}, "Count", "Count: Integer", "property Count: Integer;",
       "property Count: Integer;"},
      // A C++ field declaration does not repeat the array bounds.
      {C, "a", "int", "[10]", false, {}, "a", "int a[10]", "int a;", "int a;"},
      {C, "Count", "int", "", true, {"", "", "FCount", "SetCount", "", ""}, "Count", "int Count",
       "__property int Count = { read = FCount, write = SetCount };", "__property int Count;"},
      {C, "Items", "String", "", true, {"int Index", "", "GetItem", "", "", "1"}, "Items",
       "String Items", "__property String Items [int Index] = { read = GetItem, default = 1 };",
       "__property String Items [int Index];"},
      {C, "Count", "int", "", true, {}, "Count", "int Count", "__property int Count;",
       "__property int Count;"},
  };
  // clang-format on
  for (const Case& c : cases) {
    TFieldDescription f(nullptr, c.lang);
    f.Name = c.name;
    f.FieldType = c.type;
    f.Modifier = c.modifier;
    f.SetIsProperty(c.property);
    if (c.property) *f.Property = c.specs;
    EXPECT_EQ(f.GetDisplayText(0), c.shortForm) << c.declaration;
    EXPECT_EQ(f.GetDisplayText(toWithType), c.withType) << c.declaration;
    EXPECT_EQ(f.GetDeclaration(0), c.declaration);
    EXPECT_EQ(f.GetDeclaration(toNoSpecifiers), c.withoutSpecifiers) << c.declaration;
  }
}

TEST(TextFormsTest, ClassHeaderAndDirectAncestor) {
  // clang-format off
  struct Case {
    TLanguage lang;
    TClassKind kind;
    std::vector<TClassAncestor> ancestors;
    const char *ancestor, *header;
  } cases[] = {
      {P, TClassKind::Class, {{TVisibility::Public, "TForm"}}, "TForm", "TForm1 = Class(TForm)"},
      {P, TClassKind::Class, {}, "TObject", "TForm1 = Class(TObject)"},
      {P, TClassKind::Class, {{TVisibility::Public, "  "}}, "  ", "TForm1 = Class"},
      {C, TClassKind::Class, {}, "", "class TForm1"},
      {C, TClassKind::Struct,
       {{TVisibility::Public, "TForm"}, {TVisibility::Private, "IFoo"}}, "TForm",
       "class TForm1 : public TForm, private IFoo"},
      {C, TClassKind::Template, {{TVisibility::Protected, "B"}}, "B",
       "template <class T> class TForm1 : protected B"},
  };
  // clang-format on
  for (const Case& c : cases) {
    TClassDescription cls(nullptr, c.lang);
    cls.Name = "TForm1";
    cls.ClassKind = c.kind;
    cls.TemplateParams = "class T";
    cls.Ancestors.Items = c.ancestors;
    EXPECT_EQ(cls.GetDirectAncestorName(), c.ancestor) << c.header;
    EXPECT_EQ(cls.GetHeader(), c.header);
  }
}

TEST(TextFormsTest, EnumerationTextsOutsideTheTablesAreEmpty) {
  EXPECT_EQ(VisibilityText(TVisibility::Published, C), "__published");
  EXPECT_EQ(VisibilityText(TVisibility::Published, P), "published");
  EXPECT_EQ(VisibilityText(static_cast<TVisibility>(5), P), "");
  EXPECT_EQ(MethodKindText(static_cast<TMethodKind>(9)), "");
  EXPECT_EQ(ClassKindText(TClassKind::DispInterface), "dispatch interface");
  EXPECT_EQ(LanguageText(C), "C++");
  // clang-format off
  struct Case {
    int n;
    const char *pascal, *cpp;
  } cases[] = {{0, "virtual", "virtual"}, {1, "dynamic", ""}, {3, "abstract", "abstract (pure virtual)"},
               {6, "class method", ""},   {11, "", "__fastcall"},  {13, "", "implicit inline"},
               {15, "overload", ""},      {16, "", ""},            {-1, "", ""}};
  // clang-format on
  for (const Case& c : cases) {
    EXPECT_EQ(DirectiveText(c.n, P), c.pascal) << c.n;
    EXPECT_EQ(DirectiveText(c.n, C), c.cpp) << c.n;
  }
}

TEST(TextFormsTest, ImageIndexes) {
  using V = TVisibility;
  using K = TMethodKind;
  // clang-format off
  struct MethodImage {
    K kind;
    V vis;
    int image;
  } methods[] = {{K::Procedure, V::Public, 5},     {K::Function, V::Published, 5},
                 {K::Function, V::Automated, 5},   {K::Procedure, V::Protected, 6},
                 {K::Function, V::Private, 7},     {K::Constructor, V::Private, 11},
                 {K::Destructor, V::Public, 12},   {K::Operator, V::Published, 17},
                 {K::Operator, V::Protected, 18},  {K::Operator, V::Private, 19}};
  // clang-format on
  for (const MethodImage& c : methods) {
    TMethodDescription m("m", C);
    m.Kind = c.kind;
    m.Visibility = c.vis;
    EXPECT_EQ(m.GetImageIndex(), c.image) << int(c.kind) << "/" << int(c.vis);
  }
  // clang-format off
  struct FieldImage {
    V vis;
    bool property;
    int image;
  } fields[] = {{V::Public, false, 2},   {V::Automated, false, 2}, {V::Protected, false, 3},
                {V::Private, false, 4},  {V::Published, true, 8},  {V::Protected, true, 9},
                {V::Private, true, 10}};
  // clang-format on
  for (const FieldImage& c : fields) {
    TFieldDescription f(nullptr, P);
    f.Visibility = c.vis;
    f.SetIsProperty(c.property);
    EXPECT_EQ(f.GetImageIndex(), c.image) << int(c.vis) << "/" << c.property;
  }
  const TInheritsFromFunc fromForm = [](const TClassDescription& cls, std::string_view name) {
    return name == "TForm" && cls.Name == "TForm1";
  };
  // clang-format off
  struct ClassImage {
    const char* name;
    TClassKind kind;
    int image;
  } classes[] = {{"TForm1", TClassKind::Class, 16},     {"TList", TClassKind::Class, 1},
                 {"IFoo", TClassKind::Interface, 15},   {"IDisp", TClassKind::DispInterface, 15},
                 {"TForm1", TClassKind::Template, 20},  {"TForm1", TClassKind::Struct, 21}};
  // clang-format on
  for (const ClassImage& c : classes) {
    TClassDescription cls(nullptr, C);
    cls.Name = c.name;
    cls.ClassKind = c.kind;
    EXPECT_EQ(cls.GetImageIndex(fromForm), c.image) << c.name << "/" << int(c.kind);
  }
  TClassDescription lone(nullptr, P);
  EXPECT_EQ(lone.GetImageIndex(), 1);  // without a way to ask, no form picture
}

}  // namespace
}  // namespace velmora
