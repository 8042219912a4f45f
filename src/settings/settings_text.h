// The global options as text, one value at a time: what `velmora settings` lists, shows
// and sets. Each value is addressed by its section and key as the store keeps them
// (compared without regard to case); a code template by the subsection of its language
// and its index ("CodeGeneration\C++ Code Templates", "6"); a recent file of the help
// generator by "File" + index; a member filter cell by "F" + category + visibility.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

class TVLSettings;
struct TSettingDef;

struct TSettingItem {
  enum class Kind { Row, Template, RecentFile, MemberFilter };

  std::string Section;
  std::string Key;
  Kind ItemKind = Kind::Row;
  /// The table row (for Row, Template and RecentFile).
  const TSettingDef* Def = nullptr;
  /// Template index, recent file index, or member filter category * 10 + visibility.
  int Index = 0;
};

/// Every value in listing order: the table's order, the member filter cells after the
/// filter toolbar's keys, each code template and recent file in its place.
std::vector<TSettingItem> SettingItems(const TVLSettings& settings);
std::optional<TSettingItem> FindSettingItem(const TVLSettings& settings, std::string_view section,
                                            std::string_view key);
/// The whole value: "true"/"false", a decimal integer, a hot key as "Shift+Ctrl+F10", a
/// string or template text as it is.
std::string SettingText(const TVLSettings& settings, const TSettingItem& item);
/// The value as one listing line shows it: as the ini file would hold it, and a template
/// by its first line, followed by " ..." when it has more.
std::string SettingListText(const TVLSettings& settings, const TSettingItem& item);
/// Sets the value from text after checking its form (booleans true, false, 1 or 0;
/// integers in decimal within the key's range; hot keys as a number or a text such as
/// "Shift+Ctrl+F10"; template line breaks become CR LF). On a bad form nothing changes,
/// `error` says why and the result is false.
bool SetSettingText(TVLSettings& settings, const TSettingItem& item, std::string_view text,
                    std::string& error);

/// `velmora settings [SECTION [KEY [VALUE]]]` against the store file `storeFile`: no
/// argument lists every value, a section lists that section, a key prints its value, a
/// value sets it and saves the store. Returns the exit status (0, or 1 with a message on
/// `err` and nothing changed).
int RunSettingsCommand(const std::string& storeFile, const std::vector<std::string>& args,
                       std::ostream& out, std::ostream& err);

}  // namespace velmora
