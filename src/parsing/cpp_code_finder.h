// The C++ code finder: locates the implementation of a method (`Class::Method(...)`) or of
// a free function in a C++ source file without parsing the whole file. TCPPTFinder finds
// the name in the raw text; TCppCodeFinder checks each hit against the token list (whole
// token, qualified by the right class, right parameter list, followed by a body) and
// reports the first hit that passes as the first token, the line or the offset of the line
// on which the implementation begins.
//
// Threads: a finder is made for one request and used by one thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "parsing/cpp_tokenizer.h"
#include "parsing/pattern_search.h"

namespace velmora {

class TParameterList;

/// A tokenized C++ text and the raw-text search over it.
class TCPPTFinder {
 public:
  TCPPTFinder() = default;
  virtual ~TCPPTFinder() = default;
  TCPPTFinder(const TCPPTFinder&) = delete;
  TCPPTFinder& operator=(const TCPPTFinder&) = delete;

  /// Tokenizes the whole text; `text` must be NUL-terminated at `size` and outlive the
  /// finder. A finder takes one text in its life.
  void SetText(const char* text, int32_t size) { tokenizer_.SetText(text, size); }
  /// Starts a new search of `pattern` from the start of the text. The tokenizer's cursor
  /// is left where it is.
  void SetPattern(std::string_view pattern);
  /// The start offset of the next occurrence of the pattern (matches never overlap), or -1.
  int32_t FindNext() { return search_.FindNext(); }
  /// True when the search has reached the end of the text: the loop condition of callers.
  bool AtEnd() { return search_.AtEnd(); }

  TCPPTokenizer& Tokenizer() { return tokenizer_; }

 protected:
  /// The first token of the line holding token `t`: back while the token before is
  /// neither a line end nor a line comment (which holds its line end); 0 at the latest.
  int32_t FirstTokenOfLine(int32_t t) const;

  TCPPTokenizer tokenizer_;  // owns the token lists; the text is the caller's
  TPatternSearch search_;    // over tokenizer_'s text, case-sensitive
};

class TCppCodeFinder : public TCPPTFinder {
 public:
  /// The token index of the first token on the line where `className::methodName(...)`
  /// is implemented, or -1. A methodName beginning with `~` is the destructor. With
  /// `params`, the parameter list in the text must be the same (overloads are told
  /// apart); without, any parameters match. Only the class name directly before `::` is
  /// compared, so `Outer::Inner::Method` is found for class `Inner`; a body is not
  /// required, and the first qualified occurrence in the file wins.
  int32_t FindMethodImplementation(std::string_view className, std::string_view methodName,
                                   const TParameterList* params);
  int32_t FindMethodImplementationLine(std::string_view className, std::string_view methodName,
                                       const TParameterList* params);
  int32_t FindMethodImplementationOffset(std::string_view className, std::string_view methodName,
                                         const TParameterList* params);

  /// The same for a free function: the name followed by a parameter list (always
  /// required) and a body, passing `const`, initializer lists, exception specifications
  /// and one `;`-ended declaration between them (old-style parameter declarations). A
  /// prototype ending in `;` is not taken.
  int32_t FindRoutineImplementation(std::string_view name, const TParameterList* params);
  int32_t FindRoutineImplementationLine(std::string_view name, const TParameterList* params);
  int32_t FindRoutineImplementationOffset(std::string_view name, const TParameterList* params);

  /// True when `params` is null, or when the next significant token after the cursor
  /// opens a parameter list whose text parses to a list the same as `params`. The cursor
  /// is put back.
  bool MatchParameters(const TParameterList* params);
  /// As MatchParameters, but a parameter list must follow even for null params, and the
  /// cursor is left on its `)` (or on `()`).
  bool MatchParametersAt(const TParameterList* params);

 private:
  int32_t LineOf(int32_t t) const { return t < 0 ? -1 : tokenizer_.LineOfToken(t); }
  int32_t OffsetOf(int32_t t) const { return t < 0 ? -1 : tokenizer_.TokenOffset(t); }
  // The hit's token when `p` starts a token whose text is exactly `name`, else -1;
  // token 0 is never a hit.
  int32_t WholeTokenAt(int32_t p, std::string_view name) const;
  // From the cursor: the parameter text compared with `params`; false without a list.
  bool ReadAndCompareParameters(const TParameterList* params);
};

}  // namespace velmora
