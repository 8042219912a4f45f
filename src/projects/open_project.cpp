#include <sys/stat.h>

#include "projects/project_builder.h"
#include "support/ansi.h"
#include "support/paths.h"

namespace velmora {

using namespace projects;

namespace {

// The XML form of a `.bpr` begins with a declaration or its root; the make-file form
// with comments and macros. Blanks may come first in either.
bool LooksLikeXml(const std::string& path) {
  const std::string text = ReadProjectFile(path);
  size_t i = 0;
  while (i < text.size() && static_cast<unsigned char>(text[i]) <= ' ') ++i;
  return i < text.size() && text[i] == '<';
}

std::string Relative(const std::string& path, const std::string& base) {
  std::string dir = base;
  if (dir.empty() || dir.back() != '/') dir += '/';
  if (path.compare(0, dir.size(), dir) == 0) return path.substr(dir.size());
  if (path + "/" == dir) return ".";
  // Outside the project's folder: climb to the common ancestor.
  size_t common = 0;
  for (size_t i = 0; i < path.size() && i < dir.size() && path[i] == dir[i]; ++i)
    if (path[i] == '/') common = i + 1;
  std::string out;
  for (size_t i = common; i < dir.size(); ++i)
    if (dir[i] == '/') out += "../";
  out += path.substr(common);
  return out;
}

}  // namespace

const char* ProjectKindName(TProjectKind kind) {
  switch (kind) {
    case TProjectKind::MakeBpr:
      return "make-file .bpr";
    case TProjectKind::XmlBpr:
      return "XML .bpr";
    case TProjectKind::CbProj:
      return ".cbproj";
    case TProjectKind::Dpr:
      return ".dpr";
    case TProjectKind::DProj:
      return ".dproj";
    case TProjectKind::Lpi:
      return ".lpi";
    case TProjectKind::Lpk:
      return ".lpk";
    case TProjectKind::Folder:
      return "folder";
  }
  return "?";
}

TProject OpenProject(const std::string& path) {
  if (path.empty()) throw EProjectError("no project given");
  struct stat st;
  if (::stat(path.c_str(), &st) != 0) throw EProjectError("project not found: \"" + path + "\"");
  if (S_ISDIR(st.st_mode)) return ReadFolderProject(path);
  const std::string_view ext = ExtractFileExt(path);
  // A package of either C++Builder form is laid out as its project is.
  if (SameText(ext, ".bpr") || SameText(ext, ".bpk"))
    return LooksLikeXml(path) ? ReadXmlBprProject(path) : ReadMakefileProject(path);
  if (SameText(ext, ".mak")) return ReadMakefileProject(path);
  if (SameText(ext, ".cbproj")) return ReadCbProjProject(path);
  if (SameText(ext, ".dpr")) return ReadDprProject(path);
  if (SameText(ext, ".dproj")) return ReadDProjProject(path);
  if (SameText(ext, ".lpi")) return ReadLazarusProject(path, TProjectKind::Lpi);
  if (SameText(ext, ".lpk")) return ReadLazarusProject(path, TProjectKind::Lpk);
  throw EProjectError("not a project file: \"" + std::string(ExtractFileName(path)) +
                      "\" (expected .bpr, .bpk, .mak, .cbproj, .dpr, .dproj, .lpi, .lpk or a "
                      "folder)");
}

std::string DescribeProject(const TProject& project) {
  const std::string dir = project.Kind == TProjectKind::Folder
                              ? project.FileName
                              : std::string(ExtractFilePath(project.FileName));
  std::string out;
  out += "name: " + project.Name + "\n";
  out += "kind: " + std::string(ProjectKindName(project.Kind)) + "\n";
  out += "file: " + Relative(project.FileName, dir) + "\n";
  out += "units:\n";
  for (const TProjectUnit& unit : project.Units) {
    out += "  " + Relative(unit.FileName, dir);
    if (!unit.Header.empty()) out += " + " + Relative(unit.Header, dir);
    out += "\n";
  }
  auto list = [&](const char* title, const std::vector<std::string>& items, bool paths) {
    out += title;
    out += ":\n";
    for (const std::string& item : items) out += "  " + (paths ? Relative(item, dir) : item) + "\n";
  };
  list("include path", project.IncludePath, true);
  list("defines", project.Defines, false);
  list("unit search path", project.UnitSearchPath, true);
  list("warnings", project.Warnings, false);
  return out;
}

}  // namespace velmora
