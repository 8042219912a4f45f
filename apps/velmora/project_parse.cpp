#include "project_parse.h"

#include <sys/stat.h>

#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <set>

#include "model/class_list.h"
#include "model/files.h"
#include "parsing/parser_thread.h"
#include "parsing/source_parser.h"
#include "support/exception.h"
#include "support/paths.h"
#include "support/stream.h"
#include "support/text_buffer.h"

namespace velmora::app {
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

// What parsing one file gave: its include names, or why it could not be read.
struct TFileRecord {
  bool Parsed = false;
  std::string Error;
  std::vector<std::string> Includes;  // as the parser reported them
  int64_t Bytes = 0;
  double Seconds = 0;
};

std::vector<std::string> ListOf(const TStringList& list) {
  std::vector<std::string> names;
  for (int i = 0; i < list.Count(); ++i) names.push_back(list.Strings(i));
  return names;
}

TFileRecord ParseHere(const std::string& path, TClasslist& classes) {
  TFileRecord record;
  std::string text;
  try {
    text = LoadSourceText(path);
  } catch (const Exception& e) {
    record.Error = e.Message();
    return record;
  }
  const std::string unitName(ExtractFileName(path));
  TStringList includeNames(false, TDuplicates::Ignore, false);
  TMemoryStream stream(std::move(text));
  const auto start = std::chrono::steady_clock::now();
  ParseSourceText(LanguageOfFile(unitName), unitName, stream, classes, TParseOptions{},
                  &includeNames);
  record.Seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  record.Bytes = stream.Size();
  record.Includes = ListOf(includeNames);
  record.Parsed = true;
  return record;
}

// The files the parser threads parsed, by canonical name. A file parsed twice (a root that
// another file includes) is counted once; its parse time adds up.
class TParseRecords : public TParseObserver {
 public:
  void FileParsed(const std::string& name, const TMemoryStream& text,
                  const TStringList& includeNames, double seconds) override {
    auto [it, added] = records_.try_emplace(CanonicalName(name));
    TFileRecord& record = it->second;
    record.Seconds += seconds;
    if (!added) return;
    record.Parsed = true;
    record.Bytes = text.Size();
    record.Includes = ListOf(includeNames);
  }
  const TFileRecord* Find(const std::string& canonical) const {
    auto it = records_.find(canonical);
    return it == records_.end() ? nullptr : &it->second;
  }

 private:
  std::map<std::string, TFileRecord> records_;
};

// Parses every named file with its includes through StartParse, one job per named file
// that an earlier job has not reached yet.
void ParseThroughJobs(const TProjectParseRequest& request, TClasslist& classes,
                      TParseRecords& records) {
  TStringList includePath(false, TDuplicates::Ignore, true);
  for (const std::string& dir : request.IncludePath) includePath.Add(dir);
  TStringList known(true, TDuplicates::Ignore, true);
  TParserThreadOptions options;
  options.RetryBudget = 0;      // nobody is saving these files while the command runs
  options.PascalOption = true;  // as a parse in this thread: past `implementation`
  options.Observer = &records;
  std::vector<std::string> roots;
  for (const std::string& file : request.Files) {
    if (records.Find(CanonicalName(file))) continue;
    TStringList reached(false, TDuplicates::Ignore, true);
    StartParse(classes, nullptr, file, &includePath, &known, &reached, options);
    roots.push_back(file);
    known.Add(file);
    for (int i = 0; i < reached.Count(); ++i) known.Add(reached.Strings(i));
  }
  // The jobs keyed the include entries by the roots' full names; the walk below writes
  // one entry per file, by unit name.
  for (const std::string& root : roots) classes.Includes.Remove(root);
}

}  // namespace

TProjectParseResult ParseProject(const TProjectParseRequest& request, TFilesList& files,
                                 TClasslist& classes) {
  TProjectParseResult result;
  TParseRecords records;
  if (request.FollowIncludes) ParseThroughJobs(request, classes, records);

  // Without includes every file is parsed here, as it is reached. With them the jobs have
  // parsed already; this walk only lists the files and include entries in the order of a
  // breadth-first walk from the named files, which keeps the output independent of the
  // order the jobs took. A named file no job parsed (not a regular file, say) is parsed
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

    TFileRecord here;
    const TFileRecord* record = records.Find(canonical);
    if (!record && (next.named || !request.FollowIncludes)) {
      here = ParseHere(next.path, classes);
      record = &here;
    }
    if (!record || !record->Parsed) {
      if (record && next.named) result.Errors.push_back(record->Error);
      continue;
    }

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

}  // namespace velmora::app
