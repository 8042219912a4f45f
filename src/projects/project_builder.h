// What every project reader shares: the value under construction, the resolution of names
// written on Windows against the folders here, macro expansion, and the rule that each
// unit, folder, define and warning is kept once. Only the readers in this folder include
// this header.
#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "projects/project.h"

namespace velmora::projects {

/// The value of the macro `name` (as in `$(name)`), or nothing when it is not known.
using TMacroLookup = std::function<std::optional<std::string>(std::string_view name)>;

/// Looks macros up in the process environment only.
std::optional<std::string> EnvironmentMacro(std::string_view name);

/// The elements of a `;`-separated list, blanks trimmed, empty ones left out.
std::vector<std::string_view> SplitList(std::string_view list, char separator = ';');

/// `path` absolute (against the current folder) and lexically normal, with `/` only.
std::string NormalPath(std::string_view path);

/// The existing folder `path` names, its components matched case-insensitively when they
/// do not exist as written; "" when there is none.
std::string ResolveDirectory(std::string_view path);

bool IsCppSourceName(std::string_view path);     ///< .cpp .cxx .cc .c
bool IsCppHeaderName(std::string_view path);     ///< .h .hpp .hxx
bool IsPascalSourceName(std::string_view path);  ///< .pas .pp .p .lpr .dpr

/// The whole file without a UTF-8 byte-order mark, or EProjectError naming it. Files over
/// a size no project reaches are refused rather than read.
std::string ReadProjectFile(const std::string& path);

/// Builds a TProject. Relative names are taken from the project's folder.
/// Not thread-safe; one builder per reader call.
class TProjectBuilder {
 public:
  TProjectBuilder(const std::string& projectPath, TProjectKind kind);

  /// The project's folder, absolute, ending in `/`.
  const std::string& Dir() const { return dir_; }
  TProject& Project() { return project_; }

  void Warn(std::string line);

  /// `text` with every `$(NAME)` replaced through `macros` (replacements are expanded
  /// again, to a fixed depth). Nothing when some macro is unknown: the macro is counted
  /// for the closing warning, and the caller leaves the element out.
  std::optional<std::string> Expand(std::string_view text, const TMacroLookup& macros);

  /// Adds the unit the project writes as `name` (relative to Dir(), or rooted, with either
  /// separator and any letter case). A C++ source gets its header. A name that does not
  /// resolve is warned about once and skipped. Returns whether a unit was found.
  /// `header`, when the project names one and it exists, is the unit's header wherever it
  /// lies; else the one beside the source is taken.
  bool AddUnit(std::string_view name, const TMacroLookup& macros, std::string_view header = {});
  /// Adds a file already known to exist, a C++ source with the header beside it.
  void AddExistingUnit(const std::string& path);
  /// Adds a file already known to exist with the header already found for it ("" for
  /// none), without looking at the folder again.
  void AddExistingUnit(const std::string& path, const std::string& header);

  void AddIncludePath(std::string_view list, const TMacroLookup& macros);
  void AddUnitSearchPath(std::string_view list, const TMacroLookup& macros);
  void AddDefine(std::string_view define);
  void AddDefines(std::string_view list);

  /// The finished value, with one warning for each unknown macro that cost an element.
  TProject Finish();

 private:
  void AddFolders(std::string_view list, const TMacroLookup& macros,
                  std::vector<std::string>& target);

  TProject project_;
  std::string dir_;
  /// The FileName of every unit in project_.Units.
  std::set<std::string> unitFiles_;
  /// Missing units already warned about: the path they would have, in upper case.
  std::set<std::string> missingUnits_;
  /// Unknown macros in the order first met, with the number of elements each cost.
  std::vector<std::pair<std::string, int>> unknownMacros_;
};

// The readers, one per kind of project file. Each takes the project file's path and
// throws EProjectError when the file is not a project of its kind.
TProject ReadMakefileProject(const std::string& path);
TProject ReadXmlBprProject(const std::string& path);
TProject ReadCbProjProject(const std::string& path);
TProject ReadDprProject(const std::string& path);
TProject ReadDProjProject(const std::string& path);
TProject ReadLazarusProject(const std::string& path, TProjectKind kind);
TProject ReadFolderProject(const std::string& path);

}  // namespace velmora::projects
