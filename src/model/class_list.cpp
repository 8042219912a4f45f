#include "model/class_list.h"

#include "model/class_info_error.h"
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
    if (Find(cls->Name) && !IsReference) continue;  // an owning list keeps the first of a name
    Index.Add(cls->Name, cls.get());
    if (!IsReference) cls.release();
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

// ---- TClasslist ----

TClasslist::TClasslist() = default;

TClasslist::~TClasslist() = default;

void TClasslist::Clear() {
  TCommonClassList::Clear();
  // Domains: empty the domain list here.
  Routines.Clear();
}

void TClasslist::SetReference(bool isReference) {
  TCommonClassList::SetReference(isReference);
  Routines.SetReference(isReference);
}

void TClasslist::ClassAdded(TClassDescription* cls) {
  TCommonClassList::ClassAdded(cls);
  // Domains: the first domain naming the class links to it here.
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
  // Domains: take the class out of its domain (keeping its name) here, before it is freed.
  TCommonClassList::ClassRemoved(cls);
}

void TClasslist::NotifyAll(int index) {
  TCommonClassList::NotifyAll(index);
  Routines.NotifyAll(index);
  // Domains: signal the domains here.
}

}  // namespace velmora
