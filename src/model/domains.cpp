#include "model/domains.h"

#include <algorithm>

#include "model/class_info_error.h"
#include "model/class_info_format.h"
#include "model/class_list.h"
#include "support/ansi.h"
#include "support/stream.h"

namespace velmora {
namespace {

bool ByClassName(const TClassDescription* a, const TClassDescription* b) {
  return CompareText(a->Name, b->Name) < 0;
}

}  // namespace

EDuplicateDomainError::EDuplicateDomainError() : Exception(kDuplicateDomainName) {}

// ---- TDomain ----

TDomain::TDomain(std::string_view name, TLanguage language) : TNamedObject(language) {
  Name = name;
}

TDomain::~TDomain() {
  for (TClassDescription* cls : Classes)
    if (cls->Domain == this) cls->Domain = nullptr;
}

void TDomain::AddClass(TClassDescription* cls) {
  // A class's link and its domain's list always agree, so the link answers "already in".
  if (!cls || cls->Domain == this) return;
  if (cls->Domain && cls->Domain != this) cls->Domain->RemoveClass(cls, true);
  ClassNames.Add(cls->Name);
  // Insert at the end of the equal names, which is where a stable re-sort would put it.
  Classes.insert(std::upper_bound(Classes.begin(), Classes.end(), cls, ByClassName), cls);
  cls->Domain = this;
  Saved = false;
}

void TDomain::RemoveClass(TClassDescription* cls, bool alsoForgetName) {
  const auto it = std::find(Classes.begin(), Classes.end(), cls);
  if (it == Classes.end()) return;
  if (cls->Domain == this) cls->Domain = nullptr;
  Classes.erase(it);
  if (alsoForgetName) {
    const int i = ClassNames.IndexOf(cls->Name);
    if (i >= 0) ClassNames.Delete(i);
  }
}

bool TDomain::ContainsClass(const TClassDescription* cls) const {
  return std::find(Classes.begin(), Classes.end(), cls) != Classes.end();
}

bool TDomain::ContainsName(std::string_view name) const {
  return ClassNames.IndexOf(name) >= 0;
}

void TDomain::LoadFromStream(TStream& stream) {
  for (TClassDescription* cls : Classes)
    if (cls->Domain == this) cls->Domain = nullptr;
  Classes.clear();
  ClassNames.Clear();
  TNamedObject::LoadFromStream(stream);
  // Sorted once and then appended: adding a damaged file's names one by one in reverse
  // order would move the whole list for each.
  std::vector<std::string> names;
  for (uint32_t n = LoadU32(stream); n > 0; --n) names.push_back(LoadString(stream));
  std::stable_sort(names.begin(), names.end(),
                   [](const std::string& a, const std::string& b) { return CompareStr(a, b) < 0; });
  for (const std::string& name : names) ClassNames.Add(name);
  Saved = true;
}

void TDomain::SaveToStream(TStream& stream) const {
  TNamedObject::SaveToStream(stream);
  stream.WriteU32(static_cast<uint32_t>(ClassNames.Count()));
  for (int i = 0; i < ClassNames.Count(); ++i) stream.WriteString(ClassNames.Strings(i));
  Saved = true;
}

// ---- TDomainList ----

// The domains go before the class list frees its classes (the list is a member of
// TClasslist), so each can still clear the links of its classes.
TDomainList::~TDomainList() = default;

void TDomainList::Sort() {
  std::stable_sort(items_.begin(), items_.end(),
                   [](const auto& a, const auto& b) { return CompareText(a->Name, b->Name) < 0; });
}

TDomain* TDomainList::Add(std::unique_ptr<TDomain> domain) {
  if (!domain) return nullptr;
  TDomain* d = domain.get();
  const bool present =
      std::any_of(items_.begin(), items_.end(), [d](const auto& p) { return p.get() == d; });
  if (present)
    (void)domain.release();  // already owned by the list
  else
    items_.push_back(std::move(domain));
  d->DomainList = this;
  Sort();
  return d;
}

TDomain* TDomainList::CreateDomain(std::string_view name) {
  CheckName(name);
  return Add(std::make_unique<TDomain>(Trim(name)));
}

void TDomainList::CheckName(std::string_view name, const TDomain* except) const {
  const std::string_view trimmed = Trim(name);
  if (trimmed.empty()) throw EDuplicateDomainError();
  for (const auto& d : items_)
    if (d.get() != except && SameText(d->Name, trimmed)) throw EDuplicateDomainError();
}

void TDomainList::Rename(TDomain* domain, std::string_view name) {
  CheckName(name, domain);
  domain->Name = Trim(name);
  Sort();
}

void TDomainList::Remove(TDomain* domain) {
  const auto it = std::find_if(items_.begin(), items_.end(),
                               [domain](const auto& p) { return p.get() == domain; });
  if (it != items_.end()) items_.erase(it);
}

TDomain* TDomainList::FindByName(std::string_view name) const {
  for (const auto& d : items_)
    if (SameText(d->Name, name)) return d.get();
  return nullptr;
}

void TDomainList::RemoveClassFromDomains(TClassDescription* cls, bool alsoForgetName) {
  for (const auto& d : items_)
    if (d->ContainsClass(cls)) {
      d->RemoveClass(cls, alsoForgetName);
      return;
    }
}

void TDomainList::ClassAdded(TClassDescription* cls) {
  for (const auto& d : items_)
    if (d->ContainsName(cls->Name)) {
      d->AddClass(cls);
      return;
    }
}

void TDomainList::LinkClasses() {
  if (!ClassList) return;
  for (const auto& d : items_)
    for (int i = 0; i < d->ClassNames.Count(); ++i) {
      TClassDescription* cls = ClassList->Find(d->ClassNames.Strings(i));
      // The first domain naming a class keeps it; a later one only keeps the name.
      if (cls && (!cls->Domain || cls->Domain == d.get())) d->AddClass(cls);
    }
}

void TDomainList::NotifyAll(int index) {
  for (const auto& d : items_) d->NotifyAll(index);
}

void TDomainList::LoadFromStream(TStream& stream, bool withMarker) {
  Clear();
  if (withMarker && LoadU32(stream) != kDomainMarker)
    throw EClassInfoFileError(kFilesRestored, TClassInfoErrorKind::FilesRestored);
  // Appended and sorted once at the end, so that a file claiming very many domains costs
  // no more than reading them.
  try {
    for (uint32_t n = LoadU32(stream); n > 0; --n) {
      auto domain = std::make_unique<TDomain>(LoadString(stream));
      domain->LoadFromStream(stream);
      domain->DomainList = this;
      items_.push_back(std::move(domain));
    }
  } catch (...) {
    Sort();  // the domains read before the failure stay, in order
    throw;
  }
  Sort();
}

void TDomainList::SaveToStream(TStream& stream, bool withMarker) const {
  if (withMarker) stream.WriteU32(kDomainMarker);
  stream.WriteU32(static_cast<uint32_t>(items_.size()));
  for (const auto& d : items_) {
    stream.WriteString(d->Name);
    d->SaveToStream(stream);
  }
}

bool TDomainList::LoadFromFile(const std::string& path) {
  TMemoryStream stream;
  stream.LoadFromFile(path);
  uint32_t magic1, magic2, bannerLength;
  std::string banner;
  if (!stream.TryReadU32(magic1) || magic1 != kDomainFileMagic || !stream.TryReadU32(magic2) ||
      magic2 != kDomainFileMagic || !stream.TryReadU32(bannerLength) ||
      bannerLength != kDomainFileBanner.size() ||
      !stream.TryReadString(banner, static_cast<uint32_t>(kDomainFileBanner.size())) ||
      banner != kDomainFileBanner)
    return false;
  LoadFromStream(stream, false);
  LinkClasses();
  return true;
}

void TDomainList::SaveToFile(const std::string& path) const {
  TMemoryStream stream;
  stream.WriteU32(kDomainFileMagic);
  stream.WriteU32(kDomainFileMagic);
  stream.WriteU32(static_cast<uint32_t>(kDomainFileBanner.size()));
  stream.WriteString(kDomainFileBanner);
  SaveToStream(stream, false);
  stream.SaveToFile(path);
}

}  // namespace velmora
