// The global options: defaults on a first start, every key through a save and a load,
// the shared option byte, hot key codes, and what a damaged or partial store leaves.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "model/filters.h"
#include "model/settings_store.h"
#include "settings/registry_ini_store.h"
#include "settings/settings_table.h"
#include "settings/settings_text.h"
#include "settings/vl_settings.h"
#include "settings_test_support.h"

namespace velmora {
namespace {

using test::TScopedEnv;
using test::TTempDir;
using Values = std::vector<std::pair<std::string, std::string>>;

// "Section/Key" and the value's text, for every value in listing order.
Values AllValues(const TVLSettings& s) {
  Values out;
  for (const TSettingItem& item : SettingItems(s))
    out.emplace_back(item.Section + "/" + item.Key, SettingText(s, item));
  return out;
}

TSettingType TypeOf(const TSettingItem& item) {
  if (item.ItemKind == TSettingItem::Kind::MemberFilter) return TSettingType::Boolean;
  if (item.ItemKind == TSettingItem::Kind::RecentFile) return TSettingType::String;
  return item.Def->Type;
}

// A value of the item's type that differs from `current` and, where the type allows,
// from every other row's, so that two rows sharing one field cannot both keep theirs.
std::string OtherValue(const TSettingItem& item, const std::string& current, int row) {
  // Public, published and automated cells of the member filter change together; hiding
  // every cell keeps them all apart from their default.
  if (item.ItemKind == TSettingItem::Kind::MemberFilter) return "false";
  switch (TypeOf(item)) {
    case TSettingType::RecentFiles:
      return current;  // set before the rows, so that the files are rows too
    case TSettingType::Boolean:
    case TSettingType::OptionBit:
      return current == "true" ? "false" : "true";
    case TSettingType::Integer: {
      const int64_t wanted = 1000 + row;
      if (wanted <= item.Def->Max) return std::to_string(wanted);
      const int64_t now = std::stoll(current);
      return std::to_string(now == item.Def->Max ? item.Def->Min : now + 1);
    }
    case TSettingType::ShortCut:
      return ShortCutToText(ShortCut(static_cast<uint8_t>(VK_F1 + row % 24), scShift | scAlt));
    default:
      return " value " + std::to_string(row) + "\r\n\twith \"quotes\" ";
  }
}

TEST(VLSettingsTest, FirstStartHasEveryDefault) {
  TTempDir dir;
  TScopedEnv data("XDG_DATA_HOME", "/data-home");
  std::ostringstream out, err;
  EXPECT_EQ(RunSettingsCommand(dir / "registry.ini", {}, out, err), 0) << err.str();
  test::ExpectGolden("defaults.txt", out.str());

  // The codes themselves, not only their texts.
  const TVLSettings s;
  const struct {
    const char* key;
    TShortCut value;
    TShortCut expected;
  } hotKeys[] = {
      {.key = "HKShow", .value = s.HKShow, .expected = 0x2079},
      {.key = "HKClassHierarchy", .value = s.HKClassHierarchy, .expected = 0xC048},
      {.key = "HKContextBar", .value = s.HKContextBar, .expected = 0x6079},
      {.key = "HKFind", .value = s.HKFind, .expected = 0x6046},
      {.key = "HKQuickFindCode", .value = s.HKQuickFindCode, .expected = 0xC07B},
      {.key = "HKQuickFindTree", .value = s.HKQuickFindTree, .expected = 0xE07B},
      {.key = "HKCodeBack", .value = s.HKCodeBack, .expected = 0xC008},
      {.key = "HKAddMeth", .value = s.HKAddMeth, .expected = 0x6041},
      {.key = "HKAddMemb", .value = s.HKAddMemb, .expected = 0xE041},
      {.key = "HKAddProp", .value = s.HKAddProp, .expected = 0xC050},
  };
  for (const auto& h : hotKeys) EXPECT_EQ(h.value, h.expected) << h.key;
  EXPECT_EQ(s.ViewOptions, 3);
}

TEST(VLSettingsTest, EveryKeySurvivesSaveAndLoad) {
  TTempDir dir;
  TVLSettings s;
  const Values defaults = AllValues(s);
  std::string error;
  ASSERT_TRUE(SetSettingText(s, *FindSettingItem(s, "Help Generator", "MruCount"), "3", error));
  const std::vector<TSettingItem> items = SettingItems(s);
  Values expected;
  for (size_t row = 0; row < items.size(); ++row) {
    const std::string value = OtherValue(items[row], SettingText(s, items[row]), int(row));
    ASSERT_TRUE(SetSettingText(s, items[row], value, error)) << items[row].Key << ": " << error;
    expected.emplace_back(items[row].Section + "/" + items[row].Key, SettingText(s, items[row]));
  }
  // Setting a later row must not have undone an earlier one.
  EXPECT_EQ(AllValues(s), expected);
  TFilterDescription* forms = s.FilterList().Add("Forms");
  forms->Add(TFilter::ftAncestor, "*TForm", TFilter::mkEquals);

  TRegistryIniStore store(dir / "registry.ini");
  s.Save(store);
  ASSERT_TRUE(store.Flush()) << store.LastError();
  TRegistryIniStore reread(dir / "registry.ini");
  ASSERT_TRUE(reread.Load());
  TVLSettings back;
  back.Load(reread);
  EXPECT_EQ(AllValues(back), expected);
  for (const auto& [key, value] : defaults) {
    if (key == "Help Generator/MruCount") continue;
    EXPECT_EQ(std::find(expected.begin(), expected.end(), std::pair(key, value)), expected.end())
        << key << " kept its default";
  }
  ASSERT_NE(back.FilterList().Find("forms"), nullptr);
  EXPECT_EQ(back.FilterList().Find("forms")->Items(0)->GetText(), "*TForm");
}

TEST(VLSettingsTest, TheTwoViewOptionsShareOneByte) {
  const struct {
    const char* stored;  // lines of section General
    uint8_t before;
    uint8_t after;
  } loads[] = {
      {.stored = "", .before = 3, .after = 3},
      {.stored = "ShowMethArgs=0", .before = 3, .after = 2},
      {.stored = "ShowMemTypes=0", .before = 3, .after = 1},
      {.stored = "ShowMethArgs=1", .before = 0, .after = 1},
      {.stored = "ShowMemTypes=1\nShowMethArgs=0", .before = 1, .after = 2},
      {.stored = "ShowMethArgs=junk\nShowMemTypes=", .before = 2, .after = 2},
  };
  TTempDir dir;
  for (const auto& c : loads) {
    test::WriteText(dir / "r.ini", std::string("[") + kVLRegistryKey + "\\General]\n" + c.stored);
    TRegistryIniStore store(dir / "r.ini");
    store.Load();
    TVLSettings s;
    s.ViewOptions = c.before;
    s.Load(store);
    EXPECT_EQ(s.ViewOptions, c.after) << c.stored;
  }

  TVLSettings s;
  s.SetShowMethArgs(false);
  EXPECT_TRUE(s.ShowMemTypes());
  s.SetShowMemTypes(false);
  s.SetShowMethArgs(true);
  EXPECT_EQ(s.ViewOptions, 1);
  TMemorySettingsStore store;
  s.Save(store);
  EXPECT_TRUE(store.ReadBool("General", "ShowMethArgs", false));
  EXPECT_FALSE(store.ReadBool("General", "ShowMemTypes", true));
}

TEST(VLSettingsTest, BadOrMissingValuesKeepTheCurrentOnes) {
  const struct {
    const char* section;
    const char* key;
    const char* stored;
    const char* expected;
  } cases[] = {
      {.section = "General", .key = "ParsePriority", .stored = "abc", .expected = "3"},
      {.section = "General", .key = "ParsePriority", .stored = "7", .expected = "3"},
      {.section = "General", .key = "ParsePriority", .stored = "0", .expected = "0"},
      {.section = "General", .key = "EditorJumpOffSet", .stored = "-4", .expected = "-4"},
      {.section = "General", .key = "ParseRetryCount", .stored = "1000000", .expected = "2"},
      {.section = "General", .key = "HKShow", .stored = "70000", .expected = "Shift+F10"},
      {.section = "General", .key = "HKShow", .stored = "-1", .expected = "Shift+F10"},
      {.section = "General", .key = "HKShow", .stored = "16465", .expected = "Ctrl+Q"},
      {.section = "General", .key = "ShowWarnings", .stored = "maybe", .expected = "false"},
      {.section = "Misc", .key = "UseEditorIntegration", .stored = "0", .expected = "false"},
      {.section = "CodeGeneration",
       .key = "AddMethodDefaultVisibility",
       .stored = "5",
       .expected = "0"},
      {.section = "Help Generator", .key = "MruCount", .stored = "99", .expected = "0"},
      {.section = "Help Generator",
       .key = "MruCount",
       .stored = "4\nFile0=a\nFile2=c",
       .expected = "1"},
      {.section = "Externals", .key = "ClassInfoFile", .stored = "\"\"", .expected = ""},
  };
  TTempDir dir;
  TScopedEnv data("XDG_DATA_HOME", "/data-home");
  const Values defaults = AllValues(TVLSettings());
  for (const auto& c : cases) {
    test::WriteText(dir / "r.ini", std::string("[") + kVLRegistryKey + "\\" + c.section + "]\n" +
                                       c.key + "=" + c.stored + "\n");
    TRegistryIniStore store(dir / "r.ini");
    ASSERT_TRUE(store.Load());
    TVLSettings s;
    s.Load(store);
    const std::string name = std::string(c.section) + "/" + c.key;
    for (const auto& [key, value] : AllValues(s)) {
      if (key == name) {
        EXPECT_EQ(value, c.expected) << name << " = " << c.stored;
      } else if (key.rfind("Help Generator/File", 0) != 0) {
        // An init-capture: clang 14 cannot capture a structured binding itself.
        const auto d = std::find_if(defaults.begin(), defaults.end(),
                                    [&k = key](const auto& row) { return row.first == k; });
        EXPECT_EQ(value, d->second) << key << " after " << name << " = " << c.stored;
      }
    }
  }

  // A key missing from the store keeps whatever the object held, not the default.
  TVLSettings s;
  s.ParsePriority = 5;
  s.CppTemplates[3].Template = "return 42;";
  s.Load(TMemorySettingsStore());
  EXPECT_EQ(s.ParsePriority, 5);
  EXPECT_EQ(s.CppTemplates[3].Template, "return 42;");
}

TEST(VLSettingsTest, ExternalClassInfoLivesInTheDataHome) {
  const struct {
    std::optional<std::string> xdg;
    const char* expected;
  } cases[] = {
      {.xdg = "/data", .expected = "/data/velmora/external.cinfo"},
      {.xdg = "data", .expected = "/home/kiln/.local/share/velmora/external.cinfo"},
      {.xdg = std::nullopt, .expected = "/home/kiln/.local/share/velmora/external.cinfo"},
  };
  TScopedEnv home("HOME", "/home/kiln");
  for (const auto& c : cases) {
    TScopedEnv xdg("XDG_DATA_HOME", c.xdg);
    EXPECT_EQ(TVLSettings().ClassInfoFile, c.expected) << c.xdg.value_or("(unset)");
  }
}

TEST(ShortCutTest, TextAndCodes) {
  const struct {
    const char* text;
    std::optional<TShortCut> code;
    const char* written;  // ShortCutToText of the code, when it differs from text
  } cases[] = {
      {.text = "Shift+Ctrl+F10", .code = 0x6079, .written = nullptr},
      {.text = "ctrl+alt+backspace", .code = 0xC008, .written = "Ctrl+Alt+Backspace"},
      {.text = "Control + Shift + a", .code = 0x6041, .written = "Shift+Ctrl+A"},
      {.text = "Alt+BkSp", .code = 0x8008, .written = "Alt+Backspace"},
      {.text = "Shift+Ctrl+Alt+F24", .code = 0xE087, .written = nullptr},
      {.text = "Ctrl+#186", .code = 0x40BA, .written = nullptr},
      {.text = "8313", .code = 0x2079, .written = "Shift+F10"},
      {.text = "5", .code = '5', .written = nullptr},
      {.text = "None", .code = 0, .written = nullptr},
      {.text = "4161", .code = 0x1041, .written = nullptr},
      {.text = "Hyper+F1", .code = std::nullopt, .written = nullptr},
      {.text = "Ctrl+", .code = std::nullopt, .written = nullptr},
      {.text = "F25", .code = std::nullopt, .written = nullptr},
      {.text = "F+1", .code = std::nullopt, .written = nullptr},
      {.text = "65536", .code = std::nullopt, .written = nullptr},
      {.text = "", .code = std::nullopt, .written = nullptr},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(TextToShortCut(c.text), c.code) << c.text;
    if (!c.code) continue;
    EXPECT_EQ(ShortCutToText(*c.code), c.written ? c.written : c.text) << c.text;
  }
}

}  // namespace
}  // namespace velmora
