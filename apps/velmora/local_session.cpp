// The session the command runs on until the add-in's manager drives the model: the
// project's units and the files they include are parsed here, one after the other, with
// the unit's mark and sweep a merge does; the class information beside the project is
// loaded first when there is one, and then only files whose date differs from the saved
// one (or that are new) are parsed again.
#include <sys/stat.h>

#include <chrono>
#include <cstdlib>
#include <deque>
#include <set>

#include "browse_session.h"
#include "model/class_info_file.h"
#include "model/class_list.h"
#include "model/files.h"
#include "parsing/source_parser.h"
#include "support/exception.h"
#include "support/paths.h"
#include "support/stream.h"
#include "support/text_buffer.h"

namespace velmora::app {
namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

std::string CanonicalName(const std::string& path) {
  char* real = ::realpath(path.c_str(), nullptr);
  if (!real) return path;
  std::string s(real);
  ::free(real);
  return s;
}

/// -1 when the file is gone.
int32_t FileDateOf(const std::string& path) {
  struct stat st;
  if (::stat(path.c_str(), &st) != 0) return -1;
  return static_cast<int32_t>(st.st_mtime);
}

int64_t FileSizeOf(const std::string& path) {
  struct stat st;
  if (::stat(path.c_str(), &st) != 0) return 0;
  return static_cast<int64_t>(st.st_size);
}

/// The class information file of a project: its name with ".cinfo" beside the project
/// file or folder. (Inside a folder project it would meet the file of a project file of
/// the same name in it, and the folder's own walk would see it.)
std::string ClassInfoFileOf(const TProject& project) {
  std::string path = project.FileName;
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return std::string(ExtractFilePath(path)) + project.Name + ".cinfo";
}

/// Messages of the model files keep the spec's CR LF; a terminal line has none.
std::string OneLine(std::string text) {
  std::string out;
  for (char c : text) {
    if (c == '\r') continue;
    out += c == '\n' ? ' ' : c;
  }
  return out;
}

class TLocalSession : public TBrowseSession {
 public:
  void Open(const std::string& projectPath, const TSessionCallbacks& callbacks) override;
  const TProject& Project() const override { return project_; }
  const TOpenStats& Stats() const override { return stats_; }
  TClasslist& Classes() override { return classes_; }
  TFilesList& Files() override { return files_; }
  TClasslist& ExternalClasses() override { return external_; }
  TFilesList& ExternalFiles() override { return externalFiles_; }
  bool Reparse(const std::string& fileName) override;
  std::vector<std::string> WatchedFiles() const override;
  bool Save() override;

 private:
  void Say(const std::string& line) const {
    if (callbacks_.Message) callbacks_.Message(line);
  }
  /// Parses `queue` and every file it includes that the model does not hold yet.
  void ParseAll(std::deque<std::string> queue);
  /// Parses one file into the model; its include names resolved go to `includes`.
  bool ParseFile(const std::string& path, std::vector<std::string>* includes);
  void RemoveFile(const std::string& path);
  /// Removes the files that no unit of the project reaches through its includes any more:
  /// units taken out of the project, includes no longer named, and the files of a saved
  /// model that was copied here from elsewhere.
  void DropUnreached();
  TFileDescription* FileEntry(const std::string& path) const {
    return files_.FindFull(ExtractFilePath(path), ExtractFileName(path));
  }

  TSessionCallbacks callbacks_;
  TProject project_;
  TOpenStats stats_;
  TClasslist classes_;
  TClasslist external_;
  TFilesList files_;
  TFilesList externalFiles_;
};

void TLocalSession::Open(const std::string& projectPath, const TSessionCallbacks& callbacks) {
  const auto start = Clock::now();
  callbacks_ = callbacks;
  project_ = OpenProject(projectPath);
  for (const std::string& warning : project_.Warnings) Say(warning);
  stats_ = {};
  stats_.ClassInfoFile = ClassInfoFileOf(project_);

  std::deque<std::string> queue;
  if (FileDateOf(stats_.ClassInfoFile) != -1) {
    const auto loadStart = Clock::now();
    const TModelFileOutcome loaded = LoadClassInfoFileReported(stats_.ClassInfoFile, files_, classes_);
    stats_.LoadSeconds = SecondsSince(loadStart);
    if (loaded.Ok) {
      stats_.Warm = true;
      stats_.ClassInfoBytes = FileSizeOf(stats_.ClassInfoFile);
    } else {
      Say(OneLine(loaded.Message));
      files_.Clear();
      classes_.Clear();
    }
  }
  if (stats_.Warm) {
    // Files the saved model holds: gone ones leave it, changed ones are parsed again.
    std::vector<std::string> known;
    for (int i = 0; i < files_.Count(); ++i) known.push_back(files_.Items(i)->FullName());
    for (const std::string& path : known) {
      const int32_t date = FileDateOf(path);
      if (date == -1)
        RemoveFile(path);
      else if (date != FileEntry(path)->FileDate)
        queue.push_back(path);
    }
  }
  for (const TProjectUnit& unit : project_.Units) {
    for (const std::string& path : {unit.Header, unit.FileName}) {
      if (!path.empty() && !FileEntry(path)) queue.push_back(path);
    }
  }
  const auto parseStart = Clock::now();
  ParseAll(std::move(queue));
  stats_.ParseSeconds = SecondsSince(parseStart);
  if (stats_.Warm) DropUnreached();
  stats_.FilesTotal = files_.Count();
  stats_.TotalSeconds = SecondsSince(start);
}

void TLocalSession::ParseAll(std::deque<std::string> queue) {
  std::set<std::string> seen;
  int total = static_cast<int>(queue.size());
  while (!queue.empty()) {
    const std::string path = CanonicalName(queue.front());
    queue.pop_front();
    if (!seen.insert(path).second) {
      --total;
      continue;
    }
    if (callbacks_.Progress) callbacks_.Progress(stats_.FilesParsed, total, path);
    std::vector<std::string> includes;
    if (!ParseFile(path, &includes)) continue;
    for (const std::string& included : includes) {
      // A file the model already holds is current unless it is queued itself.
      if (FileEntry(included) || seen.count(included)) continue;
      queue.push_back(included);
      ++total;
    }
  }
}

bool TLocalSession::ParseFile(const std::string& path, std::vector<std::string>* includes) {
  std::string text;
  try {
    text = LoadSourceText(path);
  } catch (const Exception& e) {
    Say(e.Message() + " (skipped)");
    ++stats_.FilesUnreadable;
    return false;
  }
  const std::string unitName(ExtractFileName(path));
  TStringList includeNames(false, TDuplicates::Ignore, false);
  TMemoryStream stream(std::move(text));
  {
    std::lock_guard lock(classes_.Lock);
    classes_.Mark(unitName, false);
    ParseSourceText(LanguageOfFile(unitName), unitName, stream, classes_, TParseOptions{},
                    &includeNames);
    classes_.Sweep(false, unitName);
    classes_.Includes.Remove(unitName);
    if (includeNames.Count() > 0) {
      TIncludeUnit* unit = classes_.Includes.FindOrAdd(unitName);
      for (int i = 0; i < includeNames.Count(); ++i) unit->IncludedNames.Add(includeNames.Strings(i));
    }
  }
  TFileDescription* entry = FileEntry(path);
  if (!entry) {
    auto file = std::make_unique<TFileDescription>(LanguageOfFile(unitName));
    file->Name = unitName;
    file->Directory = std::string(ExtractFilePath(path));
    entry = files_.Add(std::move(file));
  }
  entry->FileDate = FileDateOf(path);
  ++stats_.FilesParsed;
  if (includes) {
    const std::string dir(ExtractFilePath(path));
    for (int i = 0; i < includeNames.Count(); ++i) {
      const std::string found = ResolveIncludeFile(includeNames.Strings(i), dir, project_.IncludePath);
      if (!found.empty()) includes->push_back(CanonicalName(found));
    }
  }
  return true;
}

void TLocalSession::RemoveFile(const std::string& path) {
  const std::string unitName(ExtractFileName(path));
  {
    std::lock_guard lock(classes_.Lock);
    classes_.Mark(unitName, false);
    classes_.Sweep(false, unitName);
    classes_.Includes.Remove(unitName);
  }
  for (int i = 0; i < files_.Count(); ++i) {
    if (files_.Items(i) == FileEntry(path)) {
      files_.Delete(i);
      break;
    }
  }
}

void TLocalSession::DropUnreached() {
  std::set<std::string> reached;
  std::deque<std::string> queue;
  for (const TProjectUnit& unit : project_.Units) {
    for (const std::string& path : {unit.Header, unit.FileName})
      if (!path.empty()) queue.push_back(CanonicalName(path));
  }
  while (!queue.empty()) {
    const std::string path = queue.front();
    queue.pop_front();
    if (!reached.insert(path).second) continue;
    const TIncludeUnit* unit = classes_.Includes.Find(ExtractFileName(path));
    if (!unit) continue;
    const std::string dir(ExtractFilePath(path));
    for (int i = 0; i < unit->IncludedNames.Count(); ++i) {
      const std::string found =
          ResolveIncludeFile(unit->IncludedNames.Strings(i), dir, project_.IncludePath);
      if (!found.empty()) queue.push_back(CanonicalName(found));
    }
  }
  std::vector<std::string> unreached;
  for (int i = 0; i < files_.Count(); ++i) {
    const std::string path = files_.Items(i)->FullName();
    if (!reached.count(path)) unreached.push_back(path);
  }
  for (const std::string& path : unreached) {
    // Objects of a unit name that a reached file shares stay: they are that file's.
    bool shared = false;
    for (const std::string& kept : reached) shared = shared || ExtractFileName(kept) == ExtractFileName(path);
    if (shared) {
      files_.Delete(files_.Index.IndexOfObject(FileEntry(path)));
    } else {
      RemoveFile(path);
    }
    ++stats_.FilesDropped;
  }
}

bool TLocalSession::Reparse(const std::string& fileName) {
  const std::string path = CanonicalName(fileName);
  bool known = FileEntry(path) != nullptr;
  for (const TProjectUnit& unit : project_.Units)
    known = known || unit.FileName == path || unit.Header == path;
  if (!known) return false;
  if (FileDateOf(path) == -1) {
    RemoveFile(path);
    return true;
  }
  std::vector<std::string> includes;
  if (ParseFile(path, &includes)) {
    std::deque<std::string> added;
    for (const std::string& included : includes)
      if (!FileEntry(included)) added.push_back(included);
    ParseAll(std::move(added));
  }
  return true;
}

std::vector<std::string> TLocalSession::WatchedFiles() const {
  std::vector<std::string> paths;
  for (int i = 0; i < files_.Count(); ++i) paths.push_back(files_.Items(i)->FullName());
  return paths;
}

bool TLocalSession::Save() {
  const TModelFileOutcome saved = SaveClassInfoFileReported(stats_.ClassInfoFile, files_, classes_);
  if (!saved.Ok) Say(OneLine(saved.Message));
  return saved.Ok;
}

}  // namespace

std::unique_ptr<TBrowseSession> CreateBrowseSession() { return std::make_unique<TLocalSession>(); }

}  // namespace velmora::app
