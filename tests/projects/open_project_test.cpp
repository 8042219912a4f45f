// Each kind of project file, read from small projects made for these tests under data/,
// described as text and compared with the golden file of the same name.
// VELMORA_UPDATE_GOLDEN=1 rewrites the golden files from what the code reads now; do it
// only after a deliberate change, and read the difference.
#include "projects/project.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <fstream>
#include <sstream>

namespace velmora {
namespace {

const std::string kData = std::string(VELMORA_TEST_DATA) + "/projects/data/";
const std::string kGolden = std::string(VELMORA_TEST_DATA) + "/projects/golden/";

// The macros the projects use for the IDE's own folders; a test sets the one it needs.
void ClearIdeMacros() {
  for (const char* name : {"BCB", "BDS", "BDSINCLUDE", "BDSLIB", "DELPHI", "LazarusDir"})
    ::unsetenv(name);
}

std::string ReadText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

struct GoldenCase {
  std::string_view name;      ///< the golden file's name without ".txt"
  std::string project;        ///< the project's path
  std::string_view bcb = "";  ///< BCB for the run, relative to data/; "" leaves it unset
};

void PrintTo(const GoldenCase& c, std::ostream* os) {
  *os << c.name;
}

class OpenProjectGoldenTest : public ::testing::TestWithParam<GoldenCase> {};

TEST_P(OpenProjectGoldenTest, MatchesGolden) {
  const GoldenCase& c = GetParam();
  ClearIdeMacros();
  if (!c.bcb.empty()) ::setenv("BCB", (kData + std::string(c.bcb)).c_str(), 1);
  TProject project;
  ASSERT_NO_THROW(project = OpenProject(c.project)) << c.name;
  const std::string actual = DescribeProject(project);
  const std::string path = kGolden + std::string(c.name) + ".txt";
  if (const char* update = std::getenv("VELMORA_UPDATE_GOLDEN"); update && *update == '1')
    std::ofstream(path, std::ios::binary) << actual;
  EXPECT_EQ(actual, ReadText(path))
      << c.name << " (VELMORA_UPDATE_GOLDEN=1 rewrites " << path << ")";
}

INSTANTIATE_TEST_SUITE_P(
    Formats, OpenProjectGoldenTest,
    ::testing::Values(
        // Version 3 make-file: include path from CFLAG2's -I, units from OBJFILES.
        GoldenCase{.name = "kilnlog",
                   .project = std::string(VELMORA_SOURCE_DIR) + "/examples/KilnLog/KilnLog.bpr"},
        // Version 4: INCLUDEPATH and USERDEFINES over the switches, PATHCPP finds sources,
        // letter case and spaces in names, a missing and a repeated object file.
        GoldenCase{.name = "makefile4", .project = kData + "makefile4/Demo.bpr"},
        GoldenCase{.name = "makefile4-bcb", .project = kData + "makefile4/Demo.bpr", .bcb = "bcb"},
        GoldenCase{.name = "xmlbpr6", .project = kData + "xmlbpr/Viewer.bpr"},
        GoldenCase{.name = "xmlbpr5", .project = kData + "xmlbpr/Viewer5.bpr", .bcb = "bcb"},
        GoldenCase{.name = "cbproj", .project = kData + "cbproj/Shop.cbproj"},
        GoldenCase{.name = "dpr", .project = kData + "dpr/Tool.dpr"},
        GoldenCase{.name = "dproj", .project = kData + "dproj/Ledger.dproj"},
        GoldenCase{.name = "lpi-numbered", .project = kData + "lazarus/paint.lpi"},
        GoldenCase{.name = "lpi", .project = kData + "lazarus/shapes.lpi"},
        GoldenCase{.name = "lpk", .project = kData + "lazarus/drawkit.lpk"},
        GoldenCase{.name = "folder", .project = kData + "folder"}),
    [](const auto& row) {
      std::string name(row.param.name);
      for (char& ch : name)
        if (ch == '-') ch = '_';
      return name;
    });

}  // namespace
}  // namespace velmora
