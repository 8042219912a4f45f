#include "projects/msbuild_properties.h"

#include <gtest/gtest.h>
#include <stdlib.h>

namespace velmora::projects {
namespace {

// Properties a RAD Studio project sets before its option groups.
constexpr const char* kProject =
    "<Project>"
    "<PropertyGroup><Config Condition=\"'$(Config)'==''\">Debug</Config>"
    "<Platform Condition=\"'$(Platform)'==''\">Win32</Platform><Base>True</Base></PropertyGroup>"
    "<PropertyGroup Condition=\"'$(Config)'=='Debug' or '$(Cfg_1)'!=''\"><Cfg_1>true</Cfg_1>"
    "</PropertyGroup>"
    "<PropertyGroup Condition=\"'$(Base)'!=''\"><Defines>A;$(Defines)</Defines>"
    "<Path>$(BDS)\\lib;$(Path)</Path><Empty></Empty></PropertyGroup>"
    "<PropertyGroup Condition=\"'$(Cfg_1)'!=''\"><Defines>B;$(Defines)</Defines></PropertyGroup>"
    "<PropertyGroup Condition=\"'$(Cfg_2)'!=''\"><Defines>C;$(Defines)</Defines></PropertyGroup>"
    "<PropertyGroup><Defines Condition=\"'$(Platform)'=='Win64'\">D;$(Defines)</Defines>"
    "</PropertyGroup>"
    "</Project>";

class MsBuildPropertiesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ::unsetenv("BDS");
    ASSERT_TRUE(document_.load_string(kProject));
  }
  pugi::xml_document document_;
};

TEST_F(MsBuildPropertiesTest, EvaluatesTheDefaultConfiguration) {
  const TMsBuildProperties p(document_.document_element(), "/work/App.cbproj");
  const struct {
    std::string_view name, value;
  } rows[] = {
      {"Config", "Debug"},
      {"config", "Debug"},  // names ignore case
      {"Cfg_1", "true"},
      {"Defines", "B;A;"},       // Base then Cfg_1, each before what was set; not Cfg_2, not Win64
      {"Path", "$(BDS)\\lib;"},  // the IDE's folder stays for the path's own warning
      {"MSBuildProjectName", "App"},
      {"MSBuildProjectDirectory", "/work"},
      {"Empty", ""},
  };
  for (const auto& row : rows)
    EXPECT_EQ(p.Value(row.name).value_or("<unset>"), row.value) << row.name;
  EXPECT_FALSE(p.Value("Cfg_2"));
}

TEST_F(MsBuildPropertiesTest, TakesTheIdeFolderFromTheEnvironment) {
  ::setenv("BDS", "/opt/rad", 1);
  const TMsBuildProperties p(document_.document_element(), "/work/App.cbproj");
  EXPECT_EQ(p.Value("Path").value_or(""), "/opt/rad\\lib;");
  ::unsetenv("BDS");
}

TEST_F(MsBuildPropertiesTest, Conditions) {
  const TMsBuildProperties p(document_.document_element(), "/work/App.cbproj");
  const struct {
    std::string_view condition;
    bool holds;
  } rows[] = {
      {"", true},
      {"'$(Config)'=='Debug'", true},
      {"'$(Config)'=='debug'", true},  // comparisons ignore case
      {"'$(Config)' != 'Debug'", false},
      {"'$(Unknown)'==''", true},
      {"'$(Config)'=='Release' or '$(Cfg_1)'!=''", true},
      {"('$(Platform)'=='Win32' and '$(Base)'=='true') or '$(Base_Win32)'!=''", true},
      {"('$(Platform)'=='Win64' and '$(Base)'=='true') or '$(Base_Win64)'!=''", false},
      {"!('$(Config)'=='Release')", true},
      {"true", true},
      {"false", false},
      {"Exists('$(BDS)\\Bin\\CodeGear.Cpp.Targets')", false},  // functions are not evaluated
      {"'$(Config)'=='Debug' and", false},                     // cut short
      {"'Debug", false},
      {"(('a'=='a')", false},
      {"'a'=='a' xor 'b'=='b'", false},
  };
  for (const auto& row : rows) EXPECT_EQ(p.Holds(row.condition), row.holds) << row.condition;
}

}  // namespace
}  // namespace velmora::projects
