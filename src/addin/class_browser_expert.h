// The add-in's expert: registered with the IDE at the entry point, it builds the
// add-in's menu right of the IDE's Project menu, follows the project and its files
// through the IDE's notifiers, and hands every event and command to the manager. Its
// destructor is the add-in's shutdown.
//
// Main thread only.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "addin/menu_table.h"
#include "ide/expert.h"
#include "ide/interface.h"

namespace velmora {

class TAddInNotifier;
class TCommonModuleList;
class TEditorFileInfoList;
class TIMenuItem;
class TIModule;
class TProjectNotifier;
class TRegistryIniStore;
class TVLManagerInterface;
class TVLSettings;

/// The settings the add-in loaded at start; nullptr while no expert exists.
extern TVLSettings* VLSettings;
/// The manager; nullptr while none exists.
extern TVLManagerInterface* VLManager;

class TClassBrowserExpert : public TIExpert {
 public:
  /// Start-up: settings, menu, file notifier, shortcuts and enabled states, file types,
  /// manager. Needs ToolServices; throws what a failing step throws.
  TClassBrowserExpert();
  ~TClassBrowserExpert() override;

  std::string Name() override { return "Velmora"; }
  std::string Author() override;
  std::string Comment() override { return ""; }
  std::string Page() override { return ""; }
  uintptr_t Glyph() override { return 0; }
  TExpertStyle Style() override { return TExpertStyle::AddIn; }
  TExpertState State() override { return 0; }
  std::string IDString() override { return "Quarnby.Velmora"; }
  std::string MenuText() override { return ""; }
  void Execute() override {}

  // ---- what the notifiers hand on ----
  void FileOpened(const std::string& fileName);
  void FileClosing(const std::string& fileName);
  /// A project was opened, or (with `saved`) the open one was saved.
  void ProjectStart(const std::string& projectFile, bool saved);
  void ProjectClosed();
  void FileAddedToProject(const std::string& fileName);
  void FileRemovedFromProject(const std::string& fileName);

  /// Sets the hot keys from the settings and enables the project-bound commands when a
  /// project is open.
  void UpdateMenu();

  /// The menu item of a record of the menu table (nullptr when it was not created).
  TIMenuItem* MenuItem(int record) const { return menuItems_[static_cast<size_t>(record)].Get(); }
  const std::string& ProjectFile() const { return projectFile_; }
  const std::vector<std::string>& ProjectFiles() const { return projectFiles_; }
  TCommonModuleList& ModuleList() { return *moduleList_; }

  /// Registers the add-in's file types with the desktop at start; replaceable so that
  /// tests and hosts without a desktop skip it.
  static void (*RegisterFileTypesHook)();

 private:
  void BuildMenu();
  /// The manager's start-up: the class information the settings ask for at start.
  void StartUpManager();
  void OnMenuClick(TVLMenuCommand command);
  /// Clears the project's state; `updateMenu` runs the menu update afterwards.
  void CloseProjectState(bool updateMenu);
  void MarkSplash(int state);

  // One reference per record of the menu table; the unused separator's stays empty.
  std::vector<TIRef<TIMenuItem>> menuItems_;
  TIRef<TAddInNotifier> addInNotifier_;  ///< registered with the IDE
  bool active_ = false;                  ///< set first; menu building, updates and shutdown need it
  std::unique_ptr<TCommonModuleList> moduleList_;
  /// Each open editor's file as it was when they last matched (EditorFileInfos).
  std::unique_ptr<TEditorFileInfoList> fileInfos_;
  std::string projectFile_;                ///< "" while no project is open
  std::vector<std::string> projectFiles_;  ///< the project's sources, no duplicates
  TIRef<TIModule> projectModule_;          ///< set while a project notifier is attached
  TIRef<TProjectNotifier> projectNotifier_;
  std::vector<std::string> furtherList_;  ///< emptied and freed first at shutdown
  std::unique_ptr<TRegistryIniStore> store_;
  std::unique_ptr<TVLSettings> settings_;
  std::unique_ptr<TVLManagerInterface> manager_;
};

}  // namespace velmora
