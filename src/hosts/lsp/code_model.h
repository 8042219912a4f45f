// The language server's code model: the classes and routines of every parsed file, one
// class list per file as its last parse gave it, and the indexes the requests search
// (classes by name, every class and member by name for the workspace symbol search).
//
// A file's parse replaces that file's list whole, so a request sees each file either as it
// was or as it is now, never half merged. When the server drives the add-in's manager the
// lists come from its project model instead; the requests read only this interface.
//
// Threads: main thread only.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "hosts/lsp/parse_driver.h"
#include "model/class_list.h"

namespace velmora {}  // namespace velmora

namespace velmora::lsp {

/// The protocol's symbol kinds the server uses.
enum TSymbolKind : int {
  skNamespace = 3,
  skClass = 5,
  skMethod = 6,
  skProperty = 7,
  skField = 8,
  skConstructor = 9,
  skInterface = 11,
  skFunction = 12,
  skStruct = 23,
};

/// One entry of the workspace symbol index.
struct TSymbolEntry {
  std::string Name;
  uint32_t FoldedAt = 0;  ///< where Name in lower case starts in TFileModel::FoldedNames
  std::string Container;  ///< the class holding a member, "" at the top
  int Kind = skClass;
  int32_t Offset = -1;  ///< where the declaration starts (buffer form)
};

struct TFileModel {
  std::string Path;
  uint64_t Generation = 0;
  std::unique_ptr<TClasslist> Classes;
  std::vector<int32_t> LineStarts;
  std::vector<TSymbolEntry> Symbols;
  /// The symbols' names in lower case, one after the other: the search scans this one
  /// block instead of a string per symbol.
  std::string FoldedNames;
  std::string_view Folded(const TSymbolEntry& entry) const {
    return std::string_view(FoldedNames).substr(entry.FoldedAt, entry.Name.size());
  }

  /// 0-based line of a buffer offset.
  int LineOf(int32_t offset) const;
};

/// A class of the model and the file declaring it.
struct TClassRef {
  TClassDescription* Class = nullptr;
  const TFileModel* File = nullptr;
};

TSymbolKind KindOfClass(const TClassDescription& cls);
TSymbolKind KindOfMethod(const TMethodDescription& method);

class TCodeModel {
 public:
  TCodeModel();
  ~TCodeModel();

  /// Takes a finished parse; false (and nothing changed) when it is older than the one
  /// held for that file or failed.
  bool Merge(TParsedFile parsed);
  /// Forgets a file (deleted on disk).
  void Remove(const std::string& path);

  const TFileModel* File(std::string_view path) const;
  int FileCount() const { return static_cast<int>(files_.size()); }
  const std::map<std::string, std::unique_ptr<TFileModel>, std::less<>>& Files() const {
    return files_;
  }

  /// Classes of that name at any depth: exact spelling first, then any spelling for
  /// Pascal classes.
  std::vector<TClassRef> FindClasses(std::string_view name) const;
  /// The first of FindClasses, or an empty ref.
  TClassRef FindClass(std::string_view name) const;
  /// The file declaring `cls`, or null.
  const TFileModel* FileOf(const TClassDescription* cls) const;
  /// Every class (at any depth), in no particular order.
  std::vector<TClassRef> AllClasses() const;
  /// Direct descendants of `cls`: the classes whose first ancestor names it.
  std::vector<TClassRef> DirectDescendants(const TClassDescription& cls) const;
  /// All descendants, nearest first.
  std::vector<TClassRef> AllDescendants(const TClassDescription& cls) const;

 private:
  void Index(const TFileModel& file, bool add);

  std::map<std::string, std::unique_ptr<TFileModel>, std::less<>> files_;
  /// Folded class name -> the classes of that name, nested ones included.
  std::unordered_map<std::string, std::vector<TClassRef>> classes_;
  std::unordered_map<const TClassDescription*, const TFileModel*> fileOfClass_;
};

/// `text` in lower case (ASCII).
std::string FoldName(std::string_view text);

}  // namespace velmora::lsp
