// A project as its user keeps it on disk, read into one value: the source units in the
// order the project lists them, and the include path, defines and unit search path its
// compiler would be given. Every kind of project file the system knows reads into the same
// value, so whatever opens a project never asks which kind it was.
#pragma once

#include <string>
#include <vector>

#include "support/exception.h"

namespace velmora {

enum class TProjectKind {
  MakeBpr,  ///< C++Builder 1 to 4 make-file (`.bpr`, `.bpk`, `.mak`)
  XmlBpr,   ///< C++Builder 5 and 6 XML project (`.bpr`, `.bpk`)
  CbProj,   ///< MSBuild C++Builder project (`.cbproj`)
  Dpr,      ///< Delphi program or library source (`.dpr`)
  DProj,    ///< MSBuild Delphi project (`.dproj`)
  Lpi,      ///< Lazarus project (`.lpi`)
  Lpk,      ///< Lazarus package (`.lpk`)
  Folder,   ///< a folder: every C++ and Pascal source under it
};

/// "make-file .bpr", "XML .bpr", ".cbproj", ".dpr", ".dproj", ".lpi", ".lpk", "folder".
const char* ProjectKindName(TProjectKind kind);

/// One source unit. Paths are absolute, lexically normal and spelled as they exist on
/// disk (a name written in another letter case is resolved to the file's own).
struct TProjectUnit {
  std::string FileName;  ///< the source: `.cpp`/`.c`, `.pas`/`.pp`/`.dpr`/`.lpr`, or a lone header
  std::string Header;    ///< C++ only: the header of the same name beside FileName, "" when none
};

struct TProject {
  std::string Name;      ///< the project file's name without its extension (a folder's name)
  std::string FileName;  ///< absolute path of the project file or folder
  TProjectKind Kind = TProjectKind::Folder;
  /// In project order; each file at most once. Units the project names but that do not
  /// exist are not here: each has a line in Warnings instead.
  std::vector<TProjectUnit> Units;
  /// Existing folders, absolute, in the project's order, each once. Elements that name
  /// an unset macro or a missing folder are left out with a warning.
  std::vector<std::string> IncludePath;
  std::vector<std::string> Defines;  ///< `NAME` or `NAME=VALUE`, in order, each once
  /// Pascal unit search path, as IncludePath. Empty for projects that have none.
  std::vector<std::string> UnitSearchPath;
  /// What was skipped and why, one line each, each at most once, in the order met; the
  /// lines for unset macros (one per macro, with the number of entries it cost) last.
  std::vector<std::string> Warnings;
};

/// A project file that cannot be opened or is not a project of its kind. The message is
/// one line naming the file.
class EProjectError : public Exception {
 public:
  using Exception::Exception;
};

/// Reads the project at `path`: a folder, or a file whose extension picks its reader.
/// Throws EProjectError for a missing path, an unknown extension, or a file that is
/// unreadable or damaged; never for a unit that is missing. Shares no state between
/// calls, so any thread may open a project; the IDE's folders (`$(BCB)`, `$(BDS)`, ...)
/// are read from the environment at each call.
TProject OpenProject(const std::string& path);

/// The whole value as text, one field a line, paths relative to the project's folder;
/// what tests compare and what a user sees when asking what a project holds.
std::string DescribeProject(const TProject& project);

}  // namespace velmora
