// TCPPTokenizer: the scanner for C++ as the C++Builder compiler reads it, extensions
// included. It is deliberately shallow: no preprocessing, no escapes inside literals, and
// numbers are runs of decimal digits only (`0x1F` reads as `0` and the identifier `x1F`);
// the finders and parsers above it live with that.
#pragma once

#include <string_view>

#include "parsing/tokenizer.h"

namespace velmora {

/// The token kinds of C++ text, generated from cpp_token_kinds.def (numbers,
/// spellings and kind names are listed there).
enum TCppTokenKind : int {
#define CPP_TOKEN(Name, Number, KindName) Name = Number,
#include "parsing/cpp_token_kinds.def"
};
// The kinds every tokenizer shares keep their common numbers.
static_assert(int{ctEndOfText} == tkEndOfText && int{ctWhitespace} == tkWhitespace &&
              int{ctLineEnd} == tkLineEnd);

/// The kind that closes a group opened by `openKind` (`(` gives `)`), or -1 when
/// `openKind` opens none.
constexpr int CppClosingKind(int openKind) {
  switch (openKind) {
#define CPP_OPEN_BRACKET(Name, Number, Spelling, Closing) \
  case Name:                                              \
    return Closing;
#include "parsing/cpp_token_kinds.def"
    default:
      return -1;
  }
}
/// The kind that opens a group closed by `closeKind`, or -1 when `closeKind` closes none.
constexpr int CppOpeningKind(int closeKind) {
  switch (closeKind) {
#define CPP_CLOSE_BRACKET(Name, Number, Spelling, Opening) \
  case Name:                                               \
    return Opening;
#include "parsing/cpp_token_kinds.def"
    default:
      return -1;
  }
}

class TCPPTokenizer : public TTokenizer {
 public:
  TCPPTokenizer();

 protected:
  void AdjustLineForComment(int32_t offset, int kind) override;
  void Tokenize() override;
};

/// A short stable name for a C++ kind number: "identifier", "kw:class", "#define", "->*",
/// "block-comment", ...; "unused" for numbers no token has.
std::string_view CppTokenKindName(int kind);

}  // namespace velmora
