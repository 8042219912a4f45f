#include "addin/vl_manager.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <set>

#include "addin/class_browser_expert.h"
#include "addin/idle_thread.h"
#include "addin/include_path.h"
#include "addin/model_view_listener.h"
#include "addin/tool_services.h"
#include "addin/vl_thread_list.h"
#include "ide/main_thread_queue.h"
#include "ide/tool_services.h"
#include "model/class_info_file.h"
#include "model/class_list.h"
#include "model/files.h"
#include "parsing/parse_merge.h"
#include "parsing/parse_queue.h"
#include "settings/project_settings.h"
#include "settings/vl_settings.h"
#include "support/ansi.h"
#include "support/paths.h"

namespace velmora {

namespace {

TVLManager* instance = nullptr;

/// Set on a file record whose file was saved since it was parsed: its date no longer
/// tells whether the model is current.
constexpr uint16_t kFileChanged = 0x0001;

/// The file's modification time in seconds since 1970, -1 when it cannot be read. Kept in
/// the file record's 32 bits, which hold it until 2038.
int32_t FileDateOf(const std::string& path) {
  struct stat st {};
  if (stat(path.c_str(), &st) != 0) return -1;
  return static_cast<int32_t>(st.st_mtime);
}

constexpr size_t kMaxKnownHeaders = 256;

/// A file that no include directive names in practice: a C++ source or a Pascal unit,
/// program or library (Pascal includes are ".inc" files).
bool IsSourceOnly(const std::string& path) {
  static constexpr std::string_view kSources[] = {".cpp", ".c",   ".cc",  ".cxx", ".pas",
                                                  ".pp",  ".dpr", ".lpr", ".dpk", ".lpk"};
  const std::string_view ext = ExtractFileExt(path);
  return std::any_of(std::begin(kSources), std::end(kSources),
                     [&](std::string_view source) { return SameText(ext, source); });
}

std::string ChangeExt(const std::string& path, std::string_view ext) {
  const std::string_view old = ExtractFileExt(path);
  return path.substr(0, path.size() - old.size()) + std::string(ext);
}

}  // namespace

struct TVLManager::TState {
  TState(TIToolServices& ideServices, TVLManagerOptions opts)
      : ide(ideServices),
        options(std::move(opts)),
        jobs([this](TVLManagerThread& job) { JobFinished(job); },
             [this](TVLManagerThread& job) { StartJob(job); }) {
    projectClasses.Files = &projectFiles;
    externalClasses.Files = &externalFiles;
  }

  TIToolServices& ide;
  const TVLManagerOptions options;

  // The order of the model's fields: the project's lists, then the external files'.
  TClasslist projectClasses;
  TFilesList projectFiles;
  TClasslist externalClasses;
  TFilesList externalFiles;
  bool started = false;
  bool discardResults = false;
  std::vector<TModelViewListener*> views;  ///< not owned; each removes itself
  std::string classInfoFile;               ///< "" while no project is open
  TVLThreadList jobs;

  std::string projectFile;  ///< "" while no project is open
  /// Project file -> the include path a project reader found for it.
  std::vector<std::pair<std::string, std::vector<std::string>>> readerIncludePaths;
  TParseMerger projectMerger{projectClasses};
  TParseMerger externalMerger{externalClasses};
  /// Counts every request posted, so a later parse of a root always wins over an older.
  uint64_t requestGeneration = 0;
  TProgressHandler progress;
  TVLManagerStats stats;
  TVLProgress current;
  /// WaitUntilIdle runs the main-thread loop; the last job to finish stops it.
  bool waitingForIdle = false;
  /// Views have not yet seen the last merge.
  bool viewsStale = false;
  /// Results come back through the main-thread queue; work queued there for a manager
  /// that is gone must find out without touching it.
  std::shared_ptr<TState*> alive = std::make_shared<TState*>(this);
  std::unique_ptr<TIdleThread> idleThread;
  /// Last: made after everything its results reach, destroyed (workers joined) first.
  std::unique_ptr<TParseQueue> queue;

  // ---- views ----
  void RefreshViews() {
    viewsStale = false;
    for (TModelViewListener* view : std::vector(views)) view->ModelChanged();
  }
  void FileRemoving(const std::string& fileName) {
    for (TModelViewListener* view : std::vector(views)) view->FileRemoving(fileName);
  }

  // ---- jobs ----
  std::vector<std::string> IncludePath() const {
    if (projectFile.empty()) return {};
    std::string ideDirectory = options.IdeDirectory;
    if (ideDirectory.empty())
      if (const char* bcb = std::getenv("BCB")) ideDirectory = bcb;
    std::vector<std::string> path = ReadBprIncludePath(projectFile, ideDirectory);
    for (const auto& [file, folders] : readerIncludePaths) {
      if (file != projectFile) continue;
      for (const std::string& folder : folders)
        if (std::find(path.begin(), path.end(), folder) == path.end()) path.push_back(folder);
    }
    return path;
  }

  TVLManagerThread* QueueJob(std::vector<std::string> files, TVLJobTarget target, bool updateViews,
                             bool fullParse) {
    // The include path is read again for every job, so a changed project option takes
    // effect with the next one.
    auto job =
        std::make_unique<TVLManagerThread>(std::move(files), target, updateViews, IncludePath());
    job->FullParse = fullParse;
    if (target == TVLJobTarget::Project) {
      stats.FilesQueued += static_cast<int>(job->FilesToProcess.size());
      current.FilesTotal += static_cast<int>(job->FilesToProcess.size());
    }
    return jobs.AddJob(std::move(job));
  }

  TParseJobOptions JobOptions() const {
    TParseJobOptions parseOptions;
    parseOptions.Priority = TThreadPriority::Lower;
    if (VLSettings) {
      parseOptions.RetryBudget = VLSettings->ParseRetryCount;
      parseOptions.PascalOption = VLSettings->ParseImplementation;
    }
    return parseOptions;
  }

  /// Every file of the job becomes a request of its own, so the parse queue spreads a
  /// project's first parse over every core. A unit that includes another unit of the job
  /// (a header listed as a unit) leaves it to that unit's own request: the job's headers
  /// are known files to every request. Each request holds its own copy of them, so past
  /// kMaxKnownHeaders (a folder of headers) they are parsed twice instead.
  void StartJob(TVLManagerThread& job) {
    std::vector<std::string> files = std::move(job.FilesToProcess);
    job.FilesToProcess.clear();
    if (files.empty()) {
      // Nothing to parse: finish on the main thread after the caller is done with it.
      PostToMain([id = job.Id](TState& state) { state.Finish(id); });
      return;
    }
    const TParseJobOptions parseOptions = JobOptions();
    std::vector<std::string> headers;
    for (const std::string& file : files)
      if (!IsSourceOnly(file)) headers.push_back(file);
    if (headers.size() > kMaxKnownHeaders) headers.clear();
    job.Pending = static_cast<int>(files.size());
    for (const std::string& file : files) {
      TParseRequest request;
      request.RootFile = file;
      request.IncludePath = job.IncludePath;
      for (const std::string& header : headers)
        if (header != file) request.KnownFiles.push_back(header);
      request.Options = parseOptions;
      request.FollowIncludes = options.FollowIncludes;
      request.Generation = ++requestGeneration;
      request.Context = reinterpret_cast<void*>(static_cast<uintptr_t>(job.Id));
      request.Stop = job.StopToken();
      queue->Post(std::move(request));
    }
  }

  void PostToMain(std::function<void(TState&)> work) {
    std::weak_ptr<TState*> weak = alive;
    ide.MainThreadQueue().Post([weak, work = std::move(work)] {
      if (auto state = weak.lock()) work(**state);
    });
  }

  /// Main thread: one parse is back.
  void ResultArrived(TParseResult result) {
    const uint64_t id = reinterpret_cast<uintptr_t>(result.Context);
    TVLManagerThread* job = jobs.FindStarted(id);
    if (!job) return;
    if (!result.Cancelled && !job->Cancelled() && job->Generation == jobs.Generation() &&
        !discardResults) {
      Merge(*job, std::move(result));
      // A re-parse may have freed objects the views show, and nothing may reach a view
      // between the merge and its refresh. The parse of a project from scratch only adds,
      // so its views are refreshed once, at its end.
      if (viewsStale && !(job->FullParse && stats.OpenKind == TVLOpenKind::Cold)) RefreshViews();
    }
    if (--job->Pending <= 0) Finish(id);
  }

  void Merge(TVLManagerThread& job, TParseResult result) {
    const bool project = job.Target == TVLJobTarget::Project;
    TClasslist& classes = project ? projectClasses : externalClasses;
    TFilesList& files = project ? projectFiles : externalFiles;
    TParseMerger& merger = project ? projectMerger : externalMerger;
    // The merge may take the parse's records over, so what the file list needs is read
    // first.
    std::vector<std::pair<std::string, TLanguage>> parsed;
    for (const TFileParse& parse : result.Files)
      parsed.emplace_back(ToPosixSeparators(parse.Path), parse.Language);
    const std::string root = result.RootFile;
    const size_t fileCount = result.Files.size();
    {
      std::lock_guard lock(classes.Lock);
      if (!merger.Merge(std::move(result))) return;
      for (const auto& [path, language] : parsed) {
        const std::string directory(ExtractFilePath(path));
        const std::string name(ExtractFileName(path));
        TFileDescription* file = files.FindFull(directory, name);
        if (!file) {
          auto added = std::make_unique<TFileDescription>(language);
          added->SetName(name);
          added->Directory = directory;
          file = files.Add(std::move(added));
        }
        file->FileDate = FileDateOf(path);
        file->FileFlags &= static_cast<uint16_t>(~kFileChanged);
        file->Valid = true;
        job.ProcessedFiles.push_back(path);
        if (path != ToPosixSeparators(root)) job.FoundFiles.push_back(path);
      }
    }
    viewsStale = true;
    if (!project) return;
    ++stats.FilesParsed;
    stats.IncludesParsed += std::max(0, static_cast<int>(fileCount) - 1);
    ++current.FilesParsed;
    current.CurrentFile = root;
    if (progress) progress(current);
  }

  void Finish(uint64_t id) {
    TVLManagerThread* job = jobs.FindStarted(id);
    if (job) jobs.JobCompleted(*job);  // calls JobFinished when the job is current
    if (viewsStale) RefreshViews();
    if (jobs.Idle() && waitingForIdle) ide.MainThreadQueue().Stop();
  }

  /// The job-finished handler of the job list: a current job handed back its last parse.
  void JobFinished(TVLManagerThread& job) {
    std::sort(job.FoundFiles.begin(), job.FoundFiles.end());
    job.FoundFiles.erase(std::unique(job.FoundFiles.begin(), job.FoundFiles.end()),
                         job.FoundFiles.end());
    if (job.UpdateViews || viewsStale) RefreshViews();
    if (job.FullParse && job.Target == TVLJobTarget::Project && options.SaveClassInfo) Save();
  }

  // ---- the project's model ----
  void ClearProject() {
    std::lock_guard lock(projectClasses.Lock);
    projectClasses.Clear();
    projectFiles.Clear();
    projectMerger.Rescan();
  }

  bool Save() {
    if (classInfoFile.empty()) return false;
    TModelFileOutcome outcome;
    {
      std::lock_guard lock(projectClasses.Lock);
      outcome = SaveClassInfoFileReported(classInfoFile, projectFiles, projectClasses);
    }
    if (!outcome.Ok) {
      ide.ReportException(outcome.Message);
      return false;
    }
    stats.ClassInfoSaved = true;
    return true;
  }

  /// Loads the class information into the project's lists; on failure reports the load
  /// message and leaves the lists empty, so the project is parsed again.
  bool Load(const std::string& file) {
    TModelFileOutcome outcome;
    {
      std::lock_guard lock(projectClasses.Lock);
      outcome = LoadClassInfoFileReported(file, projectFiles, projectClasses);
      projectMerger.Rescan();
    }
    if (outcome.Ok) return true;
    stats.LoadMessage = outcome.Message;
    ide.ReportException(outcome.Message);
    ClearProject();
    return false;
  }

  /// The project's files (and the files they reached) whose model is not current: not in
  /// the files list, saved since parsed, or dated differently on disk. Records of files
  /// that are gone from the disk, or that neither are units of the project any more nor
  /// are reached from one, are removed.
  std::vector<std::string> OutOfDate(const std::vector<std::string>& units) {
    std::vector<std::string> result;
    auto add = [&](const std::string& path) {
      if (std::find(result.begin(), result.end(), path) == result.end()) result.push_back(path);
    };
    std::lock_guard lock(projectClasses.Lock);
    std::set<std::string> wanted;  // upper-cased full names of units and what they reach
    for (const std::string& unit : units) {
      const std::string path = ToPosixSeparators(unit);
      wanted.insert(AnsiUpperCase(path));
      const TFileDescription* file =
          projectFiles.FindFull(ExtractFilePath(path), ExtractFileName(path));
      if (!file || (file->FileFlags & kFileChanged) || file->FileDate != FileDateOf(path))
        add(unit);
    }
    for (int i = 0; i < projectClasses.Includes.Count(); ++i) {
      const TIncludeUnit& entry = *projectClasses.Includes.Items(i);
      for (int j = 0; j < entry.IncludedNames.Count(); ++j)
        wanted.insert(AnsiUpperCase(ToPosixSeparators(entry.IncludedNames.Strings(j))));
    }
    // An included file changed on disk is parsed again as a root of its own: its records
    // are its own unit's, whoever included it.
    std::vector<std::string> gone;
    for (int i = 0; i < projectFiles.Count(); ++i) {
      const TFileDescription* file = projectFiles.Items(i);
      const std::string path = file->FullName();
      const int32_t date = FileDateOf(path);
      if (date == -1 || !wanted.contains(AnsiUpperCase(path)))
        gone.push_back(path);
      else if (date != file->FileDate || (file->FileFlags & kFileChanged))
        add(path);
    }
    for (const std::string& path : gone) RemoveFile(path);
    return result;
  }

  /// Takes one file's records out of the project's model. The caller holds the lock.
  void RemoveFile(const std::string& fileName) {
    const std::string path = ToPosixSeparators(fileName);
    const std::string name(ExtractFileName(path));
    FileRemoving(fileName);
    projectClasses.Mark(name, false);
    projectClasses.Sweep(false, name);
    // The walker keys a root's include entry by the root's path as it was given.
    projectClasses.Includes.Remove(fileName);
    projectClasses.Includes.Remove(path);
    for (int i = projectFiles.Count() - 1; i >= 0; --i) {
      const TFileDescription* file = projectFiles.Items(i);
      if (SameText(file->FullName(), path) ||
          (SameText(file->GetName(), name) && ExtractFilePath(path).empty()))
        projectFiles.Delete(i);
    }
    projectMerger.Rescan();
    viewsStale = true;
  }

  void CloseProject() {
    jobs.CancelAll();
    if (!projectFile.empty() && options.SaveClassInfo) Save();
    ClearProject();
    projectFile.clear();
    classInfoFile.clear();
    stats = {};
    current = {};
    RefreshViews();
  }
};

TVLManager::TVLManager(TIToolServices& ide, TVLManagerOptions options)
    : s_(std::make_unique<TState>(ide, std::move(options))) {
  TParseQueueOptions queueOptions;
  queueOptions.Threads = s_->options.Threads;
  queueOptions.Sources = s_->options.Sources;
  // Results are values: the workers only post them to the main thread, where the merge
  // runs. The queue lives no longer than the manager, the main-thread queue longer.
  std::weak_ptr<TState*> weak = s_->alive;
  TMainThreadQueue* mainQueue = &ide.MainThreadQueue();
  s_->queue = std::make_unique<TParseQueue>(
      [weak, mainQueue](TParseResult result) {
        mainQueue->Post([weak, result = std::make_shared<TParseResult>(std::move(result))] {
          if (auto state = weak.lock()) (*state)->ResultArrived(std::move(*result));
        });
      },
      queueOptions);
  if (s_->options.StartIdleThread) {
    s_->idleThread = std::make_unique<TIdleThread>();
    s_->idleThread->Start();
  }
  instance = this;
}

TVLManager::~TVLManager() {
  s_->jobs.CancelAll();
  // Joins the workers before anything their results would reach goes; what they still
  // post finds no manager.
  s_->queue.reset();
  s_->alive.reset();
  if (!s_->projectFile.empty() && s_->options.SaveClassInfo) s_->Save();
  s_->idleThread.reset();
  if (instance == this) instance = nullptr;
}

TVLManager* TVLManager::Instance() {
  return instance;
}

void TVLManager::StartUp(const std::string& classInfoFile) {
  s_->started = true;
  s_->Load(classInfoFile);
  s_->RefreshViews();
}

void TVLManager::ProjectChanged(const std::string& projectFile,
                                const std::vector<std::string>& files) {
  TState& s = *s_;
  // A job of the project before (or of this one before it was saved) must not reach the
  // model that is about to be built.
  s.jobs.CancelAll();
  if (!s.projectFile.empty() && s.options.SaveClassInfo) s.Save();
  s.ClearProject();
  s.projectFile = projectFile;
  s.classInfoFile = ChangeExt(projectFile, ".cinfo");
  s.stats = {};
  s.current = {};
  s.stats.ClassInfoFile = s.classInfoFile;
  s.stats.OpenKind = TVLOpenKind::Cold;
  if (s.options.LoadClassInfo && FileExists(s.classInfoFile) && s.Load(s.classInfoFile))
    s.stats.OpenKind = TVLOpenKind::Warm;
  std::vector<std::string> toParse =
      s.stats.OpenKind == TVLOpenKind::Warm ? s.OutOfDate(files) : files;
  s.RefreshViews();
  s.QueueJob(std::move(toParse), TVLJobTarget::Project, true, true);
}

void TVLManager::ProjectClosed() {
  s_->CloseProject();
}

void TVLManager::ProjectRenamed(const std::string& newName) {
  if (VLSettings) VLSettings->ProjectSettings().Save(newName);
  s_->projectFile = newName;
  s_->classInfoFile = ChangeExt(newName, ".cinfo");
  s_->stats.ClassInfoFile = s_->classInfoFile;
}

void TVLManager::FileAdded(const std::string& fileName) {
  s_->QueueJob({fileName}, TVLJobTarget::Project, false, false);
}

void TVLManager::FileRemoved(const std::string& fileName, bool updateViews) {
  {
    std::lock_guard lock(s_->projectClasses.Lock);
    s_->RemoveFile(fileName);
  }
  if (updateViews) s_->RefreshViews();
}

void TVLManager::FileSaved(const std::string& fileName) {
  const std::string path = ToPosixSeparators(fileName);
  std::lock_guard lock(s_->projectClasses.Lock);
  if (TFileDescription* file =
          s_->projectFiles.FindFull(ExtractFilePath(path), ExtractFileName(path)))
    file->FileFlags |= kFileChanged;
}

void TVLManager::FileRenamed(const std::string& oldName, const std::string& newName) {
  FileRemoved(oldName, true);
  FileAdded(newName);
}

void TVLManager::Command(TVLMenuCommand /*command*/) {
  // The views that the commands bring up are not there yet.
}

TClasslist& TVLManager::ProjectClasses() {
  return s_->projectClasses;
}
TFilesList& TVLManager::ProjectFiles() {
  return s_->projectFiles;
}
TClasslist& TVLManager::ExternalClasses() {
  return s_->externalClasses;
}
TFilesList& TVLManager::ExternalFiles() {
  return s_->externalFiles;
}
const std::string& TVLManager::ProjectFile() const {
  return s_->projectFile;
}

void TVLManager::AddView(TModelViewListener* view) {
  if (!view || std::find(s_->views.begin(), s_->views.end(), view) != s_->views.end()) return;
  s_->views.push_back(view);
  if (!s_->projectFile.empty()) view->ModelChanged();
}

void TVLManager::RemoveView(TModelViewListener* view) {
  std::erase(s_->views, view);
}

void TVLManager::SetProjectIncludePath(const std::string& projectFile,
                                       std::vector<std::string> folders) {
  auto& paths = s_->readerIncludePaths;
  std::erase_if(paths, [&](const auto& entry) { return entry.first == projectFile; });
  paths.emplace_back(projectFile, std::move(folders));
}

std::vector<std::string> TVLManager::IncludePath() const {
  return s_->IncludePath();
}

void TVLManager::CancelAllJobs() {
  s_->jobs.CancelAll();
}
void TVLManager::SetDiscardResults(bool discard) {
  s_->discardResults = discard;
}
bool TVLManager::DiscardResults() const {
  return s_->discardResults;
}
TVLThreadList& TVLManager::Jobs() {
  return s_->jobs;
}
bool TVLManager::Idle() const {
  return s_->jobs.Idle();
}

void TVLManager::WaitUntilIdle() {
  TMainThreadQueue& queue = s_->ide.MainThreadQueue();
  queue.RunUntilIdle();
  if (!s_->jobs.Idle()) {
    // The last job to finish stops the loop; no polling.
    s_->waitingForIdle = true;
    struct TReset {
      bool& flag;
      ~TReset() { flag = false; }
    } reset{s_->waitingForIdle};
    queue.RunLoop();
  }
  if (s_->viewsStale) s_->RefreshViews();
}

bool TVLManager::SaveClassInfo() {
  return s_->Save();
}
const std::string& TVLManager::ClassInfoFile() const {
  return s_->classInfoFile;
}
void TVLManager::SetProgressHandler(TProgressHandler handler) {
  s_->progress = std::move(handler);
}
const TVLManagerStats& TVLManager::Stats() const {
  return s_->stats;
}
TIdleThread* TVLManager::IdleThread() {
  return s_->idleThread.get();
}

void InstallVLManager(TVLManagerOptions options) {
  SetManagerFactory([options]() -> std::unique_ptr<TVLManagerInterface> {
    if (!ToolServices) return nullptr;
    return std::make_unique<TVLManager>(*ToolServices, options);
  });
}

}  // namespace velmora
