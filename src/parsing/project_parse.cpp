#include "parsing/project_parse.h"

#include <sys/stat.h>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <thread>
#include <utility>

#include "model/class_list.h"
#include "model/files.h"
#include "parsing/file_parse.h"
#include "parsing/include_walk.h"
#include "parsing/parse_merge.h"
#include "parsing/source_parser.h"
#include "support/ansi.h"
#include "support/exception.h"
#include "support/paths.h"
#include "support/text_buffer.h"

namespace velmora {
namespace {

std::string CanonicalName(const std::string& path) {
  char* real = ::realpath(path.c_str(), nullptr);
  if (!real) return path;
  std::string s(real);
  ::free(real);
  return s;
}

int32_t FileDateOf(const std::string& path) {
  struct stat st;
  if (::stat(path.c_str(), &st) != 0) return -1;
  return static_cast<int32_t>(st.st_mtime);
}

// One file parsed ahead of the merge, or why it could not be read.
struct TPrepared {
  TFileParse Parse;
  bool Parsed = false;
  std::string Error;
};

TPrepared Prepare(const std::string& path, TLanguage language) {
  TPrepared prepared;
  std::string text;
  try {
    text = LoadSourceText(path);
  } catch (const Exception& e) {
    prepared.Error = e.Message();
    return prepared;
  }
  prepared.Parse = ParseText(path, language, std::move(text), TParseOptions{});
  prepared.Parsed = true;
  return prepared;
}

// Parses on every core what the merge will ask for, before it asks: the named files and,
// when includes are followed, every file they reach, each by the parser of the named file
// it was reached from. A file is keyed by its name as the walk spells it (the walk's
// spellings are names given or names resolved, both of which come through here) and by
// the parser, since two roots of different languages read a shared file differently.
//
// Threads: Add and the workers share `mutex_`; Find is for the caller once Run returned.
class TParseAhead {
 public:
  using TKey = std::pair<std::string, TLanguage>;

  TParseAhead(bool followIncludes, std::vector<std::string> includePath)
      : follow_(followIncludes), includePath_(std::move(includePath)) {}

  void Add(const std::string& path, TLanguage language) {
    std::lock_guard lock(mutex_);
    if (!prepared_.try_emplace(TKey(path, language)).second) return;
    todo_.emplace_back(path, language);
    more_.notify_one();
  }

  /// Parses everything added, and what that reaches, on `threads` threads (the caller's
  /// among them); returns when all is done.
  void Run(int threads) {
    std::vector<std::jthread> helpers;
    for (int i = 1; i < threads; ++i) helpers.emplace_back([this] { Work(); });
    Work();
  }

  /// The parse of `path` by `language`, made now when it was not made ahead.
  TPrepared& Get(const std::string& path, TLanguage language) {
    std::unique_ptr<TPrepared>& slot = prepared_[TKey(path, language)];
    if (!slot) slot = std::make_unique<TPrepared>(Prepare(path, language));
    return *slot;
  }

 private:
  void Work() {
    for (;;) {
      TKey key;
      {
        std::unique_lock lock(mutex_);
        more_.wait(lock, [this] { return !todo_.empty() || busy_ == 0; });
        if (todo_.empty()) return;
        key = std::move(todo_.front());
        todo_.pop_front();
        ++busy_;
      }
      auto prepared = std::make_unique<TPrepared>(Prepare(key.first, key.second));
      if (follow_ && prepared->Parsed) {
        const std::string dir(ExtractFilePath(key.first));
        for (const std::string& name : prepared->Parse.IncludeNames) {
          const std::string found = ResolveIncludeFile(name, dir, includePath_);
          if (!found.empty()) Add(found, key.second);
        }
      }
      std::lock_guard lock(mutex_);
      prepared_[key] = std::move(prepared);
      if (--busy_ == 0 && todo_.empty()) more_.notify_all();
    }
  }

  const bool follow_;
  const std::vector<std::string> includePath_;
  std::mutex mutex_;
  std::condition_variable more_;  ///< work was added, or the last worker ran dry
  std::deque<TKey> todo_;         ///< guarded by mutex_
  int busy_ = 0;                  ///< workers parsing now; guarded by mutex_
  std::map<TKey, std::unique_ptr<TPrepared>> prepared_;  ///< guarded by mutex_ during Run
};

// What the merge took of each file, by canonical name. A file merged twice (a root that
// another file includes) is counted once; its parse time adds up.
struct TFileRecord {
  bool Parsed = false;
  std::string Error;
  std::vector<std::string> Includes;  // as the parser reported them
  int64_t Bytes = 0;
  double Seconds = 0;
};

class TParseRecords {
 public:
  void Note(const TFileParse& parse) {
    auto [it, added] = records_.try_emplace(CanonicalName(parse.Path));
    TFileRecord& record = it->second;
    record.Seconds += parse.Seconds;
    if (!added) return;
    record.Parsed = true;
    record.Bytes = parse.Bytes;
    record.Includes = parse.IncludeNames;
  }
  const TFileRecord* Find(const std::string& canonical) const {
    auto it = records_.find(canonical);
    return it == records_.end() ? nullptr : &it->second;
  }

 private:
  std::map<std::string, TFileRecord> records_;
};

// Merges every named file with its includes as parse jobs do, one job per named file
// that an earlier job has not reached yet, in the jobs' own order.
void MergeThroughJobs(const TProjectParseRequest& request, TParseAhead& ahead, TClasslist& classes,
                      TParseRecords& records) {
  TStringList folders(false, TDuplicates::Ignore, true);
  for (const std::string& dir : request.IncludePath) folders.Add(dir);
  std::vector<std::string> includePath;
  for (int i = 0; i < folders.Count(); ++i) includePath.push_back(folders.Strings(i));
  TStringList known(true, TDuplicates::Ignore, true);
  for (const std::string& file : request.Files) {
    if (records.Find(CanonicalName(file))) continue;
    const TLanguage language = LanguageOfFile(file);
    auto step = [&](const std::string& path) -> const std::vector<std::string>* {
      if (!FileExists(path)) return nullptr;
      const TPrepared& prepared = ahead.Get(path, language);
      if (!prepared.Parsed) return nullptr;
      // The root's own records are left as they are; an included unit's are marked first.
      MergeFileParse(classes, prepared.Parse,
                     path == file ? TMergeMode::Accumulate : TMergeMode::MarkWithoutSweep);
      records.Note(prepared.Parse);
      return &prepared.Parse.IncludeNames;
    };
    TIncludeResolver resolver(includePath);
    const TIncludeWalk walk = WalkIncludes(file, resolver, known, step);
    known.Add(file);
    for (const std::string& reached : walk.Reached) known.Add(reached);
  }
}

}  // namespace

TProjectParseResult ParseProject(const TProjectParseRequest& request, TFilesList& files,
                                 TClasslist& classes) {
  TProjectParseResult result;
  // Units merged so far, upper-cased: the model starts empty, so a unit not here has no
  // records in it yet.
  std::set<std::string> mergedUnits;
  TParseAhead ahead(request.FollowIncludes, request.IncludePath);
  for (const std::string& file : request.Files) ahead.Add(file, LanguageOfFile(file));
  int threads = request.Threads;
  if (threads <= 0) threads = static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
  ahead.Run(threads);

  // From here on one thread merges, in an order that does not depend on the threads.
  TParseRecords records;
  if (request.FollowIncludes) MergeThroughJobs(request, ahead, classes, records);

  // Without includes every file is merged here, as it is reached. With them the jobs have
  // merged already; this walk only lists the files and include entries in the order of a
  // breadth-first walk from the named files, which keeps the output independent of the
  // order the jobs took. A named file no job took (not a regular file, say) is merged
  // here, which also gives the message when it cannot be read.
  struct Pending {
    std::string path;
    bool named;  // given on the command line rather than reached through an include
  };
  std::deque<Pending> queue;
  for (const std::string& f : request.Files) queue.push_back({f, true});
  std::set<std::string> seen;

  while (!queue.empty()) {
    const Pending next = queue.front();
    queue.pop_front();
    const std::string canonical = CanonicalName(next.path);
    if (!seen.insert(canonical).second) continue;

    const TFileRecord* record = records.Find(canonical);
    if (!record && (next.named || !request.FollowIncludes)) {
      TPrepared& prepared = ahead.Get(next.path, LanguageOfFile(next.path));
      if (!prepared.Parsed) {
        if (next.named) result.Errors.push_back(prepared.Error);
        continue;
      }
      // Without includes each file is merged once, here (the walk sees each file once),
      // so a unit new to the model may give its routines away.
      if (!request.FollowIncludes &&
          mergedUnits.insert(AnsiUpperCase(prepared.Parse.UnitName)).second)
        MergeNewUnitParse(classes, prepared.Parse);
      else
        MergeFileParse(classes, prepared.Parse, TMergeMode::Accumulate);
      records.Note(prepared.Parse);
      record = records.Find(canonical);
    }
    if (!record || !record->Parsed) continue;

    const std::string unitName(ExtractFileName(next.path));
    auto file = std::make_unique<TFileDescription>(LanguageOfFile(unitName));
    file->Name = unitName;
    file->Directory = std::string(ExtractFilePath(next.path));
    file->FileDate = FileDateOf(next.path);
    files.Add(std::move(file));
    result.Seconds += record->Seconds;
    result.Bytes += record->Bytes;
    ++result.Files;

    if (!record->Includes.empty()) {
      TIncludeUnit* unit = classes.Includes.FindOrAdd(unitName);
      for (const std::string& name : record->Includes) unit->IncludedNames.Add(name);
    }
    if (!request.FollowIncludes) continue;
    const std::string dir(ExtractFilePath(next.path));
    for (const std::string& name : record->Includes) {
      const std::string found = ResolveIncludeFile(name, dir, request.IncludePath);
      if (!found.empty()) queue.push_back({found, false});
    }
  }
  return result;
}

}  // namespace velmora
