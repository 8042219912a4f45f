// The session the browsing commands run on: the add-in itself, loaded into the headless
// IDE through its entry point, with its manager parsing the project in jobs on the parse
// queue. The project is read here first, so a missing or damaged project file ends the
// command before the add-in starts (and before anything is written); then the IDE opens
// it and the manager loads the saved class information (a warm open) or parses every
// unit (a cold one), saving the class information when the parse is merged and again
// when the add-in goes.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>

#include "addin/class_browser_expert.h"
#include "addin/entry.h"
#include "addin/tool_services.h"
#include "addin/vl_manager.h"
#include "addin/vl_manager_interface.h"
#include "browse_session.h"
#include "dump_inputs.h"
#include "hosts/headless/headless_ide.h"
#include "hosts/headless/headless_project.h"
#include "model/class_list.h"
#include "model/files.h"
#include "support/paths.h"

namespace velmora::app {
namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

int64_t FileSizeOf(const std::string& path) {
  struct stat st;
  if (::stat(path.c_str(), &st) != 0) return -1;
  return static_cast<int64_t>(st.st_size);
}

std::string CanonicalName(const std::string& path) {
  char* real = ::realpath(path.c_str(), nullptr);
  if (!real) return path;
  std::string s(real);
  ::free(real);
  return s;
}

/// Messages meant for a dialog keep their CR LF; a terminal line has none.
std::string OneLine(const std::string& text) {
  std::string out;
  for (char c : text) {
    if (c == '\r') continue;
    out += c == '\n' ? ' ' : c;
  }
  return out;
}

class TAddInSession : public TBrowseSession {
 public:
  ~TAddInSession() override;
  void Open(const std::string& projectPath, const TSessionCallbacks& callbacks) override;
  const TProject& Project() const override { return project_; }
  const TOpenStats& Stats() const override { return stats_; }
  TClasslist& Classes() override { return Manager().ProjectClasses(); }
  TFilesList& Files() override { return Manager().ProjectFiles(); }
  TClasslist& ExternalClasses() override { return Manager().ExternalClasses(); }
  TFilesList& ExternalFiles() override { return Manager().ExternalFiles(); }
  bool Reparse(const std::string& fileName) override;
  std::vector<std::string> WatchedFiles() const override;
  bool Save() override;

 private:
  TVLManager& Manager() const { return *TVLManager::Instance(); }
  /// The jobs pass over a unit they cannot read, as a class browser inside an IDE does;
  /// on the command line the user is told which, once each.
  void ReportUnreadableUnits();
  /// Passes on what the add-in reported through the IDE since the last call.
  void PassOnReports();
  bool Holds(const std::string& path) const {
    return Manager().ProjectFiles().FindFull(ExtractFilePath(path), ExtractFileName(path));
  }

  TSessionCallbacks callbacks_;
  TProject project_;
  TOpenStats stats_;
  std::unique_ptr<THeadlessIDE> ide_;
  size_t reportsSeen_ = 0;
};

TAddInSession::~TAddInSession() {
  if (!ide_) return;
  // The manager goes with the expert, saving the class information on the way.
  ide_->UnloadAddIns();
  PassOnReports();
  SetManagerFactory({});
  ToolServices = nullptr;
}

void TAddInSession::PassOnReports() {
  if (!ide_) return;
  const std::vector<std::string>& reports = ide_->Reports();
  for (; reportsSeen_ < reports.size(); ++reportsSeen_)
    if (callbacks_.Message) callbacks_.Message(OneLine(reports[reportsSeen_]));
}

void TAddInSession::Open(const std::string& projectPath, const TSessionCallbacks& callbacks) {
  const auto start = Clock::now();
  callbacks_ = callbacks;
  // Read once before the add-in starts: a project that cannot be read changes nothing.
  project_ = OpenProject(projectPath);

  ide_ = std::make_unique<THeadlessIDE>();
  // The desktop's file types are registered by `velmora register-types`, not on every run.
  TClassBrowserExpert::RegisterFileTypesHook = nullptr;
  InstallVLManager({});
  ide_->LoadAddIn(&INITEXPERT0017);
  if (!TVLManager::Instance()) throw EProjectError("the add-in did not start its manager");
  Manager().SetProgressHandler([this](const TVLProgress& p) {
    if (callbacks_.Progress) callbacks_.Progress(p.FilesParsed, p.FilesTotal, p.CurrentFile);
  });

  Clock::time_point opened;
  project_ = OpenProjectFile(*ide_, projectPath, [&](const TProject& p) {
    for (const std::string& warning : p.Warnings)
      if (callbacks_.Message) callbacks_.Message(warning);
    Manager().SetProjectIncludePath(p.FileName, p.IncludePath);
    opened = Clock::now();
  });
  // The IDE's open loaded the class information (when there was one) and queued the jobs.
  stats_ = {};
  stats_.LoadSeconds = SecondsSince(opened);
  const auto parseStart = Clock::now();
  Manager().WaitUntilIdle();
  stats_.ParseSeconds = SecondsSince(parseStart);
  PassOnReports();
  ReportUnreadableUnits();

  const TVLManagerStats& m = Manager().Stats();
  stats_.Warm = m.OpenKind == TVLOpenKind::Warm;
  stats_.ClassInfoFile = m.ClassInfoFile;
  if (stats_.Warm) stats_.ClassInfoBytes = FileSizeOf(m.ClassInfoFile);
  stats_.UnitsParsed = m.FilesParsed;
  stats_.IncludesParsed = m.IncludesParsed;
  stats_.FilesTotal = Manager().ProjectFiles().Count();
  stats_.TotalSeconds = SecondsSince(start);
}

void TAddInSession::ReportUnreadableUnits() {
  for (const TProjectUnit& unit : project_.Units) {
    for (const std::string& path : {unit.FileName, unit.Header}) {
      if (path.empty()) continue;
      const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
      if (fd >= 0) {
        ::close(fd);
        continue;
      }
      if (callbacks_.Message)
        callbacks_.Message("Cannot open file \"" + path + "\": " + std::strerror(errno) +
                           " (skipped)");
    }
  }
}

bool TAddInSession::Reparse(const std::string& fileName) {
  const std::string path = CanonicalName(fileName);
  bool known = Holds(path);
  for (const TProjectUnit& unit : project_.Units)
    known = known || unit.FileName == path || unit.Header == path;
  // A folder project is every source under the folder: a new one joins it.
  const bool inFolder = project_.Kind == TProjectKind::Folder &&
                        path.starts_with(project_.FileName + "/") && IsSourceExtension(path);
  if (!known && !inFolder) return false;
  struct stat st;
  if (::stat(path.c_str(), &st) != 0) {
    Manager().FileRemoved(path, true);
  } else {
    // What the IDE's notifiers send when a module is saved.
    Manager().FileSaved(path);
    Manager().FileAdded(path);
  }
  Manager().WaitUntilIdle();
  PassOnReports();
  return true;
}

std::vector<std::string> TAddInSession::WatchedFiles() const {
  std::vector<std::string> paths;
  const TFilesList& files = Manager().ProjectFiles();
  for (int i = 0; i < files.Count(); ++i) paths.push_back(files.Items(i)->FullName());
  return paths;
}

bool TAddInSession::Save() {
  const bool saved = Manager().SaveClassInfo();
  PassOnReports();
  return saved;
}

}  // namespace

std::unique_ptr<TBrowseSession> CreateBrowseSession() {
  return std::make_unique<TAddInSession>();
}

}  // namespace velmora::app
