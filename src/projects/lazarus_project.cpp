// Lazarus projects (`.lpi`) and packages (`.lpk`): XML under <CONFIG>. Units are
// `<Units><Unit0>` (or `<Unit>`) with a Filename in a project, `<Files><Item1>` (or
// `<Item>`) in a package; the search paths are the compiler options' OtherUnitFiles and
// IncludeFiles, the defines its `-d` switches.
#include "projects/bcb_options.h"
#include "projects/project_builder.h"
#include "projects/xml_document.h"
#include "support/ansi.h"
#include "support/paths.h"

namespace velmora::projects {

namespace {

bool HasPrefixNoCase(std::string_view s, std::string_view prefix) {
  return s.size() >= prefix.size() && SameText(s.substr(0, prefix.size()), prefix);
}

std::string ValueOf(pugi::xml_node node, std::string_view child) {
  return AttributeNoCase(ChildNoCase(node, child), "Value");
}

// Lazarus expands the target's macros to the machine it builds on; so do we. The output
// folders hold compiled units and generated resources, never sources: a path through one
// is left out without a word.
std::optional<std::string> LazarusMacro(std::string_view name) {
  if (SameText(name, "TargetOS")) return std::string("linux");
  if (SameText(name, "SrcOS")) return std::string("unix");
#if defined(__x86_64__)
  if (SameText(name, "TargetCPU")) return std::string("x86_64");
#elif defined(__aarch64__)
  if (SameText(name, "TargetCPU")) return std::string("aarch64");
#endif
  return EnvironmentMacro(name);
}

bool IsOutputFolder(std::string_view element) {
  return element.find("$(ProjOutDir)") != std::string_view::npos ||
         element.find("$(PkgOutDir)") != std::string_view::npos;
}

std::string WithoutOutputFolders(std::string_view list) {
  std::string out;
  for (std::string_view element : SplitList(list)) {
    if (IsOutputFolder(element)) continue;
    if (!out.empty()) out += ';';
    out += element;
  }
  return out;
}

}  // namespace

TProject ReadLazarusProject(const std::string& path, TProjectKind kind) {
  pugi::xml_document document;
  LoadXmlProject(path, "CONFIG", document);
  const pugi::xml_node root = document.document_element();
  TProjectBuilder builder(path, kind);

  pugi::xml_node options;
  if (kind == TProjectKind::Lpi) {
    const pugi::xml_node project = ChildNoCase(root, "ProjectOptions");
    if (!project)
      throw EProjectError("\"" + std::string(ExtractFileName(path)) +
                          "\" is not a Lazarus project: it has no <ProjectOptions>");
    for (pugi::xml_node unit : ChildNoCase(project, "Units").children()) {
      if (!HasPrefixNoCase(unit.name(), "Unit")) continue;
      // Older projects kept the session's other open files in the same list.
      if (!SameText(ValueOf(unit, "IsPartOfProject"), "True")) continue;
      // A project may hold any file (notes, forms, include files); its units are sources.
      const std::string fileName = ValueOf(unit, "Filename");
      if (!IsPascalSourceName(fileName) && !IsCppSourceName(fileName)) continue;
      builder.AddUnit(fileName, LazarusMacro);
    }
    options = ChildNoCase(root, "CompilerOptions");
  } else {
    const pugi::xml_node package = ChildNoCase(root, "Package");
    if (!package)
      throw EProjectError("\"" + std::string(ExtractFileName(path)) +
                          "\" is not a Lazarus package: it has no <Package>");
    for (pugi::xml_node item : ChildNoCase(package, "Files").children()) {
      if (!HasPrefixNoCase(item.name(), "Item")) continue;
      const std::string type = ValueOf(item, "Type");
      // A virtual unit lives in another package; include files, forms and resources are
      // files of the package but not units.
      if (!type.empty() && !SameText(type, "Unit") && !SameText(type, "Main Unit")) continue;
      const std::string fileName = ValueOf(item, "Filename");
      if (!IsPascalSourceName(fileName) && !IsCppSourceName(fileName)) continue;
      builder.AddUnit(fileName, LazarusMacro);
    }
    options = ChildNoCase(package, "CompilerOptions");
  }

  const pugi::xml_node searchPaths = ChildNoCase(options, "SearchPaths");
  builder.AddUnitSearchPath(WithoutOutputFolders(ValueOf(searchPaths, "OtherUnitFiles")),
                            LazarusMacro);
  builder.AddIncludePath(WithoutOutputFolders(ValueOf(searchPaths, "IncludeFiles")), LazarusMacro);
  builder.AddDefines(SwitchValues(ValueOf(ChildNoCase(options, "Other"), "CustomOptions"), "-d"));
  return builder.Finish();
}

}  // namespace velmora::projects
