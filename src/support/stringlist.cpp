#include "support/stringlist.h"

#include <algorithm>

#include "support/ansi.h"
#include "support/exception.h"

namespace velmora {

int TStringList::Compare(std::string_view a, std::string_view b) const {
  return CompareNames(a, b, caseSensitive_);
}

bool TStringList::Find(std::string_view s, int& index) const {
  if (!sorted_) {
    index = IndexOf(s);
    if (index >= 0) return true;
    index = Count();
    return false;
  }
  int lo = 0, hi = Count();
  while (lo < hi) {
    const int mid = lo + (hi - lo) / 2;
    if (Compare(items_[mid].text, s) < 0)
      lo = mid + 1;
    else
      hi = mid;
  }
  index = lo;
  return lo < Count() && Compare(items_[lo].text, s) == 0;
}

int TStringList::IndexOf(std::string_view s) const {
  if (sorted_) {
    int i;
    return Find(s, i) ? i : -1;
  }
  for (int i = 0; i < Count(); ++i)
    if (Compare(items_[i].text, s) == 0) return i;
  return -1;
}

int TStringList::IndexOfObject(const void* object) const {
  for (int i = 0; i < Count(); ++i)
    if (items_[i].object == object) return i;
  return -1;
}

int TStringList::Add(std::string_view s, void* object) {
  int index = Count();
  if (sorted_) {
    if (Find(s, index)) {
      switch (duplicates_) {
        case TDuplicates::Ignore:
          return index;
        case TDuplicates::Error:
          throw EStringListError("The list does not allow duplicates: \"" + std::string(s) + "\"");
        case TDuplicates::Accept:
          // After the equal run, so that entries of one name keep the order they came in.
          while (index < Count() && Compare(items_[index].text, s) == 0) ++index;
          break;
      }
    }
  } else if (duplicates_ != TDuplicates::Accept) {
    const int existing = IndexOf(s);
    if (existing >= 0) {
      if (duplicates_ == TDuplicates::Error)
        throw EStringListError("The list does not allow duplicates: \"" + std::string(s) + "\"");
      return existing;
    }
  }
  items_.insert(items_.begin() + index, Entry{std::string(s), object});
  return index;
}

void TStringList::Insert(int index, std::string_view s, void* object) {
  if (sorted_) {
    Add(s, object);
    return;
  }
  index = std::clamp(index, 0, Count());
  items_.insert(items_.begin() + index, Entry{std::string(s), object});
}

void TStringList::Delete(int index) {
  if (index >= 0 && index < Count()) items_.erase(items_.begin() + index);
}

void TStringList::Exchange(int a, int b) { std::swap(items_[a], items_[b]); }

void TStringList::Sort() {
  std::stable_sort(items_.begin(), items_.end(), [this](const Entry& x, const Entry& y) {
    return Compare(x.text, y.text) < 0;
  });
}

void TStringList::SetSorted(bool sorted) {
  if (sorted && !sorted_) {
    sorted_ = true;
    Sort();
  }
  sorted_ = sorted;
}

void TStringList::SetCaseSensitive(bool caseSensitive) {
  if (caseSensitive == caseSensitive_) return;
  caseSensitive_ = caseSensitive;
  if (sorted_) Sort();
}

}  // namespace velmora
