// The add-in's manager: the one object that owns the code model of the open project and
// of the external files, schedules the background jobs that keep it current, merges their
// results on the main thread, keeps the class information beside the project, and tells
// the views when the model changed.
//
// What happens when:
// - ProjectChanged (the expert, when a project opens): the class information of the old
//   project is saved, the model reset; when "<project>.cinfo" (the project file's name
//   with ".cinfo" for its extension) exists and loads, the open is warm and one job parses
//   only the units that are new or whose file date differs from the one recorded;
//   otherwise the open is cold and one job parses every unit. Either way, after that
//   job the class information is saved.
// - FileSaved + FileAdded (the expert, when a module is saved): the file is parsed again,
//   its unit's records updated in place and what the source no longer declares swept.
// - FileRemoved / FileRenamed / ProjectClosed / ProjectRenamed as their comments say.
// - Every parse is a request of the manager's parse queue (one worker per core unless
//   told otherwise); its result comes back to the main thread through the IDE's
//   main-thread queue and is merged there, unless its job was cancelled or is of an
//   older generation (a later project change, CancelAllJobs) or results are discarded.
//
// Threads and locks: main thread only (the thread that runs the IDE's main-thread
// queue). The parse queue's workers touch no model; the main thread takes each class
// list's Lock around every change it makes.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "addin/vl_manager_interface.h"

namespace velmora {

class TClasslist;
class TFilesList;
class TIToolServices;
class TIdleThread;
class TModelViewListener;
class TSourceProvider;
class TVLManagerThread;
class TVLThreadList;

struct TVLManagerOptions {
  /// Parse queue workers; 0 for one per core.
  int Threads = 0;
  /// Where parses read the files; null for the disk. Must outlive the manager.
  const TSourceProvider* Sources = nullptr;
  /// The IDE's installation folder, for "$(BCB)" in an include path; empty: the BCB
  /// environment variable.
  std::string IdeDirectory{};
  /// Save the class information after a project's full parse and when it closes.
  bool SaveClassInfo = true;
  /// Load "<project>.cinfo" when a project opens (a warm open).
  bool LoadClassInfo = true;
  /// Follow include directives into the files they name.
  bool FollowIncludes = true;
  /// Start the idle thread that measures how busy the machine is.
  bool StartIdleThread = false;
};

/// How the current project came into the model.
enum class TVLOpenKind : uint8_t {
  None,  ///< no project is open
  Cold,  ///< no usable class information: every unit parsed
  Warm,  ///< the class information loaded: only new and changed units parsed
};

/// Where the parsing of the current project stands; given to the progress handler after
/// every merged file.
struct TVLProgress {
  int FilesParsed = 0;        ///< source files of the project's jobs parsed and merged so far
  int FilesTotal = 0;         ///< source files the project's jobs were given
  std::string CurrentFile{};  ///< the file just merged
};

/// What the open of the current project came to; reset when a project opens.
struct TVLManagerStats {
  TVLOpenKind OpenKind = TVLOpenKind::None;
  std::string ClassInfoFile{};  ///< "<project>.cinfo", "" when no project is open
  /// The load message the user was given for damaged class information, "" when none.
  std::string LoadMessage{};
  int FilesQueued = 0;          ///< source files handed to jobs since the open
  int FilesParsed = 0;          ///< of them, parsed and merged (includes not counted)
  int IncludesParsed = 0;       ///< included files parsed and merged besides them
  bool ClassInfoSaved = false;  ///< the class information was saved since the open
};

class TVLManager : public TVLManagerInterface {
 public:
  /// `ide` must outlive the manager; its MainThreadQueue is where results are merged.
  explicit TVLManager(TIToolServices& ide, TVLManagerOptions options = {});
  /// Cancels every job, drops what is still on its way, saves the class information of
  /// the open project (when options ask for it) and clears Instance.
  ~TVLManager() override;
  TVLManager(const TVLManager&) = delete;
  TVLManager& operator=(const TVLManager&) = delete;

  /// The one manager, or null before one is made and after it is gone.
  static TVLManager* Instance();

  // ---- TVLManagerInterface ----
  /// Loads `classInfoFile` into the project's model and refreshes the views.
  void StartUp(const std::string& classInfoFile) override;
  void ProjectChanged(const std::string& projectFile,
                      const std::vector<std::string>& files) override;
  /// Cancels all jobs, saves the class information, clears the project's model.
  void ProjectClosed() override;
  void ProjectRenamed(const std::string& newName) override;
  /// Queues a job that parses the file (and its includes) into the project's model.
  void FileAdded(const std::string& fileName) override;
  /// Takes the file's records out of the project's model.
  void FileRemoved(const std::string& fileName, bool updateViews) override;
  /// Marks the file changed; the FileAdded that follows parses it again.
  void FileSaved(const std::string& fileName) override;
  void FileRenamed(const std::string& oldName, const std::string& newName) override;
  /// The views' commands look for their view; none is made yet.
  void Command(TVLMenuCommand command) override;

  // ---- the model ----
  TClasslist& ProjectClasses();
  TFilesList& ProjectFiles();
  TClasslist& ExternalClasses();
  TFilesList& ExternalFiles();
  const std::string& ProjectFile() const;

  // ---- views ----
  /// Registers a view (not owned; it must be removed before it goes). A view added while
  /// a project is open gets ModelChanged at once.
  void AddView(TModelViewListener* view);
  void RemoveView(TModelViewListener* view);

  // ---- include path ----
  /// The include path a project reader found for `projectFile` (a project file that is
  /// not a ".bpr", or one whose include path the reader resolved): used after the path
  /// read from "<project>.BPR". Set it before the project opens.
  void SetProjectIncludePath(const std::string& projectFile, std::vector<std::string> folders);
  /// The include path the next job of the open project gets, rebuilt from the ".BPR" on
  /// every call.
  std::vector<std::string> IncludePath() const;

  // ---- jobs ----
  /// Cancels every job; their results are dropped.
  void CancelAllJobs();
  /// While set, finished parses are dropped.
  void SetDiscardResults(bool discard);
  bool DiscardResults() const;
  TVLThreadList& Jobs();
  /// No job queued or on its way.
  bool Idle() const;
  /// Runs the IDE's main-thread queue until every job is merged (or dropped). Call on the
  /// main thread; returns at once when Idle.
  void WaitUntilIdle();

  // ---- class information ----
  /// Saves the project's model to ClassInfoFile now; false (the message reported through
  /// the IDE) when it cannot be written or no project is open.
  bool SaveClassInfo();
  /// "<project>.cinfo" of the open project, "" when none.
  const std::string& ClassInfoFile() const;

  // ---- progress ----
  using TProgressHandler = std::function<void(const TVLProgress&)>;
  /// Called on the main thread after every file of the project merged.
  void SetProgressHandler(TProgressHandler handler);
  const TVLManagerStats& Stats() const;

  /// The idle thread when options started it, else null.
  TIdleThread* IdleThread();

 private:
  struct TState;
  std::unique_ptr<TState> s_;
};

/// Makes every expert made from now on create a TVLManager over the add-in's tool
/// services with these options (SetManagerFactory). Main thread only.
void InstallVLManager(TVLManagerOptions options = {});

}  // namespace velmora
