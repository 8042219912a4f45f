// What belongs to one project rather than to the user: kept beside the project in its
// ".vlsettings" file (ini text, CR LF), read when the project opens and written when it
// closes. A missing file means a project opened for the first time: every value keeps its
// default. A damaged file loads what it can.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

inline constexpr char kProjectSettingsLoadError[] =
    "The project settings file for project %s could not be loaded because of the following "
    "error:\r\n%s";
inline constexpr char kProjectSettingsSaveError[] =
    "The project settings file for project %s could not be saved because of the following "
    "error:\r\n%s";

/// Where a tool window stood in this project ("Window Settings\<view>").
struct TProjectWindowSettings {
  /// False until the window's placement has been saved once; the other values mean
  /// nothing before.
  bool Statesaved = false;
  bool Visible = false;
  bool Docked = false;
  int32_t Left = 0;
  int32_t Top = 0;
  int32_t Width = 0;
  int32_t Height = 0;

  bool operator==(const TProjectWindowSettings&) const = default;
};

class TCurrentProjectSettings {
 public:
  // [General]
  bool UseProjectExternals = true;
  bool SynchronizeContextBar = true;
  /// Milliseconds between the context bar's updates from the editor's cursor.
  int32_t SynchronizeContextBarSpeed = 500;
  /// Updates the context bar only while the machine is idle.
  bool SynchronizeContextBarModeIdle = true;
  int32_t ClassViewActivePage = 0;
  int32_t ClassHierarchyTreeWidth = 0;
  int32_t ClassHierarchyListHeight = 0;

  // [Window Settings\...]
  TProjectWindowSettings ClassViewWindow;
  TProjectWindowSettings ContextBarWindow;
  TProjectWindowSettings ClassHierarchyWindow;
  TProjectWindowSettings BrowseHistoryWindow;

  /// [Exclude From Parsing]: files the parsers skip.
  std::vector<std::string> ExcludedFiles;
  /// [Browse History]: the entries of the browse history, oldest first.
  std::vector<std::string> BrowseHistory;
  /// [Class Filters]: names of the filter descriptions switched on for this project.
  std::vector<std::string> ClassFilters;

  /// Back to the values of a project opened for the first time.
  void Clear() { *this = TCurrentProjectSettings(); }

  /// The project's settings file: the project file with the extension ".vlsettings".
  static std::string SettingsFileName(std::string_view projectFile);

  /// Whether the parsers skip `fileName` (compared without regard to case).
  bool IsExcluded(std::string_view fileName) const;

  /// The file's text: the comment header, then each section after its comment line.
  std::string Text() const;
  /// Clears, then takes what the text holds. Lists stop at their first missing entry,
  /// whatever their "Count" says. Any text is accepted.
  void LoadFromText(std::string_view text);

  /// Loads the settings of the project. A missing file leaves every default and is no
  /// error. When the file cannot be read the defaults stay, `message` (if given) receives
  /// kProjectSettingsLoadError, and the result is false.
  bool Load(const std::string& projectFile, std::string* message = nullptr);
  /// Replaces the settings file in one step. On failure the old file stays as it was,
  /// `message` (if given) receives kProjectSettingsSaveError, and the result is false.
  bool Save(const std::string& projectFile, std::string* message = nullptr) const;

  bool operator==(const TCurrentProjectSettings&) const = default;
};

}  // namespace velmora
