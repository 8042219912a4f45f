#include "model/files.h"

#include "model/class_info_error.h"
#include "model/class_info_format.h"
#include "support/ansi.h"
#include "support/stream.h"

namespace velmora {

// ---- TFileDescription ----

int TFileDescription::GetImageIndex() const {
  const size_t dot = Name.rfind('.');
  const std::string ext =
      dot == std::string::npos ? std::string() : AnsiUpperCase(Name.substr(dot));
  if (ext == ".H" || ext == ".HPP" || ext == ".HXX") return 6;
  if (ext == ".CPP" || ext == ".C" || ext == ".CXX" || ext == ".CC") return 2;
  if (ext == ".PAS" || ext == ".DPR" || ext == ".DPK" || ext == ".INC") return 3;
  return 7;
}

void TFileDescription::LoadFromStream(TStream& stream) {
  TNamedObject::LoadFromStream(stream);
  Directory = LoadString(stream);
  FileDate = LoadI32(stream);
  FileFlags = LoadU16(stream);
}

void TFileDescription::SaveToStream(TStream& stream) const {
  TNamedObject::SaveToStream(stream);
  stream.WriteString(Directory);
  stream.WriteI32(FileDate);
  stream.WriteU16(FileFlags);
}

// ---- TFilesList ----

TFilesList::~TFilesList() {
  Clear();
}

TFileDescription* TFilesList::Add(std::unique_ptr<TFileDescription> file) {
  if (!file) return nullptr;
  Index.Add(file->Name, file.get());
  return file.release();
}

TFileDescription* TFilesList::Find(std::string_view name) const {
  int i;
  return Index.Find(name, i) ? Items(i) : nullptr;
}

TFileDescription* TFilesList::FindFull(std::string_view directory, std::string_view name) const {
  int i;
  if (!Index.Find(name, i)) return nullptr;
  for (; i < Count() && Index.Compare(Index.Strings(i), name) == 0; ++i)
    if (SameText(Items(i)->Directory, directory)) return Items(i);
  return nullptr;
}

void TFilesList::Delete(int i) {
  if (i < 0 || i >= Count()) return;
  TFileDescription* file = Items(i);
  Index.Delete(i);
  delete file;
}

void TFilesList::Clear() {
  for (int i = Count() - 1; i >= 0; --i) delete Items(i);
  Index.Clear();
}

void TFilesList::LoadFromStream(TStream& stream) {
  Clear();
  std::string banner;
  if (!stream.TryReadFixed(banner, kClassInfoBanner.size()) || banner != kClassInfoBanner ||
      LoadU32(stream) != kClassInfoVersion)
    throw EClassInfoFileError(kInvalidVersion, TClassInfoErrorKind::NothingUsable);
  for (uint32_t n = LoadU32(stream); n > 0; --n) {
    // The record holds the language; the constructor's is overwritten.
    auto file = std::make_unique<TFileDescription>(TLanguage::Cpp);
    file->LoadFromStream(stream);
    Add(std::move(file));
  }
}

void TFilesList::SaveToStream(TStream& stream) const {
  stream.WriteFixed(kClassInfoBanner);
  stream.WriteU32(kClassInfoVersion);
  stream.WriteU32(static_cast<uint32_t>(Count()));
  for (int i = 0; i < Count(); ++i) Items(i)->SaveToStream(stream);
}

// ---- TIncludeUnit ----

void TIncludeUnit::LoadFromStream(TStream& stream) {
  UnitName = LoadString(stream);
  IncludedNames.Clear();
  for (uint32_t n = LoadU32(stream); n > 0; --n) IncludedNames.Add(LoadString(stream));
}

void TIncludeUnit::SaveToStream(TStream& stream) const {
  stream.WriteString(UnitName);
  stream.WriteU32(static_cast<uint32_t>(IncludedNames.Count()));
  for (int i = 0; i < IncludedNames.Count(); ++i) stream.WriteString(IncludedNames.Strings(i));
}

// ---- TIncludeFilesList ----

TIncludeUnit* TIncludeFilesList::Find(std::string_view unitName) const {
  for (const auto& unit : items_)
    if (SameText(unit->UnitName, unitName)) return unit.get();
  return nullptr;
}

TIncludeUnit* TIncludeFilesList::FindOrAdd(std::string_view unitName) {
  if (TIncludeUnit* unit = Find(unitName)) return unit;
  items_.push_back(std::make_unique<TIncludeUnit>(unitName));
  return items_.back().get();
}

void TIncludeFilesList::Remove(std::string_view unitName) {
  for (auto it = items_.begin(); it != items_.end(); ++it)
    if (SameText((*it)->UnitName, unitName)) {
      items_.erase(it);
      return;
    }
}

bool TIncludeFilesList::UnitsIncluding(std::string_view name, TStringList& result) const {
  bool found = false;
  for (const auto& unit : items_) {
    int i;
    // The included names compare case-insensitively, as unit names do.
    if (unit->IncludedNames.Find(name, i)) {
      result.Add(unit->UnitName);
      found = true;
    }
  }
  return found;
}

void TIncludeFilesList::NamesOnlyIncludedBy(std::string_view unitName, TStringList& result) const {
  result.Clear();
  const TIncludeUnit* unit = Find(unitName);
  if (!unit) return;
  for (int n = 0; n < unit->IncludedNames.Count(); ++n) {
    const std::string& name = unit->IncludedNames.Strings(n);
    bool elsewhere = false;
    for (const auto& other : items_) {
      int i;
      if (other.get() != unit && other->IncludedNames.Find(name, i)) {
        elsewhere = true;
        break;
      }
    }
    if (!elsewhere) result.Add(name);
  }
}

void TIncludeFilesList::LoadFromStream(TStream& stream) {
  items_.clear();
  for (uint32_t n = LoadU32(stream); n > 0; --n) {
    auto unit = std::make_unique<TIncludeUnit>();
    unit->LoadFromStream(stream);
    items_.push_back(std::move(unit));
  }
}

void TIncludeFilesList::SaveToStream(TStream& stream) const {
  stream.WriteU32(static_cast<uint32_t>(items_.size()));
  for (const auto& unit : items_) unit->SaveToStream(stream);
}

}  // namespace velmora
