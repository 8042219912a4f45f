// Keyword lookup shared by the two scanners (included by them only).
//
// An identifier of up to 16 characters is packed into two 64-bit words, zero padded, so
// that one pair of word compares decides whether it is a given keyword (identifiers never
// contain a NUL, so the padding cannot make two different words equal). The words are
// hashed by two multiplications into a slot table whose multipliers are searched for at
// compile time until no two keywords share a slot: a lookup is then one hash, one slot
// read and one comparison, whatever the identifier. Empty slots point at an all-zero
// entry that no identifier can match, so a miss needs no extra branch.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace velmora::keywords {

inline constexpr int kMaxLength = 16;  // the packed form holds at most this many characters

struct TPacked {
  uint64_t lo = 0;  // characters 0..7, the first in the lowest byte
  uint64_t hi = 0;  // characters 8..15
};

/// Packs `length` (at most kMaxLength) characters one at a time.
constexpr TPacked Pack(const unsigned char* s, int length) {
  TPacked w;
  const int first = length < 8 ? length : 8;
  for (int i = 0; i < first; ++i) w.lo |= uint64_t{s[i]} << (8 * i);
  for (int i = 8; i < length; ++i) w.hi |= uint64_t{s[i]} << (8 * (i - 8));
  return w;
}

/// Lower case for the packed characters of an identifier (letters, digits, underscore,
/// all below 128, zero padding), eight at a time: a byte gets 0x20 added when it lies in
/// 'A'..'Z'. The additions cannot carry from one byte into the next because every byte is
/// below 0x80.
constexpr uint64_t LowerIdentWord(uint64_t w) {
  constexpr uint64_t kOnes = 0x0101010101010101u;
  const uint64_t atLeastA = w + kOnes * (0x80 - 'A');
  const uint64_t aboveZ = w + kOnes * (0x80 - 'Z' - 1);
  return w | (((atLeastA & ~aboveZ) & kOnes * 0x80) >> 2);
}

/// Packs the identifier s[start, end), 1 to 16 characters long, with whole-word loads
/// where it can. Every load lies inside [0, end): a short identifier is read as the eight
/// characters ending with it, and only an identifier within the text's first eight
/// characters goes one character at a time.
inline TPacked PackRun(const unsigned char* s, int32_t start, int32_t end) {
  const int length = end - start;
  if constexpr (std::endian::native == std::endian::little) {
    auto load = [](const unsigned char* at) {
      uint64_t w;
      std::memcpy(&w, at, sizeof w);
      return w;
    };
    if (length > 8) return {load(s + start), load(s + end - 8) >> (8 * (16 - length))};
    if (end >= 8) return {load(s + end - 8) >> (8 * (8 - length)), 0};
  }
  return Pack(s + start, length);
}

constexpr TPacked PackLiteral(std::string_view word) {
  TPacked w;
  for (size_t i = 0; i < word.size(); ++i) {
    const uint64_t c = static_cast<unsigned char>(word[i]);
    if (i < 8)
      w.lo |= c << (8 * i);
    else
      w.hi |= c << (8 * (i - 8));
  }
  return w;
}

/// The numbering rules of a token table, checked at compile time by the scanners: kind
/// numbers listed in strictly ascending order (so none is used twice) and below `limit`.
template <size_t N>
constexpr bool StrictlyAscendingBelow(const std::array<int, N>& numbers, int limit) {
  for (size_t i = 0; i < N; ++i)
    if (numbers[i] >= limit || (i > 0 && numbers[i] <= numbers[i - 1])) return false;
  return true;
}
/// Keyword kinds run unbroken from `first`, since a keyword's kind is `first` plus its
/// place in the keyword table.
template <size_t N>
constexpr bool RunsFrom(const std::array<int, N>& numbers, int first) {
  for (size_t i = 0; i < N; ++i)
    if (numbers[i] != first + static_cast<int>(i)) return false;
  return true;
}

/// The length of the longest word, which bounds the identifiers a scanner looks up.
template <size_t N>
constexpr size_t LongestWord(const std::array<std::string_view, N>& words) {
  size_t longest = 0;
  for (const std::string_view w : words) longest = w.size() > longest ? w.size() : longest;
  return longest;
}
/// No upper-case letter in any word: a table a scanner looks lowered words up in.
template <size_t N>
constexpr bool AllLowerCase(const std::array<std::string_view, N>& words) {
  for (const std::string_view w : words)
    for (const char c : w)
      if (c >= 'A' && c <= 'Z') return false;
  return true;
}

template <size_t N, int Bits>
class TKeywordTable {
 public:
  /// `words` in kind order; the place of a word in it is what Find returns.
  consteval explicit TKeywordTable(const std::array<std::string_view, N>& words) {
    static_assert(N < 255, "slots hold a byte");
    for (size_t i = 0; i < N; ++i) {
      if (words[i].empty() || words[i].size() > kMaxLength) throw "keyword too long";
      entries_[i + 1] = PackLiteral(words[i]);
    }
    // Multipliers from a fixed pseudo-random sequence; the first pair that puts every
    // keyword in a slot of its own wins. The sequence is fixed, so the build is repeatable.
    uint64_t state = 0x9E3779B97F4A7C15u;
    for (int attempt = 0; attempt < 100000; ++attempt) {
      mulLo_ = Mix(state) | 1;
      mulHi_ = Mix(state) | 1;
      if (TryPlace()) return;
    }
    throw "no collision-free multipliers found";
  }

  /// The place of the packed identifier among the keywords, or -1.
  int Find(TPacked w) const {
    const unsigned e = slots_[Slot(w)];
    return (entries_[e].lo == w.lo && entries_[e].hi == w.hi) ? static_cast<int>(e) - 1 : -1;
  }

 private:
  static constexpr uint64_t Mix(uint64_t& state) {  // splitmix64
    uint64_t z = (state += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
  }

  constexpr unsigned Slot(TPacked w) const {
    return static_cast<unsigned>((w.lo * mulLo_ ^ w.hi * mulHi_) >> (64 - Bits));
  }

  constexpr bool TryPlace() {
    for (auto& s : slots_) s = 0;
    for (size_t i = 1; i <= N; ++i) {
      unsigned char& s = slots_[Slot(entries_[i])];
      if (s != 0) return false;
      s = static_cast<unsigned char>(i);
    }
    return true;
  }

  uint64_t mulLo_ = 0;
  uint64_t mulHi_ = 0;
  std::array<unsigned char, size_t{1} << Bits> slots_{};  // 0, or 1 + the keyword's place
  std::array<TPacked, N + 1> entries_{};                  // entry 0 stays zero: never matches
};

}  // namespace velmora::keywords
