// `velmora settings`, run as the command runs it against a store file in a scratch
// folder: one step after another, each with its exit status and output, and every
// refused step leaving the file exactly as it was.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "settings/settings_text.h"
#include "settings_test_support.h"

namespace velmora {
namespace {

TEST(SettingsCommandTest, ShowsSetsAndRefuses) {
  const struct {
    std::vector<std::string> args;
    int status;
    const char* out;  // the whole output, or where the error output starts
  } steps[] = {
      {.args = {"General", "HKShow"}, .status = 0, .out = "Shift+F10\n"},
      {.args = {"general", "hkshow", "shift+ctrl+f10"}, .status = 0, .out = ""},
      {.args = {"General", "HKShow"}, .status = 0, .out = "Shift+Ctrl+F10\n"},
      {.args = {"General", "HKShow", "8313"}, .status = 0, .out = ""},
      {.args = {"General", "HKShow"}, .status = 0, .out = "Shift+F10\n"},
      {.args = {"General", "ShowMemTypes", "0"}, .status = 0, .out = ""},
      {.args = {"General", "ShowMethArgs"}, .status = 0, .out = "true\n"},
      {.args = {"Misc", "DockedTitlebarColorName", " clRed\t"}, .status = 0, .out = ""},
      {.args = {"Misc", "DockedTitlebarColorName"}, .status = 0, .out = " clRed\t\n"},
      {.args = {"CodeGeneration\\C++ Code Templates", "9", "  BEGIN\nX"}, .status = 0, .out = ""},
      {.args = {"CodeGeneration\\C++ Code Templates", "9"}, .status = 0, .out = "  BEGIN\nX\n"},
      {.args = {"Filter", "F01", "false"}, .status = 0, .out = ""},
      {.args = {"Help Generator", "MruCount", "1"}, .status = 0, .out = ""},
      {.args = {"Help Generator", "File0", "a.hec"}, .status = 0, .out = ""},
      {.args = {"Help Generator"},
       .status = 0,
       .out = "[Help Generator]\nStatesaved=false\nWindowstate=0\nLeft=0\nTop=0\nWidth=0\n"
              "Height=0\nTreeWidth=0\nTextHeight=0\nTextVisible=false\nWarningLevel=0\n"
              "DoExport=false\nCheckHelpConfiguration=true\nMruCount=1\nFile0=a.hec\n"},
      // Refused: the file stays as it is.
      {.args = {"General", "HKShow", "Hyper+F1"},
       .status = 1,
       .out = "velmora settings: General HKShow: \"Hyper+F1\" is not a hot key"},
      {.args = {"General", "ShowWarnings", "yes"},
       .status = 1,
       .out = "velmora settings: General ShowWarnings: \"yes\" is not a boolean"},
      {.args = {"General", "ParsePriority", "7"},
       .status = 1,
       .out = "velmora settings: General ParsePriority: 7 is out of range (0 to 6)"},
      {.args = {"General", "EditorJumpOffSet", "4x"},
       .status = 1,
       .out = "velmora settings: General EditorJumpOffSet: \"4x\" is not a decimal integer"},
      {.args = {"Help Generator", "File1", "b.hec"},
       .status = 1,
       .out = "velmora settings: unknown key \"File1\""},
      {.args = {"Nowhere", "X", "1"},
       .status = 1,
       .out = "velmora settings: unknown section \"Nowhere\""},
      {.args = {"Nowhere"}, .status = 1, .out = "velmora settings: unknown section \"Nowhere\""},
      {.args = {"General", "Nothing"},
       .status = 1,
       .out = "velmora settings: unknown key \"Nothing\" in section \"General\""},
      {.args = {"a", "b", "c", "d"}, .status = 1, .out = "velmora settings: give at most"},
  };
  test::TTempDir dir;
  const std::string file = dir / "velmora/registry.ini";
  for (const auto& step : steps) {
    const std::string before = test::ReadText(file);
    std::ostringstream out, err;
    const int status = RunSettingsCommand(file, step.args, out, err);
    const std::string shown = testing::PrintToString(step.args);
    EXPECT_EQ(status, step.status) << shown << err.str();
    if (step.status == 0) {
      EXPECT_EQ(out.str(), step.out) << shown;
      EXPECT_EQ(err.str(), "") << shown;
    } else {
      EXPECT_EQ(err.str().rfind(step.out, 0), 0u) << shown << ": " << err.str();
      EXPECT_EQ(test::ReadText(file), before) << shown;
    }
  }

  // The saved file holds what the steps set, in the store's own forms.
  const std::string saved = test::ReadText(file);
  for (const char* line : {"HKShow=8313\n", "ShowMemTypes=0\n", "ShowMethArgs=1\n",
                           "DockedTitlebarColorName=\" clRed\\t\"\n", "9=\"  BEGIN\\r\\nX\"\n",
                           "F01=0\n", "F00=1\n", "MruCount=1\nFile0=a.hec\n"})
    EXPECT_NE(saved.find(line), std::string::npos) << line;
}

TEST(SettingsCommandTest, AnUnreadableStoreIsLeftAlone) {
  test::TTempDir dir;
  std::filesystem::create_directory(dir / "registry.ini");
  std::ostringstream out, err;
  EXPECT_EQ(RunSettingsCommand(dir / "registry.ini", {"General", "ShowWarnings", "1"}, out, err),
            1);
  EXPECT_NE(err.str(), "");
  EXPECT_TRUE(std::filesystem::is_directory(dir / "registry.ini"));
}

}  // namespace
}  // namespace velmora
