// The headless IDE: a host with no windows. The project is a file name and a list of
// units given by whoever reads project files; editor buffers live in memory in buffer
// form, loaded from their files and saved back in each file's own line-end style; the
// main menu is a tree in memory; the main thread is whoever runs the queue.
//
// Every change a user would make in an IDE (open, change, save, rename, close a file;
// open or close a project, add or remove a unit) is a call here, and reaches the
// registered add-in and module notifiers the way an IDE would send it.
//
// Main thread only, except MainThreadQueue(), whose own rule holds.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "ide/component.h"
#include "ide/editor.h"
#include "ide/expert.h"
#include "ide/notifiers.h"
#include "ide/tool_services_base.h"
#include "support/text_buffer.h"

namespace velmora {

class THeadlessMenuItem;
class THeadlessModule;

/// One open file: its text as the editor holds it.
struct THeadlessBuffer {
  std::string FileName;
  std::string Text;                           ///< buffer form: CR LF line ends
  TLineEndStyle Style = TLineEndStyle::CrLf;  ///< how the file on disk ends its lines
  bool Modified = false;                      ///< changed since loaded or saved
  bool WriterAlive = false;                   ///< one writer at a time
  TEditPos Cursor{1, 1};
  TEditPos TopLeft{1, 1};
};

class THeadlessIDE : public TToolServicesBase {
 public:
  THeadlessIDE();
  ~THeadlessIDE() override;
  THeadlessIDE(const THeadlessIDE&) = delete;
  THeadlessIDE& operator=(const THeadlessIDE&) = delete;

  // ---- the add-in ----
  /// Releases the registered experts, last first, then calls the add-ins' terminate
  /// procedures. Also done by the destructor.
  void UnloadAddIns();

  // ---- the project ----
  /// Closes the open project, then opens this one: `unitPaths` in project order. Sends
  /// ProjectOpening and ProjectOpened.
  void OpenProject(const std::string& projectFile, std::vector<std::string> unitPaths);
  /// Sends ProjectClosing, closes the project's module (its notifiers get ModuleDeleted)
  /// and forgets it. Open files stay open.
  void CloseProject();
  /// Saves the project: the project module's notifiers get ModuleSaved.
  bool SaveProject();
  /// Saves the project under another name: ModuleRenamed, then ModuleSaved.
  bool RenameProject(const std::string& newProjectFile);
  /// Adds a unit (AddedToProject); false when there is no project or it is a unit
  /// already.
  bool AddToProject(const std::string& fileName);
  /// Removes a unit (RemovedFromProject); false when it is not one.
  bool RemoveFromProject(const std::string& fileName);
  const std::vector<std::string>& Units() const { return project_.Units(); }

  // ---- files and buffers ----
  /// Closes the buffer (FileClosing, then ModuleDeleted to its notifiers); unsaved
  /// changes are dropped. False when it is not open.
  bool CloseFile(const std::string& fileName);
  /// Writes the buffer back to its file, in the file's own line-end style, through a
  /// temporary file renamed over it; then ModuleSaved. False (the file unchanged, the
  /// reason in Reports) when it cannot be written.
  bool SaveFile(const std::string& fileName);
  /// Saves the buffer under `newName` and makes that its file: ModuleRenamed, then
  /// ModuleSaved. The old file stays on disk.
  bool SaveFileAs(const std::string& fileName, const std::string& newName);
  /// The buffer of an open file, or nullptr.
  THeadlessBuffer* Buffer(const std::string& fileName);
  /// Replaces a buffer's text (given in any line-end style) as a user's edit would.
  bool SetBufferText(const std::string& fileName, std::string_view text);
  /// Makes an open file the one the user works in.
  bool SetCurrentFile(const std::string& fileName);

  THeadlessMenuItem& MenuBar() { return *menuBar_; }

  // ---- TIToolServices ----
  bool OpenFile(const std::string& fileName) override;
  bool ReloadFile(const std::string& fileName) override;
  std::string CurrentFile() override { return currentFile_; }
  bool IsFileOpen(const std::string& fileName) override;
  TIModule* GetModule(const std::string& fileName) override;
  TIMainMenu* GetMainMenu() override;
  TIComponent& Application() override { return application_; }

 private:
  /// The name an open file is kept under: the existing file it names, else as given.
  std::string KeyOf(const std::string& fileName) const;
  THeadlessModule* ModuleOf(const std::string& fileName) const;
  void BuildMenu();
  void BuildComponents();

  TComponent application_{"TApplication", "Application"};
  TIRef<THeadlessMenuItem> menuBar_;
  std::vector<TIRef<THeadlessMenuItem>> ownItems_;         ///< the IDE's own menu items
  TIRef<THeadlessModule> projectModule_;                   ///< set while a project is open
  std::map<std::string, TIRef<THeadlessModule>> modules_;  ///< open files by KeyOf
  std::string currentFile_;
};

}  // namespace velmora
