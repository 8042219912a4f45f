// A project file opened in the headless IDE through the project readers.
#include <gtest/gtest.h>

#include <filesystem>

#include "hosts/headless/headless_fixture.h"
#include "hosts/headless/headless_project.h"
#include "support/paths.h"

namespace velmora {
namespace {

TEST(HeadlessProject, TheReadersUnitsReachTheIdeAfterTheHostSawTheProject) {
  test::TScratch dir;
  std::filesystem::copy(std::string(VELMORA_SOURCE_DIR) + "/examples", dir.path,
                        std::filesystem::copy_options::recursive);
  THeadlessIDE ide;
  std::string projectBefore = "unset";
  const TProject project = OpenProjectFile(ide, dir / "KilnLog/KilnLog.bpr", [&](const TProject&) {
    projectBefore = ide.ProjectName();
  });
  EXPECT_EQ(projectBefore, "") << "beforeOpen runs before the IDE opens the project";
  EXPECT_EQ(ide.ProjectName(), project.FileName);
  std::vector<std::string> names;
  for (const std::string& unit : ide.Units()) names.emplace_back(ExtractFileName(unit));
  std::vector<std::string> expected;
  for (const TProjectUnit& unit : project.Units)
    expected.emplace_back(ExtractFileName(unit.FileName));
  EXPECT_EQ(names, expected);
  EXPECT_FALSE(names.empty());
}

TEST(HeadlessProject, AProjectThatCannotBeReadLeavesTheIdeAsItWas) {
  test::TScratch dir;
  THeadlessIDE ide;
  EXPECT_THROW(OpenProjectFile(ide, dir / "missing.bpr"), EProjectError);
  EXPECT_EQ(ide.ProjectName(), "");
}

}  // namespace
}  // namespace velmora
