#include "parsing/tokenizer.h"

#include <algorithm>
#include <cstring>

namespace velmora {
namespace {

// 0x80 in every byte of `word` that equals `c`, 0 in the others. Exact for every byte (the
// shorter zero-byte test can flag a byte after a real hit).
uint64_t BytesEqual(uint64_t word, unsigned char c) {
  const uint64_t x = word ^ (0x0101010101010101ull * c);
  return ~(((x & 0x7F7F7F7F7F7F7F7Full) + 0x7F7F7F7F7F7F7F7Full) | x) & 0x8080808080808080ull;
}

uint64_t Load64(const char* p) {
  uint64_t w;
  std::memcpy(&w, p, sizeof w);
  return w;
}

// The line ends that start in [from, to): every LF, and every CR not followed by a LF.
// text[to] must be readable (it is at most the NUL). Eight bytes at a time, since line
// numbers for every record make this a pass over the whole text.
int32_t CountLineEnds(const char* text, int32_t from, int32_t to) {
  int32_t n = 0;
  int32_t p = from;
  // The word at p + 1 reaches text[p + 8], so it stays within text[to].
  for (; p + 8 <= to; p += 8) {
    const uint64_t here = Load64(text + p);
    const uint64_t next = Load64(text + p + 1);
    const uint64_t lf = BytesEqual(here, '\n');
    const uint64_t loneCr = BytesEqual(here, '\r') & ~BytesEqual(next, '\n');
    // Each byte of the sum is 0, 1 or 2; the multiply adds all eight into the top byte.
    const uint64_t perByte = (lf >> 7) + (loneCr >> 7);
    n += static_cast<int32_t>((perByte * 0x0101010101010101ull) >> 56);
  }
  for (; p < to; ++p) {
    if (text[p] == '\n' || (text[p] == '\r' && text[p + 1] != '\n')) ++n;
  }
  return n;
}

}  // namespace

// ---- TTokenizer ----

TTokenizer::TTokenSink TTokenizer::Sink() {
  const int32_t limit = std::min(offsets_.Capacity(), kinds_.Capacity());
  return {offsets_.Items(), kinds_.Items(), offsets_.Count(), limit};
}

TTokenizer::TTokenSink TTokenizer::BeginTokens(int32_t expected) {
  // Both lists get the same room so that they stay in step; +1 because Add keeps a slot
  // spare.
  const int32_t wanted = offsets_.Count() + std::max(expected, 0) + 1;
  if (offsets_.Capacity() < wanted) offsets_.SetCapacity(wanted);
  if (kinds_.Capacity() < wanted) kinds_.SetCapacity(wanted);
  return Sink();
}

TTokenizer::TTokenSink TTokenizer::AddTokenGrowing(TTokenSink sink, int32_t offset, int kind) {
  EndTokens(sink);
  offsets_.Add(offset);
  kinds_.Add(kind);
  return Sink();
}

void TTokenizer::EndTokens(TTokenSink sink) {
  offsets_.SetCount(sink.count);
  kinds_.SetCount(sink.count);
}

void TTokenizer::SetText(const char* text, int32_t size) {
  text_ = text;
  textSize_ = size;
  index_ = 0;
  cachedOffset_ = 0;
  cachedLineEnds_ = 0;
  lineMovingKinds_ = commentKinds_;
  lineMovingKinds_.Include(tkLineEnd);
  Tokenize();
  index_ = 0;
}

void TTokenizer::Tokenize() {}

void TTokenizer::AdjustLineForComment(int32_t, int) {}

std::string_view TTokenizer::TokenView(int32_t i) const {
  if (i == LastIndex()) return {};
  const int32_t start = offsets_.Get(i);
  return std::string_view(text_ + start, static_cast<size_t>(offsets_.Get(i + 1) - start));
}

int TTokenizer::KindAtMovingLine(int32_t i) {
  const int32_t last = LastIndex();
  if (last < 0) return tkEndOfText;  // no text set yet
  // Negative indexes are out of range too and read the end-of-text entry.
  if (static_cast<uint32_t>(i) > static_cast<uint32_t>(last)) i = last;
  const int kind = kinds_.Get(i);
  if (i == lastVisited_) return kind;
  if (kind == tkLineEnd)
    StepLine();
  else if (commentKinds_.Contains(kind))
    AdjustLineForComment(offsets_.Get(i) + 1, kind);
  lastVisited_ = i;
  return kind;
}

int32_t TTokenizer::LineOfOffset(int32_t offset) const {
  const int32_t last = LastIndex();
  if (offset < 0 || last < 0 || offset > offsets_.Get(last)) return -1;
  // Whether a character is a line end depends only on it and the next one, so counts over
  // adjoining ranges add up and the count can resume from the previous answer.
  int32_t from = 0;
  int32_t lineEnds = 0;
  if (offset >= cachedOffset_) {
    from = cachedOffset_;
    lineEnds = cachedLineEnds_;
  }
  lineEnds += CountLineEnds(text_, from, offset);
  cachedOffset_ = offset;
  cachedLineEnds_ = lineEnds;
  return lineEnds + 1;
}

void TTokenizer::Next() {
  forward_ = true;
  if (index_ < LastIndex()) ++index_;
}

int TTokenizer::NextWhileIn(const TTokenKindSet& skipped) {
  forward_ = true;
  int kind;
  do {
    kind = KindAt(index_);
    if (kind == tkEndOfText) break;
    ++index_;
    kind = KindAt(index_);
  } while (skipped.Contains(kind));
  return kind;
}

int TTokenizer::NextSkipComments() { return NextWhileIn(commentKinds_); }

int TTokenizer::NextSignificant() { return NextWhileIn(blankKinds_); }

int TTokenizer::PrevSignificant() {
  forward_ = false;
  if (index_ == 0) {
    // Nothing to step over: report the kind at the start without counting it.
    return LastIndex() < 0 ? tkEndOfText : kinds_.Get(0);
  }
  int kind;
  do {
    --index_;
    kind = KindAt(index_);
  } while (blankKinds_.Contains(kind) && index_ != 0);
  return kind;
}

void TTokenizer::CountCRsUpToStarClose(int32_t offset, char close) {
  for (const char* p = text_ + offset; *p; ++p) {
    if (*p == '*' && p[1] == close) break;
    if (*p == '\r') StepLine();
  }
}

void TTokenizer::CountCRsUpTo(int32_t offset, char close) {
  for (const char* p = text_ + offset; *p && *p != close; ++p) {
    if (*p == '\r') StepLine();
  }
}

}  // namespace velmora
