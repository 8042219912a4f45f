#include "support/paths.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <fstream>

namespace velmora {
namespace {

TEST(PathsTest, SplitsOnBothSeparators) {
  struct Case {
    std::string_view path, name, dir, ext;
  } cases[] = {
      {"a/b/c.cpp", "c.cpp", "a/b/", ".cpp"},
      {"a\\b\\C.H", "C.H", "a\\b\\", ".H"},
      {"c.tar.gz", "c.tar.gz", "", ".gz"},
      {"dir.d/name", "name", "dir.d/", ""},
      {"", "", "", ""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ExtractFileName(c.path), c.name) << c.path;
    EXPECT_EQ(ExtractFilePath(c.path), c.dir) << c.path;
    EXPECT_EQ(ExtractFileExt(c.path), c.ext) << c.path;
  }
  EXPECT_EQ(JoinPath("a/", "b"), "a/b");
  EXPECT_EQ(JoinPath("a", "\\b"), "a/b");
  EXPECT_EQ(JoinPath("", "b"), "b");
}

class IncludeResolutionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/velmora-paths-XXXXXX";
    root_ = ::mkdtemp(pattern);
    for (const char* d : {"/src", "/inc", "/Common", "/Common/Sub"})
      ::mkdir((root_ + d).c_str(), 0755);
    for (const char* f : {"/src/a.h", "/inc/a.h", "/inc/b.h", "/Common/Sub/Shared.H"})
      std::ofstream(root_ + f) << "x";
  }
  void TearDown() override { std::system(("rm -rf " + root_).c_str()); }
  std::string root_;
};

TEST_F(IncludeResolutionTest, PrefersTheIncludingFolderThenThePathInOrder) {
  const std::vector<std::string> path = {root_ + "/inc", root_};
  struct Case {
    std::string_view name, expected;
  } cases[] = {
      {"a.h", "/src/a.h"},                                // beside the including file wins
      {"b.h", "/inc/b.h"},                                // then the include path
      {"..\\inc\\b.h", "/src/../inc/b.h"},                // backslashes separate
      {"common\\sub\\shared.h", "/Common/Sub/Shared.H"},  // case ignored when not found as written
      {"\\inc\\b.h", "/inc/b.h"},                         // rooted: the drive is an ancestor folder
      {"/src/a.h", "/src/a.h"},                           // ... with either separator
      {"\\b.h", "/inc/b.h"},                              // not at any root: the include path
      {"C:\\inc\\b.h", ""},                               // a drive letter is taken only as written
      {"missing.h", ""},
      {"", ""},
  };
  for (const auto& c : cases) {
    const std::string expected = c.expected.empty() ? "" : root_ + std::string(c.expected);
    EXPECT_EQ(ResolveIncludeFile(c.name, root_ + "/src/", path), expected) << c.name;
  }
}

}  // namespace
}  // namespace velmora
