// The locating routines over both code finders: where a member of the model is
// implemented, in a text, in a file, or in the first of several files that has it. They
// pick the finder by the member's language, and tell overloads apart only where the name
// is overloaded in the list that holds the member, so that a member whose parameters were
// edited since the last parse is still found when it has no twin.
//
// Files are read through a TSourceTextReader: whoever has editor buffers passes a reader
// that answers from them first, so unsaved text is searched; the default reads the file
// from disk.
//
// The tokens of the text searched last (one per language) are kept for the next lookup,
// which is then only the search: see TFinderCache in the source.
//
// Threads: any thread may call; the kept tokens are behind a lock of their own. The caller
// holds the model's lock while the member and class are read.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velmora {

class TClassDescription;
class TMethodDescription;

/// The text of a source file by name, in buffer form (CR LF line ends; a std::string keeps
/// the NUL the finders stop at), or nothing when it cannot be read. An editor-aware reader
/// answers from the open buffer and falls back to the disk.
using TSourceTextReader = std::function<std::optional<std::string>(const std::string& path)>;

/// The file on disk in buffer form, or nothing when it cannot be read.
std::optional<std::string> ReadSourceTextFromDisk(const std::string& path);

/// With `useStored`, the member's recorded line (StartLine; the model keeps one position
/// pair per member) and true. Otherwise the line where `member` is implemented in `text`
/// (NUL-terminated at its size): for Pascal the method search with a class and the
/// routine search without; for C++ the method search with a class and, without one, the
/// routine search for a free routine (a method without its class is not looked for).
/// True when a line was found.
bool LocateImplementationLine(const std::string& text, bool useStored,
                              const TClassDescription* classDescription, int32_t& line,
                              const TMethodDescription& member);
/// The same with the offset of the line's first token (StartOffset when `useStored`).
bool LocateImplementationOffset(const std::string& text, bool useStored,
                                const TClassDescription* classDescription, int32_t& offset,
                                const TMethodDescription& member);

/// Reads `fileName` through `reader` and locates the member in it. False when the file
/// cannot be read or the implementation is not in it.
bool LocateImplementationInFile(const std::string& fileName,
                                const TClassDescription* classDescription,
                                const TMethodDescription& member, int32_t& line,
                                const TSourceTextReader& reader = ReadSourceTextFromDisk);

/// With `useStored`, the recorded line. Otherwise tries `fileName` first (unless empty),
/// then each of `fileList` in order; the first file that has the implementation wins and
/// is written back into `fileName`. False, with `fileName` unchanged, when none has it.
bool LocateImplementationInFiles(std::string& fileName, const std::vector<std::string>& fileList,
                                 bool useStored, int32_t& line, const TMethodDescription& member,
                                 const TClassDescription* classDescription,
                                 const TSourceTextReader& reader = ReadSourceTextFromDisk);

}  // namespace velmora
