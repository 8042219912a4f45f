// TMarkerPositionFinder: finds code markers in a file by walking its comment tokens, and
// the line where the implementation of a new method goes, from the markers or, for a
// Pascal unit, from the implementations already there.
//
// Threads: a finder is made for one request and used by one thread.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "codegen/code_markers.h"
#include "model/code_object.h"

namespace velmora {

class TClassDescription;
class TTokenizer;

struct TMarker {
  int Kind = mkNone;
  std::string Argument;
  int32_t Line = -1;  ///< the comment token's line; -1 when there was no further marker
};

class TMarkerPositionFinder {
 public:
  /// Tokenizes `text` by `language`; the text must be NUL-terminated at its size and
  /// outlive the finder.
  TMarkerPositionFinder(TLanguage language, const std::string& text);
  /// Walks the tokens of `tokenizer`, which already holds the text and must outlive the
  /// finder: a caller that searches the same text otherwise too tokenizes it only once.
  /// Only the token tables are read, never the tokenizer's cursor.
  explicit TMarkerPositionFinder(TTokenizer& tokenizer);
  ~TMarkerPositionFinder();
  TMarkerPositionFinder(const TMarkerPositionFinder&) = delete;
  TMarkerPositionFinder& operator=(const TMarkerPositionFinder&) = delete;

  /// The next marker after the last one returned (from the start of the text at first),
  /// looking only at comment tokens; Line -1 and kind mkNone at the end.
  TMarker NextMarker();
  /// The line of the marker NextMarker returned last, -1 before the first or at the end.
  int32_t LastLine() const { return lastLine_; }

  /// The line of the first marker of `kind` whose argument equals `argument` letter case
  /// aside (any argument without one); -1 if there is none.
  static int32_t FindMarker(TLanguage language, const std::string& text, int kind,
                            std::optional<std::string_view> argument = std::nullopt);

  /// The line of the first marker in file order that places the implementation of a new
  /// method `methodName` of `className`: a ClassMarker_Method of this class, a
  /// Marker(Insert_End) of any, or, only when `ordered`, a Method_Marker of this class
  /// whose method sorts at or after the new one (letter case aside). `isMethodMarker`
  /// tells whether the hit was a Method_Marker. -1 when nothing qualifies.
  static int32_t FindMethodImplementationLine(TLanguage language, const std::string& text,
                                              std::string_view className,
                                              std::string_view methodName, bool ordered,
                                              bool* isMethodMarker = nullptr);

 private:
  std::unique_ptr<TTokenizer> owned_;  // the tokenizer made for the text, null when lent one
  TTokenizer* tokenizer_;              // owned_ or the lent one, over the whole text; never null
  int32_t next_ = 0;                   // the token the next NextMarker looks at first
  int32_t lastLine_ = -1;              // the line of the marker found last
};

/// The line before which the implementation of a new method `methodName` of `cls` goes in
/// `text`, the implementation file, or -1 for none. C++: the placing marker's line, else
/// -1 (the text then goes at the end of the file). Pascal: the placing marker's line;
/// then, unless that was a Method_Marker, with `ordered` the implementation of the first
/// method of the class whose name sorts after the new one when it lies before the marker
/// (or there is no marker); else the end of the unit's implementation.
int32_t MethodImplementationLine(TLanguage language, const std::string& text,
                                 const TClassDescription& cls, std::string_view methodName,
                                 bool ordered);

}  // namespace velmora
