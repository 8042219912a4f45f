// What `velmora dump` does around the parse: folders named on the command line walked for
// sources (recursively, by extension, with --exclude patterns, as `ctags -R` does), the
// warnings a user should see instead of silence (empty or binary inputs, includes that do
// not resolve, an include path that nothing reads, a class name two units declare), and
// the streaming JSON form, one class or routine a line.
#pragma once

#include <string>
#include <vector>

namespace velmora {
class TClasslist;
class TFilesList;
}  // namespace velmora

namespace velmora::app {

/// True for the extensions of the sources a folder walk takes: C and C++ sources and
/// headers, Pascal units, programs and packages (any letter case). Include files such as
/// ".inc" are left to --follow-includes.
bool IsSourceExtension(const std::string& fileName);

/// True when `pattern` (a shell glob) matches the file's name or its path as written.
bool IsExcluded(const std::string& path, const std::vector<std::string>& excludes);

struct TDumpInputs {
  std::vector<std::string> Files;     ///< files to parse, in command-line then walk order
  std::vector<std::string> Warnings;  ///< one line each, without the "velmora: " prefix
};

/// Files named are taken as they are (a missing one is left for the parse to report);
/// folders are walked, their entries in name order, taking the sources not excluded.
TDumpInputs ExpandDumpInputs(const std::vector<std::string>& args,
                             const std::vector<std::string>& excludes);

/// "FILE: empty file" or "FILE: looks binary (NUL bytes)" for inputs a user most likely did
/// not mean to parse; "" for ordinary ones.
std::string InputWarning(const std::string& path);

/// One line per include name of a parsed file that is not found beside the file nor on the
/// include path: "FILE: include "NAME" not found".
std::vector<std::string> UnresolvedIncludes(const TFilesList& files, const TClasslist& classes,
                                            const std::vector<std::string>& includePath);

/// One line per class name that more than one of `files` declares at the top level, naming
/// the files: the model keeps the first. Parses each file again on its own.
std::vector<std::string> DuplicateClassWarnings(const std::vector<std::string>& files);

/// The JSON of a dump ({"classes": [...], "routines": [...]}) with each class and routine
/// given the absolute "path" of its file.
std::string WithPaths(const std::string& modelJson, const TFilesList& files);
/// The same, one object a line: {"entry": "class", ...} and {"entry": "routine", ...}.
std::string JsonLines(const std::string& modelJson, const TFilesList& files);

}  // namespace velmora::app
