#include "model/settings_store.h"

#include "support/ansi.h"

namespace velmora {

bool TMemorySettingsStore::NoCaseLess::operator()(std::string_view a, std::string_view b) const {
  return CompareText(a, b) < 0;
}

const TMemorySettingsStore::Value* TMemorySettingsStore::Lookup(std::string_view section,
                                                                std::string_view key) const {
  const auto s = sections_.find(section);
  if (s == sections_.end()) return nullptr;
  const auto v = s->second.find(key);
  return v == s->second.end() ? nullptr : &v->second;
}

void TMemorySettingsStore::Put(std::string_view section, std::string_view key, Value value) {
  auto s = sections_.find(section);
  if (s == sections_.end()) s = sections_.emplace(std::string(section), Section{}).first;
  auto v = s->second.find(key);
  if (v == s->second.end())
    s->second.emplace(std::string(key), std::move(value));
  else
    v->second = std::move(value);
}

std::string TMemorySettingsStore::ReadString(std::string_view section, std::string_view key,
                                             std::string_view def) const {
  const Value* v = Lookup(section, key);
  const auto* s = v ? std::get_if<std::string>(v) : nullptr;
  return s ? *s : std::string(def);
}

int32_t TMemorySettingsStore::ReadInteger(std::string_view section, std::string_view key,
                                          int32_t def) const {
  const Value* v = Lookup(section, key);
  const auto* i = v ? std::get_if<int32_t>(v) : nullptr;
  return i ? *i : def;
}

bool TMemorySettingsStore::ReadBool(std::string_view section, std::string_view key,
                                    bool def) const {
  const Value* v = Lookup(section, key);
  const auto* b = v ? std::get_if<bool>(v) : nullptr;
  return b ? *b : def;
}

void TMemorySettingsStore::WriteString(std::string_view section, std::string_view key,
                                       std::string_view value) {
  Put(section, key, std::string(value));
}

void TMemorySettingsStore::WriteInteger(std::string_view section, std::string_view key,
                                        int32_t value) {
  Put(section, key, value);
}

void TMemorySettingsStore::WriteBool(std::string_view section, std::string_view key, bool value) {
  Put(section, key, value);
}

bool TMemorySettingsStore::ValueExists(std::string_view section, std::string_view key) const {
  return Lookup(section, key) != nullptr;
}

bool TMemorySettingsStore::SectionExists(std::string_view section) const {
  return sections_.find(section) != sections_.end();
}

void TMemorySettingsStore::EraseSection(std::string_view section) {
  const auto s = sections_.find(section);
  if (s != sections_.end()) sections_.erase(s);
}

int TMemorySettingsStore::ValueCount() const {
  int n = 0;
  for (const auto& [name, values] : sections_) n += static_cast<int>(values.size());
  return n;
}

}  // namespace velmora
