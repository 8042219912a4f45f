// What the expert hands on to the manager: every IDE event the add-in hears and every
// menu command. The manager that schedules parsing jobs and owns the model implements
// it; until one is installed through SetManagerFactory, the expert runs without one and
// its menu commands do nothing.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace velmora {

/// The commands of the add-in's menu that the manager carries out.
enum class TVLMenuCommand {
  ShowClassView,
  ShowClassHierarchy,
  ShowContextBar,
  Options,
  ProjectOptions,
  HelpExportManager,
  Find,
  QuickFindCode,
  QuickFindTree,
  BrowseBack,
  BrowseHistory,
  AddField,
  AddProperty,
  AddMethod,
  AddDescription,
  InsertGlobalMarker,
  InsertClassMarker,
  InsertMethodMarker,
  InsertHelpDescriptionMarker,
  Help,
  About,
};

/// Called on the main thread only.
class TVLManagerInterface {
 public:
  virtual ~TVLManagerInterface() = default;
  /// Loads the class information saved in `classInfoFile`.
  virtual void StartUp(const std::string& classInfoFile) = 0;
  /// A project was opened (or saved under a new name): its file and its source files.
  virtual void ProjectChanged(const std::string& projectFile,
                              const std::vector<std::string>& files) = 0;
  virtual void ProjectClosed() = 0;
  virtual void ProjectRenamed(const std::string& newName) = 0;
  /// Queues a job that parses the file (again).
  virtual void FileAdded(const std::string& fileName) = 0;
  virtual void FileRemoved(const std::string& fileName, bool updateViews) = 0;
  virtual void FileSaved(const std::string& fileName) = 0;
  virtual void FileRenamed(const std::string& oldName, const std::string& newName) = 0;
  virtual void Command(TVLMenuCommand command) = 0;
  /// Loads the external files' class information saved in `classInfoFile` (the
  /// add-in's start). A manager without an external model ignores it.
  virtual void StartUpExternals(const std::string& /*classInfoFile*/) {}
  /// A file was opened in the IDE: its editor buffer, unsaved changes included, is what
  /// the parses read from now on.
  virtual void FileOpened(const std::string& /*fileName*/) {}
  /// The file's editor is closing: the parses read the file on disk again.
  virtual void FileClosing(const std::string& /*fileName*/) {}
};

/// Makes the manager when the expert starts; may return nullptr.
using TVLManagerFactory = std::function<std::unique_ptr<TVLManagerInterface>()>;

/// Replaces the factory the expert uses (an empty one: no manager). Main thread only.
void SetManagerFactory(TVLManagerFactory factory);
/// The manager the current factory makes, or nullptr.
std::unique_ptr<TVLManagerInterface> CreateManager();

}  // namespace velmora
