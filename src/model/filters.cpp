#include "model/filters.h"

#include "model/class_description.h"
#include "model/class_list.h"
#include "model/settings_store.h"
#include "support/ansi.h"

namespace velmora {
namespace {

constexpr char kMemberFilterSection[] = "Filter";
constexpr char kFilterListSection[] = "Class Filters";

std::string DescriptionSection(std::string_view name) {
  return std::string("Filter\\") + std::string(name);
}

std::string Numbered(std::string_view key, int i) {
  return std::string(key) + std::to_string(i);
}

bool IsSharedVisibility(TVisibility v) {
  return v == TVisibility::Public || v == TVisibility::Published || v == TVisibility::Automated;
}

}  // namespace

// ---- TClassMemberFilter ----

TClassMemberFilter::TClassMemberFilter() {
  for (auto& row : shown_)
    for (bool& cell : row) cell = true;
}

bool TClassMemberFilter::IsShown(int category, TVisibility visibility) const {
  const int v = static_cast<int>(visibility);
  if (category < 0 || category >= kCategories || v >= kVisibilities) return true;
  return shown_[category][v];
}

void TClassMemberFilter::SetShown(int category, TVisibility visibility, bool shown) {
  const int v = static_cast<int>(visibility);
  if (category < 0 || category >= kCategories || v >= kVisibilities) return;
  if (!IsSharedVisibility(visibility)) {
    shown_[category][v] = shown;
    return;
  }
  for (TVisibility shared : {TVisibility::Public, TVisibility::Published, TVisibility::Automated})
    shown_[category][static_cast<int>(shared)] = shown;
}

void TClassMemberFilter::Load(const TSettingsStore& store) {
  for (int c = 0; c < kCategories; ++c)
    for (int v = 0; v < kVisibilities; ++v)
      shown_[c][v] =
          store.ReadBool(kMemberFilterSection, "F" + std::to_string(c) + std::to_string(v), true);
}

void TClassMemberFilter::Save(TSettingsStore& store) const {
  for (int c = 0; c < kCategories; ++c)
    for (int v = 0; v < kVisibilities; ++v)
      store.WriteBool(kMemberFilterSection, "F" + std::to_string(c) + std::to_string(v),
                      shown_[c][v]);
}

// ---- TFilter ----

TFilter::TFilter(std::string_view text, int32_t filterType, int32_t matchKind)
    : FilterType(filterType), MatchKind(matchKind) {
  if (!text.empty() && text.front() == '!') {
    Negate = true;
    text.remove_prefix(1);
  }
  if (filterType == ftAncestor && !text.empty() && text.front() == '*') {
    AnyAncestor = true;
    text.remove_prefix(1);
  }
  Value = text;
}

std::string TFilter::GetText() const {
  std::string s;
  if (Negate) s += '!';
  if (FilterType == ftAncestor && AnyAncestor) s += '*';
  return s + Value;
}

bool TFilter::Matches(const TClassDescription& cls) const {
  bool result = false;
  if (FilterType == ftAncestor && AnyAncestor) {
    result = TCommonClassList::InheritsFrom(cls.OwnerList ? cls.OwnerList->RootList : nullptr,
                                            nullptr, Value, cls);
  } else {
    std::string subject;
    bool known = true;
    switch (FilterType) {
      case ftClassName:
        subject = cls.Name;
        break;
      case ftAncestor:
        subject = cls.GetDirectAncestorName();
        break;
      case ftUnitName:
        subject = cls.UnitName;
        break;
      default:
        known = false;
    }
    const std::string s = AnsiUpperCase(subject);
    const std::string v = AnsiUpperCase(Value);
    if (known) switch (MatchKind) {
        case mkContains:
          result = !v.empty() && s.find(v) != std::string::npos;
          break;
        case mkBeginsWith:
          result = !v.empty() && s.starts_with(v);
          break;
        case mkEquals:
          result = s == v;
          break;
        default:
          break;
      }
  }
  return result != Negate;
}

// ---- TFilterDescription ----

TFilter* TFilterDescription::Add(int32_t filterType, std::string_view text, int32_t matchKind) {
  filters_.push_back(std::make_unique<TFilter>(text, filterType, matchKind));
  return filters_.back().get();
}

bool TFilterDescription::Passes(const TClassDescription& cls) const {
  if (filters_.empty()) return true;
  if (MatchMode == 0) {
    for (const auto& f : filters_)
      if (f->Matches(cls)) return true;
    return false;
  }
  for (const auto& f : filters_)
    if (!f->Matches(cls)) return false;
  return true;
}

void TFilterDescription::Load(const TSettingsStore& store, std::string_view section) {
  Clear();
  MatchMode = store.ReadInteger(section, "Match", 0);
  ApplyToProject = store.ReadBool(section, "ApplyToProject", true);
  ApplyToExternals = store.ReadBool(section, "ApplyToExternals", true);
  const int32_t count = store.ReadInteger(section, "Count", 0);
  for (int i = 0; i < count; ++i) {
    const std::string valueKey = Numbered("Value", i);
    if (!store.ValueExists(section, valueKey)) break;
    Add(store.ReadInteger(section, Numbered("Type", i), 0), store.ReadString(section, valueKey, ""),
        store.ReadInteger(section, Numbered("Kind", i), 0));
  }
}

void TFilterDescription::Save(TSettingsStore& store, std::string_view section) const {
  store.EraseSection(section);
  store.WriteInteger(section, "Match", MatchMode);
  store.WriteBool(section, "ApplyToProject", ApplyToProject);
  store.WriteBool(section, "ApplyToExternals", ApplyToExternals);
  store.WriteInteger(section, "Count", Count());
  for (int i = 0; i < Count(); ++i) {
    store.WriteString(section, Numbered("Value", i), filters_[i]->GetText());
    store.WriteInteger(section, Numbered("Type", i), filters_[i]->FilterType);
    store.WriteInteger(section, Numbered("Kind", i), filters_[i]->MatchKind);
  }
}

// ---- TFilterList ----

TFilterList::~TFilterList() {
  Clear();
}

TFilterDescription* TFilterList::Find(std::string_view name) const {
  int i;
  return Names.Find(name, i) ? Names.Items(i) : nullptr;
}

TFilterDescription* TFilterList::Add(std::string_view name) {
  if (Trim(name).empty() || Find(name)) return nullptr;
  auto description = std::make_unique<TFilterDescription>();
  Names.Add(name, description.get());
  return description.release();
}

void TFilterList::Remove(std::string_view name) {
  int i;
  if (!Names.Find(name, i)) return;
  delete Names.Items(i);
  Names.Delete(i);
}

void TFilterList::Clear() {
  for (int i = Count() - 1; i >= 0; --i) delete Names.Items(i);
  Names.Clear();
}

void TFilterList::Load(const TSettingsStore& store) {
  Clear();
  const int32_t count = store.ReadInteger(kFilterListSection, "Count", 0);
  for (int i = 0; i < count; ++i) {
    const std::string key = Numbered("Name", i);
    if (!store.ValueExists(kFilterListSection, key)) break;
    const std::string name = store.ReadString(kFilterListSection, key, "");
    if (TFilterDescription* description = Add(name))
      description->Load(store, DescriptionSection(name));
  }
}

void TFilterList::Save(TSettingsStore& store) const {
  // The sections of descriptions saved before and since removed go with the old names.
  const int32_t oldCount = store.ReadInteger(kFilterListSection, "Count", 0);
  for (int i = 0; i < oldCount; ++i) {
    const std::string key = Numbered("Name", i);
    if (!store.ValueExists(kFilterListSection, key)) break;
    const std::string name = store.ReadString(kFilterListSection, key, "");
    if (!Trim(name).empty() && !Find(name)) store.EraseSection(DescriptionSection(name));
  }
  store.EraseSection(kFilterListSection);
  store.WriteInteger(kFilterListSection, "Count", Count());
  for (int i = 0; i < Count(); ++i) {
    store.WriteString(kFilterListSection, Numbered("Name", i), Name(i));
    Items(i)->Save(store, DescriptionSection(Name(i)));
  }
}

}  // namespace velmora
