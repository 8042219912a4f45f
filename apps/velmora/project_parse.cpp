#include "project_parse.h"

#include <sys/stat.h>

#include <chrono>
#include <deque>
#include <memory>
#include <set>

#include "model/class_list.h"
#include "model/files.h"
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

}  // namespace

TProjectParseResult ParseProject(const TProjectParseRequest& request, TFilesList& files,
                                 TClasslist& classes) {
  TProjectParseResult result;
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
    if (!seen.insert(CanonicalName(next.path)).second) continue;

    std::string text;
    try {
      text = LoadSourceText(next.path);
    } catch (const Exception& e) {
      if (next.named) result.Errors.push_back(e.Message());
      continue;
    }
    const std::string unitName(ExtractFileName(next.path));
    const TLanguage language = LanguageOfFile(unitName);

    auto file = std::make_unique<TFileDescription>(language);
    file->Name = unitName;
    file->Directory = std::string(ExtractFilePath(next.path));
    file->FileDate = FileDateOf(next.path);
    files.Add(std::move(file));

    TStringList includeNames(false, TDuplicates::Ignore, false);
    TMemoryStream stream(std::move(text));
    const auto start = std::chrono::steady_clock::now();
    ParseSourceText(language, unitName, stream, classes, TParseOptions{}, &includeNames);
    result.Seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    result.Bytes += stream.Size();
    ++result.Files;

    if (includeNames.Count() > 0) {
      TIncludeUnit* unit = classes.Includes.FindOrAdd(unitName);
      for (int i = 0; i < includeNames.Count(); ++i) unit->IncludedNames.Add(includeNames.Strings(i));
    }
    if (!request.FollowIncludes) continue;
    const std::string dir(ExtractFilePath(next.path));
    for (int i = 0; i < includeNames.Count(); ++i) {
      const std::string found = ResolveIncludeFile(includeNames.Strings(i), dir, request.IncludePath);
      if (!found.empty()) queue.push_back({found, false});
    }
  }
  return result;
}

}  // namespace velmora::app
