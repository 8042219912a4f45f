// Shared pieces of the Pascal parser's source files: token-kind sets, the helpers shared
// with the C++ parser, and the declaration readers each file provides. Only the
// pascal_*_parser / pascal_*_declaration sources include this header.
#pragma once

#include <cstdint>
#include <string>

#include "model/class_description.h"
#include "parsing/parser_common.h"
#include "parsing/pascal_parser.h"
#include "parsing/pascal_tokenizer.h"
#include "support/check.h"

namespace velmora::pascal_parser {

/// Names: identifiers and the directive words (ptAbsolute..ptWriteonly), since `name`, `index`,
/// `read` or `message` are ordinary names wherever Pascal does not give them a meaning.
inline bool IsNameKind(int kind) {
  return kind == ptIdentifier || (kind >= ptAbsolute && kind <= ptWriteonly);
}

/// Tokens that can only begin a new member or end a class body. A declaration that runs
/// into one of them is missing its `;`: it ends there, and the token is read again as
/// what it is, so that one broken line does not swallow the class's `end`.
inline constexpr TTokenKindSet kMemberBoundary = {
    ptEnd,       ptProperty, ptConstructor, ptDestructor, ptPrivate,
    ptProtected, ptPublic,   ptPublished,   ptAutomated,  ptImplementation};
/// The same and the words that begin a method. A type may contain `procedure`,
/// `function` or `class` (`procedure of object`, `class of TFoo`); a property
/// declaration cannot.
inline constexpr TTokenKindSet kPropertyBoundary = {
    ptEnd,       ptProperty,  ptConstructor,    ptDestructor, ptPrivate,  ptProtected, ptPublic,
    ptPublished, ptAutomated, ptImplementation, ptProcedure,  ptFunction, ptClass};

inline constexpr TTokenKindSet kSemicolon = {ptSemicolon};

using parser_common::Here;
using parser_common::NextSignificantIndex;
using parser_common::PeekSignificant;
using parser_common::SpotOf;
using parser_common::TSpot;

inline void SetBlock(TPositionInfo::Positions& block, TSpot start, TSpot end) {
  block.StartLine = start.Line;
  block.StartOffset = start.Offset;
  block.EndLine = end.Line;
  block.EndOffset = end.Offset;
}

/// A type name at the cursor: one token, or a unit-qualified name (`Classes.TList`) read
/// whole. The cursor ends on its last token.
std::string ReadTypeName(TTokenizer& t);

/// A declaration reader leaves its cursor on its closing `;`. When it stopped on any other
/// token (a missing `;`), that token is left for the loop to read as what it is.
void LeaveUnlessSemicolon(TPascalBaseParser& p);

/// With the cursor on a `<` after a name: passes a generic's type parameter list
/// (`TList<T>`, `TDict<K, V: class; W>`, nested `<...>`) and returns true with the cursor
/// on its closing `>`, or on a `>=` that also stands for the `=` after it (`TList<T>=`).
/// Returns false with the cursor unmoved when what follows cannot be one: `a < b` in a
/// statement.
bool PassTypeParameters(TTokenizer& t);
/// Whether the token at the cursor, of kind `kind`, is the identifier `word` in any case.
bool IsWordAt(const TTokenizer& t, int kind, std::string_view word);

/// What a procedure or function heading declares after its kind word.
struct TRoutineHeading {
  std::string Name;
  std::string ParamText;   ///< between the brackets, blanks collapsed
  std::string ResultType;  ///< empty for a procedure
};
/// With the cursor on the kind word: reads the name, the `(...)` group and the result type
/// after `:`, leaving the cursor on the token after them. Returns false, with the cursor
/// unmoved, when no name follows (a procedural type), and false after skipping to `;` when
/// the name is qualified (`A.B`), which declares nothing here. A result type never begins
/// with one of `resultStops`, so a missing type does not swallow the next member.
bool ReadRoutineHeading(TPascalBaseParser& p, const TTokenKindSet& resultStops,
                        TRoutineHeading& heading);

// Readers, each called with the cursor on the word that starts its construct.

/// At a name at file level, or in a class body (`outer`) where a `type` or `const` section
/// declares it: `Name = [packed] class|interface|dispinterface|object ...`; records the
/// class (in `outer`'s nested classes when given) and reads its body. Anything else
/// records nothing.
void ParseTypeDeclaration(TPascalClassFinderParser& p, TClassDescription* outer);
/// At `procedure` or `function` at file level.
void ParseRoutineDeclaration(TPascalFileParser& p);
/// At `class`, `procedure`, `function`, `constructor` or `destructor` in a class body.
void ParseMethodDeclaration(TPascalClassParser& p);
/// At a directive word in a class body.
void ParseDirective(TPascalClassParser& p);
/// At a name in a class body.
void ParseFieldDeclaration(TPascalClassParser& p);
/// At `property` in a class body.
void ParsePropertyDeclaration(TPascalClassParser& p);

/// The class's position table when positions are wanted, else null.
TPositionInfo* PositionTable(TPascalClassParser& p);

}  // namespace velmora::pascal_parser
