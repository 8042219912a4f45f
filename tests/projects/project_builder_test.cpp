#include "projects/project_builder.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <map>

#include "projects/bcb_options.h"

namespace velmora::projects {
namespace {

TEST(ProjectBuilderTest, ExpandsMacrosOrCountsTheUnknown) {
  const std::map<std::string, std::string> macros = {
      {"BCB", "/opt/bcb"}, {"LIB", "$(BCB)/lib"},         {"SELF", "$(SELF)x"},
      {"EMPTY", ""},       {"UNSET_INSIDE", "$(NOPE)/y"},
  };
  const TMacroLookup lookup = [&](std::string_view name) -> std::optional<std::string> {
    auto it = macros.find(std::string(name));
    if (it == macros.end()) return std::nullopt;
    return it->second;
  };
  const struct {
    std::string_view text, expanded;  ///< "<none>" when the element is left out
  } rows[] = {
      {"$(BCB)\\include", "/opt/bcb\\include"},
      {"$(LIB)\\release", "/opt/bcb/lib\\release"},  // a macro's value is expanded again
      {"a$(EMPTY)b", "ab"},
      {"no macros", "no macros"},
      {"$(BCB", "$(BCB"},  // a lone "$(" is text
      {"$(MISSING)\\x", "<none>"},
      {"$(UNSET_INSIDE)", "<none>"},
      {"$(SELF)", "<none>"},  // defined by itself: given up after a fixed depth
  };
  TProjectBuilder builder("/tmp/p.bpr", TProjectKind::MakeBpr);
  for (const auto& row : rows)
    EXPECT_EQ(builder.Expand(row.text, lookup).value_or("<none>"), row.expanded) << row.text;
  const TProject p = builder.Finish();
  const std::vector<std::string> expected = {
      "macros nested too deeply in \"$(SELF)\"; left out",
      "$(MISSING) is not set: 1 entry that uses it is left out",
      "$(NOPE) is not set: 1 entry that uses it is left out",
  };
  EXPECT_EQ(p.Warnings, expected);
}

TEST(ProjectBuilderTest, SwitchValuesAndLists) {
  const struct {
    std::string_view flags, option, values;
  } rows[] = {
      {"-Od -Ia;b -w -Ic", "-I", "a;b;c"},
      {"-I\"My Files\";inc -v", "-I", "\"My Files\";inc"},  // quotes keep a blank in the switch
      {"-DFOO -DBAR=1", "-D", "FOO;BAR=1"},
      {"-I -v", "-I", ""},  // a switch with no value gives none
      {"", "-U", ""},
  };
  for (const auto& row : rows)
    EXPECT_EQ(SwitchValues(row.flags, row.option), row.values) << row.flags;
  const std::vector<std::string_view> split = SplitList(" a ;;b; ;c");
  EXPECT_EQ(split, (std::vector<std::string_view>{"a", "b", "c"}));
}

class BuilderFolderTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/velmora-builder-XXXXXX";
    root_ = ::mkdtemp(pattern);
    for (const char* d : {"/Proj", "/Proj/Src Files", "/Proj/Src Files/Deep", "/Inc"})
      std::filesystem::create_directory(root_ + d);
    for (const char* f : {"/Proj/Main.CPP", "/Proj/main.hpp", "/Proj/Src Files/Deep/Unit1.pas"})
      std::ofstream(root_ + f) << "x";
  }
  void TearDown() override { std::filesystem::remove_all(root_); }
  std::string root_;
};

TEST_F(BuilderFolderTest, ResolvesFoldersAndUnitsWrittenOnWindows) {
  TProjectBuilder builder(root_ + "/Proj/p.bpr", TProjectKind::MakeBpr);
  builder.AddIncludePath("SRC FILES\\deep;..\\inc\\;.;Src Files/Deep;C:\\Program Files\\x;nowhere",
                         EnvironmentMacro);
  EXPECT_TRUE(builder.AddUnit("main.cpp", EnvironmentMacro));
  EXPECT_TRUE(builder.AddUnit(".\\MAIN.cpp", EnvironmentMacro));  // the same file: kept once
  EXPECT_TRUE(builder.AddUnit("src files\\deep\\UNIT1.PAS", EnvironmentMacro));
  EXPECT_FALSE(builder.AddUnit("Gone.cpp", EnvironmentMacro));
  EXPECT_FALSE(builder.AddUnit(".\\GONE.CPP", EnvironmentMacro));  // the same missing unit
  const TProject p = builder.Finish();
  const std::vector<std::string> folders = {root_ + "/Proj/Src Files/Deep", root_ + "/Inc",
                                            root_ + "/Proj"};
  EXPECT_EQ(p.IncludePath, folders);
  ASSERT_EQ(p.Units.size(), 2u);
  EXPECT_EQ(p.Units[0].FileName, root_ + "/Proj/Main.CPP");
  EXPECT_EQ(p.Units[0].Header, root_ + "/Proj/main.hpp");
  EXPECT_EQ(p.Units[1].FileName, root_ + "/Proj/Src Files/Deep/Unit1.pas");
  EXPECT_EQ(p.Units[1].Header, "");
  const std::vector<std::string> warnings = {
      "folder not found: \"C:\\Program Files\\x\"",
      "folder not found: \"nowhere\"",
      "unit not found: \"Gone.cpp\"",
  };
  EXPECT_EQ(p.Warnings, warnings);
}

TEST_F(BuilderFolderTest, TheIdeFolderComesFromTheEnvironment) {
  std::filesystem::create_directories(root_ + "/Program Files/CBuilder/include/vcl");
  const struct {
    std::string_view name;
    const char* bcb;  ///< nullptr: unset
    std::vector<std::string> folders;
    std::vector<std::string> warnings;
  } rows[] = {
      {.name = "set, with a space and another letter case",
       .bcb = "/Program Files/CBuilder",
       .folders = {"/Program Files/CBuilder/include", "/Program Files/CBuilder/include/vcl",
                   "/Inc"},
       .warnings = {}},
      {.name = "unset",
       .bcb = nullptr,
       .folders = {"/Inc"},
       .warnings = {"$(BCB) is not set: 2 entries that use it are left out"}},
      {.name = "set to a folder that is not there",
       .bcb = "/Nowhere",
       .folders = {"/Inc"},
       .warnings = {"folder not found: \"$(BCB)\\INCLUDE\"",
                    "folder not found: \"$(BCB)\\Include\\VCL\""}},
  };
  for (const auto& row : rows) {
    if (row.bcb)
      ::setenv("BCB", (root_ + row.bcb).c_str(), 1);
    else
      ::unsetenv("BCB");
    TProjectBuilder builder(root_ + "/Proj/p.bpr", TProjectKind::MakeBpr);
    builder.AddIncludePath("$(BCB)\\INCLUDE;$(BCB)\\Include\\VCL;..\\inc", EnvironmentMacro);
    const TProject p = builder.Finish();
    std::vector<std::string> folders;
    for (const std::string& f : p.IncludePath) folders.push_back(f.substr(root_.size()));
    EXPECT_EQ(folders, row.folders) << row.name;
    EXPECT_EQ(p.Warnings, row.warnings) << row.name;
  }
  ::unsetenv("BCB");
}

}  // namespace
}  // namespace velmora::projects
