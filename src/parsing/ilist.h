// TIList: the growable array of 32-bit integers that holds a tokenizer's token offsets and
// kinds. It grows in fixed steps of 1024 slots rather than geometrically, so its memory
// stays close to what the token lists need; the tokenizers reserve a size estimate up
// front so that large files rarely grow at all.
#pragma once

#include <cstdint>

namespace velmora {

class TIList {
 public:
  TIList() = default;
  ~TIList() { Clear(); }
  TIList(const TIList&) = delete;
  TIList& operator=(const TIList&) = delete;

  /// Appends `value` and returns its index. When Count + 1 would reach Capacity the block
  /// grows by 1024 slots first, so the list always keeps one slot spare.
  int32_t Add(int32_t value) {
    if (count_ + 1 >= capacity_) Grow();
    items_[count_] = value;
    return count_++;
  }
  /// The item at `index`; the index is not checked.
  int32_t Get(int32_t index) const { return items_[index]; }
  /// Reallocates the block to `n` slots; a Count above `n` is cut down to it.
  void SetCapacity(int32_t n);
  /// Makes Count `n`, growing Capacity to `n` first if needed. Slots that come into use
  /// keep whatever the block held: bulk writers fill the block first and then set Count.
  void SetCount(int32_t n);
  /// Count and Capacity become 0 and the block is freed.
  void Clear();
  /// For a list sorted ascending: the index i with item[i] <= value < item[i+1], or the
  /// last index when value equals the last item; -1 when value lies below the first item
  /// or above the last one (and for an empty list).
  int32_t FindInterval(int32_t value) const;

  int32_t Count() const { return count_; }
  int32_t Capacity() const { return capacity_; }
  /// The block itself, for bulk writers that keep Count up to date themselves.
  int32_t* Items() { return items_; }
  const int32_t* Items() const { return items_; }

 private:
  void Grow();  // kept out of line: it runs once per 1024 adds at most

  int32_t capacity_ = 0;      // allocated slots
  int32_t count_ = 0;         // slots in use, always below capacity_ after an Add
  int32_t* items_ = nullptr;  // one malloc'ed block of capacity_ slots, or null
};

}  // namespace velmora
