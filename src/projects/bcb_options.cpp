#include "projects/bcb_options.h"

#include "support/ansi.h"
#include "support/paths.h"

namespace velmora::projects {

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Words of a command line; blanks inside double quotes do not split (`-I"My Files";inc`).
std::vector<std::string_view> SplitBlanks(std::string_view text) {
  std::vector<std::string_view> out;
  size_t i = 0;
  while (i < text.size()) {
    while (i < text.size() && IsBlank(text[i])) ++i;
    const size_t start = i;
    bool quoted = false;
    while (i < text.size() && (quoted || !IsBlank(text[i]))) {
      if (text[i] == '"') quoted = !quoted;
      ++i;
    }
    if (i > start) out.push_back(text.substr(start, i - start));
  }
  return out;
}

}  // namespace

std::string SwitchValues(std::string_view flags, std::string_view option) {
  std::string out;
  for (std::string_view word : SplitBlanks(flags)) {
    if (word.size() <= option.size() || word.substr(0, option.size()) != option) continue;
    if (!out.empty()) out += ';';
    out += word.substr(option.size());
  }
  return out;
}

void AddObjectFileUnits(TProjectBuilder& builder, std::string_view objFiles,
                        std::string_view sourceFolders) {
  std::vector<std::string> folders;
  for (std::string_view f : SplitList(sourceFolders)) {
    // Expanding here would count an unset macro once per object file; an unset folder
    // simply offers no sources.
    if (f.find("$(") != std::string_view::npos) continue;
    folders.push_back(ToPosixSeparators(f));
  }
  for (std::string_view word : SplitBlanks(objFiles)) {
    if (word.find("$(") != std::string_view::npos) continue;  // ALLOBJ-style references
    const std::string_view ext = ExtractFileExt(word);
    if (!SameText(ext, ".obj")) continue;  // libraries and resources are not units
    const std::string stem = ToPosixSeparators(word.substr(0, word.size() - ext.size()));
    const std::string_view base = ExtractFileName(stem);
    std::string found;
    for (const char* srcExt : {".cpp", ".c", ".cxx", ".cc", ".pas"}) {
      found = ResolveIncludeFile(stem + srcExt, builder.Dir(), {});
      for (size_t i = 0; found.empty() && i < folders.size(); ++i)
        found = ResolveExistingFile(
            JoinPath(JoinPath(builder.Dir(), folders[i]), std::string(base) + srcExt));
      if (!found.empty()) break;
    }
    if (found.empty())
      builder.Warn("unit not found: \"" + std::string(word) + "\" (no source of that name)");
    else
      builder.AddExistingUnit(found);
  }
}

void ReadBcbOptions(TProjectBuilder& builder, const TBcbMacroValue& macro,
                    const TMacroLookup& expand, const TIniText& ide) {
  auto value = [&](std::string_view name) { return macro(name).value_or(std::string()); };
  const std::string sourceFolders = value("PATHCPP") + ";" + value("PATHPAS");
  AddObjectFileUnits(builder, value("OBJFILES"), sourceFolders);

  // Version 4 and later keep the include path and the defines in macros of their own;
  // version 3 has them only as compiler switches. The IDE's history list is the last
  // resort, for a project whose switches are missing altogether.
  const std::string cflags = value("CFLAG1") + " " + value("CFLAG2") + " " + value("CFLAG3");
  const bool hasSwitches = macro("CFLAG1") || macro("CFLAG2") || macro("CFLAG3");
  if (const auto includePath = macro("INCLUDEPATH"))
    builder.AddIncludePath(*includePath, expand);
  else if (hasSwitches)
    builder.AddIncludePath(SwitchValues(cflags, "-I"), expand);
  else if (const auto history = ide.Value("HistoryLists\\hlIncludePath", "Item0"))
    builder.AddIncludePath(*history, expand);

  if (macro("USERDEFINES") || macro("SYSDEFINES")) {
    builder.AddDefines(value("USERDEFINES"));
    builder.AddDefines(value("SYSDEFINES"));
  } else if (hasSwitches) {
    builder.AddDefines(SwitchValues(cflags, "-D"));
  } else if (const auto history = ide.Value("HistoryLists\\hlConditionals", "Item0")) {
    builder.AddDefines(*history);
  }

  builder.AddUnitSearchPath(value("PATHPAS"), expand);
  builder.AddUnitSearchPath(SwitchValues(value("PFLAGS"), "-U"), expand);
}

}  // namespace velmora::projects
