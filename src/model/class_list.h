// Class lists: the classes of one scope (the project's top level, or the classes nested in
// one class), indexed by name case-sensitively whatever the language. The top-level list
// also holds the free routines, the include lists and the model's lock.
//
// Threads and locks: the list operations take no lock. Whoever changes or walks a list
// that other threads can reach holds its root list's Lock for the whole change or walk:
// parser threads while they fill a list, the main thread around structural changes and
// merges. Lock is recursive, so a holder may call code that takes it again.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/class_description.h"
#include "model/domains.h"
#include "model/files.h"
#include "model/members.h"
#include "support/stringlist.h"

namespace velmora {

class TStream;

class TCommonClassList {
 public:
  /// A nested list of `outerClass`, which lives in `parentList` of the tree `rootList`.
  TCommonClassList(TCommonClassList* rootList, TCommonClassList* parentList,
                   TClassDescription* outerClass);
  virtual ~TCommonClassList();
  TCommonClassList(const TCommonClassList&) = delete;
  TCommonClassList& operator=(const TCommonClassList&) = delete;

  int Count() const { return Index.Count(); }
  /// The i-th class in name order.
  TClassDescription* Items(int i) const {
    return static_cast<TClassDescription*>(Index.Objects(i));
  }
  /// Classes of this list plus, recursively, all classes nested in them.
  int CountAll() const;
  /// The class of that name (case-sensitive), or null; with duplicates, the first.
  TClassDescription* Find(std::string_view name) const;
  /// The class of that name, or a new one of `language` created, named, indexed and
  /// announced with ClassAdded; either way its Valid is set. A reference list creates
  /// nothing and returns null for a name it does not hold.
  TClassDescription* FindOrAdd(std::string_view name, TLanguage language);
  /// Indexes a class owned by another list; does nothing unless IsReference.
  void AddReference(TClassDescription* cls);
  /// Frees every class (unless a reference list) from the last to the first, then empties
  /// the index.
  virtual void Clear();

  /// Sets IsReference; a reference list accepts duplicate names, an owning one ignores a
  /// second class of the same name.
  virtual void SetReference(bool isReference);
  /// Called after FindOrAdd created and indexed a class.
  virtual void ClassAdded(TClassDescription* cls);
  /// Marks the classes of `unitName` (case-insensitive; nullopt selects all) with
  /// SetValid(flag, recurse).
  virtual void Mark(std::optional<std::string_view> unitName, bool flag);
  /// Nested class list: u32 count, then per class its u8 Language and the class record.
  /// Loaded classes are indexed without ClassAdded; a name already present is dropped.
  virtual void LoadFromStream(TStream& stream);
  virtual void SaveToStream(TStream& stream) const;
  /// Walks from the last class to the first; for each of `unitName` (or all) removes its
  /// members whose Valid equals `flag`, then removes the class itself when its own Valid
  /// still equals `flag`.
  virtual void Sweep(bool flag, std::optional<std::string_view> unitName);
  /// Frees a class already taken out of the index (a reference list frees nothing).
  virtual void ClassRemoved(TClassDescription* cls);
  /// Changed(index) on every class and all it holds.
  virtual void NotifyAll(int index);

  /// Fills this list (emptied first) with the classes of `a` and `b` in one name order:
  /// the two are walked side by side, the name that sorts first (case-insensitive) going
  /// first, `a`'s on a tie. Only a reference list takes them.
  void MergeFrom(const TCommonClassList& a, const TCommonClassList& b);
  /// Appends to `result` the ancestors of `cls` found in this list, nearest first: each
  /// class's direct ancestor name looked up with Find. The walk ends at a name not found,
  /// at a class without an ancestor name, at a class naming itself (that class is the last
  /// entry), and at a class already in the chain, so a cycle (A from B, B from A) gives
  /// each of its classes once.
  void GetAncestorChain(const TClassDescription& cls,
                        std::vector<TClassDescription*>& result) const;
  /// Whether the chain of direct ancestors of `cls` reaches `ancestorName` (compared by
  /// each class's language rule). Each ancestor is looked up in `listA`, then in `listB`
  /// (either may be null). A class naming itself, a name found in neither list, or a
  /// cycle answers false.
  static bool InheritsFrom(const TCommonClassList* listA, const TCommonClassList* listB,
                           std::string_view ancestorName, const TClassDescription& cls);

  TCommonClassList* RootList;
  TCommonClassList* ParentList;
  TClassDescription* OuterClass;
  bool IsReference = false;
  /// Sorted, case-sensitive; the items are the classes.
  TStringList Index{true, TDuplicates::Ignore, true};

 protected:
  /// A top-level list: RootList and ParentList point at itself.
  TCommonClassList();
};

/// The top-level class list of a project or of the external files.
class TClasslist : public TCommonClassList {
 public:
  TClasslist();
  ~TClasslist() override;

  void Clear() override;
  void SetReference(bool isReference) override;
  void ClassAdded(TClassDescription* cls) override;
  void Mark(std::optional<std::string_view> unitName, bool flag) override;
  void Sweep(bool flag, std::optional<std::string_view> unitName) override;
  void ClassRemoved(TClassDescription* cls) override;
  void NotifyAll(int index) override;

  /// Items 5-15 of the class information file: domain marker and domains, class marker,
  /// ListString, the classes (u32 count, then per class its u8 Language and the record),
  /// the routines and the include units. Loading empties the list first, raises
  /// EClassInfoFileError kind 1 on a wrong domain marker and kind 2 on a wrong class
  /// marker, and links the domains to the classes once these are read. What was read
  /// before a failure stays.
  void LoadFromStream(TStream& stream) override;
  void SaveToStream(TStream& stream) const override;

  using TCommonClassList::MergeFrom;
  /// MergeFrom of the classes, then the same for the routines of `a` and `b`.
  void MergeFrom(const TClasslist& a, const TClasslist& b);

  /// The project's domains. ClassAdded links a new class to the domain naming it,
  /// ClassRemoved takes a class out of its domain keeping the name, Clear empties it.
  TDomainList Domains{this};
  /// The files list saved together with this list, when its owner sets it (not owned).
  TFilesList* Files = nullptr;
  TIncludeFilesList Includes;
  TRoutineList Routines;
  /// Held while a list of this tree is changed or walked by a thread others share it with.
  std::recursive_mutex Lock;
  /// The list's own string, saved with the classes.
  std::string ListString;
};

}  // namespace velmora
