// TPatternSearch: the raw-text search under both code finders. It looks for a name in the
// whole text of a file with a shift table indexed by the character just right of the
// window (or of the mismatch), so most of the text is skipped without looking at tokens;
// the finders then check each hit against the token list. Matches never overlap: the next
// search resumes one pattern length beyond the last window end.
//
// The search is deliberately not a textbook one: after a mismatch in the left half of the
// pattern it jumps a whole window, and after one in the right half it shifts by the table
// entry of the character right of the mismatch. Both can pass over an occurrence that
// begins inside a near miss (`xormCreate` directly before `FormCreate`, with the match
// window over the first); the finders have always lived with that, and it keeps the scan
// of a long file to a few compares per window.
//
// Threads: used by one thread at a time.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "parsing/ilist.h"

namespace velmora {

class TPatternSearch {
 public:
  /// `fold` maps every character before it is compared or looked up in the shift table
  /// (a case-folding table makes the search case-insensitive); null compares as is.
  explicit TPatternSearch(const unsigned char* fold = nullptr);

  /// Prepares a search of `pattern` in `text` (`size` characters, with a NUL at
  /// text[size]). The text is not copied and must outlive the search.
  void Prepare(const char* text, int32_t size, std::string_view pattern);
  /// The start index of the next occurrence of the pattern, or -1 when there is none
  /// left (an empty pattern has none).
  int32_t FindNext();
  /// True when the window has reached the last character of the text, or when the
  /// pattern is longer than the text (or empty): the callers' loop condition.
  bool AtEnd();

  bool Found() const { return found_; }
  int32_t FoundPosition() const { return foundPosition_; }
  const std::string& Pattern() const { return pattern_; }

 private:
  unsigned char Fold(char c) const { return fold_[static_cast<unsigned char>(c)]; }
  // The folded character at `i`, NUL beyond the end: the shift after a window that ends
  // on the terminating NUL looks one character further.
  unsigned char FoldedAt(int32_t i) const { return i <= textSize_ ? Fold(text_[i]) : fold_[0]; }

  const unsigned char* fold_;   // never null: the identity table when nothing is folded
  const char* text_ = nullptr;  // the searched text, NUL at text_[textSize_]
  std::string pattern_;         // as given
  std::string folded_;          // pattern_ through fold_: what the text is compared with
  int32_t position_ = -1;       // index of the current window's last character
  int32_t halfLength_ = 0;      // patternLength_ / 2
  int32_t defaultShift_ = 1;    // patternLength_ + 1
  int32_t textSize_ = 0;
  std::array<int32_t, 256> shift_{};  // by folded character code
  bool atEndFlag_ = false;
  bool found_ = false;          // whether the last FindNext found a match
  int32_t foundPosition_ = -1;  // start of the last match, -1 if none
  int32_t patternLength_ = 0;
};

}  // namespace velmora
