#include "support/stringlist.h"

#include <algorithm>

#include "support/ansi.h"
#include "support/exception.h"

namespace velmora {

// ---- block storage ----

TStringList::Place TStringList::Locate(int index) const {
  // The last block whose first entry is at or before `index`.
  const auto it = std::upper_bound(starts_.begin(), starts_.end(), index);
  const int block = static_cast<int>(it - starts_.begin()) - 1;
  return {block, index - starts_[block]};
}

TStringList::Entry& TStringList::At(int index) {
  const Place p = Locate(index);
  return blocks_[p.block][p.offset];
}

const TStringList::Entry& TStringList::At(int index) const {
  const Place p = Locate(index);
  return blocks_[p.block][p.offset];
}

void TStringList::RecountFrom(int block) {
  starts_.resize(blocks_.size());
  int start = block == 0 ? 0 : starts_[block - 1] + static_cast<int>(blocks_[block - 1].size());
  for (size_t b = block; b < blocks_.size(); ++b) {
    starts_[b] = start;
    start += static_cast<int>(blocks_[b].size());
  }
}

void TStringList::InsertAt(int index, std::string_view s, void* object) {
  if (blocks_.empty()) {
    blocks_.emplace_back().reserve(static_cast<size_t>(firstBlockRoom_));
    starts_.push_back(0);
  }
  if (index >= count_ && static_cast<int>(blocks_.back().size()) >= kMaxBlock) {
    // Appending to a full last block (a saved model loading in order, a list being filled)
    // starts the next block: blocks stay full and nothing is moved or split.
    auto& fresh = blocks_.emplace_back();
    fresh.reserve(kMaxBlock);
    fresh.push_back(Entry{std::string(s), object});
    starts_.push_back(count_);
    ++count_;
    return;
  }
  // An index at the end goes into the last block; anything else into the block holding it.
  Place p = index >= count_ ? Place{static_cast<int>(blocks_.size()) - 1, 0} : Locate(index);
  if (index >= count_) p.offset = static_cast<int>(blocks_[p.block].size());
  auto& block = blocks_[p.block];
  block.insert(block.begin() + p.offset, Entry{std::string(s), object});
  ++count_;
  if (static_cast<int>(block.size()) > kMaxBlock) {
    std::vector<Entry> upper(std::make_move_iterator(block.begin() + kMaxBlock / 2),
                             std::make_move_iterator(block.end()));
    block.resize(kMaxBlock / 2);
    blocks_.insert(blocks_.begin() + p.block + 1, std::move(upper));
    RecountFrom(p.block);
    return;
  }
  // Only the blocks after this one start one later: a loop over the starts alone, which
  // does not visit the blocks themselves.
  for (size_t b = static_cast<size_t>(p.block) + 1; b < starts_.size(); ++b) ++starts_[b];
}

std::vector<TStringList::Entry> TStringList::Flatten() {
  std::vector<Entry> all;
  all.reserve(count_);
  for (auto& block : blocks_)
    for (auto& e : block) all.push_back(std::move(e));
  return all;
}

void TStringList::Rebuild(std::vector<Entry> entries) {
  blocks_.clear();
  count_ = static_cast<int>(entries.size());
  for (size_t i = 0; i < entries.size(); i += kMaxBlock / 2) {
    const size_t end = std::min(entries.size(), i + kMaxBlock / 2);
    blocks_.emplace_back(std::make_move_iterator(entries.begin() + i),
                         std::make_move_iterator(entries.begin() + end));
  }
  RecountFrom(0);
}

void TStringList::Clear() {
  blocks_.clear();
  starts_.clear();
  count_ = 0;
  firstBlockRoom_ = 0;
}

// ---- the list ----

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
  // The first block whose last entry is not below `s` holds the lower bound, if any does.
  const auto block = std::partition_point(
      blocks_.begin(), blocks_.end(), [&](const auto& b) { return Compare(b.back().text, s) < 0; });
  if (block == blocks_.end()) {
    index = count_;
    return false;
  }
  const auto entry = std::partition_point(block->begin(), block->end(),
                                          [&](const Entry& e) { return Compare(e.text, s) < 0; });
  index = starts_[block - blocks_.begin()] + static_cast<int>(entry - block->begin());
  return entry != block->end() && Compare(entry->text, s) == 0;
}

int TStringList::IndexOf(std::string_view s) const {
  if (sorted_) {
    int i;
    return Find(s, i) ? i : -1;
  }
  int index = 0;
  for (const auto& block : blocks_)
    for (const Entry& e : block) {
      if (Compare(e.text, s) == 0) return index;
      ++index;
    }
  return -1;
}

int TStringList::IndexOfObject(const void* object) const {
  int index = 0;
  for (const auto& block : blocks_)
    for (const Entry& e : block) {
      if (e.object == object) return index;
      ++index;
    }
  return -1;
}

int TStringList::Add(std::string_view s, void* object) {
  int index = Count();
  if (sorted_ && count_ > 0 && !blocks_.back().empty()) {
    // Names that come in order (a saved model being loaded) go at the end without a
    // search; an equal last name may join it only where duplicates are accepted.
    const int order = Compare(blocks_.back().back().text, s);
    if (order < 0 || (order == 0 && duplicates_ == TDuplicates::Accept)) {
      InsertAt(index, s, object);
      return index;
    }
  }
  if (sorted_) {
    if (Find(s, index)) {
      switch (duplicates_) {
        case TDuplicates::Ignore:
          return index;
        case TDuplicates::Error:
          throw EStringListError("The list does not allow duplicates: \"" + std::string(s) + "\"");
        case TDuplicates::Accept:
          // After the equal run, so that entries of one name keep the order they came in.
          while (index < Count() && Compare(Strings(index), s) == 0) ++index;
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
  InsertAt(index, s, object);
  return index;
}

void TStringList::AddMany(const std::vector<std::pair<std::string_view, void*>>& entries) {
  if (!sorted_) {
    for (const auto& [s, object] : entries) Add(s, object);
    return;
  }
  // The places are found by the blocks' last entries alone, which need no starts; the
  // starts of the blocks from the first one touched on are counted again at the end.
  int firstTouched = static_cast<int>(blocks_.size());
  auto settle = [&] {
    if (firstTouched < static_cast<int>(blocks_.size())) RecountFrom(firstTouched);
  };
  for (const auto& entry : entries) {
    // Named, not a structured binding: the searches below capture it in lambdas.
    const auto& s = entry.first;
    const auto& object = entry.second;
    if (blocks_.empty()) {
      blocks_.emplace_back().reserve(static_cast<size_t>(firstBlockRoom_));
      firstTouched = 0;
    }
    // After every equal entry, where Add puts it: in the first block whose last entry
    // sorts after `s`, or at the end of the last block.
    auto block = std::partition_point(blocks_.begin(), blocks_.end(), [&](const auto& b) {
      return b.empty() || Compare(b.back().text, s) <= 0;
    });
    if (block == blocks_.end()) --block;
    auto at = std::partition_point(block->begin(), block->end(),
                                   [&](const Entry& e) { return Compare(e.text, s) <= 0; });
    if (duplicates_ != TDuplicates::Accept) {
      const Entry* previous = at != block->begin()       ? &*(at - 1)
                              : block != blocks_.begin() ? &(block - 1)->back()
                                                         : nullptr;
      if (previous && Compare(previous->text, s) == 0) {
        if (duplicates_ == TDuplicates::Ignore) continue;
        settle();
        throw EStringListError("The list does not allow duplicates: \"" + std::string(s) + "\"");
      }
    }
    const int b = static_cast<int>(block - blocks_.begin());
    if (at == block->end() && b + 1 == static_cast<int>(blocks_.size()) &&
        static_cast<int>(block->size()) >= kMaxBlock) {
      // As InsertAt: appending to a full last block starts the next one.
      auto& fresh = blocks_.emplace_back();
      fresh.reserve(kMaxBlock);
      fresh.push_back(Entry{std::string(s), object});
      firstTouched = std::min(firstTouched, b + 1);
      ++count_;
      continue;
    }
    block->insert(at, Entry{std::string(s), object});
    ++count_;
    firstTouched = std::min(firstTouched, b);
    if (static_cast<int>(block->size()) > kMaxBlock) {
      std::vector<Entry> upper(std::make_move_iterator(block->begin() + kMaxBlock / 2),
                               std::make_move_iterator(block->end()));
      block->resize(kMaxBlock / 2);
      blocks_.insert(blocks_.begin() + b + 1, std::move(upper));
    }
  }
  settle();
}

void TStringList::Insert(int index, std::string_view s, void* object) {
  if (sorted_) {
    Add(s, object);
    return;
  }
  InsertAt(std::clamp(index, 0, Count()), s, object);
}

void TStringList::InsertFound(int index, std::string_view s, void* object) {
  InsertAt(std::clamp(index, 0, Count()), s, object);
}

void TStringList::Reserve(int count) {
  if (count <= 0) return;
  // An empty list has no block (an empty block would break the searches): the first
  // insert makes it with this room.
  firstBlockRoom_ = std::min(count, kMaxBlock);
  if (blocks_.empty()) return;
  auto& last = blocks_.back();
  last.reserve(std::min<size_t>(last.size() + static_cast<size_t>(count), kMaxBlock + 1));
}

void TStringList::Delete(int index) {
  if (index < 0 || index >= Count()) return;
  const Place p = Locate(index);
  auto& block = blocks_[p.block];
  block.erase(block.begin() + p.offset);
  --count_;
  if (block.empty()) {
    blocks_.erase(blocks_.begin() + p.block);
    starts_.erase(starts_.begin() + p.block);
    if (p.block < static_cast<int>(blocks_.size())) RecountFrom(p.block);
    return;
  }
  // Only the blocks after this one start one earlier: a loop over the starts alone, as
  // InsertAt does, instead of counting every later block again.
  for (size_t b = static_cast<size_t>(p.block) + 1; b < starts_.size(); ++b) --starts_[b];
}

void TStringList::Exchange(int a, int b) {
  std::swap(At(a), At(b));
}

void TStringList::Sort() {
  std::vector<Entry> all = Flatten();
  std::stable_sort(all.begin(), all.end(),
                   [this](const Entry& x, const Entry& y) { return Compare(x.text, y.text) < 0; });
  Rebuild(std::move(all));
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
