#include "support/file_types.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <optional>

#include "support/stream.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;

const std::string kSourceDir = VELMORA_SOURCE_DIR;

TEST(FileTypesTest, PackageMatchesItsGoldenFile) {
  const std::string golden = std::string(VELMORA_TEST_DATA) + "/support/golden/velmora-mime.xml";
  if (const char* update = std::getenv("VELMORA_UPDATE_GOLDEN");
      update && std::string(update) == "1")
    WriteFileAtomically(golden, MimePackageText());
  EXPECT_EQ(MimePackageText(), ReadWholeFile(golden)) << golden;
}

TEST(FileTypesTest, DataHomeFollowsTheBaseDirectoryRules) {
  const struct {
    const char *xdg, *home, *expected;
  } cases[] = {
      {.xdg = "/data", .home = "/home/u", .expected = "/data"},
      {.xdg = nullptr, .home = "/home/u", .expected = "/home/u/.local/share"},
      {.xdg = "", .home = "/home/u/", .expected = "/home/u/.local/share"},
      {.xdg = "relative/data", .home = "/home/u", .expected = "/home/u/.local/share"},
      {.xdg = nullptr, .home = nullptr, .expected = ""},
      {.xdg = "", .home = "relative", .expected = ""},
  };
  for (const auto& c : cases)
    EXPECT_EQ(UserDataHome(c.xdg, c.home), c.expected)
        << (c.xdg ? c.xdg : "(unset)") << " / " << (c.home ? c.home : "(unset)");
}

class RegistrationTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/velmora-types-XXXXXX";
    dataHome_ = ::mkdtemp(pattern);
    if (const char* old = std::getenv("XDG_DATA_HOME")) oldDataHome_ = old;
    ::setenv("XDG_DATA_HOME", dataHome_.c_str(), 1);
    where_ = DefaultFileTypeRegistration(kSourceDir + "/data/icons");
  }
  void TearDown() override {
    if (oldDataHome_)
      ::setenv("XDG_DATA_HOME", oldDataHome_->c_str(), 1);
    else
      ::unsetenv("XDG_DATA_HOME");
    fs::remove_all(dataHome_);
  }

  std::string Package() const { return dataHome_ + "/mime/packages/velmora.xml"; }

  std::string dataHome_;
  std::optional<std::string> oldDataHome_;
  TFileTypeRegistration where_;
};

TEST_F(RegistrationTest, RegisteringTwiceWritesOnce) {
  ASSERT_EQ(where_.DataHome, dataHome_);
  const TRegistrationOutcome first = RegisterFileTypes(where_);
  ASSERT_TRUE(first.Ok) << first.Message;
  EXPECT_EQ(first.Written.size(), 3u) << "the package and two icons";
  EXPECT_EQ(first.MissingIcons, 0);
  EXPECT_TRUE(
      fs::exists(dataHome_ + "/icons/hicolor/scalable/mimetypes/application-x-velmora-domain.svg"));
  const auto written = fs::last_write_time(Package());

  const TRegistrationOutcome second = RegisterFileTypes(where_);
  EXPECT_TRUE(second.Ok) << second.Message;
  EXPECT_TRUE(second.Written.empty());
  EXPECT_FALSE(second.DatabaseUpdated);
  EXPECT_EQ(fs::last_write_time(Package()), written);
}

TEST_F(RegistrationTest, DatabaseMapsTheExtensionsToTheTypes) {
  if (where_.UpdateTool.empty()) GTEST_SKIP() << "update-mime-database is not installed";
  const TRegistrationOutcome outcome = RegisterFileTypes(where_);
  ASSERT_TRUE(outcome.Ok) << outcome.Message;
  EXPECT_TRUE(outcome.DatabaseUpdated);
  const std::string globs = ReadWholeFile(dataHome_ + "/mime/globs2");
  for (const TFileTypeInfo& type : kFileTypes) {
    const std::string line = std::string(type.MimeType) + ":*" + std::string(type.Extension);
    EXPECT_NE(globs.find(line), std::string::npos) << line;
  }
}

TEST_F(RegistrationTest, ChangedPackageIsReplaced) {
  where_.UpdateTool.clear();
  ASSERT_TRUE(RegisterFileTypes(where_).Ok);
  std::ofstream(Package(), std::ios::trunc) << "<mime-info/>\n";
  const TRegistrationOutcome again = RegisterFileTypes(where_);
  EXPECT_EQ(again.Written, std::vector<std::string>{Package()});
  EXPECT_EQ(ReadWholeFile(Package()), MimePackageText());
}

TEST_F(RegistrationTest, MissingIconsAndUnwritableFoldersAreReported) {
  where_.UpdateTool.clear();
  where_.IconSource = dataHome_ + "/nowhere";
  TRegistrationOutcome outcome = RegisterFileTypes(where_);
  EXPECT_TRUE(outcome.Ok) << outcome.Message;
  EXPECT_EQ(outcome.MissingIcons, 2);

  where_.DataHome = dataHome_ + "/file";
  std::ofstream(where_.DataHome) << "a file where a folder should be";
  outcome = RegisterFileTypes(where_);
  EXPECT_FALSE(outcome.Ok);
  EXPECT_FALSE(outcome.Message.empty());

  where_.DataHome.clear();
  EXPECT_FALSE(RegisterFileTypes(where_).Ok);
}

}  // namespace
}  // namespace velmora
