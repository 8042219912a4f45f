// What the C++ parser's own units share and nobody else needs: the token-kind sets the
// parsers react to, the declaration walk common to file level and class bodies, and the
// tolerant reading of template argument lists. Included only by src/parsing/cpp_*.cpp
// files of the parser.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "model/code_object.h"
#include "parsing/cpp_parser.h"
#include "parsing/parser_common.h"
#include "support/check.h"

namespace velmora::cpp_parser {

using parser_common::PeekSignificant;

/// The line of the token at the cursor, for the positions the parsers record. Counted from
/// the text rather than taken from the tracked line: a string or character literal may run
/// over line ends (the tokenizer has no escapes, so `'\''` leaves a quote open), and the
/// tracked line does not count those. The parsers ask in text order, which the tokenizer's
/// count resumes from, so this stays one pass over the text.
inline int32_t LineHere(const TTokenizer& t) {
  return parser_common::Here(t).Line;
}

/// `#define` .. `#undef`, the lone `#` included: every directive the parsers pass over.
inline bool IsDirectiveKind(int kind) {
  return kind >= ctHashDefine && kind <= ctHashUndef;
}

/// Calling conventions, `inline` and `virtual`: words that set a method directive.
inline constexpr TTokenKindSet kModifierKinds = {ctCdecl_2,  ctFastcall_2, ctInline,
                                                 ctPascal_2, ctStdcall_2,  ctVirtual};
/// The built-in type words a declaration may start with.
inline constexpr TTokenKindSet kTypeWordKinds = {
    ctBool,    ctChar, ctDouble, ctFloat,  ctInt,      ctInt8_2, ctInt16_2, ctInt32_2,
    ctInt64_2, ctLong, ctShort,  ctSigned, ctUnsigned, ctVoid,   ctWcharT};

/// The directive bit a modifier kind sets; 0 for any other kind.
uint16_t ModifierDirective(int kind);

/// `text` appended to `out`, after one blank when `blank` is set and `out` is not empty.
inline void AppendSeparated(std::string& out, std::string_view text, bool blank) {
  if (blank && !out.empty()) out += ' ';
  out += text;
}

/// Reads a `<...>` group from the `<` at the cursor as C++ writes it, which CollectBracket
/// does not: `>>` closes two levels and a `>` inside parentheses closes none. A `<` may
/// just as well be a comparison, so the group also ends before a `;`, `{`, `{}` or `}`
/// (no argument list holds one): a stray `<` costs the rest of one declaration, not the
/// rest of the file. With `text`, collects the tokens between the outer brackets as
/// CollectBracket does. True with the cursor on the close; false with the cursor before
/// the token that ended the group, or at the end of text.
bool CollectTemplateArguments(TCPPTokenizer& tokenizer, std::string* text);

/// Passes what later C++ writes after a parameter list (and its `const`): `volatile`, the
/// ref-qualifiers `&` and `&&`, `noexcept` with or without its condition, `throw(...)`, a
/// trailing return type `-> type`, `override` and `final`, so that what follows them (`;`,
/// a body, an initializer list, `= 0`) is read as it is without them, and neither the
/// condition of `noexcept(...)` nor the `decltype(...)` of a trailing type reads as a
/// method of that name. `next` is the kind at the cursor and `before` the cursor state
/// just before it; both move on past whatever is passed.
void PassTrailingSpecifiers(TCPPTokenizer& tokenizer, int& next, TCursorState& before);

/// From the `=` at the cursor: passes the value up to the `,` or `;` that ends it, bracket
/// groups and template argument lists whole. True on a `,` (more declarators follow);
/// false on the `;`, at the end of text, or before a `}`, which is left unread and sets
/// `cut`.
bool SkipInitializer(TCPPTokenizer& tokenizer, bool& cut);

/// A word written as macros are: capitals, digits and underscores, a capital among them.
bool LooksLikeMacroName(std::string_view word);

/// What the walk over one declaration found.
struct TDeclaration {
  int32_t StartLine = -1;
  int32_t StartOffset = -1;
  std::string Type;         // the result or field type, untrimmed
  std::string Name;         // the last identifier, or the operator's symbol
  std::string Params;       // the text between the parameter list's brackets
  std::string ArraySuffix;  // class bodies: "[10][]" after a field name
  std::string Rest;         // class bodies: the declarators after the first comma
  uint16_t Directives = 0;  // from the modifier words
  bool HasParams = false;
  bool IsOperator = false;
  bool IsDestructor = false;    // class bodies: a `~` was met
  bool DeclaratorList = false;  // class bodies: a comma was met
  // Ended before a `}`, which is left to the caller; nothing is recorded.
  bool Cut = false;
};

enum class TDeclarationScope { File, Class };

/// Walks one declaration from the cursor (its first token) with NextSkipComments and
/// stops on its last token: the `;`, the parameter list's `)` or `()`, the end of a
/// skipped initializer, or the end of text. A `}` is never consumed: the walk stops before
/// it and sets Cut.
void WalkDeclaration(TCPPTokenizer& tokenizer, TDeclarationScope scope, TDeclaration& d);

}  // namespace velmora::cpp_parser
