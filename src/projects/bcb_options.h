// What the two forms of a C++Builder project (the make-file of versions 1 to 4 and the XML
// of versions 5 and 6) have in common: the same macro names (OBJFILES, PATHCPP, PATHPAS,
// INCLUDEPATH, USERDEFINES, ...), the same compiler switches in CFLAG1..3 and PFLAGS, and
// the same ini block with the IDE's history lists.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "projects/ini_text.h"
#include "projects/project_builder.h"

namespace velmora::projects {

/// The project's macros by name; nothing for one the project does not define.
using TBcbMacroValue = std::function<std::optional<std::string>(std::string_view name)>;

/// Every value of the switch `option` (`-I`, `-D`, `-U`) in `flags`, joined with `;`
/// (`-Ia;b -Ic` gives "a;b;c").
std::string SwitchValues(std::string_view flags, std::string_view option);

/// Fills units, include path, defines and unit search path from the macros, in the rules
/// both forms share. `expand` resolves macros inside paths; `ide` is the IDE's ini block.
void ReadBcbOptions(TProjectBuilder& builder, const TBcbMacroValue& macro,
                    const TMacroLookup& expand, const TIniText& ide);

/// Adds the sources behind the object files of OBJFILES: `X.obj` is the first of X.cpp,
/// X.c, X.cxx, X.cc and X.pas found beside the project (in the object file's own folder),
/// then in each PATHCPP and PATHPAS folder.
void AddObjectFileUnits(TProjectBuilder& builder, std::string_view objFiles,
                        std::string_view sourceFolders);

}  // namespace velmora::projects
