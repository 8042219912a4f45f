// The user's global settings store: what the add-in keeps in the registry under its own
// key is kept here in one ini file, by default $XDG_CONFIG_HOME/velmora/registry.ini. Each
// registry key is a section named by its full path below the root
// ("[Software\Quarnby\Velmora Pro\C++ Builder 3.0\General]"), each registry value a key.
//
// Values are text: integers in decimal, booleans as "1" and "0". A value of the wrong
// form reads as the caller's default, and so does a missing one. Writes change the
// document in memory only; Flush writes the whole file at once (temporary file, then
// rename), so a failed write leaves the previous file as it was.
//
// Not thread-safe: the settings are read and written on the main thread.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "model/settings_store.h"
#include "settings/ini_file.h"

namespace velmora {

inline constexpr char kVLRegistryKey[] = "Software\\Quarnby\\Velmora Pro\\C++ Builder 3.0";
inline constexpr char kHiddenSection[] = "Hidden";
inline constexpr char kDontShowSettingsSaveError[] = "DontShowSettingsSaveError";
/// Reported when the global settings cannot be written; the argument is the reason.
inline constexpr char kSettingsSaveError[] =
    "The settings could not be saved because of the following error:\r\n%s";

class TRegistryIniStore : public TSettingsStore {
 public:
  /// The store kept in `fileName` with its sections below `rootKey`. Nothing is read
  /// until Load.
  explicit TRegistryIniStore(std::string fileName, std::string rootKey = kVLRegistryKey);

  /// ConfigHome() + "/velmora/registry.ini".
  static std::string DefaultFileName();

  /// Reads the file. A missing file is an empty store. When the file exists but cannot
  /// be read the store is empty, LastError says why, and Flush will not write over it.
  bool Load();
  /// Writes the file when anything changed since Load or the last Flush. On failure the
  /// message (kSettingsSaveError) is kept in LastError and passed once to OnError,
  /// unless the hidden value "DontShowSettingsSaveError" is set.
  bool Flush();

  /// Receives each failure message of Flush; may be empty.
  std::function<void(const std::string&)> OnError;

  const std::string& FileName() const { return fileName_; }
  const std::string& LastError() const { return lastError_; }
  bool Modified() const { return modified_; }
  /// The whole document, sections named by their full key paths.
  const TIniFile& Document() const { return ini_; }

  std::string ReadString(std::string_view section, std::string_view key,
                         std::string_view def) const override;
  int32_t ReadInteger(std::string_view section, std::string_view key, int32_t def) const override;
  bool ReadBool(std::string_view section, std::string_view key, bool def) const override;
  void WriteString(std::string_view section, std::string_view key, std::string_view value) override;
  void WriteInteger(std::string_view section, std::string_view key, int32_t value) override;
  void WriteBool(std::string_view section, std::string_view key, bool value) override;
  bool ValueExists(std::string_view section, std::string_view key) const override;
  bool SectionExists(std::string_view section) const override;
  void EraseSection(std::string_view section) override;

 private:
  std::string Path(std::string_view section) const;

  std::string fileName_;
  std::string rootKey_;
  TIniFile ini_;
  std::string lastError_;
  bool modified_ = false;
  bool unreadable_ = false;
};

/// The integer a stored text stands for: optional blanks, an optional sign and decimal
/// digits that fit 32 bits; false for anything else.
bool ParseStoredInteger(std::string_view text, int32_t& value);
/// The boolean a stored text stands for: an integer (non-zero is true) or "true" /
/// "false" in any case; false for anything else.
bool ParseStoredBool(std::string_view text, bool& value);

}  // namespace velmora
