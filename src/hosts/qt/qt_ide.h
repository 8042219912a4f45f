// The Qt IDE: a small IDE of the kind the add-in was made for, in Qt 6 Widgets. A main
// window with the main menu (File, Edit, Search, View, Project with "ProjectAddItem",
// Help), and in it the editor window: a tab control with a QScintilla editor per file, the
// class view docked beside it, the message view and a status bar. Each is a component of
// the class an IDE of this kind gives it ("TEditWindow", "TTabControl", "TMessageView",
// "TStatusbar"), so the add-in finds them by class name.
//
// It opens every project kind the project readers know, loads the add-in from a shared
// library through its entry point, and runs the main-thread queue from the Qt event loop.
// Until the add-in's model reaches the view, the class view shows the host's own parse of
// the project (TProjectModel).
//
// Main thread only, except MainThreadQueue(), whose own rule holds.
#pragma once

#include <QPointer>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "hosts/qt/qt_component.h"
#include "hosts/qt/qt_menu.h"
#include "hosts/qt/qt_module.h"
#include "ide/expert.h"
#include "ide/notifiers.h"
#include "ide/tool_services_base.h"
#include "settings/vl_settings.h"

class QLabel;
class QListWidget;
class QMainWindow;
class QProgressBar;
class QStatusBar;
class QTabWidget;
class QTimer;
class QWidget;

namespace velmora {

class TClassBrowser;
class TDockSite;
class TModelViewListener;
class TProjectModel;
class TVLManager;

class TQtIDE : public TToolServicesBase {
 public:
  TQtIDE();
  ~TQtIDE() override;
  TQtIDE(const TQtIDE&) = delete;
  TQtIDE& operator=(const TQtIDE&) = delete;

  // ---- the add-in ----
  /// Loads a shared library and calls its INITEXPERT0017; false (the reason reported)
  /// when it cannot be loaded or has no such entry.
  bool LoadAddInLibrary(const std::string& path);
  /// Releases the experts, last first, then calls the add-ins' terminate procedures.
  void UnloadAddIns();
  /// The manager of the add-in loaded from a library, whose model the class view shows;
  /// null without one (the class view then shows the IDE's own parse).
  TVLManager* AddInManager() const { return addInManager_; }

  // ---- the project ----
  /// Opens a project of any kind the readers know (or a folder); false (reported) when it
  /// cannot be read, the open project then staying open.
  bool OpenProjectFile(const std::string& path);
  void CloseProject();
  bool AddToProject(const std::string& fileName);
  bool RemoveFromProject(const std::string& fileName);
  /// The project's parse (the add-in's jobs, or the IDE's own) is running.
  bool Parsing() const;
  /// Runs the event loop's work until the parse is done and the class view shows it.
  void WaitUntilParsed();

  // ---- files and editors ----
  /// Writes the editor's text to its file in the file's own line-end style, through a
  /// temporary file; then ModuleSaved. False (reported) when it cannot be written.
  bool SaveFile(const std::string& fileName);
  /// Closes the editor; unsaved changes are dropped.
  bool CloseFile(const std::string& fileName);
  /// Opens the file last closed again; false when none was.
  bool ReopenFile();
  /// Opens the file, puts the cursor at the start of `line` and shows it.
  bool GoTo(const std::string& fileName, int line);
  /// The editor of an open file, or nullptr.
  QsciScintilla* EditorOf(const std::string& fileName) const;

  // ---- the windows ----
  QMainWindow& Window() const { return *window_; }
  QWidget& EditWindow() const { return *editWindow_; }
  QTabWidget& EditorTabs() const { return *tabs_; }
  TClassBrowser& ClassBrowser() const { return *browser_; }
  TDockSite& DockSite() const { return *dockSite_; }
  QListWidget& MessageView() const { return *messages_; }
  QStatusBar& StatusBar() const { return *statusBar_; }
  QProgressBar& Progress() const { return *progress_; }

  // ---- TIToolServices ----
  bool OpenFile(const std::string& fileName) override;
  bool ReloadFile(const std::string& fileName) override;
  std::string CurrentFile() override;
  bool IsFileOpen(const std::string& fileName) override;
  TIModule* GetModule(const std::string& fileName) override;
  TIMainMenu* GetMainMenu() override;
  /// Also shows the message in the message view.
  void ReportException(const std::string& message) override;
  TIComponent& Application() override { return components_; }

 private:
  std::string KeyOf(const std::string& fileName) const;
  TQtModule* ModuleOf(const std::string& fileName) const;
  void BuildWindows();
  void BuildMenu();
  /// A top-level menu with its items; `items` as caption, name, handler.
  struct TOwnItem;
  void AddMenu(const char* caption, const char* name, const std::vector<TOwnItem>& items);
  QsciScintilla* NewEditor(const std::string& fileName);
  void UpdateStatus();
  void StartParse();
  /// The add-in's lists, for the class view.
  void ShowAddInModel();
  /// Called by the idle poll: the add-in's jobs are done.
  void ParseFinished();
  void ConnectAddInModel(void* library);
  void DisconnectAddInModel();
  void Info(const QString& text);

  // Menu commands.
  void CmdOpenProject();
  void CmdOpenFile();
  void CmdSaveAll();
  void CmdCloseCurrent();
  void CmdFind(bool next);
  void CmdGoToLine();
  void CmdAddToProject();
  void CmdRemoveFromProject();
  void CmdAbout();

  TQtComponentTree components_;
  TVLSettings settings_;  ///< what the class view's display forms read
  std::unique_ptr<QMainWindow> window_;
  QWidget* editWindow_ = nullptr;
  QTabWidget* tabs_ = nullptr;
  TClassBrowser* browser_ = nullptr;
  TDockSite* dockSite_ = nullptr;
  QListWidget* messages_ = nullptr;
  QStatusBar* statusBar_ = nullptr;
  QProgressBar* progress_ = nullptr;
  QLabel* cursorLabel_ = nullptr;
  QLabel* modifiedLabel_ = nullptr;
  int editorNumber_ = 0;  ///< names the editors "Editor1", "Editor2", ...

  TIRef<TQtMenuItem> menuBar_;
  std::vector<TIRef<TQtMenuItem>> ownItems_;  ///< the IDE's own menu items

  std::string projectName_;
  std::vector<std::string> parseFiles_;  ///< units and their headers: what the view shows
  TIRef<TQtModule> projectModule_;       ///< set while a project is open
  std::map<std::string, TIRef<TQtModule>> modules_;  ///< open files by KeyOf
  std::vector<std::string> closedFiles_;             ///< for Reopen, the last closed last
  std::unique_ptr<TProjectModel> model_;
  TVLManager* addInManager_ = nullptr;  ///< the loaded add-in's; lives as long as its expert
  std::unique_ptr<TModelViewListener> viewListener_;  ///< registered with addInManager_
  QTimer* idlePoll_ = nullptr;  ///< watches the add-in's jobs while a project parses
};

}  // namespace velmora
