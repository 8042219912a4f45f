#include "model/class_list.h"

#include <algorithm>

#include "model/class_info_error.h"
#include "model/class_info_format.h"
#include "support/ansi.h"
#include "support/stream.h"

namespace velmora {

// ---- TCommonClassList ----

TCommonClassList::TCommonClassList() : RootList(this), ParentList(this), OuterClass(nullptr) {}

TCommonClassList::TCommonClassList(TCommonClassList* rootList, TCommonClassList* parentList,
                                   TClassDescription* outerClass)
    : RootList(rootList), ParentList(parentList), OuterClass(outerClass) {}

// Frees the classes directly: a class freed with its list leaves no domain to update, and
// virtual calls do not reach a derived list from here.
TCommonClassList::~TCommonClassList() {
  if (!IsReference)
    for (int i = Count() - 1; i >= 0; --i) delete Items(i);
}

int TCommonClassList::CountAll() const {
  int n = Count();
  for (int i = 0; i < Count(); ++i)
    if (const TCommonClassList* nested = Items(i)->NestedClassesIfAny()) n += nested->CountAll();
  return n;
}

TClassDescription* TCommonClassList::Find(std::string_view name) const {
  int i;
  return Index.Find(name, i) ? Items(i) : nullptr;
}

TClassDescription* TCommonClassList::FindOrAdd(std::string_view name, TLanguage language) {
  TClassDescription* cls = Find(name);
  if (!cls) {
    if (IsReference) return nullptr;
    auto fresh = std::make_unique<TClassDescription>(this, language);
    fresh->Name = name;
    Index.Add(name, fresh.get());
    cls = fresh.release();
    ClassAdded(cls);
  }
  cls->Valid = true;
  return cls;
}

void TCommonClassList::AddReference(TClassDescription* cls) {
  if (IsReference && cls) Index.Add(cls->Name, cls);
}

void TCommonClassList::Clear() {
  if (!IsReference)
    for (int i = Count() - 1; i >= 0; --i) delete Items(i);
  Index.Clear();
}

void TCommonClassList::SetReference(bool isReference) {
  IsReference = isReference;
  Index.SetDuplicates(isReference ? TDuplicates::Accept : TDuplicates::Ignore);
}

void TCommonClassList::ClassAdded(TClassDescription* /*cls*/) {}

void TCommonClassList::Mark(std::optional<std::string_view> unitName, bool flag) {
  for (int i = 0; i < Count(); ++i) {
    TClassDescription* cls = Items(i);
    if (!unitName || SameText(cls->UnitName, *unitName)) cls->SetValid(flag, true);
  }
}

void TCommonClassList::LoadFromStream(TStream& stream) {
  for (uint32_t n = LoadU32(stream); n > 0; --n) {
    const auto language = static_cast<TLanguage>(LoadU8(stream));
    auto cls = std::make_unique<TClassDescription>(this, language);
    cls->LoadFromStream(stream);
    // A reference list owns nothing, so what it reads is dropped; an owning list keeps the
    // first class of a name.
    if (IsReference || Find(cls->Name)) continue;
    Index.Add(cls->Name, cls.get());
    cls.release();
  }
}

void TCommonClassList::SaveToStream(TStream& stream) const {
  stream.WriteU32(static_cast<uint32_t>(Count()));
  for (int i = 0; i < Count(); ++i) {
    stream.WriteU8(static_cast<uint8_t>(Items(i)->Language));
    Items(i)->SaveToStream(stream);
  }
}

void TCommonClassList::Sweep(bool flag, std::optional<std::string_view> unitName) {
  for (int i = Count() - 1; i >= 0; --i) {
    TClassDescription* cls = Items(i);
    if (unitName && !SameText(cls->UnitName, *unitName)) continue;
    cls->RemoveWithValid(flag);
    if (cls->Valid == flag) {
      Index.Delete(i);
      ClassRemoved(cls);
    }
  }
}

void TCommonClassList::ClassRemoved(TClassDescription* cls) {
  if (!IsReference) delete cls;
}

void TCommonClassList::NotifyAll(int index) {
  for (int i = 0; i < Count(); ++i) Items(i)->NotifyAll(index);
}

void TCommonClassList::MergeFrom(const TCommonClassList& a, const TCommonClassList& b) {
  Clear();
  int i = 0, j = 0;
  while (i < a.Count() && j < b.Count()) {
    if (CompareText(a.Items(i)->Name, b.Items(j)->Name) <= 0)
      AddReference(a.Items(i++));
    else
      AddReference(b.Items(j++));
  }
  while (i < a.Count()) AddReference(a.Items(i++));
  while (j < b.Count()) AddReference(b.Items(j++));
}

void TCommonClassList::GetAncestorChain(const TClassDescription& cls,
                                        std::vector<TClassDescription*>& result) const {
  const auto first = static_cast<std::ptrdiff_t>(result.size());
  std::string name = cls.GetDirectAncestorName();
  for (;;) {
    TClassDescription* found = Find(name);
    if (!found) return;
    // Chains are short; a linear look at this walk's part of the result is enough to end a
    // cycle the first time it comes round.
    if (std::find(result.begin() + first, result.end(), found) != result.end()) return;
    result.push_back(found);
    name = found->GetDirectAncestorName();
    if (name.empty() || SameName(name, found->Name, found->Language)) return;
  }
}

bool TCommonClassList::InheritsFrom(const TCommonClassList* listA, const TCommonClassList* listB,
                                    std::string_view ancestorName, const TClassDescription& cls) {
  // Without a cycle every step reaches a class not visited before, so more steps than
  // both lists have classes means the chain runs in a circle.
  int steps = (listA ? listA->Count() : 0) + (listB ? listB->Count() : 0) + 1;
  const TClassDescription* current = &cls;
  for (; steps > 0; --steps) {
    const std::string name = current->GetDirectAncestorName();
    if (SameName(name, ancestorName, current->Language)) return true;
    if (SameName(name, current->Name, current->Language)) return false;
    const TClassDescription* next = listA ? listA->Find(name) : nullptr;
    if (!next && listB) next = listB->Find(name);
    if (!next) return false;
    current = next;
  }
  return false;
}

// ---- TClasslist ----

TClasslist::TClasslist() = default;

TClasslist::~TClasslist() = default;

void TClasslist::Clear() {
  Domains.Clear();
  TCommonClassList::Clear();
  Routines.Clear();
}

void TClasslist::SetReference(bool isReference) {
  TCommonClassList::SetReference(isReference);
  Routines.SetReference(isReference);
}

void TClasslist::ClassAdded(TClassDescription* cls) {
  TCommonClassList::ClassAdded(cls);
  Domains.ClassAdded(cls);
}

void TClasslist::Mark(std::optional<std::string_view> unitName, bool flag) {
  TCommonClassList::Mark(unitName, flag);
  Routines.Mark(unitName, flag);
}

void TClasslist::Sweep(bool flag, std::optional<std::string_view> unitName) {
  TCommonClassList::Sweep(flag, unitName);
  Routines.Sweep(flag, unitName);
}

void TClasslist::ClassRemoved(TClassDescription* cls) {
  // The name stays with the domain, so the class returns to it if a re-parse finds it again.
  if (cls->Domain) cls->Domain->RemoveClass(cls, false);
  TCommonClassList::ClassRemoved(cls);
}

void TClasslist::NotifyAll(int index) {
  TCommonClassList::NotifyAll(index);
  Routines.NotifyAll(index);
  Domains.NotifyAll(index);
}

void TClasslist::LoadFromStream(TStream& stream) {
  Clear();
  Domains.LoadFromStream(stream, true);
  if (LoadU32(stream) != kClassMarker)
    throw EClassInfoFileError(kFilesAndDomainsRestored, TClassInfoErrorKind::DomainsRestored);
  ListString = LoadString(stream);
  TCommonClassList::LoadFromStream(stream);
  Domains.LinkClasses();
  Routines.LoadFromStream(stream);
  Includes.LoadFromStream(stream);
}

void TClasslist::SaveToStream(TStream& stream) const {
  Domains.SaveToStream(stream, true);
  stream.WriteU32(kClassMarker);
  stream.WriteString(ListString);
  TCommonClassList::SaveToStream(stream);
  Routines.SaveToStream(stream);
  Includes.SaveToStream(stream);
}

void TClasslist::MergeFrom(const TClasslist& a, const TClasslist& b) {
  TCommonClassList::MergeFrom(a, b);
  Routines.Clear();
  const TRoutineList& ra = a.Routines;
  const TRoutineList& rb = b.Routines;
  int i = 0, j = 0;
  while (i < ra.Count() && j < rb.Count()) {
    if (CompareText(ra.Items(i)->Name, rb.Items(j)->Name) <= 0)
      Routines.AddReference(ra.Items(i++));
    else
      Routines.AddReference(rb.Items(j++));
  }
  while (i < ra.Count()) Routines.AddReference(ra.Items(i++));
  while (j < rb.Count()) Routines.AddReference(rb.Items(j++));
}

}  // namespace velmora
