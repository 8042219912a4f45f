#include "parsing/pattern_search.h"

namespace velmora {

namespace {

struct TIdentity {
  unsigned char table[256];
  constexpr TIdentity() : table() {
    for (int c = 0; c < 256; ++c) table[c] = static_cast<unsigned char>(c);
  }
};
constexpr TIdentity kIdentity;

}  // namespace

TPatternSearch::TPatternSearch(const unsigned char* fold)
    : fold_(fold != nullptr ? fold : kIdentity.table) {}

void TPatternSearch::Prepare(const char* text, int32_t size, std::string_view pattern) {
  text_ = text;
  textSize_ = size < 0 ? 0 : size;
  pattern_ = pattern;
  patternLength_ = static_cast<int32_t>(pattern_.size());
  folded_ = pattern_;
  for (char& c : folded_) c = static_cast<char>(Fold(c));
  defaultShift_ = patternLength_ + 1;
  halfLength_ = patternLength_ / 2;
  shift_.fill(defaultShift_);
  // Names never reach 256 characters; the table is filled from the low eight bits of the
  // length only, as the search has always done. A longer pattern still finds what it
  // finds, with shorter shifts than it could take.
  const int32_t filled = patternLength_ & 0xFF;
  for (int32_t i = 1; i <= filled; ++i) {
    shift_[static_cast<unsigned char>(folded_[i - 1])] = defaultShift_ - i;
  }
  position_ = -1;
  found_ = false;
  foundPosition_ = -1;
  atEndFlag_ = false;
}

bool TPatternSearch::AtEnd() {
  atEndFlag_ = patternLength_ == 0 || position_ >= textSize_ - 1 || patternLength_ > textSize_;
  return atEndFlag_;
}

int32_t TPatternSearch::FindNext() {
  found_ = false;
  foundPosition_ = -1;
  if (patternLength_ == 0 || text_ == nullptr) {
    position_ = textSize_;
    return -1;
  }
  position_ += patternLength_;
  const auto* pattern = reinterpret_cast<const unsigned char*>(folded_.data());
  const unsigned char last = pattern[patternLength_ - 1];
  while (position_ <= textSize_) {
    // Most windows fail on their last character: that test alone, and the shift by the
    // character after the window, before anything else.
    if (Fold(text_[position_]) != last) {
      position_ += shift_[FoldedAt(position_ + 1)];
      continue;
    }
    // Compare backwards from the window's last character; k counts the pattern's
    // characters still unmatched (1-based place of the comparison). The window never
    // starts before the text: it begins at 0 and only moves on.
    int32_t k = patternLength_ - 1;
    int32_t m = position_ - 1;
    while (k > 0 && Fold(text_[m]) == pattern[k - 1]) {
      --k;
      --m;
    }
    if (k == 0) {
      found_ = true;
      foundPosition_ = position_ - patternLength_ + 1;
      return foundPosition_;
    }
    if (k >= halfLength_) {
      position_ += shift_[Fold(text_[m + 1])];
    } else {
      position_ += defaultShift_;
    }
  }
  return -1;
}

}  // namespace velmora
