// The template engine: the four placeholder forms, the one blank per side they take along
// with an empty value, a value holding its own placeholder, and the default templates
// rendered with their example values; and the joining of continued lines.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "codegen/code_builder.h"
#include "settings/code_templates.h"

namespace velmora {
namespace {

TEST(CodeBuilderTest, PlaceholderRules) {
  struct Param {
    std::string name;
    std::string value;
  };
  struct Case {
    const char* name;
    std::string text;
    std::vector<Param> params;
    std::string expected;
  };
  const Case cases[] = {
      {.name = "plain", .text = "%NAME%;", .params = {{"NAME", "Foo"}}, .expected = "Foo;"},
      {.name = "every occurrence", .text = "%A%-%A%", .params = {{"A", "x"}}, .expected = "x-x"},
      {.name = "letter case of the name",
       .text = "%name% $Name$",
       .params = {{"NAME", "v"}},
       .expected = "v v"},
      {.name = "a value keeps its blanks",
       .text = "a $X% b %X$ c",
       .params = {{"X", "v"}},
       .expected = "a v b v c"},
      {.name = "empty, blank before", .text = "a $X%b", .params = {{"X", ""}}, .expected = "ab"},
      {.name = "empty, blank after", .text = "a%X$ b", .params = {{"X", ""}}, .expected = "ab"},
      {.name = "empty, both sides", .text = "a $X$ b", .params = {{"X", ""}}, .expected = "ab"},
      {.name = "empty, plain form keeps blanks",
       .text = "a %X% b",
       .params = {{"X", ""}},
       .expected = "a  b"},
      {.name = "only one blank per side",
       .text = "a  $X$  b",
       .params = {{"X", ""}},
       .expected = "a  b"},
      {.name = "no blank to take", .text = "($X$)", .params = {{"X", ""}}, .expected = "()"},
      {.name = "tab counts as a blank", .text = "a\t$X%", .params = {{"X", ""}}, .expected = "a"},
      {.name = "one delimiter is no placeholder",
       .text = "NAME% %NAME x",
       .params = {{"NAME", "v"}},
       .expected = "NAME% %NAME x"},
      {.name = "value holding its own placeholder",
       .text = "%BODY%|$BODY%",
       .params = {{"BODY", "call(%BODY%)"}},
       .expected = "%BODY%|call(%BODY%)"},
      {.name = "value holding another form",
       .text = "%X%",
       .params = {{"X", "$X$"}},
       .expected = "$X$"},
      {.name = "value naming a later parameter",
       .text = "%A% %B%",
       .params = {{"A", "%B%"}, {"B", "b"}},
       .expected = "b b"},
      {.name = "value and text do not join into a placeholder",
       .text = "%A%A%",
       .params = {{"A", "%"}},
       .expected = "%A%"},
      {.name = "empty name does nothing", .text = "%%", .params = {{"", "v"}}, .expected = "%%"},
  };
  for (const Case& c : cases) {
    TCodeBuilder builder(c.text, TLanguage::Cpp);
    for (const Param& p : c.params) builder.SetParam(p.name, p.value);
    EXPECT_EQ(builder.Text(), c.expected) << c.name;
  }
}

TEST(CodeBuilderTest, DefaultTemplates) {
  const TPascalTemplates& pas = DefaultPascalTemplates();
  const TCppTemplates& cpp = DefaultCppTemplates();
  constexpr TLanguage P = TLanguage::Pascal;
  constexpr TLanguage C = TLanguage::Cpp;
  struct Case {
    const char* name;
    const TCodeTemplate& codeTemplate;
    TLanguage language;
    std::vector<std::string> values;
    std::string expected;
  };
  const Case cases[] = {
      {.name = "Pascal procedure without parameters or directives",
       .codeTemplate = TemplateAt(pas, TPascalTemplateIndex::ProcedureDeclaration),
       .language = P,
       .values = {"procedure", "Foo", "", "", "", "", "TFoo"},
       .expected = "        procedure Foo;"},
      {.name = "Pascal function with parameters and directives",
       .codeTemplate = TemplateAt(pas, TPascalTemplateIndex::FunctionDeclaration),
       .language = P,
       .values = {"function", "Execute", "(", "msg: string", ")", "string", "virtual;", "TFoo"},
       .expected = "        function Execute(msg: string): string; virtual;"},
      {.name = "Pascal parameter without kind or default",
       .codeTemplate = TemplateAt(pas, TPascalTemplateIndex::MethodParameter),
       .language = P,
       .values = {"", "Sender", ":", "TObject", ""},
       .expected = "Sender: TObject"},
      {.name = "Pascal inherited call without parameters",
       .codeTemplate = TemplateAt(pas, TPascalTemplateIndex::MethodCall),
       .language = P,
       .values = {"Paint", "", "", ""},
       .expected = "    inherited Paint;"},
      {.name = "Pascal procedure implementation",
       .codeTemplate = TemplateAt(pas, TPascalTemplateIndex::ProcedureImplementation),
       .language = P,
       .values = {"procedure", "TFoo", "Run", "", "", "", "  DoIt;"},
       .expected = "procedure TFoo.Run;\r\nbegin\r\n  DoIt;\r\nend;\r\n"},
      {.name = "C++ method declaration",
       .codeTemplate = TemplateAt(cpp, TCppTemplateIndex::MethodDeclaration),
       .language = C,
       .values = {"Foo", "", "void", "__fastcall", "", "TFoo", ""},
       .expected = "    void __fastcall Foo();"},
      {.name = "C++ abstract virtual method",
       .codeTemplate = TemplateAt(cpp, TCppTemplateIndex::MethodDeclaration),
       .language = C,
       .values = {"Foo", "int a", "void", "", "= 0", "TFoo", "virtual"},
       .expected = "    virtual void Foo(int a) = 0;"},
      {.name = "C++ method implementation",
       .codeTemplate = TemplateAt(cpp, TCppTemplateIndex::MethodImplementation),
       .language = C,
       .values = {"GetMember", "int index", "int", "__fastcall", "const", "TList",
                  "return FCount[index];"},
       .expected = "int __fastcall TList::GetMember(int index) const\r\n{\r\n"
                   "    return FCount[index];\r\n}\r\n"},
      {.name = "C++ property without specifiers",
       .codeTemplate = TemplateAt(cpp, TCppTemplateIndex::PropertyDeclaration),
       .language = C,
       .values = {"Count", "int", "TList", "", ""},
       .expected = "    __property int Count;"},
      {.name = "missing values are empty",
       .codeTemplate = TemplateAt(cpp, TCppTemplateIndex::FieldDeclaration),
       .language = C,
       .values = {"i"},
       .expected = "     i;"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(BuildCode(c.codeTemplate, c.values, c.language), c.expected) << c.name;
  }
}

// Every default template with its example values: no placeholder of its own is left.
TEST(CodeBuilderTest, ExamplesLeaveNoPlaceholder) {
  for (const TLanguage language : {TLanguage::Pascal, TLanguage::Cpp}) {
    for (int i = 0; i < TemplateCount(language); ++i) {
      const TCodeTemplate& t = DefaultTemplate(language, i);
      const std::vector<std::string> values(t.Examples.begin(), t.Examples.begin() + t.ParamCount);
      const std::string text = BuildCode(t, values, language);
      for (int p = 0; p < t.ParamCount; ++p) {
        for (const char* form : {"%%%", "$%%", "%%$", "$%$"}) {
          const std::string placeholder = form[0] + t.ParamNames[p] + form[2];
          EXPECT_EQ(text.find(placeholder), std::string::npos)
              << TemplateTitle(language, i) << ": " << placeholder << " in " << text;
        }
      }
    }
  }
}

TEST(CodeBuilderTest, JoinContinuedLines) {
  struct Case {
    const char* name;
    std::string text;
    std::string expected;
  };
  const Case cases[] = {
      {.name = "backslash at the line end", .text = "a \\\r\nb", .expected = "a b"},
      {.name = "blanks after the backslash", .text = "a \\ \t \r\nb", .expected = "a b"},
      {.name = "ordinary line ends stay", .text = "a\r\nb\r\n", .expected = "a\r\nb\r\n"},
      {.name = "backslash inside a line", .text = "a\\b \\ c", .expected = "a\\b \\ c"},
      {.name = "two backslashes", .text = "a\\\\\r\nb", .expected = "a\\b"},
      {.name = "backslash at the end", .text = "a \\ ", .expected = "a \\ "},
      {.name = "bare LF is dropped", .text = "a\nb", .expected = "ab"},
      {.name = "several continued lines",
       .text = "#define X a \\\r\n b \\\r\n c\r\n",
       .expected = "#define X a  b  c\r\n"},
  };
  for (const Case& c : cases) EXPECT_EQ(JoinContinuedLines(c.text), c.expected) << c.name;
}

}  // namespace
}  // namespace velmora
