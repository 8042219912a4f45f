#include "settings/registry_ini_store.h"

#include <charconv>

#include "settings/settings_paths.h"
#include "support/ansi.h"
#include "support/exception.h"
#include "support/paths.h"
#include "support/stream.h"

namespace velmora {

bool ParseStoredInteger(std::string_view text, int32_t& value) {
  text = Trim(text);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  if (text.empty()) return false;
  int32_t parsed = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), parsed, 10);
  if (ec != std::errc() || end != text.data() + text.size()) return false;
  value = parsed;
  return true;
}

bool ParseStoredBool(std::string_view text, bool& value) {
  int32_t number = 0;
  if (ParseStoredInteger(text, number)) {
    value = number != 0;
    return true;
  }
  text = Trim(text);
  if (SameText(text, "true") || SameText(text, "false")) {
    value = SameText(text, "true");
    return true;
  }
  return false;
}

TRegistryIniStore::TRegistryIniStore(std::string fileName, std::string rootKey)
    : fileName_(std::move(fileName)), rootKey_(std::move(rootKey)) {}

std::string TRegistryIniStore::DefaultFileName() {
  return JoinPath(JoinPath(ConfigHome(), "velmora"), "registry.ini");
}

std::string TRegistryIniStore::Path(std::string_view section) const {
  if (rootKey_.empty()) return std::string(section);
  std::string path = rootKey_;
  path += '\\';
  path += section;
  return path;
}

bool TRegistryIniStore::Load() {
  ini_.Clear();
  modified_ = false;
  unreadable_ = false;
  lastError_.clear();
  if (!FileExists(fileName_) && !DirectoryExists(fileName_)) return true;
  try {
    ini_ = TIniFile::Parse(ReadWholeFile(fileName_));
    return true;
  } catch (const Exception& e) {
    unreadable_ = true;
    lastError_ = e.Message();
    return false;
  }
}

bool TRegistryIniStore::Flush() {
  if (!modified_) return true;
  std::string reason;
  if (unreadable_) {
    reason = "The settings file " + fileName_ + " could not be read, so it is not replaced.";
  } else if (MakeDirectories(std::string(ExtractFilePath(fileName_)), &reason)) {
    try {
      WriteFileAtomically(fileName_, ini_.Text("\n"));
      modified_ = false;
      lastError_.clear();
      return true;
    } catch (const Exception& e) {
      reason = e.Message();
    }
  }
  lastError_ = FormatText(kSettingsSaveError, {reason});
  if (OnError && !ReadBool(kHiddenSection, kDontShowSettingsSaveError, false)) OnError(lastError_);
  return false;
}

std::string TRegistryIniStore::ReadString(std::string_view section, std::string_view key,
                                          std::string_view def) const {
  return ini_.ReadString(Path(section), key, def);
}

int32_t TRegistryIniStore::ReadInteger(std::string_view section, std::string_view key,
                                       int32_t def) const {
  const std::string* text = ini_.Find(Path(section), key);
  int32_t value = def;
  return text && ParseStoredInteger(*text, value) ? value : def;
}

bool TRegistryIniStore::ReadBool(std::string_view section, std::string_view key, bool def) const {
  const std::string* text = ini_.Find(Path(section), key);
  bool value = def;
  return text && ParseStoredBool(*text, value) ? value : def;
}

void TRegistryIniStore::WriteString(std::string_view section, std::string_view key,
                                    std::string_view value) {
  if (ini_.WriteString(Path(section), key, value)) modified_ = true;
}

void TRegistryIniStore::WriteInteger(std::string_view section, std::string_view key,
                                     int32_t value) {
  WriteString(section, key, std::to_string(value));
}

void TRegistryIniStore::WriteBool(std::string_view section, std::string_view key, bool value) {
  WriteString(section, key, value ? "1" : "0");
}

bool TRegistryIniStore::ValueExists(std::string_view section, std::string_view key) const {
  return ini_.ValueExists(Path(section), key);
}

bool TRegistryIniStore::SectionExists(std::string_view section) const {
  return ini_.SectionExists(Path(section));
}

void TRegistryIniStore::EraseSection(std::string_view section) {
  if (ini_.EraseSection(Path(section))) modified_ = true;
}

}  // namespace velmora
