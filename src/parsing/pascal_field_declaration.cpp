// Field declarations in a class body: `FCount: Integer;`, `A, B: Integer;` (each name its
// own field with the shared type) and `FData: record ... end;` (type "record").
#include <string>
#include <vector>

#include "model/class_list.h"
#include "parsing/pascal_parser_internal.h"
#include "support/ansi.h"

namespace velmora {
namespace pascal_parser {

namespace {

// A typed constant in a class's `const` section, or a `class var` with a starting value,
// writes `= value` after its type (`array[1..2] of Integer = (1, 2)`): the type ends there.
// An `=` inside brackets belongs to a parameter's default value or a constant expression.
std::string WithoutInitialValue(const std::string& type) {
  int depth = 0;
  bool quoted = false;
  for (size_t i = 0; i < type.size(); ++i) {
    const char c = type[i];
    if (c == '\'') quoted = !quoted;
    if (quoted) continue;
    if (c == '(' || c == '[') ++depth;
    if ((c == ')' || c == ']') && depth > 0) --depth;
    if (c == '=' && depth == 0) return std::string(Trim(std::string_view(type).substr(0, i)));
  }
  return type;
}

}  // namespace

void ParseFieldDeclaration(TPascalClassParser& p) {
  TTokenizer& t = p.Cursor();
  VELMORA_DCHECK(IsNameKind(t.Kind()), "a field declaration starts on a name");
  const TSpot start = Here(t);
  std::vector<std::string> names{t.Text()};
  // Names and commas up to the colon. A `;` first declares nothing (the `default;` after
  // an array property). Any other token, a name right after a name included, ends the
  // attempt and is read again by the loop: `strict private` goes on as `private`.
  for (bool wantName = false;;) {
    const int kind = t.NextSignificant();
    if (kind == ptColon && !wantName) break;
    if (kind == ptSemicolon) return;
    if (wantName && IsNameKind(kind)) {
      names.push_back(t.Text());
      wantName = false;
    } else if (kind == ptComma && !wantName) {
      wantName = true;
    } else {
      LeaveUnlessSemicolon(p);
      return;
    }
  }

  std::string type;
  const int32_t first = NextSignificantIndex(t, t.Index());
  int next = t.Kinds().Get(first);
  if (next == ptPacked && t.Kinds().Get(NextSignificantIndex(t, first)) == ptRecord) {
    t.NextSignificant();
    next = ptRecord;
  }
  if (next == ptRecord) {
    t.NextSignificant();
    p.CollectBracket(ptRecord, nullptr);
    type = "record";
    if (PeekSignificant(t) == ptSemicolon) t.NextSignificant();
  } else {
    p.ReadTo(ptSemicolon, type, &kMemberBoundary);
    type = WithoutInitialValue(type);
  }
  const TSpot end = Here(t);

  std::vector<TFieldDescription*> fields;
  if (names.size() == 1) {
    fields.push_back(p.Owner->Fields.FindOrAdd(names[0], type, p.Visibility));
  } else {
    std::string text;
    for (const std::string& name : names) {
      if (!text.empty()) text += ", ";
      text += name;
    }
    text += ": ";
    text += type;
    fields = p.Owner->Fields.AddDeclaratorList(text, p.Visibility);
  }
  for (TFieldDescription* f : fields) {
    if (!f) continue;
    f->SetIsProperty(false);  // a former property of that name is a field now
    f->SetStart(start.Line, start.Offset);
    f->SetEnd(end.Line, end.Offset);
  }
  if (TPositionInfo* table = PositionTable(p))
    SetBlock(table->At(p.Visibility, TPositionInfo::LastField), start, end);
  LeaveUnlessSemicolon(p);
}

}  // namespace pascal_parser
}  // namespace velmora
