// A folder as a project: every C++ and Pascal source under it, a C++ source with the
// header of the same name beside it as one unit. The order is the paths' byte order with
// `/` before every other character, so a folder's files stay together and the same tree
// gives the same project on every machine.
#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <set>

#include "projects/project_builder.h"
#include "support/ansi.h"
#include "support/paths.h"

namespace velmora::projects {

namespace {

// Deeper trees than this are taken to be a link cycle or a hostile tree, not sources.
constexpr int kMaxDepth = 64;

void Collect(const std::string& dir, int depth, std::vector<std::string>& files,
             TProjectBuilder& builder) {
  if (depth > kMaxDepth) {
    builder.Warn("folders nested too deeply below \"" + dir + "\"; left out");
    return;
  }
  DIR* d = ::opendir(dir.c_str());
  if (!d) {
    builder.Warn("folder not readable: \"" + dir + "\"");
    return;
  }
  std::vector<std::string> subdirs;
  while (const dirent* e = ::readdir(d)) {
    const std::string name = e->d_name;
    // Hidden folders are version control and editor state, not the project's sources.
    if (name.empty() || name.front() == '.') continue;
    const std::string path = dir + "/" + name;
    struct stat st;
    if (::lstat(path.c_str(), &st) != 0) continue;
    if (S_ISDIR(st.st_mode)) {
      subdirs.push_back(path);  // linked folders are not followed: they can loop
    } else if (S_ISREG(st.st_mode) || (S_ISLNK(st.st_mode) && FileExists(path))) {
      if (IsCppSourceName(name) || IsCppHeaderName(name) || IsPascalSourceName(name))
        files.push_back(path);
    }
  }
  ::closedir(d);
  for (const std::string& sub : subdirs) Collect(sub, depth + 1, files, builder);
}

bool PathLess(const std::string& a, const std::string& b) {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
    const unsigned char ux = x == '/' ? 0 : static_cast<unsigned char>(x);
    const unsigned char uy = y == '/' ? 0 : static_cast<unsigned char>(y);
    return ux < uy;
  });
}

}  // namespace

TProject ReadFolderProject(const std::string& path) {
  TProjectBuilder builder(path, TProjectKind::Folder);
  std::vector<std::string> files;
  Collect(builder.Project().FileName, 0, files, builder);
  std::sort(files.begin(), files.end(), PathLess);

  // Sources and headers are paired from the listing itself: a tree of thousands of files
  // needs no further look at the disk. Key: the path without its extension, upper case;
  // the first header of a stem in the preference order .h, .hpp, .hxx wins.
  std::map<std::string, std::string> headers;
  for (const char* preferred : {".h", ".hpp", ".hxx"})
    for (const std::string& file : files)
      if (SameText(ExtractFileExt(file), preferred))
        headers.emplace(AnsiUpperCase(file.substr(0, file.size() - std::strlen(preferred))), file);
  std::set<std::string> paired;
  for (const std::string& file : files) {
    if (!IsCppSourceName(file)) continue;
    const std::string_view ext = ExtractFileExt(file);
    auto it = headers.find(AnsiUpperCase(file.substr(0, file.size() - ext.size())));
    if (it != headers.end()) paired.insert(it->second);
  }
  for (const std::string& file : files) {
    if (IsCppHeaderName(file)) {
      // A header no source claims is a unit of its own, at its place in the order.
      if (paired.count(file) == 0) builder.AddExistingUnit(file, "");
    } else if (IsCppSourceName(file)) {
      const std::string_view ext = ExtractFileExt(file);
      auto it = headers.find(AnsiUpperCase(file.substr(0, file.size() - ext.size())));
      builder.AddExistingUnit(file, it == headers.end() ? std::string() : it->second);
    } else {
      builder.AddExistingUnit(file, "");
    }
  }
  builder.Project().IncludePath.push_back(builder.Project().FileName);
  return builder.Finish();
}

}  // namespace velmora::projects
