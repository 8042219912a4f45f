#include "parsing/pascal_code_finder.h"

#include "support/ansi.h"

namespace velmora {

namespace {

// The names a method heading may carry: identifiers and the directive words, which the
// tokenizer always reads as keywords (`procedure TFoo.Read`).
bool IsNameKind(int kind) {
  return kind == ptIdentifier || (kind >= ptAbsolute && kind <= ptWriteonly);
}

}  // namespace

// The system's fixed single-byte folding rather than the locale's, so that a name is found
// the same way on every machine and agrees with the model's name comparison.
TPascalTFinder::TPascalTFinder() : search_(kAnsiLower) {}

void TPascalTFinder::SetPattern(std::string_view pattern) {
  search_.Prepare(tokenizer_.TextPtr(), tokenizer_.TextSize(), pattern);
}

int32_t TPascalTFinder::WholeTokenAt(int32_t p, std::string_view name) const {
  const int32_t t = tokenizer_.IndexOfOffset(p);
  if (t < 0 || t >= tokenizer_.LastIndex()) return -1;
  if (tokenizer_.TokenOffset(t) != p || !SameText(tokenizer_.TokenView(t), name)) return -1;
  return t;
}

int32_t TPascalCodeFinder::FirstTokenOfLine(int32_t t, bool stopAtComment) const {
  const TIList& kinds = tokenizer_.Kinds();
  while (t > 0) {
    const int before = kinds.Get(t - 1);
    if (before == ptLineEnd || (stopAtComment && before == ptLineComment)) break;
    --t;
  }
  return t;
}

int32_t TPascalCodeFinder::FindImplementationSection() {
  if (implementationSection_ != -2) return implementationSection_;
  implementationSection_ = -1;
  SetPattern("implementation");
  while (!AtEnd()) {
    const int32_t p = FindNext();
    if (p < 0) continue;
    const int32_t t = WholeTokenAt(p, "implementation");
    if (t >= 0) {
      implementationSection_ = t;
      break;
    }
  }
  return implementationSection_;
}

int32_t TPascalCodeFinder::FindImplementationSectionLine() {
  return LineOf(FindImplementationSection());
}

int32_t TPascalCodeFinder::FindIdentifier(std::string_view name) {
  if (name.empty()) return -1;
  SetPattern(name);
  while (!AtEnd()) {
    const int32_t p = FindNext();
    if (p < 0) continue;
    const int32_t t = WholeTokenAt(p, name);
    if (t >= 0) return t;
  }
  return -1;
}

int32_t TPascalCodeFinder::FindIdentifierLine(std::string_view name) {
  return LineOf(FindIdentifier(name));
}

int32_t TPascalCodeFinder::FindMethodImplementation(std::string_view className,
                                                    std::string_view methodName) {
  if (className.empty() || methodName.empty()) return -1;
  SetPattern(methodName);
  while (!AtEnd()) {
    const int32_t p = FindNext();
    if (p < 0) continue;
    const int32_t t = WholeTokenAt(p, methodName);
    if (t <= 0) continue;
    tokenizer_.SetIndex(t);
    if (tokenizer_.PrevSignificant() != ptDot) continue;
    if (!IsNameKind(tokenizer_.PrevSignificant())) continue;
    if (!SameText(tokenizer_.TokenView(tokenizer_.Index()), className)) continue;
    const int head = tokenizer_.PrevSignificant();
    if (head != ptConstructor && head != ptDestructor && head != ptFunction &&
        head != ptProcedure) {
      continue;
    }
    return FirstTokenOfLine(t, true);
  }
  return -1;
}

int32_t TPascalCodeFinder::FindMethodImplementationLine(std::string_view className,
                                                        std::string_view methodName) {
  return LineOf(FindMethodImplementation(className, methodName));
}

int32_t TPascalCodeFinder::FindMethodImplementationOffset(std::string_view className,
                                                          std::string_view methodName) {
  return OffsetOf(FindMethodImplementation(className, methodName));
}

int32_t TPascalCodeFinder::FindRoutineImplementation(std::string_view name) {
  if (name.empty()) return -1;
  const int32_t start = FindImplementationSection();
  SetPattern(name);
  while (!AtEnd()) {
    const int32_t p = FindNext();
    if (p < 0) continue;
    const int32_t t = WholeTokenAt(p, name);
    if (t < 1 || t < start) continue;
    tokenizer_.SetIndex(t);
    const int head = tokenizer_.PrevSignificant();
    if (head != ptFunction && head != ptProcedure) continue;
    return FirstTokenOfLine(t, true);
  }
  return -1;
}

int32_t TPascalCodeFinder::FindRoutineImplementationLine(std::string_view name) {
  return LineOf(FindRoutineImplementation(name));
}

int32_t TPascalCodeFinder::FindRoutineImplementationOffset(std::string_view name) {
  return OffsetOf(FindRoutineImplementation(name));
}

template <typename Accept>
int32_t TPascalCodeFinder::LastLineStartOf(std::string_view word, Accept accept) {
  int32_t result = -1;
  SetPattern(word);
  while (!AtEnd()) {
    const int32_t p = FindNext();
    if (p < 0) continue;
    const int32_t t = WholeTokenAt(p, word);
    if (t < 0) continue;
    tokenizer_.SetIndex(t);
    // Only a line end stops this walk, not a line comment: after a line that ends in a
    // `//` comment the place is the start of that line, where the generators have always
    // put new routines.
    if (accept()) result = FirstTokenOfLine(t, false);
  }
  return result;
}

int32_t TPascalCodeFinder::FindUnitEnd(bool useInitialization) {
  int32_t result = -1;
  if (useInitialization) result = LastLineStartOf("initialization", [] { return true; });
  if (result < 0) {
    result = LastLineStartOf("end", [this] { return tokenizer_.NextSignificant() == ptDot; });
  }
  return result;
}

int32_t TPascalCodeFinder::FindUnitEndLine(bool useInitialization) {
  return LineOf(FindUnitEnd(useInitialization));
}

int32_t TPascalCodeFinder::FindUnitEndOffset(bool useInitialization) {
  return OffsetOf(FindUnitEnd(useInitialization));
}

}  // namespace velmora
