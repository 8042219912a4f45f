// TTokenizer: one pass over a whole file held in memory turns it into two parallel integer
// lists (token start offsets and token kinds); the tokenizer then serves as a cursor over
// them that steps forwards and backwards, skips comments and blanks, and keeps the current
// line number up to date as it goes. The language scanners are TCPPTokenizer and
// TPascalTokenizer.
//
// Threads: a tokenizer is used by one thread at a time; nothing in it is shared. Even the
// const line queries update a private cache.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "parsing/ilist.h"

namespace velmora {

/// Kinds shared by both languages; every other kind number belongs to one language.
enum TCommonTokenKind : int {
  tkEndOfText = 0,   // only as the final entry, at the offset of the NUL
  tkWhitespace = 1,  // a run of blank characters
  tkLineEnd = 2,     // CR LF, LF CR, or a CR or LF alone
};

/// A set of token kinds 0..255.
class TTokenKindSet {
 public:
  constexpr TTokenKindSet() = default;
  constexpr TTokenKindSet(std::initializer_list<int> kinds) {
    for (int k : kinds) Include(k);
  }
  constexpr void Include(int kind) { bits_[(kind >> 6) & 3] |= uint64_t{1} << (kind & 63); }
  constexpr bool Contains(int kind) const {
    return static_cast<unsigned>(kind) < 256 && ((bits_[kind >> 6] >> (kind & 63)) & 1);
  }

 private:
  uint64_t bits_[4] = {};
};

class TTokenizer {
 public:
  TTokenizer() = default;
  virtual ~TTokenizer() = default;
  TTokenizer(const TTokenizer&) = delete;
  TTokenizer& operator=(const TTokenizer&) = delete;

  /// Tokenizes `text` up to its first NUL, which the caller guarantees; `size` is kept for
  /// the users and not used by the scan. The text is not copied and must outlive the
  /// tokenizer, and it must be shorter than 2 GiB (offsets are 32-bit). A tokenizer takes
  /// exactly one text in its life: the lists are not cleared, and Line and the last
  /// visited index are not reset.
  void SetText(const char* text, int32_t size);

  /// The index of the end-of-text entry.
  int32_t LastIndex() const { return offsets_.Count() - 1; }
  /// A copy of the text of token `i`; empty for the end-of-text entry. `i` is not checked.
  std::string TokenText(int32_t i) const { return std::string(TokenView(i)); }
  /// The text of token `i` without a copy; empty for the end-of-text entry.
  std::string_view TokenView(int32_t i) const;
  /// The offset of token `i`'s first character; `i` is not checked.
  int32_t TokenOffset(int32_t i) const { return offsets_.Get(i); }

  /// Moves the cursor and nothing else: the tracked line is left as it is.
  void SetIndex(int32_t i) { index_ = i; }
  int32_t Index() const { return index_; }

  /// The kind of token `i`, and the one place where the tracked line moves: reading a line
  /// end or a comment that was not the token read last counts its line ends in the
  /// direction of the last cursor move. An index outside the list reads the end-of-text
  /// entry.
  int KindAt(int32_t i) {
    // Most reads land on a token that moves no line: answer those here, without a call.
    if (static_cast<uint32_t>(i) < static_cast<uint32_t>(kinds_.Count())) [[likely]] {
      const int kind = kinds_.Get(i);
      if (i == lastVisited_ || !lineMovingKinds_.Contains(kind)) {
        lastVisited_ = i;
        return kind;
      }
    }
    return KindAtMovingLine(i);
  }
  int Kind() { return KindAt(index_); }
  int32_t Offset() const { return TokenOffset(index_); }
  std::string Text() const { return TokenText(index_); }

  /// The 1-based line of `offset`, counted from the start of the text (a line end is a LF,
  /// or a CR not followed by LF); -1 when the offset is negative or beyond the NUL.
  /// Independent of the tracked line.
  int32_t LineOfOffset(int32_t offset) const;
  int32_t LineOfToken(int32_t i) const { return LineOfOffset(offsets_.Get(i)); }
  /// The token that contains `offset` (the end-of-text entry for the NUL's offset), or -1.
  int32_t IndexOfOffset(int32_t offset) const { return offsets_.FindInterval(offset); }

  int32_t GetLine() const { return line_; }
  void SetLine(int32_t n) { line_ = n; }

  /// The whole cursor: the index, the last visited index, the tracked line and the
  /// direction. A look-ahead that turns out not to apply puts all four back, so the tokens
  /// it read are counted for the line again when they are passed for real.
  struct TCursorState {
    int32_t Index;
    int32_t LastVisited;
    int32_t Line;
    bool Forward;
  };
  TCursorState SaveCursor() const { return {index_, lastVisited_, line_, forward_}; }
  void RestoreCursor(const TCursorState& state) {
    index_ = state.Index;
    lastVisited_ = state.LastVisited;
    line_ = state.Line;
    forward_ = state.Forward;
  }

  /// One token on, unless the cursor stands on the end-of-text entry. Reads nothing.
  void Next();
  /// At least one token on (unless on end of text), then on over comments. Returns the
  /// kind reached.
  int NextSkipComments();
  /// At least one token on (unless on end of text), then on over whitespace, line ends
  /// and comments. Returns the kind reached.
  int NextSignificant();
  /// Back over at least one token (unless at 0), then back over whitespace, line ends and
  /// comments; stops at token 0. Returns the kind reached.
  int PrevSignificant();

  const TIList& Offsets() const { return offsets_; }
  const TIList& Kinds() const { return kinds_; }
  const char* TextPtr() const { return text_; }
  int32_t TextSize() const { return textSize_; }
  bool IsComment(int kind) const { return commentKinds_.Contains(kind); }
  bool IsBlank(int kind) const { return blankKinds_.Contains(kind); }

 protected:
  /// Corrects the tracked line for the line ends inside a comment the cursor stepped onto;
  /// `offset` is one past the comment's first character.
  virtual void AdjustLineForComment(int32_t offset, int kind);
  /// Scans the text into the two lists.
  virtual void Tokenize();

  /// Moves the tracked line by one in the direction of the last cursor move.
  void StepLine() { line_ += forward_ ? 1 : -1; }
  /// Counts the CRs from `offset` up to the first `close` that directly follows a `*`, or
  /// up to the NUL; shared by the block comment scans of both languages.
  void CountCRsUpToStarClose(int32_t offset, char close);
  /// Counts the CRs from `offset` up to the first `close` character or the NUL.
  void CountCRsUpTo(int32_t offset, char close);

  /// A scanner's write position in the two lists. A plain value, so that it stays in
  /// registers in the scanner's loop; the lists themselves are reached only when their
  /// room runs out, and then through TIList::Add, so that they keep their growth rule.
  struct TTokenSink {
    int32_t* offsets;
    int32_t* kinds;
    int32_t count;  // entries written; the lists' Count lags behind until EndTokens
    int32_t limit;  // the smaller capacity of the two lists
  };
  /// Reserves room for `expected` more tokens in both lists (an estimate: the lists still
  /// grow by their own rule beyond it) and returns the sink that appends after them.
  TTokenSink BeginTokens(int32_t expected);
  /// Appends one token; no allocation unless the reserved room is used up.
  void AddToken(TTokenSink& sink, int32_t offset, int kind) {
    if (sink.count + 1 >= sink.limit) [[unlikely]] {
      sink = AddTokenGrowing(sink, offset, kind);
      return;
    }
    sink.offsets[sink.count] = offset;
    sink.kinds[sink.count] = kind;
    ++sink.count;
  }
  /// Hands the count back to the lists.
  void EndTokens(TTokenSink sink);

  TIList offsets_;              // token start offsets, then the NUL's offset; same Count as kinds_
  TIList kinds_;                // token kinds, then 0 for the end of text
  const char* text_ = nullptr;  // the whole source, NUL-terminated, not owned
  int32_t textSize_ = 0;        // as passed to SetText; the scans stop at the NUL instead
  int32_t index_ = 0;           // the cursor
  int32_t lastVisited_ = -1;    // the index KindAt read last; reading it again counts nothing
  bool forward_ = true;         // direction of the last cursor move
  int32_t line_ = 1;            // the tracked line
  // Moves on at least one token (unless on the end entry), then over every token whose
  // kind is in `skipped`; returns the kind reached.
  int NextWhileIn(const TTokenKindSet& skipped);

  TTokenKindSet commentKinds_;  // filled by each language's constructor
  TTokenKindSet blankKinds_;    // whitespace, line ends and comments

 private:
  // Line ends and comments: reading one of these may move the tracked line. Made from the
  // comment kinds when the text is set.
  TTokenKindSet lineMovingKinds_;
  int KindAtMovingLine(int32_t i);

  // LineOfOffset remembers its last answer so that a caller walking the tokens in order
  // counts every line end once instead of from the start each time.
  mutable int32_t cachedOffset_ = 0;
  mutable int32_t cachedLineEnds_ = 0;

  TTokenSink AddTokenGrowing(TTokenSink sink, int32_t offset, int kind);
  TTokenSink Sink();
};

}  // namespace velmora
