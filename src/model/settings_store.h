// The store the filter settings are kept in: named sections of typed values (string,
// integer, boolean), each read with a default for when it is missing. The settings layer
// puts it over the user's configuration store; TMemorySettingsStore keeps it in memory
// for tests and for settings that are never written out.
//
// Section and key names compare case-insensitively, as registry keys and values do. A
// backslash in a section name separates a subsection ("Filter\Forms" lies under
// "Filter"); the store itself treats it as an ordinary character.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <variant>

namespace velmora {

class TSettingsStore {
 public:
  virtual ~TSettingsStore() = default;

  /// The value, or `def` when it is missing or of another type.
  virtual std::string ReadString(std::string_view section, std::string_view key,
                                 std::string_view def) const = 0;
  virtual int32_t ReadInteger(std::string_view section, std::string_view key,
                              int32_t def) const = 0;
  virtual bool ReadBool(std::string_view section, std::string_view key, bool def) const = 0;

  virtual void WriteString(std::string_view section, std::string_view key,
                           std::string_view value) = 0;
  virtual void WriteInteger(std::string_view section, std::string_view key, int32_t value) = 0;
  virtual void WriteBool(std::string_view section, std::string_view key, bool value) = 0;

  /// True when the section holds a value of that key, of any type.
  virtual bool ValueExists(std::string_view section, std::string_view key) const = 0;
  virtual bool SectionExists(std::string_view section) const = 0;
  /// Removes the section with every value in it (its subsections stay).
  virtual void EraseSection(std::string_view section) = 0;
};

class TMemorySettingsStore : public TSettingsStore {
 public:
  using Value = std::variant<std::string, int32_t, bool>;

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

  /// Number of values in all sections.
  int ValueCount() const;

 private:
  struct NoCaseLess {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const;
  };
  using Section = std::map<std::string, Value, NoCaseLess>;

  const Value* Lookup(std::string_view section, std::string_view key) const;
  void Put(std::string_view section, std::string_view key, Value value);

  std::map<std::string, Section, NoCaseLess> sections_;
};

}  // namespace velmora
