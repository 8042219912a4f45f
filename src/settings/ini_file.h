// An ini text document held in memory: sections in the order they first appear, keys in
// the order they first appear within their section. Section and key names compare
// without regard to case (the ANSI table), as registry keys and values do.
//
// Reading is total: any bytes parse to some document (binary junk, NULs, lone CRs, keys
// before the first section, repeated keys and sections, huge lines) and nothing throws.
// Comment lines (";") are skipped on reading; a writer sets the comment lines it wants
// through Header and Section::Leading before it asks for the text.
//
// Values are written bare when they read back as they are, and otherwise between double
// quotes with C-style escapes (\\, \", \r, \n, \t, \xHH), so that any string, line breaks
// and edge blanks included, survives a write and a read unchanged.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

class TIniFile {
 public:
  struct Entry {
    std::string Key;
    std::string Value;
  };
  struct Section {
    std::string Name;
    /// Lines written before the section's header (comments, blank lines), as they are.
    std::vector<std::string> Leading;
    std::vector<Entry> Entries;
  };

  TIniFile() = default;
  TIniFile(const TIniFile& other);
  TIniFile& operator=(const TIniFile& other);
  TIniFile(TIniFile&&) noexcept = default;
  TIniFile& operator=(TIniFile&&) noexcept = default;

  /// The document that `text` holds; never fails. A repeated section adds its keys to the
  /// first one; a repeated key keeps its first value (as the platform's ini reader does).
  /// Keys before any section header belong to the section with the empty name.
  static TIniFile Parse(std::string_view text);

  /// The document as text: Header, then each section with its leading lines, its header
  /// line and one "key=value" line per entry. With BlankLineBetweenSections a blank line
  /// separates the header block and the sections.
  std::string Text(std::string_view lineEnd = "\r\n") const;

  /// The value, or null when the section or the key is missing.
  const std::string* Find(std::string_view section, std::string_view key) const;
  std::string ReadString(std::string_view section, std::string_view key,
                         std::string_view def) const;
  /// Sets the value, adding the section and the key at the end when they are new.
  /// Returns true when the document changed.
  bool WriteString(std::string_view section, std::string_view key, std::string_view value);
  /// Returns true when the key was there.
  bool DeleteKey(std::string_view section, std::string_view key);

  bool SectionExists(std::string_view section) const;
  bool ValueExists(std::string_view section, std::string_view key) const;
  /// Returns true when the section was there.
  bool EraseSection(std::string_view section);
  /// The section, added empty at the end when it is new.
  Section& AddSection(std::string_view name);
  const Section* FindSection(std::string_view name) const;

  int SectionCount() const { return static_cast<int>(sections_.size()); }
  const Section& Sections(int i) const { return *sections_[i]; }
  void Clear();

  /// Lines written before the first section, as they are.
  std::vector<std::string> Header;
  bool BlankLineBetweenSections = true;

 private:
  struct NoCaseLess {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const;
  };
  // A section's key index maps a key to its position in Entries.
  struct Stored : Section {
    std::map<std::string, size_t, NoCaseLess> Index;
  };

  Stored* Lookup(std::string_view name) const;
  Stored& Add(std::string_view name);

  std::vector<std::unique_ptr<Stored>> sections_;
  std::map<std::string, Stored*, NoCaseLess> index_;
};

/// The form a value is written in: bare when it reads back unchanged, else quoted with
/// escapes.
std::string EncodeIniValue(std::string_view value);
/// The value a written form stands for; the inverse of EncodeIniValue, and total.
std::string DecodeIniValue(std::string_view text);

}  // namespace velmora
