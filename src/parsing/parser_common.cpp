#include "parsing/parser_common.h"

#include "model/class_list.h"
#include "support/check.h"

namespace velmora::parser_common {

int32_t NextSignificantIndex(const TTokenizer& t, int32_t from) {
  const TIList& kinds = t.Kinds();
  const int32_t last = t.LastIndex();
  int32_t i = from + 1;
  while (i < last && t.IsBlank(kinds.Get(i))) ++i;
  return i < last ? i : last;
}

int PeekSignificant(const TTokenizer& t) {
  const int32_t last = t.LastIndex();
  if (t.Index() >= last) return tkEndOfText;
  return t.Kinds().Get(NextSignificantIndex(t, t.Index()));
}

TSpot SpotOf(const TTokenizer& t, int32_t index) {
  const int32_t offset = t.TokenOffset(index);
  return {t.LineOfOffset(offset), offset};
}

TClassDescription* RecordClassHead(TCommonClassList& list, std::string_view unitName,
                                   bool wantPositions, TClassHead head) {
  VELMORA_DCHECK(!head.Name.empty(), "a recorded class has a name");
  VELMORA_DCHECK(head.Kind == TClassKind::Template || head.TemplateParams.empty(),
                 "only a template has template parameters");
  TClassDescription* c = list.FindOrAdd(head.Name, head.Language);
  if (!c) return nullptr;
  c->ClassKind = head.Kind;
  c->TemplateParams = head.TemplateParams;
  c->Guid.clear();
  c->Ancestors.Items = std::move(head.Ancestors);
  if (wantPositions)
    c->GetPositionInfo(true)->Reset();
  else
    c->DropPositionInfo();
  c->UnitName = unitName;
  c->SetStart(head.Start.Line, head.Start.Offset);
  c->SetEnd(head.End.Line, head.End.Offset);
  return c;
}

}  // namespace velmora::parser_common
