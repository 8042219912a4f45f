// Helpers for the tokenizer tests: tokenize a text and read the lists back as vectors.
#pragma once

#include <string>
#include <vector>

#include "parsing/tokenizer.h"

namespace velmora::testing {

struct TScan {
  std::vector<int> kinds;    // without the final end-of-text entry
  std::vector<int> offsets;  // with the NUL's offset at the end
};

inline TScan Read(const TTokenizer& t) {
  TScan r;
  for (int32_t i = 0; i < t.Offsets().Count(); ++i) r.offsets.push_back(t.Offsets().Get(i));
  for (int32_t i = 0; i + 1 < t.Kinds().Count(); ++i) r.kinds.push_back(t.Kinds().Get(i));
  return r;
}

/// Tokenizes `text` (a std::string keeps its NUL after the last character) with a fresh
/// tokenizer of the given language.
template <typename Tokenizer>
TScan Scan(const std::string& text) {
  Tokenizer t;
  t.SetText(text.c_str(), static_cast<int32_t>(text.size()));
  return Read(t);
}

}  // namespace velmora::testing
