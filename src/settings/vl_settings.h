// The user's global options: one object, created when the add-in starts, read from the
// settings store, changed by the options dialog and written back. Construction sets every
// default, so that a first start (an empty store) and a store that lacks some keys both
// leave the options a new user expects.
//
// Also owns the smaller settings objects: the member filter and the filter descriptions
// (kept in the same store), the help export configuration and the current project's
// settings (kept in files of their own).
//
// Main thread only; parser threads get copies of the values they need when they start.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "settings/code_templates.h"
#include "settings/shortcut.h"

namespace velmora {

class TSettingsStore;
class TClassMemberFilter;
class TFilterList;
class THelpExportConfiguration;
class TCurrentProjectSettings;

/// Placement of the class hierarchy window (section "ClassHierarchy").
struct TClassHierarchySettings {
  bool Statesaved = false;
  int32_t TreeWidth = 0;
  int32_t FieldListHeigth = 0;
  bool LinkClassView = false;
  int32_t Windowstate = 0;
  int32_t Left = 0;
  int32_t Top = 0;
  int32_t Width = 0;
  int32_t Height = 0;
};

/// The inheritance tree window (section "Inheritance").
struct TInheritanceSettings {
  bool Statesaved = false;
  bool LinkClassView = false;
  bool AutoUpdate = true;
  bool KeepOnTop = true;
  int32_t Left = 0;
  int32_t Top = 0;
  int32_t Width = 0;
  int32_t Height = 0;
};

/// What the find dialog searches (section "Finder").
struct TFinderSettings {
  bool Classes = true;
  bool Fields = true;
  bool Methods = true;
  bool MatchCase = false;
  bool WholeWord = false;
  std::string History;
};

/// The filter toolbar (section "Filter", which the member filter shares).
struct TFilterToolbarSettings {
  bool Statesaved = false;
  int32_t Left = 0;
  int32_t Top = 0;
  bool ToolbarVisible = false;
  bool Ontop = true;
  bool UpdateAutomatic = true;
  bool Docked = false;
};

/// The help export window and its recent files (section "Help Generator").
struct THelpGeneratorSettings {
  static constexpr int kMaxRecentFiles = 32;

  bool Statesaved = false;
  int32_t Windowstate = 0;
  int32_t Left = 0;
  int32_t Top = 0;
  int32_t Width = 0;
  int32_t Height = 0;
  int32_t TreeWidth = 0;
  int32_t TextHeight = 0;
  bool TextVisible = false;
  int32_t WarningLevel = 0;
  bool DoExport = false;
  bool CheckHelpConfiguration = true;
  /// Kept as "MruCount" and "File" + index, at most kMaxRecentFiles.
  std::vector<std::string> RecentFiles;
};

class TVLSettings {
 public:
  /// Bits of the view option byte.
  static constexpr uint8_t kShowMethArgs = 1;
  static constexpr uint8_t kShowMemTypes = 2;

  /// Every default, and the owned objects in their initial state.
  TVLSettings();
  ~TVLSettings();
  TVLSettings(const TVLSettings&) = delete;
  TVLSettings& operator=(const TVLSettings&) = delete;

  /// Reads every key, each with its current value as the default, so a missing key (or
  /// one of the wrong form, or an integer out of range) keeps what was there; then the
  /// member filter and the filter descriptions.
  void Load(const TSettingsStore& store);
  /// Writes every key, section by section in the fixed order, then the member filter and
  /// the filter descriptions.
  void Save(TSettingsStore& store) const;

  // ---- General ----
  bool ShowWarnings = false;
  bool ShowFileNotFoundWarning = false;
  /// "ShowMethArgs" (bit 0) and "ShowMemTypes" (bit 1) share this byte.
  uint8_t ViewOptions = kShowMethArgs | kShowMemTypes;
  bool ShowMethArgs() const { return (ViewOptions & kShowMethArgs) != 0; }
  bool ShowMemTypes() const { return (ViewOptions & kShowMemTypes) != 0; }
  void SetShowMethArgs(bool show) { SetViewOption(kShowMethArgs, show); }
  void SetShowMemTypes(bool show) { SetViewOption(kShowMemTypes, show); }
  void SetViewOption(uint8_t bit, bool on) {
    ViewOptions = static_cast<uint8_t>(on ? (ViewOptions | bit) : (ViewOptions & ~bit));
  }
  /// Priority of the parser threads, 0 (idle) to 6 (time critical); 3 is normal.
  int32_t ParsePriority = 3;
  int32_t Statusbar = 0;
  int32_t EditorJumpOffSet = 5;
  int32_t BrowseHistoryItemCount = 100;
  bool UseMainMenu = true;
  TShortCut HKShow = ShortCut(VK_F10, scShift);
  TShortCut HKClassHierarchy = ShortCut('H', scCtrl | scAlt);
  TShortCut HKContextBar = ShortCut(VK_F10, scShift | scCtrl);
  TShortCut HKFind = ShortCut('F', scShift | scCtrl);
  TShortCut HKQuickFindCode = ShortCut(VK_F12, scCtrl | scAlt);
  TShortCut HKQuickFindTree = ShortCut(VK_F12, scShift | scCtrl | scAlt);
  TShortCut HKCodeBack = ShortCut(VK_BACK, scCtrl | scAlt);
  TShortCut HKAddMeth = ShortCut('A', scShift | scCtrl);
  TShortCut HKAddMemb = ShortCut('A', scShift | scCtrl | scAlt);
  TShortCut HKAddProp = ShortCut('P', scCtrl | scAlt);
  /// Further attempts a parser thread makes at a file it could not load or parse
  /// ("ParseRetryCount", 0 to 100).
  int32_t ParseRetryCount = 2;

  // ---- CodeGeneration ----
  bool CheckIdentSyntax = false;
  /// Visibilities preselected by the add member dialogs (0 public .. 4 automated).
  int32_t AddFieldDefaultVisibility = 0;
  int32_t AddMethodDefaultVisibility = 0;
  int32_t AddPropertyDefaultVisibility = 0;
  bool AlphabeticCodeGen = false;
  bool CodeGenRemoveTrailingSpaces = true;
  bool CodeGenRemovePrecedingSpaces = false;
  int32_t PascalMarkerCommentType = 0;
  int32_t CPPCodeGenMarkerCommentType = 3;
  /// Stored in "CodeGeneration\C++ Code Templates" and "CodeGeneration\Pascal Code
  /// Templates", key = index; only the texts are stored.
  TCppTemplates CppTemplates = DefaultCppTemplates();
  TPascalTemplates PascalTemplates = DefaultPascalTemplates();

  // ---- Externals ----
  bool UseExternals = true;   // "Use"
  bool SaveExternals = true;  // "Save"
  /// VelmoraDataDir() + "/external.cinfo" unless the user chose another file.
  std::string ClassInfoFile;

  // ---- Misc ----
  bool FindWordAtCursor = true;
  bool FindGotoSource = true;
  bool MethodViewerOnTop = true;
  bool About = true;
  bool OnTOP = true;
  /// Also parse implementations (the Pascal parser's option).
  bool ParseImplementation = false;
  bool UseEditorIntegration = true;
  std::string DockedTitlebarColorName = "clInactiveCaption";
  bool ShowDockedClassViewTitlebar = true;
  bool ShowDockedContextBarTitlebar = true;
  bool ShowDockedClassHierarchyTitlebar = true;

  TClassHierarchySettings ClassHierarchy;
  TInheritanceSettings Inheritance;

  // ---- Globals ----
  bool UseGlobalsProject = true;
  bool UseGlobalsExternal = false;

  // ---- Domains ----
  bool DomainsBefore = false;
  bool DomainsInternal = true;  // "Internal"
  bool DomainsExternal = true;  // "External"

  TFinderSettings Finder;
  TFilterToolbarSettings FilterToolbar;
  THelpGeneratorSettings HelpGenerator;

  // ---- System ----
  /// Tool tips in tree views; true here, since this platform is never the one system
  /// whose tree views mishandled them.
  bool ShowTreeToolTips = true;

  // ---- Hidden ----
  bool DontShowSettingsSaveError = false;

  TClassMemberFilter& MemberFilter() { return *memberFilter_; }
  const TClassMemberFilter& MemberFilter() const { return *memberFilter_; }
  TFilterList& FilterList() { return *filterList_; }
  const TFilterList& FilterList() const { return *filterList_; }
  THelpExportConfiguration& HelpExport() { return *helpExport_; }
  TCurrentProjectSettings& ProjectSettings() { return *projectSettings_; }

 private:
  std::unique_ptr<TClassMemberFilter> memberFilter_;
  std::unique_ptr<TFilterList> filterList_;
  std::unique_ptr<THelpExportConfiguration> helpExport_;
  std::unique_ptr<TCurrentProjectSettings> projectSettings_;
};

}  // namespace velmora
