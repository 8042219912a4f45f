// Property declarations: `property Items[Index: Integer]: string read GetItem write
// SetItem;`. A property is a field marked as such, with its specifiers.
#include <string>

#include "model/class_list.h"
#include "parsing/pascal_parser_internal.h"
#include "support/ansi.h"

namespace velmora {
namespace pascal_parser {

namespace {

// The one token after a specifier word: `read FItems` gives "FItems", `default -1` only
// "-" (a minus sign is a token of its own). A set is one value: `default [akLeft, akTop]`
// gives "[akLeft, akTop]". Conditional directives before the value are passed, so of
// `default {$ifdef X}clWindow{$else}clBtnFace{$endif}` the first branch's value is taken.
// Nothing when the declaration ends first.
std::string TakeValue(TTokenizer& t) {
  int next = PeekSignificant(t);
  while (next == ptCompilerDirective) {
    t.NextSignificant();
    next = PeekSignificant(t);
  }
  if (next == ptSemicolon || next == tkEndOfText || kPropertyBoundary.Contains(next)) return {};
  t.NextSignificant();
  if (next == ptOpenBracket) {
    std::string inside;
    PascalCollectBracket(t, ptOpenBracket, &inside);
    return "[" + std::string(Trim(inside)) + "]";
  }
  return t.Text();
}

}  // namespace

void ParsePropertyDeclaration(TPascalClassParser& p) {
  TTokenizer& t = p.Cursor();
  VELMORA_DCHECK(t.Kind() == ptProperty, "a property starts on `property`");
  const TSpot start = Here(t);
  if (!IsNameKind(PeekSignificant(t))) return;
  t.NextSignificant();
  const std::string name = t.Text();
  int kind = t.NextSignificant();
  std::string indexParams;
  if (kind == ptOpenBracket) {
    p.CollectBracket(ptOpenBracket, &indexParams);
    kind = t.NextSignificant();
  }
  std::string type;
  if (kind == ptColon) {
    const int next = PeekSignificant(t);
    if (next != ptSemicolon && next != tkEndOfText && !kPropertyBoundary.Contains(next)) {
      t.NextSignificant();
      type = ReadTypeName(t);
    }
    kind = t.NextSignificant();
  }

  TFieldDescription* f = p.Owner->Fields.FindOrAdd(name, type, p.Visibility);
  f->SetIsProperty(true);
  // Specifiers the declaration no longer has must not survive a re-parse.
  TPropertyDescription& specifiers = *f->Property;
  specifiers = TPropertyDescription{};
  specifiers.IndexParams = std::string(Trim(indexParams));
  for (; kind != ptSemicolon && kind != tkEndOfText; kind = t.NextSignificant()) {
    if (kPropertyBoundary.Contains(kind)) break;  // missing `;`: left for the loop
    switch (kind) {
      case ptRead:
        specifiers.ReadSpec = TakeValue(t);
        break;
      case ptWrite:
        specifiers.WriteSpec = TakeValue(t);
        break;
      case ptStored:
        specifiers.StoredSpec = TakeValue(t);
        break;
      case ptDefault:
        specifiers.DefaultSpec = TakeValue(t);
        break;
      case ptIndex:
        specifiers.IndexSpec = TakeValue(t);
        break;
      case ptNodefault:
        specifiers.DefaultSpec = "nodefault";
        break;
      case ptImplements:
        TakeValue(t);
        break;
      default:
        break;  // `dispid 3`, `readonly` and the like are not kept
    }
  }
  const TSpot end = Here(t);
  f->SetStart(start.Line, start.Offset);
  f->SetEnd(end.Line, end.Offset);
  if (TPositionInfo* table = PositionTable(p))
    SetBlock(table->At(p.Visibility, TPositionInfo::LastProperty), start, end);
  LeaveUnlessSemicolon(p);
}

}  // namespace pascal_parser
}  // namespace velmora
