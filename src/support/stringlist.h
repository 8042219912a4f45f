// The string list every name index of the model is built on: sorted or in insertion
// order, case-sensitive or not, with a rule for duplicates and one untyped object per
// string. Lists never own their objects; the model's lists free what they own themselves.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velmora {

enum class TDuplicates : uint8_t {
  Ignore,  ///< Adding an existing string changes nothing and returns the existing index.
  Accept,  ///< Equal strings stand side by side, later additions after earlier ones.
  Error,   ///< Adding an existing string raises EStringListError.
};

class TStringList {
 public:
  TStringList() = default;
  TStringList(bool sorted, TDuplicates duplicates, bool caseSensitive)
      : sorted_(sorted), caseSensitive_(caseSensitive), duplicates_(duplicates) {}

  int Count() const { return count_; }
  bool Empty() const { return count_ == 0; }
  const std::string& Strings(int i) const { return At(i).text; }
  void* Objects(int i) const { return At(i).object; }
  void SetObject(int i, void* object) { At(i).object = object; }

  /// Adds a string; in a sorted list at its place, else at the end. Returns the index of
  /// the entry (the existing one when a duplicate is ignored).
  int Add(std::string_view s, void* object = nullptr);
  /// Inserts at `index`; only meaningful for an unsorted list (a sorted list adds instead).
  void Insert(int index, std::string_view s, void* object = nullptr);
  /// Inserts at `index` in a sorted list too, sparing Add its search: for a caller that has
  /// just found the place with Find (past the equal run, where duplicates are accepted).
  /// Keeping the order is the caller's part.
  void InsertFound(int index, std::string_view s, void* object);
  /// Adds every entry as Add would, in turn, but brings the block starts up to date once
  /// at the end instead of after each entry: for a caller moving many names at once into
  /// a list of tens of thousands (the routines of a parsed unit into the model). A
  /// duplicate that is an error throws after the entries before it were added.
  void AddMany(const std::vector<std::pair<std::string_view, void*>>& entries);
  void Delete(int index);
  void Clear();
  /// Room for `count` more entries in the last block, up to a block's size: a loader that
  /// knows how many names follow spares the block its stepwise growth.
  void Reserve(int count);
  void Exchange(int a, int b);

  /// Binary search of a sorted list: true when found, `index` the first equal entry, or
  /// the place where the string would be inserted. In an unsorted list a linear search
  /// that leaves `index` at Count() when not found.
  bool Find(std::string_view s, int& index) const;
  /// Index of the first equal entry, or -1.
  int IndexOf(std::string_view s) const;
  /// Index of the first entry carrying `object`, or -1.
  int IndexOfObject(const void* object) const;

  bool Sorted() const { return sorted_; }
  void SetSorted(bool sorted);
  bool CaseSensitive() const { return caseSensitive_; }
  void SetCaseSensitive(bool caseSensitive);
  TDuplicates Duplicates() const { return duplicates_; }
  void SetDuplicates(TDuplicates d) { duplicates_ = d; }

  /// Stable sort by the list's comparison.
  void Sort();
  int Compare(std::string_view a, std::string_view b) const;

 private:
  struct Entry {
    std::string text;
    void* object;
  };
  // Entries live in blocks of at most kMaxBlock, so that inserting into a list of tens of
  // thousands of names (the routines of a large library) moves a few dozen entries
  // rather than half the list. `starts_[b]` is the list index of block b's first entry.
  static constexpr int kMaxBlock = 64;
  int firstBlockRoom_ = 0;  // what Reserve asked for before there was a block
  struct Place {
    int block, offset;
  };
  Place Locate(int index) const;
  Entry& At(int index);
  const Entry& At(int index) const;
  void InsertAt(int index, std::string_view s, void* object);
  void RecountFrom(int block);
  std::vector<Entry> Flatten();
  void Rebuild(std::vector<Entry> entries);

  std::vector<std::vector<Entry>> blocks_;
  std::vector<int> starts_;
  int count_ = 0;
  bool sorted_ = false;
  bool caseSensitive_ = false;
  TDuplicates duplicates_ = TDuplicates::Ignore;
};

/// A string list whose objects are all of one type; a thin typed face over TStringList.
template <class T>
class TObjectStringList : public TStringList {
 public:
  using TStringList::TStringList;
  T* Items(int i) const { return static_cast<T*>(Objects(i)); }
};

}  // namespace velmora
