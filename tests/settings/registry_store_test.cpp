// The registry-as-ini store: typed reads with defaults, the file it writes, where it
// lives, and what happens when the file cannot be read or written.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "settings/registry_ini_store.h"
#include "settings_test_support.h"
#include "support/ansi.h"
#include "support/paths.h"

namespace velmora {
namespace {

using test::ReadText;
using test::TTempDir;
using test::WriteText;

TEST(RegistryStoreTest, ValuesOfTheWrongFormReadAsTheDefault) {
  const struct {
    const char* text;
    int32_t integer;  // read with default -99
    int boolean;      // read with default false and with default true: 0, 1, or -1 = default
  } cases[] = {
      {.text = "5", .integer = 5, .boolean = 1},
      {.text = " -7 ", .integer = -7, .boolean = 1},
      {.text = "+3", .integer = 3, .boolean = 1},
      {.text = "0", .integer = 0, .boolean = 0},
      {.text = "2147483647", .integer = 2147483647, .boolean = 1},
      {.text = "2147483648", .integer = -99, .boolean = -1},
      {.text = "0x10", .integer = -99, .boolean = -1},
      {.text = "1.5", .integer = -99, .boolean = -1},
      {.text = "abc", .integer = -99, .boolean = -1},
      {.text = "", .integer = -99, .boolean = -1},
      {.text = "-", .integer = -99, .boolean = -1},
      {.text = "TRUE", .integer = -99, .boolean = 1},
      {.text = "false", .integer = -99, .boolean = 0},
      {.text = "yes", .integer = -99, .boolean = -1},
  };
  TTempDir dir;
  for (const auto& c : cases) {
    WriteText(dir / "registry.ini",
              std::string("[") + kVLRegistryKey + "\\General]\nValue=" + c.text + "\n");
    TRegistryIniStore store(dir / "registry.ini");
    ASSERT_TRUE(store.Load());
    EXPECT_EQ(store.ReadInteger("general", "value", -99), c.integer) << c.text;
    for (const bool def : {false, true})
      EXPECT_EQ(store.ReadBool("General", "Value", def), c.boolean < 0 ? def : c.boolean == 1)
          << c.text << " default " << def;
    EXPECT_EQ(store.ReadString("General", "Value", "x"), Trim(c.text)) << c.text;
    EXPECT_EQ(store.ReadInteger("General", "Missing", -99), -99) << c.text;
  }
}

TEST(RegistryStoreTest, KeepsFullKeyPathsAndWritesOnlyWhenChanged) {
  TTempDir dir;
  const std::string file = dir / "config/velmora/registry.ini";
  TRegistryIniStore store(file);
  EXPECT_TRUE(store.Load());  // no file yet: an empty store
  EXPECT_FALSE(store.SectionExists("General"));
  EXPECT_TRUE(store.Flush());
  EXPECT_FALSE(FileExists(file));  // nothing changed, nothing written

  store.WriteBool("General", "ShowWarnings", true);
  store.WriteInteger("General", "HKShow", 8313);
  store.WriteString("Filter\\Forms", "Value0", " padded ");
  EXPECT_TRUE(store.Flush());  // makes the missing folders
  EXPECT_EQ(ReadText(file),
            "[Software\\Quarnby\\Velmora Pro\\C++ Builder 3.0\\General]\n"
            "ShowWarnings=1\nHKShow=8313\n\n"
            "[Software\\Quarnby\\Velmora Pro\\C++ Builder 3.0\\Filter\\Forms]\n"
            "Value0=\" padded \"\n");

  TRegistryIniStore back(file);
  ASSERT_TRUE(back.Load());
  EXPECT_TRUE(back.ReadBool("GENERAL", "showwarnings", false));
  EXPECT_EQ(back.ReadInteger("General", "HKShow", 0), 8313);
  EXPECT_EQ(back.ReadString("filter\\forms", "Value0", ""), " padded ");
  back.WriteBool("General", "ShowWarnings", true);  // the same value: no change
  EXPECT_FALSE(back.Modified());
  back.EraseSection("Filter\\Forms");
  EXPECT_TRUE(back.Modified());
  EXPECT_FALSE(back.SectionExists("Filter\\Forms"));
  EXPECT_TRUE(back.SectionExists("General"));
}

TEST(RegistryStoreTest, DefaultFileFollowsTheConfigurationHome) {
  const struct {
    std::optional<std::string> xdg;
    const char* expected;
  } cases[] = {
      {.xdg = "/cfg", .expected = "/cfg/velmora/registry.ini"},
      {.xdg = "relative/cfg", .expected = "/home/kiln/.config/velmora/registry.ini"},
      {.xdg = "", .expected = "/home/kiln/.config/velmora/registry.ini"},
      {.xdg = std::nullopt, .expected = "/home/kiln/.config/velmora/registry.ini"},
  };
  test::TScopedEnv home("HOME", "/home/kiln");
  for (const auto& c : cases) {
    test::TScopedEnv xdg("XDG_CONFIG_HOME", c.xdg);
    EXPECT_EQ(TRegistryIniStore::DefaultFileName(), c.expected) << c.xdg.value_or("(unset)");
  }
}

TEST(RegistryStoreTest, AFailedWriteIsReportedOnceUnlessSilenced) {
  TTempDir dir;
  // A name that leaves no room for the temporary file's suffix: every write fails, even
  // for a user whom permissions do not stop.
  const std::string file = dir / std::string(250, 'r');
  std::vector<std::string> reports;
  TRegistryIniStore store(file);
  store.OnError = [&](const std::string& message) { reports.push_back(message); };
  ASSERT_TRUE(store.Load());
  store.WriteInteger("General", "ParsePriority", 2);

  EXPECT_FALSE(store.Flush());
  ASSERT_EQ(reports.size(), 1u);
  EXPECT_EQ(
      reports[0].rfind("The settings could not be saved because of the following error:\r\n", 0),
      0u)
      << reports[0];
  EXPECT_EQ(reports[0], store.LastError());
  EXPECT_TRUE(store.Modified());  // still to be written

  EXPECT_FALSE(store.Flush());  // a second failure: a second report
  EXPECT_EQ(reports.size(), 2u);

  store.WriteBool(kHiddenSection, kDontShowSettingsSaveError, true);
  EXPECT_FALSE(store.Flush());
  EXPECT_EQ(reports.size(), 2u);
  EXPECT_FALSE(store.LastError().empty());
}

TEST(RegistryStoreTest, AnUnreadableFileIsNeverReplaced) {
  TTempDir dir;
  const std::string file = dir / "registry.ini";
  std::filesystem::create_directory(file);  // cannot be read as a file
  TRegistryIniStore store(file);
  EXPECT_FALSE(store.Load());
  EXPECT_FALSE(store.LastError().empty());
  EXPECT_EQ(store.ReadInteger("General", "ParsePriority", 3), 3);
  store.WriteInteger("General", "ParsePriority", 1);
  int reports = 0;
  store.OnError = [&](const std::string&) { ++reports; };
  EXPECT_FALSE(store.Flush());
  EXPECT_EQ(reports, 1);
  EXPECT_TRUE(std::filesystem::is_directory(file));
}

}  // namespace
}  // namespace velmora
