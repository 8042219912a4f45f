// The built-in code templates, every field of every one, against a golden listing; and
// template texts through the settings store.
#include <gtest/gtest.h>

#include <string>

#include "model/settings_store.h"
#include "settings/code_templates.h"
#include "settings/vl_settings.h"
#include "settings_test_support.h"

namespace velmora {
namespace {

// CR and LF as \r and \n, so that a listing line shows a whole template.
std::string Visible(const std::string& text) {
  std::string out;
  for (const char c : text) out += c == '\r' ? "\\r" : c == '\n' ? "\\n" : std::string(1, c);
  return out;
}

// One block per template; texts with their line breaks and blanks made visible.
std::string Listing(TLanguage language) {
  std::string out;
  for (int i = 0; i < TemplateCount(language); ++i) {
    const TCodeTemplate& t = DefaultTemplate(language, i);
    out += "#" + std::to_string(i) + " \"" + std::string(TemplateTitle(language, i)) + "\"\n";
    out += "  description: \"" + std::string(TemplateDescription(language, i)) + "\"\n";
    for (int p = 0; p < t.ParamCount; ++p)
      out += "  " + t.ParamNames[p] + " = \"" + t.Examples[p] + "\"\n";
    out += "  template: \"" + Visible(t.Template) + "\"\n";
    for (int p = t.ParamCount; p < kTemplateParamSlots; ++p)
      if (!t.ParamNames[p].empty() || !t.Examples[p].empty()) out += "  unused slot filled\n";
    if (t.Reserved[0] || t.Reserved[1]) out += "  reserved words not zero\n";
  }
  return out;
}

TEST(CodeTemplatesTest, DefaultsAsListed) {
  test::ExpectGolden("pascal_templates.txt", Listing(TLanguage::Pascal));
  test::ExpectGolden("cpp_templates.txt", Listing(TLanguage::Cpp));
  EXPECT_EQ(TemplateTitle(TLanguage::Cpp, 14), "");
  EXPECT_EQ(TemplateTitle(TLanguage::Pascal, -1), "");
}

TEST(CodeTemplatesTest, OnlyTheTextsAreStored) {
  TVLSettings s;
  TemplateAt(s.PascalTemplates, TPascalTemplateIndex::MethodCall).Template = "    inherited;\r\n";
  TemplateAt(s.PascalTemplates, TPascalTemplateIndex::MethodCall).Examples[0] = "not stored";
  TMemorySettingsStore store;
  s.Save(store);
  EXPECT_EQ(store.ReadString("CodeGeneration\\Pascal Code Templates", "10", ""),
            "    inherited;\r\n");
  EXPECT_EQ(store.ReadString("CodeGeneration\\C++ Code Templates", "13", ""),
            "%BASECLASS%::%NAME%(%PARAMS%);");

  TVLSettings back;
  back.Load(store);
  EXPECT_EQ(TemplateAt(back.PascalTemplates, TPascalTemplateIndex::MethodCall).Template,
            "    inherited;\r\n");
  EXPECT_EQ(TemplateAt(back.PascalTemplates, TPascalTemplateIndex::MethodCall).Examples[0],
            "CreateParams");
  EXPECT_EQ(back.CppTemplates, DefaultCppTemplates());
}

}  // namespace
}  // namespace velmora
