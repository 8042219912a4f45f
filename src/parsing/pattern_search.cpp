#include "parsing/pattern_search.h"

namespace velmora {

void TPatternSearch::Prepare(const char* text, int32_t size, std::string_view pattern) {
  text_ = text;
  textSize_ = size < 0 ? 0 : size;
  pattern_ = pattern;
  patternLength_ = static_cast<int32_t>(pattern_.size());
  defaultShift_ = patternLength_ + 1;
  halfLength_ = patternLength_ / 2;
  shift_.fill(defaultShift_);
  // Names never reach 256 characters; the table is filled from the low eight bits of the
  // length only, as the search has always done. A longer pattern still finds what it
  // finds, with shorter shifts than it could take.
  const int32_t filled = patternLength_ & 0xFF;
  for (int32_t i = 1; i <= filled; ++i) shift_[Fold(pattern_[i - 1])] = defaultShift_ - i;
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
  while (position_ <= textSize_) {
    // Compare backwards from the window's last character; k counts the pattern's
    // characters still unmatched (1-based place of the comparison).
    int32_t k = patternLength_;
    int32_t m = position_;
    while (k > 0 && Fold(At(m)) == Fold(pattern_[k - 1])) {
      --k;
      --m;
    }
    if (k == 0) {
      found_ = true;
      foundPosition_ = position_ - patternLength_ + 1;
      return foundPosition_;
    }
    if (k == patternLength_) {
      position_ += shift_[Fold(At(position_ + 1))];
    } else if (k >= halfLength_) {
      position_ += shift_[Fold(At(m + 1))];
    } else {
      position_ += defaultShift_;
    }
  }
  return -1;
}

}  // namespace velmora
