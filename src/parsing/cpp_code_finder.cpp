#include "parsing/cpp_code_finder.h"

#include "model/parameters.h"
#include "parsing/cpp_parser.h"

namespace velmora {

void TCPPTFinder::SetPattern(std::string_view pattern) {
  search_.Prepare(tokenizer_.TextPtr(), tokenizer_.TextSize(), pattern);
}

int32_t TCPPTFinder::FirstTokenOfLine(int32_t t) const {
  const TIList& kinds = tokenizer_.Kinds();
  while (t > 0) {
    const int before = kinds.Get(t - 1);
    if (before == ctLineEnd || before == ctLineComment) break;
    --t;
  }
  return t;
}

int32_t TCppCodeFinder::WholeTokenAt(int32_t p, std::string_view name) const {
  const int32_t t = tokenizer_.IndexOfOffset(p);
  if (t <= 0 || t >= tokenizer_.LastIndex()) return -1;
  if (tokenizer_.TokenOffset(t) != p || tokenizer_.TokenView(t) != name) return -1;
  return t;
}

bool TCppCodeFinder::ReadAndCompareParameters(const TParameterList* params) {
  const int kind = tokenizer_.NextSignificant();
  if (kind != ctOpenParen && kind != ctParens) return false;
  if (params == nullptr) {
    // Only MatchParametersAt comes here without a list: it wants the cursor on the close.
    if (kind == ctOpenParen) {
      std::string unused;
      CollectBracket(tokenizer_, ctOpenParen, unused, false);
    }
    return true;
  }
  std::string text;
  // An unclosed list is collected as far as it goes and compared as it is.
  if (kind == ctOpenParen) CollectBracket(tokenizer_, ctOpenParen, text, true);
  TParameterList found(params->Language);
  found.Parse(text);
  return found.SameAs(*params);
}

bool TCppCodeFinder::MatchParameters(const TParameterList* params) {
  if (params == nullptr) return true;
  const TCursorState saved = SaveCursor(tokenizer_);
  const bool same = ReadAndCompareParameters(params);
  RestoreCursor(tokenizer_, saved);
  return same;
}

bool TCppCodeFinder::MatchParametersAt(const TParameterList* params) {
  return ReadAndCompareParameters(params);
}

int32_t TCppCodeFinder::FindMethodImplementation(std::string_view className,
                                                 std::string_view methodName,
                                                 const TParameterList* params) {
  if (className.empty() || methodName.empty()) return -1;
  const bool destructor = methodName.front() == '~';
  if (destructor) methodName.remove_prefix(1);
  if (methodName.empty()) return -1;
  SetPattern(methodName);
  while (!AtEnd()) {
    const int32_t p = FindNext();
    if (p < 0) continue;
    const int32_t t = WholeTokenAt(p, methodName);
    if (t < 0) continue;
    tokenizer_.SetIndex(t);
    if (!MatchParameters(params)) continue;
    if (destructor && tokenizer_.PrevSignificant() != ctTilde) continue;
    if (tokenizer_.PrevSignificant() != ctScope) continue;
    if (tokenizer_.PrevSignificant() != ctIdentifier) continue;
    if (tokenizer_.TokenView(tokenizer_.Index()) != className) continue;
    // The first hit is the answer; later ones could not replace it.
    return FirstTokenOfLine(t);
  }
  return -1;
}

int32_t TCppCodeFinder::FindMethodImplementationLine(std::string_view className,
                                                     std::string_view methodName,
                                                     const TParameterList* params) {
  return LineOf(FindMethodImplementation(className, methodName, params));
}

int32_t TCppCodeFinder::FindMethodImplementationOffset(std::string_view className,
                                                       std::string_view methodName,
                                                       const TParameterList* params) {
  return OffsetOf(FindMethodImplementation(className, methodName, params));
}

int32_t TCppCodeFinder::FindRoutineImplementation(std::string_view name,
                                                  const TParameterList* params) {
  if (name.empty()) return -1;
  // `{}` (an empty body written without a blank) is a body like `{`; the skip stops at it
  // too, so that `void f() {}` is found rather than whatever body follows it.
  static constexpr TTokenKindSet kBodyOrEnd = {ctOpenBrace, ctBraces, ctSemicolon};
  SetPattern(name);
  while (!AtEnd()) {
    const int32_t p = FindNext();
    if (p < 0) continue;
    const int32_t t = WholeTokenAt(p, name);
    if (t < 0) continue;
    tokenizer_.SetIndex(t);
    if (tokenizer_.Kind() != ctIdentifier) continue;
    if (!MatchParametersAt(params)) continue;
    int kind = tokenizer_.NextSignificant();
    if (kind == ctConst) kind = tokenizer_.NextSignificant();
    if (kind != ctOpenBrace && kind != ctBraces && kind != ctSemicolon) {
      kind = SkipTo(tokenizer_, kBodyOrEnd);
      // One `;`-ended declaration may stand between the list and the body.
      if (kind == ctSemicolon) kind = tokenizer_.NextSignificant();
    }
    if (kind != ctOpenBrace && kind != ctBraces) continue;
    return FirstTokenOfLine(t);
  }
  return -1;
}

int32_t TCppCodeFinder::FindRoutineImplementationLine(std::string_view name,
                                                      const TParameterList* params) {
  return LineOf(FindRoutineImplementation(name, params));
}

int32_t TCppCodeFinder::FindRoutineImplementationOffset(std::string_view name,
                                                        const TParameterList* params) {
  return OffsetOf(FindRoutineImplementation(name, params));
}

}  // namespace velmora
