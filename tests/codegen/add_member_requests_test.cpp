// The add-member requests: every check with its message (and that a refused or failed
// apply changes neither a buffer nor the class), the default names, the getter's and
// setter's parameters, the inherited call, and the help description placements.
#include <gtest/gtest.h>

#include "codegen/add_member_requests.h"
#include "codegen/code_generator.h"
#include "codegen/code_text_buffers.h"
#include "model/class_list.h"
#include "parsing/source_parser.h"
#include "settings/vl_settings.h"
#include "support/stream.h"
#include "support/text_buffer.h"

namespace velmora {
namespace {

constexpr const char* kPascalUnit =
    "unit U;\ninterface\ntype\n  TFoo = class(TBase)\n  private\n    FCount: Integer;\n"
    "  public\n    procedure Run;\n  end;\nimplementation\nprocedure TFoo.Run;\nbegin\nend;\n"
    "end.\n";
constexpr const char* kCppHeader =
    "class TFoo : public TBase\n{\nprivate:\n    int FCount;\npublic:\n    void Run();\n};\n";

// One unit or header in memory, parsed into a model, ready for requests.
struct TFixture {
  explicit TFixture(TLanguage language)
      : file(language == TLanguage::Cpp ? "/mem/foo.h" : "/mem/foo.pas") {
    buffers.Set(file, ToBufferForm(language == TLanguage::Cpp ? kCppHeader : kPascalUnit));
    ParseSourceText(language, file, TMemoryStream(*buffers.Text(file)), model, {}, nullptr);
    cls = model.Find("TFoo");
  }
  TAddMemberTarget Target() { return {cls, &settings, &buffers, file}; }
  std::string file;
  TMemoryCodeBuffers buffers;
  TVLSettings settings;
  TClasslist model;
  TClassDescription* cls = nullptr;
};

struct TCheckCase {
  const char* name;
  TLanguage language;
  // Exactly one of the three is set.
  std::optional<TAddFieldRequest> field = {};
  std::optional<TAddMethodRequest> method = {};
  std::optional<TAddPropertyRequest> property = {};
  const char* message;  // "" when the checks pass
};

TAddMethodRequest Method(std::string name, std::string args = {},
                         TMethodKind kind = TMethodKind::Procedure, std::string result = {}) {
  TAddMethodRequest r;
  r.MethodName = std::move(name);
  r.Arguments = std::move(args);
  r.Kind = kind;
  r.ResultType = std::move(result);
  r.CheckSyntax = true;
  return r;
}

TAddPropertyRequest Property(std::string name, std::string type) {
  TAddPropertyRequest r;
  r.Name = std::move(name);
  r.Type = std::move(type);
  r.CheckSyntax = true;
  return r;
}

TEST(AddMemberRequestsTest, ChecksAndTheirMessages) {
  constexpr TLanguage P = TLanguage::Pascal;
  constexpr TLanguage C = TLanguage::Cpp;
  auto withReads = [](TAddPropertyRequest r, std::string reads) {
    r.CreateGet = true;
    r.Reads = std::move(reads);
    return r;
  };
  auto withField = [](TAddPropertyRequest r, std::string field) {
    r.CreateField = true;
    r.FieldName = std::move(field);
    return r;
  };
  auto withSpecs = [](TAddPropertyRequest r, std::string stored, std::string def) {
    r.Stored = std::move(stored);
    r.Default = std::move(def);
    return r;
  };
  auto unchecked = [](TAddMethodRequest r) {
    r.CheckSyntax = false;
    return r;
  };
  const TCheckCase cases[] = {
      {.name = "field, same name",
       .language = P,
       .field = TAddFieldRequest{.FieldName = "FCount", .Type = "Integer"},
       .message = "A member with name \"FCount\" already exists in class \"TFoo\"!"},
      {.name = "field, Pascal name in other case is the same",
       .language = P,
       .field = TAddFieldRequest{.FieldName = "fcount", .Type = "Integer"},
       .message = "A member with name \"fcount\" already exists in class \"TFoo\"!"},
      {.name = "field, C++ name in other case is another",
       .language = C,
       .field = TAddFieldRequest{.FieldName = "fcount", .Type = "int"},
       .message = ""},
      {.name = "field, same name as a method",
       .language = C,
       .field = TAddFieldRequest{.FieldName = "Run", .Type = "int"},
       .message = "A member with name \"Run\" already exists in class \"TFoo\"!"},
      {.name = "field, not an identifier",
       .language = P,
       .field = TAddFieldRequest{.FieldName = "2nd", .Type = "Integer", .CheckSyntax = true},
       .message = "The value in field \"Field Name\" is not a valid identifier!"},
      {.name = "field, not an identifier but no check",
       .language = P,
       .field = TAddFieldRequest{.FieldName = "2nd", .Type = "Integer"},
       .message = ""},
      {.name = "method, same name",
       .language = P,
       .method = Method("run"),
       .message = "A member with name \"run\" already exists in class \"TFoo\"!"},
      {.name = "method, Pascal name",
       .language = P,
       .method = Method("Do It"),
       .message = "The value in field \"Method Name\" is not a valid identifier!"},
      {.name = "method, Pascal function result",
       .language = P,
       .method = Method("Get", "", TMethodKind::Function, "array of"),
       .message = "The value in field \"Function Result\" is not a valid identifier!"},
      {.name = "method, Pascal dotted result is fine",
       .language = P,
       .method = Method("Get", "", TMethodKind::Function, "Classes.TList"),
       .message = ""},
      {.name = "method, C++ names are not checked",
       .language = C,
       .method = Method("operator ==", "const TFoo& other", TMethodKind::Function, "bool"),
       .message = ""},
      {.name = "method, arguments with an open bracket",
       .language = C,
       .method = Method("Draw", "int a, (int b"),
       .message = "Syntax error in argumentlist \"int a, (int b\"!\rCannot create method!"},
      {.name = "method, arguments with an open string",
       .language = P,
       .method = unchecked(Method("Draw", "const S: string = 'x")),
       .message = "Syntax error in argumentlist \"const S: string = 'x\"!\rCannot create method!"},
      {.name = "method, Pascal argument without a name",
       .language = P,
       .method = unchecked(Method("Draw", "A: Integer; : Integer")),
       .message = "Syntax error in argumentlist \"A: Integer; : Integer\"!\rCannot create method!"},
      {.name = "property, not an identifier",
       .language = P,
       .property = Property("My Prop", "Integer"),
       .message = "The value in field \"Property Name\" is not a valid identifier!"},
      {.name = "property, Pascal type",
       .language = P,
       .property = Property("Size", "set of"),
       .message = "The value in field \"Type\" is not a valid identifier!"},
      {.name = "property, getter named by Reads",
       .language = P,
       .property = withReads(Property("Size", "Integer"), "Get Size"),
       .message = "The value in field \"Read Specifier\", which is used to create a method "
                  "name, is not a valid identifier!"},
      {.name = "property, getter that exists",
       .language = P,
       .property = withReads(Property("Size", "Integer"), "Run"),
       .message = "A member with name \"Run\" already exists in class \"TFoo\"!"},
      {.name = "property, field name",
       .language = P,
       .property = withField(Property("Size", "Integer"), "F-Size"),
       .message = "The value in field \"Create Field\" is not a valid identifier!"},
      {.name = "property, stored",
       .language = P,
       .property = withSpecs(Property("Size", "Integer"), "Is Stored", ""),
       .message = "The value in field \"Stored Specifier\" is not a valid identifier!"},
      {.name = "property, default",
       .language = P,
       .property = withSpecs(Property("Size", "Integer"), "False", "1 + 2"),
       .message = "The value in field \"Default Specifier\" is not a valid identifier!"},
      {.name = "property, numbers are fine defaults",
       .language = P,
       .property = withSpecs(Property("Size", "Integer"), "", "$FF"),
       .message = ""},
  };
  for (const TCheckCase& c : cases) {
    TFixture f(c.language);
    ASSERT_NE(f.cls, nullptr) << c.name;
    const std::string before = *f.buffers.Text(f.file);
    const int fields = f.cls->Fields.Count(), methods = f.cls->Methods.Count();
    const TAddMemberOutcome outcome = c.field    ? c.field->Apply(f.Target())
                                      : c.method ? c.method->Apply(f.Target())
                                                 : c.property->Apply(f.Target());
    if (*c.message == '\0') {
      EXPECT_TRUE(outcome.Ok) << c.name << ": " << (outcome.Message ? outcome.Message->Text : "");
      continue;
    }
    EXPECT_FALSE(outcome.Ok) << c.name;
    ASSERT_TRUE(outcome.Message) << c.name;
    EXPECT_EQ(outcome.Message->Text, c.message) << c.name;
    EXPECT_EQ(*f.buffers.Text(f.file), before) << c.name << ": the buffer changed";
    EXPECT_EQ(f.cls->Fields.Count(), fields) << c.name;
    EXPECT_EQ(f.cls->Methods.Count(), methods) << c.name;
  }
}

TEST(AddMemberRequestsTest, AGenerationThatCannotWriteChangesNothing) {
  TFixture f(TLanguage::Pascal);
  f.buffers.ReadOnly.push_back(f.file);
  const std::string before = *f.buffers.Text(f.file);
  const TAddMemberOutcome outcome =
      TAddFieldRequest{.FieldName = "FSize", .Type = "Integer"}.Apply(f.Target());
  EXPECT_FALSE(outcome.Ok);
  ASSERT_TRUE(outcome.Message);
  EXPECT_EQ(outcome.Message->Text, "Cannot change \"/mem/foo.pas\".");
  EXPECT_EQ(*f.buffers.Text(f.file), before);
  EXPECT_EQ(f.cls->Fields.Find("FSize"), nullptr);
}

TEST(AddMemberRequestsTest, AClassGoneFromTheBufferFailsAndChangesNothing) {
  TFixture f(TLanguage::Cpp);
  f.buffers.Set(f.file, "// emptied\r\n");
  const TAddMemberOutcome outcome = Method("Draw").Apply(f.Target());
  EXPECT_FALSE(outcome.Ok);
  ASSERT_TRUE(outcome.Message);
  EXPECT_EQ(outcome.Message->Text, "Class \"TFoo\" was not found in \"/mem/foo.h\".");
  EXPECT_EQ(*f.buffers.Text(f.file), "// emptied\r\n");
  EXPECT_TRUE(f.buffers.ChangedFiles().empty());
}

TEST(AddMemberRequestsTest, AnImplementationFileThatCannotBeReadFailsBeforeAnyWrite) {
  TFixture f(TLanguage::Cpp);
  TAddMethodRequest r = Method("Draw");
  r.ImplementationFile = "/mem/missing/foo.cpp";
  const TAddMemberOutcome outcome = r.Apply(f.Target());
  EXPECT_FALSE(outcome.Ok);
  EXPECT_TRUE(f.buffers.ChangedFiles().empty()) << "the header was left as it was";
}

TEST(AddMemberRequestsTest, DefaultNamesFollowTheCheckedBoxes) {
  TAddPropertyRequest r;
  r.CreateField = true;
  r.CreateSet = true;
  r.Reads = "Kept";
  r.Name = "Width";
  r.NameChanged();
  EXPECT_EQ(r.FieldName, "FWidth");
  EXPECT_EQ(r.Reads, "Kept");
  EXPECT_EQ(r.Writes, "SetWidth");
  EXPECT_EQ(r.GetterName(), "Kept");
  r.Writes.clear();
  EXPECT_EQ(r.SetterName(), "SetWidth") << "an empty Writes names the setter after the property";
}

TEST(AddMemberRequestsTest, AccessorParameters) {
  struct Case {
    const char* name;
    TLanguage language;
    const char* array;
    const char* index;
    const char* getter;
    const char* setter;
  };
  const Case cases[] = {
      {"Pascal plain", TLanguage::Pascal, "", "", "", "Value: Integer"},
      {"Pascal indexed, no array", TLanguage::Pascal, "", "2", "; __index: integer",
       "; __index: integer; Value: Integer"},
      {"Pascal array", TLanguage::Pascal, "I, J: Integer", "", "I, J: Integer",
       "I, J: Integer; Value: Integer"},
      {"Pascal array and index", TLanguage::Pascal, "I: Integer", "1",
       "I: Integer; __index: integer", "I: Integer; __index: integer; Value: Integer"},
      {"C++ plain", TLanguage::Cpp, "", "", "", "Integer value"},
      {"C++ two dimensions", TLanguage::Cpp, "[int i][int j]", "", "int i, int j",
       "int i, int j, Integer value"},
      {"C++ array and index", TLanguage::Cpp, "[int i]", "3", "int i, int __index",
       "int i, int __index, Integer value"},
  };
  for (const Case& c : cases) {
    TAddPropertyRequest r;
    r.Type = "Integer";
    r.Array = c.array;
    r.Index = c.index;
    EXPECT_EQ(r.GetterParameters(c.language), c.getter) << c.name;
    EXPECT_EQ(r.SetterParameters(c.language), c.setter) << c.name;
  }
}

TEST(AddMemberRequestsTest, InheritedCall) {
  struct Case {
    const char* name;
    TLanguage language;
    const char* args;
    TMethodKind kind;
    const char* expected;
  };
  const Case cases[] = {
      {"Pascal function: result := before the template's blanks", TLanguage::Pascal,
       "const A: string; var B: Integer", TMethodKind::Function,
       "result :=     inherited Execute(A, B);"},
      {"Pascal procedure without arguments", TLanguage::Pascal, "", TMethodKind::Procedure,
       "    inherited Execute;"},
      {"C++ with the first ancestor", TLanguage::Cpp, "TCreateParams &Params, int n = 2",
       TMethodKind::Procedure, "TBase::Execute(Params, n);"},
  };
  for (const Case& c : cases) {
    TFixture f(c.language);
    TAddMethodRequest r = Method("Execute", c.args, c.kind, "Boolean");
    const auto method = r.BuildMethod(*f.cls);
    EXPECT_EQ(InheritedCall(f.settings, *f.cls, *method), c.expected) << c.name;
  }
}

TEST(AddMemberRequestsTest, UserTemplatesAreTheOneSourceOfText) {
  TFixture f(TLanguage::Cpp);
  TemplateAt(f.settings.CppTemplates, TCppTemplateIndex::FieldDeclaration).Template =
      "  %TYPE% m_%NAME%; // %CLASSNAME%";
  const TAddFieldRequest r{.FieldName = "x", .Type = "int"};
  ASSERT_TRUE(r.Apply(f.Target()).Ok);
  EXPECT_NE(f.buffers.Text(f.file)->find("  int m_x; // TFoo\r\n"), std::string::npos)
      << *f.buffers.Text(f.file);
}

// The placeholder form that occurs in the value is skipped, so the template's own
// placeholder stays unexpanded rather than expanding for ever.
TEST(AddMemberRequestsTest, ABodyHoldingItsOwnPlaceholderLeavesItUnexpanded) {
  TFixture f(TLanguage::Pascal);
  TAddMethodRequest r = Method("Log");
  r.Body = "  Write('%IMPLEMENTATION%');";
  ASSERT_TRUE(r.Apply(f.Target()).Ok);
  EXPECT_NE(f.buffers.Text(f.file)->find("begin\r\n%IMPLEMENTATION%\r\nend;"), std::string::npos)
      << *f.buffers.Text(f.file);
}

TEST(AddMemberRequestsTest, HelpDescriptionPlaces) {
  struct Case {
    const char* name;
    int where;
    const char* expected;  // the text around the block
  };
  const Case cases[] = {
      {"before the declaration", dpDeclaration,
       "  public\r\n//VL_Desc_Begin(TFoo.Run)\r\n{Runs.}\r\n//VL_Desc_End\r\n    procedure Run;"},
      {"before the implementation", dpImplementation,
       "implementation\r\n//VL_Desc_Begin(TFoo.Run)\r\n{Runs.}\r\n//VL_Desc_End\r\nprocedure "
       "TFoo.Run;"},
      {"file start", dpFileStart,
       "//VL_Desc_Begin(TFoo.Run)\r\n{Runs.}\r\n//VL_Desc_End\r\nunit U;"},
      {"file end", dpFileEnd,
       "end.\r\n\r\n//VL_Desc_Begin(TFoo.Run)\r\n{Runs.}\r\n//VL_Desc_End\r\n"},
  };
  for (const Case& c : cases) {
    TFixture f(TLanguage::Pascal);
    auto generator = TAbstractCodeGenerator::Create(f.buffers, f.settings, *f.cls, f.file);
    generator->AddDescription(*f.cls->Methods.Find("Run"), "Runs.", c.where);
    generator->Generate();
    ASSERT_TRUE(generator->Succeeded()) << c.name << ": " << generator->Error();
    EXPECT_NE(f.buffers.Text(f.file)->find(c.expected), std::string::npos)
        << c.name << "\n"
        << *f.buffers.Text(f.file);
  }
}

}  // namespace
}  // namespace velmora
