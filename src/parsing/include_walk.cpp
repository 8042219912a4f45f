#include "parsing/include_walk.h"

#include <sys/stat.h>

#include <algorithm>

#include "support/paths.h"

namespace velmora {

std::string TIncludeResolver::Resolve(const std::string& name, const std::string& includingFile) {
  return ResolveIncludeFile(name, ExtractFilePath(includingFile), includePath_);
}

std::string TIncludeResolver::Spelling(const std::string& path) {
  // Without this a header that includes itself as `./x.h` would wait as `dir/./x.h`, then
  // `dir/././x.h` and so on, and a pair of links to `.` would double the work at every
  // level. A walk reaches few files, so a flat list searched from the front will do.
  struct stat st;
  if (::stat(path.c_str(), &st) != 0) return path;
  const std::pair<unsigned long, unsigned long> key(st.st_dev, st.st_ino);
  for (const auto& [id, name] : spellings_)
    if (id == key) return name;
  spellings_.emplace_back(key, path);
  return path;
}

TIncludeWalk WalkIncludes(const std::string& root, TIncludeResolver& resolver,
                          const TStringList& knownFiles, const TWalkStep& step,
                          std::stop_token stop) {
  TIncludeWalk walk;
  TStringList done(true, TDuplicates::Ignore, true);
  TStringList waiting(true, TDuplicates::Ignore, true);
  resolver.Spelling(root);
  waiting.Add(root);

  while (!waiting.Empty()) {
    if (stop.stop_requested()) {
      walk.Stopped = true;
      break;
    }
    const std::string name = waiting.Strings(0);  // the alphabetically first
    waiting.Delete(0);
    const bool isRoot = name == root;
    const std::vector<std::string>* includes = nullptr;
    if (knownFiles.IndexOf(name) < 0) includes = step(name);
    if (!isRoot) done.Add(name);
    if (!includes) continue;
    for (const std::string& reported : *includes) {
      std::string include = resolver.Resolve(reported, name);
      if (include.empty()) continue;
      include = resolver.Spelling(include);
      // A root that includes itself would otherwise come back after each of its parses.
      if (isRoot && include == root) continue;
      if (done.IndexOf(include) < 0) waiting.Add(include);
    }
  }
  walk.Reached.reserve(done.Count());
  for (int i = 0; i < done.Count(); ++i) walk.Reached.push_back(done.Strings(i));
  return walk;
}

}  // namespace velmora
