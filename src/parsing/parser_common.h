// What the C++ and the Pascal parsers share beyond the tokenizer: looking ahead without
// moving the cursor, the position of a token, and recording a class head. Included only by
// the parsers' own sources (through their internal headers).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "model/class_description.h"
#include "parsing/tokenizer.h"

namespace velmora {

class TCommonClassList;

namespace parser_common {

/// The index of the first significant token after `from` (the end-of-text entry when there
/// is none), found without moving the cursor and so without touching the tokenizer's line
/// tracking.
int32_t NextSignificantIndex(const TTokenizer& t, int32_t from);
/// The kind of the next significant token after the cursor, read without moving it; 0 at
/// the end of the text.
int PeekSignificant(const TTokenizer& t);

/// Where a token stands: its line (counted from the start of the text, so a directive or
/// comment spanning lines never makes it drift) and its offset.
struct TSpot {
  int32_t Line;
  int32_t Offset;
};
TSpot SpotOf(const TTokenizer& t, int32_t index);
inline TSpot Here(const TTokenizer& t) {
  return SpotOf(t, t.Index());
}

/// A class head as either language's parser has read it, up to its body.
struct TClassHead {
  std::string_view Name;  ///< never empty
  TLanguage Language;
  TClassKind Kind;
  std::string_view TemplateParams;        ///< empty unless a template head came before
  std::vector<TClassAncestor> Ancestors;  ///< in declaration order
  TSpot Start;                            ///< the class's name
  TSpot End;                              ///< the last token of the head
};

/// Finds or adds the class `head` names in `list` and refills it from the head: what the
/// declaration no longer says (old ancestors, a GUID, a template head, a position table
/// when positions are not wanted) does not survive. The members are kept for the caller's
/// mark and sweep. Null when `list` holds no classes of its own (a reference list); the
/// caller then passes the body.
TClassDescription* RecordClassHead(TCommonClassList& list, std::string_view unitName,
                                   bool wantPositions, TClassHead head);

}  // namespace parser_common
}  // namespace velmora
