// Parsed files and the include/uses lists of each file.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "model/code_object.h"
#include "support/stringlist.h"

namespace velmora {

class TStream;

/// One parsed source file. Name is the file name without its directory.
class TFileDescription : public TNamedObject {
 public:
  explicit TFileDescription(TLanguage language) : TNamedObject(language) {}

  /// Directory followed by Name.
  std::string FullName() const { return Directory + Name; }
  /// 6 for a header (".H", ".HPP", ".HXX", any case), 2 for a C++ source, 3 for a Pascal
  /// unit or project, 7 for any other project file.
  int GetImageIndex() const;

  /// File record: named object, Directory, i32 FileDate, u16 FileFlags.
  void LoadFromStream(TStream& stream) override;
  void SaveToStream(TStream& stream) const override;

  int32_t FileDate = -1;
  uint16_t FileFlags = 0;
  std::string Directory;  ///< with its trailing separator
  bool Valid = true;
};

/// The parsed files, owned, indexed by file name (case-insensitive; two files of one name
/// in different directories stand side by side).
class TFilesList {
 public:
  TFilesList() = default;
  ~TFilesList();
  TFilesList(const TFilesList&) = delete;
  TFilesList& operator=(const TFilesList&) = delete;

  int Count() const { return Index.Count(); }
  TFileDescription* Items(int i) const { return static_cast<TFileDescription*>(Index.Objects(i)); }
  /// Indexes the file under its Name and takes ownership.
  TFileDescription* Add(std::unique_ptr<TFileDescription> file);
  /// The first file of that name, or null.
  TFileDescription* Find(std::string_view name) const;
  /// The file whose FullName equals `fullName` (case-insensitive), or null.
  TFileDescription* FindFull(std::string_view directory, std::string_view name) const;
  void Delete(int i);
  void Clear();

  /// Items 1-4 of the class information file: the 101-byte banner, the u32 version, the
  /// u32 file count and the file records. Loading empties the list first; a banner or
  /// version that does not match raises EClassInfoFileError kind 0 with the
  /// invalid-version message (so does a file too short to hold the banner), a short read
  /// after that the unexpected-end one.
  void LoadFromStream(TStream& stream);
  void SaveToStream(TStream& stream) const;

  TStringList Index{true, TDuplicates::Accept, false};
};

/// The include or uses list of one file.
class TIncludeUnit {
 public:
  TIncludeUnit() = default;
  explicit TIncludeUnit(std::string_view unitName) : UnitName(unitName) {}

  /// Include unit record: UnitName, u32 count, the included names.
  void LoadFromStream(TStream& stream);
  void SaveToStream(TStream& stream) const;

  std::string UnitName;
  /// In source order, case-insensitive, each name once.
  TStringList IncludedNames{false, TDuplicates::Ignore, false};
};

class TIncludeFilesList {
 public:
  int Count() const { return static_cast<int>(items_.size()); }
  TIncludeUnit* Items(int i) const { return items_[i].get(); }
  /// Linear search, case-insensitive; null when missing.
  TIncludeUnit* Find(std::string_view unitName) const;
  /// The unit's entry, appended when missing.
  TIncludeUnit* FindOrAdd(std::string_view unitName);
  /// Deletes and frees the unit's entry, if any.
  void Remove(std::string_view unitName);
  void Clear() { items_.clear(); }
  /// Adds the name of every unit whose included names contain `name` (case-insensitive);
  /// true when at least one was found.
  bool UnitsIncluding(std::string_view name, TStringList& result) const;
  /// Clears `result`, then adds every name that `unitName` includes and no other unit does.
  void NamesOnlyIncludedBy(std::string_view unitName, TStringList& result) const;

  /// Include count and units: u32 count, then the include unit records. Loading clears
  /// the list first.
  void LoadFromStream(TStream& stream);
  void SaveToStream(TStream& stream) const;

 private:
  std::vector<std::unique_ptr<TIncludeUnit>> items_;
};

}  // namespace velmora
