// The include path of a C++Builder project as its IDE keeps it: the project's ".BPR"
// holds the folders the user last entered, in section "HistoryLists\hlIncludePath", key
// "Item0", separated by ";". Relative folders are taken from the project's folder and
// "$(BCB)" stands for the IDE's installation folder.
//
// Stateless: any thread.
#pragma once

#include <string>
#include <vector>

namespace velmora {

/// The folders of `projectFile`'s ".BPR" (the project file's name with that extension,
/// found without regard to case), each normalised, each once, in the file's order.
/// Empty when there is no such file or it names no folder. `ideDirectory` replaces a
/// leading "$(BCB)".
std::vector<std::string> ReadBprIncludePath(const std::string& projectFile,
                                            const std::string& ideDirectory);

/// One entry of the include path made absolute: an entry with a drive ("C:...") or a
/// root stays as it is; "$(BCB)" at its start becomes `ideDirectory`; anything else is
/// taken from `projectDirectory`. Separators become "/", "." and ".." are resolved, and a
/// folder that exists in another letter case is spelled as it exists.
std::string ResolveIncludeEntry(const std::string& entry, const std::string& projectDirectory,
                                const std::string& ideDirectory);

}  // namespace velmora
