// The include path read from a project's ".BPR": "$(BCB)" under the IDE's folder, ".."
// and plain names from the project's folder, drives and roots kept, each folder once.
#include <gtest/gtest.h>

#include <filesystem>

#include "addin/include_path.h"
#include "hosts/headless/headless_fixture.h"

namespace velmora {
namespace {

using test::TScratch;

TEST(IncludePath, EntriesResolveAgainstTheIdeFolderOrTheProjectFolder) {
  TScratch dir;
  std::filesystem::create_directories(dir / "common");
  std::filesystem::create_directories(dir / "proj/Inc");
  const std::string project = dir / "proj/";
  struct TCase {
    const char* entry;
    std::string expected;
  };
  const TCase cases[] = {
      {.entry = "$(BCB)\\include", .expected = "/opt/bcb/include"},
      {.entry = "$(bcb)\\Include\\VCL", .expected = "/opt/bcb/Include/VCL"},
      {.entry = "$(BCB)include", .expected = "/opt/bcb/include"},
      {.entry = "..\\common", .expected = dir / "common"},
      {.entry = "../common/", .expected = dir / "common"},
      {.entry = "inc", .expected = dir / "proj/Inc"},  // spelled as it exists
      {.entry = ".\\missing\\..\\Inc", .expected = dir / "proj/Inc"},
      {.entry = "/usr/include", .expected = "/usr/include"},
      {.entry = "C:\\Borland\\include", .expected = "C:/Borland/include"},
  };
  for (const TCase& c : cases)
    EXPECT_EQ(ResolveIncludeEntry(c.entry, project, "/opt/bcb"), c.expected) << c.entry;
}

TEST(IncludePath, ReadFromTheBprBesideTheProjectFile) {
  TScratch dir;
  std::filesystem::create_directories(dir / "common");
  std::filesystem::create_directories(dir / "proj");
  const std::string bpr =
      "[Version Info]\r\nIncludeVerInfo=0\r\n\r\n"
      "[HistoryLists\\hlIncludePath]\r\nCount=2\r\n"
      "Item0=  $(BCB)\\include; ..\\common ;;$(BCB)\\include;..\\COMMON  \r\n"
      "Item1=other\r\n";
  dir.Write("proj/App.bpr", bpr);
  struct TCase {
    const char* name;
    std::string projectFile;
    std::vector<std::string> expected;
  };
  const TCase cases[] = {
      {.name = "the .bpr itself",
       .projectFile = dir / "proj/App.bpr",
       .expected = {"/opt/bcb/include", dir / "common"}},
      {.name = "another project file of the same name",
       .projectFile = dir / "proj/App.cbproj",
       .expected = {"/opt/bcb/include", dir / "common"}},
      {.name = "no .bpr beside it", .projectFile = dir / "proj/Other.dpr", .expected = {}},
  };
  for (const TCase& c : cases)
    EXPECT_EQ(ReadBprIncludePath(c.projectFile, "/opt/bcb"), c.expected) << c.name;
}

TEST(IncludePath, BprWithoutTheSectionOrWithAnEmptyItemGivesNoFolders) {
  TScratch dir;
  const std::string texts[] = {
      "",
      "[HistoryLists\\hlIncludePath]\r\nCount=0\r\n",
      "[HistoryLists\\hlIncludePath]\r\nItem0= ; ;\r\n",
      std::string("\0\xff\xfe[", 4),
  };
  for (const std::string& text : texts) {
    dir.Write("P.bpr", text);
    EXPECT_TRUE(ReadBprIncludePath(dir / "P.bpr", "/opt/bcb").empty()) << text;
  }
}

}  // namespace
}  // namespace velmora
