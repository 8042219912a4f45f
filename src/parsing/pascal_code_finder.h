// The Object Pascal code finder: locates method and routine implementations, the
// implementation section, a unit-level name and the end of a unit in the text of a unit
// without parsing it. TPascalTFinder finds a name in the raw text with every character
// folded to lower case; TPascalCodeFinder checks each hit against the token list, with
// names compared case-insensitively as the language requires. Overloads are not told
// apart: the first implementation of the name wins.
//
// Threads: a finder is made for one request and used by one thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "parsing/pascal_tokenizer.h"
#include "parsing/pattern_search.h"

namespace velmora {

/// A tokenized Pascal text and the case-insensitive raw-text search over it.
class TPascalTFinder {
 public:
  TPascalTFinder();
  virtual ~TPascalTFinder() = default;
  TPascalTFinder(const TPascalTFinder&) = delete;
  TPascalTFinder& operator=(const TPascalTFinder&) = delete;

  /// Tokenizes the whole text; `text` must be NUL-terminated at `size` and outlive the
  /// finder. A finder takes one text in its life.
  void SetText(const char* text, int32_t size) { tokenizer_.SetText(text, size); }
  /// Starts a new search of `pattern` from the start of the text, ignoring letter case.
  void SetPattern(std::string_view pattern);
  /// The start offset of the next occurrence of the pattern (matches never overlap), or -1.
  int32_t FindNext() { return search_.FindNext(); }
  /// True when the search has reached the end of the text: the loop condition of callers.
  bool AtEnd() { return search_.AtEnd(); }

  TPascalTokenizer& Tokenizer() { return tokenizer_; }

 protected:
  /// The token that `p` starts when its text equals `name` ignoring case, else -1.
  int32_t WholeTokenAt(int32_t p, std::string_view name) const;

  TPascalTokenizer tokenizer_;  // owns the token lists; the text is the caller's
  TPatternSearch search_;       // folds every character to lower case (kAnsiLower)
};

class TPascalCodeFinder : public TPascalTFinder {
 public:
  /// The first token that reads "implementation" in any letter case, or -1.
  int32_t FindImplementationSection();
  int32_t FindImplementationSectionLine();

  /// The first whole-token occurrence of `name`, ignoring case (a keyword, a name in code
  /// or in a declaration alike; comments and strings are single tokens and never match),
  /// or -1.
  int32_t FindIdentifier(std::string_view name);
  int32_t FindIdentifierLine(std::string_view name);

  /// The first token of the line of the first `procedure|function|constructor|destructor
  /// ClassName.MethodName` heading, or -1. A `class procedure` is found too.
  int32_t FindMethodImplementation(std::string_view className, std::string_view methodName);
  int32_t FindMethodImplementationLine(std::string_view className, std::string_view methodName);
  int32_t FindMethodImplementationOffset(std::string_view className, std::string_view methodName);

  /// The first token of the line of the first `procedure|function Name` from the
  /// implementation section on (the whole text when there is none), or -1; a routine
  /// declared in the interface section is found at its implementation.
  int32_t FindRoutineImplementation(std::string_view name);
  int32_t FindRoutineImplementationLine(std::string_view name);
  int32_t FindRoutineImplementationOffset(std::string_view name);

  /// Where new routines go at the end of a unit: with `useInitialization`, the first
  /// token of the line of the last `initialization`; otherwise, or when there is none,
  /// the first token of the line of the last `end` followed by `.`; -1 when neither is
  /// there.
  int32_t FindUnitEnd(bool useInitialization);
  int32_t FindUnitEndLine(bool useInitialization);
  int32_t FindUnitEndOffset(bool useInitialization);

 private:
  int32_t LineOf(int32_t t) const { return t < 0 ? -1 : tokenizer_.LineOfToken(t); }
  int32_t OffsetOf(int32_t t) const { return t < 0 ? -1 : tokenizer_.TokenOffset(t); }
  // Back from `t` while the token before is not a line end (nor, with `stopAtComment`, a
  // line comment, which holds its line end); 0 at the latest.
  int32_t FirstTokenOfLine(int32_t t, bool stopAtComment) const;
  // The last whole-token occurrence of `word` accepted by `accept` (called with the
  // cursor on it), as the first token of its line; -1 if none.
  template <typename Accept>
  int32_t LastLineStartOf(std::string_view word, Accept accept);

  // FindImplementationSection's answer once asked (-2 before): a finder has one text in
  // its life, and every routine search starts with this scan of the whole text.
  int32_t implementationSection_ = -2;
};

}  // namespace velmora
