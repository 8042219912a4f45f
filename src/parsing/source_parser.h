// One entry for parsing a source file of either language into a class list: picks the
// language from the file name and runs the matching file parser. Callers that refresh a
// model (the dump command, the parser threads) do the unit's mark and sweep around it.
#pragma once

#include <string_view>

#include "model/code_object.h"

namespace velmora {

class TClasslist;
class TMemoryStream;
class TStringList;

/// C++ for `.c`, `.cpp`, `.cxx`, `.cc`, `.h`, `.hpp` and `.hxx` (in any case), Object Pascal
/// for every other name.
TLanguage LanguageOfFile(std::string_view path);

/// True for the header extensions `.h`, `.hpp` and `.hxx` (in any case).
bool IsHeaderFile(std::string_view path);

struct TParseOptions {
  bool WantPositions = false;
  /// Pascal only: go on past `implementation` (routines there are still not recorded).
  bool ParseImplementation = true;
};

/// Parses `text` (buffer form, as LoadSourceText gives it) as the unit `unitName` into
/// `target`, and puts the include names the file names into `includeNames` when given.
void ParseSourceText(TLanguage language, std::string_view unitName, const TMemoryStream& text,
                     TClasslist& target, const TParseOptions& options, TStringList* includeNames);

}  // namespace velmora
