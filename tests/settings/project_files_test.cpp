// The two settings files kept beside a project: ".vlsettings" and ".hec". Their exact
// text against golden files, damaged files, and failed loads and saves.
#include <gtest/gtest.h>

#include <string>

#include "settings/help_export_config.h"
#include "settings/project_settings.h"
#include "settings_test_support.h"

namespace velmora {
namespace {

using namespace std::string_literals;
using test::ReadText;
using test::TTempDir;
using test::WriteText;

TCurrentProjectSettings SampleProject() {
  TCurrentProjectSettings p;
  p.UseProjectExternals = false;
  p.SynchronizeContextBarSpeed = 250;
  p.ClassViewActivePage = 2;
  p.ClassHierarchyTreeWidth = 180;
  p.ClassViewWindow = {.Statesaved = true,
                       .Visible = true,
                       .Docked = true,
                       .Left = 0,
                       .Top = 0,
                       .Width = 240,
                       .Height = 600};
  p.ContextBarWindow.Statesaved = true;
  p.ContextBarWindow.Left = -8;
  p.ExcludedFiles = {"Generated\\KilnData.cpp", "Vendor/zlib.h"};
  p.BrowseHistory = {"TKilnForm", "TKilnForm.FiringSchedule", " padded "};
  p.ClassFilters = {"Forms"};
  return p;
}

THelpExportConfiguration SampleHelpExport() {
  THelpExportConfiguration h;
  h.HelpTitle = "Kiln Log Help";
  h.Configfile = "C:\\Projects\\KilnLog\\KilnLog.hec";
  h.Outputfile = "KilnLog.rtf";
  h.UseExtraTexts = true;
  h.HelpCompiler = "hcrtf.exe";
  h.Compile = true;
  h.StartHelp = true;
  return h;
}

TEST(ProjectSettingsTest, FileTextAsGolden) {
  const TCurrentProjectSettings p = SampleProject();
  test::ExpectGolden("KilnLog.vlsettings", p.Text());
  test::ExpectGolden("empty.vlsettings", TCurrentProjectSettings().Text());
  TCurrentProjectSettings back;
  back.LoadFromText(p.Text());
  EXPECT_TRUE(back == p);
}

TEST(ProjectSettingsTest, DamagedFilesLoadWhatTheyCan) {
  const struct {
    const char* name;
    std::string text;
    size_t excluded;
    size_t history;
    int32_t speed;
  } cases[] = {
      {.name = "binary junk",
       .text = "\x7f"
               "ELF\x02\x01\x00\x00\xff\xfe[\x00]"s,
       .excluded = 0,
       .history = 0,
       .speed = 500},
      {.name = "cut in the middle",
       .text =
           "[General]\r\nSynchronizeContextBarSpeed=100\r\n[Exclude From Parsing]\r\nCount=2\r\n"
           "File0=a.cpp\r\nFil",
       .excluded = 1,
       .history = 0,
       .speed = 100},
      {.name = "count far above the entries",
       .text = "[Browse History]\nCount=2000000000\nItem0=a\nItem1=b\n",
       .excluded = 0,
       .history = 2,
       .speed = 500},
      {.name = "negative count",
       .text = "[Browse History]\nCount=-3\nItem0=a\n",
       .excluded = 0,
       .history = 0,
       .speed = 500},
      {.name = "gap in the entries",
       .text = "[Exclude From Parsing]\nCount=3\nFile0=a\nFile2=c\n",
       .excluded = 1,
       .history = 0,
       .speed = 500},
      {.name = "values of the wrong form",
       .text = "[General]\nSynchronizeContextBarSpeed=fast\n[Browse History]\nCount=two\nItem0=a",
       .excluded = 0,
       .history = 0,
       .speed = 500},
  };
  for (const auto& c : cases) {
    TCurrentProjectSettings p = SampleProject();
    p.LoadFromText(c.text);  // starts from the defaults
    EXPECT_EQ(p.ExcludedFiles.size(), c.excluded) << c.name;
    EXPECT_EQ(p.BrowseHistory.size(), c.history) << c.name;
    EXPECT_EQ(p.SynchronizeContextBarSpeed, c.speed) << c.name;
    EXPECT_TRUE(p.UseProjectExternals) << c.name;
  }
}

TEST(ProjectSettingsTest, LoadAndSaveBesideTheProject) {
  const struct {
    const char* project;
    const char* file;
  } names[] = {
      {.project = "dir/KilnLog.bpr", .file = "dir/KilnLog.vlsettings"},
      {.project = "KilnLog", .file = "KilnLog.vlsettings"},
      {.project = "dir.v2/KilnLog", .file = "dir.v2/KilnLog.vlsettings"},
      {.project = "a.b.dpr", .file = "a.b.vlsettings"},
  };
  for (const auto& n : names)
    EXPECT_EQ(TCurrentProjectSettings::SettingsFileName(n.project), n.file) << n.project;

  TTempDir dir;
  const std::string project = dir / "KilnLog.bpr";
  TCurrentProjectSettings p = SampleProject();
  std::string message = "untouched";
  EXPECT_TRUE(p.Load(project, &message));  // no file yet: the defaults, no message
  EXPECT_TRUE(p == TCurrentProjectSettings());
  EXPECT_EQ(message, "untouched");

  ASSERT_TRUE(SampleProject().Save(project, &message));
  EXPECT_EQ(ReadText(dir / "KilnLog.vlsettings"), SampleProject().Text());
  EXPECT_TRUE(p.Load(project));
  EXPECT_TRUE(p == SampleProject());
  EXPECT_TRUE(p.IsExcluded("vendor/ZLIB.h"));
  EXPECT_FALSE(p.IsExcluded("zlib.h"));
}

TEST(ProjectSettingsTest, FailuresReportTheirMessageAndKeepTheOldFile) {
  TTempDir dir;
  // A directory where the file should be: it cannot be read.
  std::filesystem::create_directory(dir / "Broken.vlsettings");
  TCurrentProjectSettings p = SampleProject();
  std::string message;
  EXPECT_FALSE(p.Load(dir / "Broken.bpr", &message));
  EXPECT_TRUE(p == TCurrentProjectSettings());
  EXPECT_EQ(message.rfind("The project settings file for project " + (dir / "Broken.bpr") +
                              " could not be loaded because of the following error:\r\n",
                          0),
            0u)
      << message;
  EXPECT_GT(message.size(), message.find("\r\n") + 2);  // the reason follows

  // A name that leaves no room for the temporary file's suffix: the save fails before
  // the old file is touched, whoever runs the test.
  const std::string project = dir / (std::string(240, 'k') + ".bpr");
  const std::string file = TCurrentProjectSettings::SettingsFileName(project);
  WriteText(file, "old contents\r\n");
  message.clear();
  EXPECT_FALSE(SampleProject().Save(project, &message));
  EXPECT_EQ(ReadText(file), "old contents\r\n");
  EXPECT_EQ(message.rfind("The project settings file for project " + project +
                              " could not be saved because of the following error:\r\n",
                          0),
            0u)
      << message;
}

TEST(HelpExportConfigurationTest, FileTextAsGoldenAndBack) {
  TTempDir dir;
  const THelpExportConfiguration h = SampleHelpExport();
  test::ExpectGolden("KilnLog.hec", h.Text());
  h.SaveToFile(dir / "KilnLog.hec");
  THelpExportConfiguration back = SampleHelpExport();
  back.HelpTitle = "changed";
  back.DontCompress = true;
  back.LoadFromFile(dir / "KilnLog.hec");
  EXPECT_TRUE(back == h);

  // Keys in any order and case; damaged lines and values of the wrong form are skipped.
  back.LoadFromText("junk\0\xff\n[help generator]\nstarthelp=0\nCompile=maybe\nHELPTITLE=x"s);
  EXPECT_FALSE(back.StartHelp);
  EXPECT_TRUE(back.Compile);
  EXPECT_EQ(back.HelpTitle, "x");
}

TEST(HelpExportConfigurationTest, FailuresRaiseTheirMessage) {
  TTempDir dir;
  THelpExportConfiguration h = SampleHelpExport();
  try {
    h.LoadFromFile(dir / "missing.hec");
    ADD_FAILURE() << "loaded a missing file";
  } catch (const EExportCFGError& e) {
    EXPECT_EQ(e.Message().rfind("The help export configuration file " + (dir / "missing.hec") +
                                    " could not be loaded because of the following error:\r\n",
                                0),
              0u)
        << e.Message();
  }
  EXPECT_TRUE(h == SampleHelpExport());

  const std::string file = dir / (std::string(250, 'h') + ".hec");
  WriteText(file, "old");
  EXPECT_THROW(h.SaveToFile(file), EExportCFGError);
  EXPECT_EQ(ReadText(file), "old");
}

}  // namespace
}  // namespace velmora
