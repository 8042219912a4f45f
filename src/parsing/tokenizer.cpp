#include "parsing/tokenizer.h"

#include <algorithm>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace velmora {
namespace {

bool IsLineEndAt(const char* text, int32_t p) {
  return text[p] == '\n' || (text[p] == '\r' && text[p + 1] != '\n');
}

// The line ends that start in [from, to): every LF, and every CR not followed by a LF.
// text[to] must be readable (it is at most the NUL). Line numbers for every record make
// this a pass over the whole text, so it goes sixteen bytes at a time where the machine
// has the vector unit every x86-64 has.
int32_t CountLineEnds(const char* text, int32_t from, int32_t to) {
  int32_t n = 0;
  int32_t p = from;
#if defined(__SSE2__)
  const __m128i lf = _mm_set1_epi8('\n');
  const __m128i cr = _mm_set1_epi8('\r');
  // Hits are summed per byte lane (a hit is -1, subtracted) and folded into n before any
  // lane can pass 255. The load at p + 1 reaches text[p + 16], which is within text[to].
  while (p + 16 <= to) {
    __m128i lanes = _mm_setzero_si128();
    for (int round = 0; round < 255 && p + 16 <= to; ++round, p += 16) {
      const __m128i here = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + p));
      const __m128i next = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + p + 1));
      const __m128i loneCr = _mm_andnot_si128(_mm_cmpeq_epi8(next, lf), _mm_cmpeq_epi8(here, cr));
      lanes = _mm_sub_epi8(lanes, _mm_or_si128(_mm_cmpeq_epi8(here, lf), loneCr));
    }
    const __m128i sums = _mm_sad_epu8(lanes, _mm_setzero_si128());
    n += _mm_cvtsi128_si32(sums) + _mm_cvtsi128_si32(_mm_srli_si128(sums, 8));
  }
#endif
  for (; p < to; ++p) n += IsLineEndAt(text, p);
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
  // The estimate ran out on text denser in tokens than usual. A token takes at least one
  // character, so room for one per character left lasts the rest of the scan. Growing by
  // the lists' own 1024 entries instead copies them over and over wherever realloc cannot
  // move pages (under the sanitizers, with other C libraries): quadratic in the text, and
  // minutes for a 10 MB line of `a+a+...`.
  if (textSize_ > offset) BeginTokens(textSize_ - offset + 1);
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
  // The token the cursor stands on is read first, as KindAt would: it may not have been
  // counted for the line yet.
  int kind = KindAt(index_);
  if (kind == tkEndOfText) return kind;
  // From here every token is new (the cursor only moves forward, past lastVisited_) and the
  // end-of-text entry stops the loop, so it reads the list directly: this is where the
  // parsers spend their time stepping over blanks.
  const int32_t* const kinds = kinds_.Items();
  int32_t i = index_;
  // The line end test is a sum rather than a branch: line ends and blanks alternate too
  // irregularly for a branch to be guessed.
  int32_t line = line_;
  do {
    kind = kinds[++i];
    line += kind == tkLineEnd;
    if (commentKinds_.Contains(kind)) {
      line_ = line;
      AdjustLineForComment(offsets_.Get(i) + 1, kind);
      line = line_;
    }
  } while (kind != tkEndOfText && skipped.Contains(kind));
  line_ = line;
  index_ = i;
  lastVisited_ = i;
  return kind;
}

int TTokenizer::NextSkipComments() {
  return NextWhileIn(commentKinds_);
}

int TTokenizer::NextSignificant() {
  return NextWhileIn(blankKinds_);
}

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
