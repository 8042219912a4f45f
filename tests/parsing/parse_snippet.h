// The parser tests' one way of parsing a text of either language and of describing what
// the parser recorded: the unit tests of both parsers and the golden runner share it, so
// a change in how a parse is started is made here once.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "model/code_object.h"

namespace velmora {

class TClasslist;

struct TSnippetOptions {
  /// The unit's name; empty means "input.h" for C++ and "u.pas" for Object Pascal.
  std::string_view Unit = {};
  bool WantPositions = false;
  /// Object Pascal only: go on past `implementation`.
  bool ParseImplementation = true;
};

/// What one parse gave besides the records it put into the class list.
struct TParsedSnippet {
  std::string Text;                   // the source in buffer form, as the parser read it
  std::vector<std::string> Includes;  // the include names, in the parser's order
  bool InImplementation = false;      // Object Pascal only: the parse reached `implementation`
};

/// Parses `source` (turned into buffer form first) as one unit into `list`, adding to what
/// the list holds: a caller testing a re-parse does the unit's mark and sweep around it.
TParsedSnippet ParseSnippetInto(TClasslist& list, TLanguage language, std::string_view source,
                                const TSnippetOptions& options = {});

/// The model text of `list` (every record with its positions), then a line
/// `includes: A B` when there are include names: the form the golden files hold.
std::string DescribeParse(const TClasslist& list, const std::vector<std::string>& includes = {});

/// `modelText` with every ` at L:O-L:O` position cut out, for tests that check the
/// positions on their own.
std::string WithoutPositions(const std::string& modelText);

/// Parses `source` into a class list of its own and describes it as DescribeParse does.
std::string ParseAndDescribe(TLanguage language, std::string_view source,
                             const TSnippetOptions& options = {});

}  // namespace velmora
