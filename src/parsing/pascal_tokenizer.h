// TPascalTokenizer: the scanner for Object Pascal. Keywords are found case-insensitively
// and directive words (`read`, `index`, `name`, ...) always read as their keyword kinds,
// also where Pascal would allow them as identifiers; the parsers accept that. A minus
// sign is not a token of its own but an unknown punctuator: the parsers never need it.
#pragma once

#include <string_view>

#include "parsing/tokenizer.h"

namespace velmora {

/// The token kinds of Object Pascal text, generated from pascal_token_kinds.def (numbers,
/// spellings and kind names are listed there).
enum TPascalTokenKind : int {
#define PASCAL_TOKEN(Name, Number, KindName) Name = Number,
#include "parsing/pascal_token_kinds.def"
};
// The kinds every tokenizer shares keep their common numbers.
static_assert(int{ptEndOfText} == tkEndOfText && int{ptWhitespace} == tkWhitespace &&
              int{ptLineEnd} == tkLineEnd);

/// The kind that closes a group opened by `openKind` (`(` gives `)`), or -1 when
/// `openKind` opens none.
constexpr int PascalClosingKind(int openKind) {
  switch (openKind) {
#define PASCAL_OPEN_BRACKET(Name, Number, Spelling, Closing) \
  case Name:                                                 \
    return Closing;
#include "parsing/pascal_token_kinds.def"
    default:
      return -1;
  }
}
/// The kind that opens a group closed by `closeKind`, or -1 when `closeKind` closes none.
constexpr int PascalOpeningKind(int closeKind) {
  switch (closeKind) {
#define PASCAL_CLOSE_BRACKET(Name, Number, Spelling, Opening) \
  case Name:                                                  \
    return Opening;
#include "parsing/pascal_token_kinds.def"
    default:
      return -1;
  }
}

class TPascalTokenizer : public TTokenizer {
 public:
  TPascalTokenizer();

 protected:
  void AdjustLineForComment(int32_t offset, int kind) override;
  void Tokenize() override;
};

/// A short stable name for a Pascal kind number: "identifier", "kw:begin", "directive",
/// ":=", "brace-comment", ...; "unused" for numbers no token has.
std::string_view PascalTokenKindName(int kind);

}  // namespace velmora
