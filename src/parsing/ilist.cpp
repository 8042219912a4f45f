#include "parsing/ilist.h"

#include <cstdlib>
#include <new>

namespace velmora {

void TIList::Grow() {
  SetCapacity(capacity_ + 1024);
}

void TIList::SetCapacity(int32_t n) {
  if (n < 0) n = 0;
  if (n < count_) count_ = n;
  if (n == capacity_) return;
  if (n == 0) {
    std::free(items_);
    items_ = nullptr;
    capacity_ = 0;
    return;
  }
  // realloc keeps the block in one piece and, for the large blocks of big files, can
  // usually move pages instead of copying them.
  void* block = std::realloc(items_, static_cast<size_t>(n) * sizeof(int32_t));
  if (!block) throw std::bad_alloc();
  items_ = static_cast<int32_t*>(block);
  capacity_ = n;
}

void TIList::SetCount(int32_t n) {
  if (n < 0) n = 0;
  if (n > capacity_) SetCapacity(n);
  count_ = n;
}

void TIList::Clear() {
  count_ = 0;
  SetCapacity(0);
}

int32_t TIList::FindInterval(int32_t value) const {
  if (count_ == 0 || value < items_[0] || value > items_[count_ - 1]) return -1;
  // Invariant: items_[lo] <= value, and value < items_[hi] or hi is the last index.
  int32_t lo = 0;
  int32_t hi = count_ - 1;
  if (items_[hi] <= value) return hi;
  while (hi - lo > 1) {
    const int32_t mid = lo + (hi - lo) / 2;
    if (items_[mid] <= value)
      lo = mid;
    else
      hi = mid;
  }
  return lo;
}

}  // namespace velmora
