// The parse loop and the bracket operations every Pascal parser and finder shares.
#include <limits>

#include "parsing/pascal_parser_internal.h"
#include "support/ansi.h"

namespace velmora {

using namespace pascal_parser;

namespace {

// The closing kind of a group opener: the bracket pairs of the token table, and `record`
// with its `end`; 0 for any other kind.
int CloseOf(int openKind) {
  if (openKind == ptRecord) return ptEnd;
  const int close = PascalClosingKind(openKind);
  return close < 0 ? 0 : close;
}

// Builds a text from tokens with every gap (blanks, line ends, comments) made one space
// and no space at either end.
class TTextBuilder {
 public:
  explicit TTextBuilder(std::string& out) : out_(out) { out_.clear(); }
  void Gap() { gap_ = true; }
  void Append(std::string_view token) {
    if (gap_ && !out_.empty()) out_ += ' ';
    gap_ = false;
    out_ += token;
  }

 private:
  std::string& out_;
  bool gap_ = false;
};

// One step that keeps blanks visible and drops comments. A comment that was stepped over
// still separates the tokens on either side of it: `a{x}b` reads as "a b".
int StepKeepingBlanks(TTokenizer& t, bool& passedComment) {
  const int32_t before = t.Index();
  const int kind = t.NextSkipComments();
  passedComment = t.Index() - before > 1;
  return kind;
}

}  // namespace

bool PascalCollectBracket(TTokenizer& t, int openKind, std::string* text) {
  if (text) text->clear();
  const int close = CloseOf(openKind);
  if (close == 0) return false;
  std::string scratch;
  TTextBuilder out(text ? *text : scratch);
  // The depth is a counter, not a recursion: ten thousand nested groups cost nothing
  // more than one.
  int64_t depth = 1;
  for (;;) {
    bool passedComment = false;
    const int kind = StepKeepingBlanks(t, passedComment);
    if (kind == tkEndOfText) return false;
    if (kind == close) {
      if (--depth == 0) return true;
    } else if (kind == openKind) {
      ++depth;
    }
    if (!text) continue;
    if (passedComment) out.Gap();
    if (kind == tkWhitespace || kind == tkLineEnd)
      out.Gap();
    else
      out.Append(t.TokenView(t.Index()));
  }
}

int PascalSkipTo(TTokenizer& t, const TTokenKindSet& stops) {
  for (;;) {
    int kind = t.Kind();
    if (stops.Contains(kind)) return kind;
    if (kind == tkEndOfText) return ptUnknownChar;
    if (CloseOf(kind) != 0) {
      PascalCollectBracket(t, kind, nullptr);
      kind = t.Kind();
      if (stops.Contains(kind)) return kind;
      if (kind == tkEndOfText) return ptUnknownChar;
    }
    t.NextSignificant();
  }
}

int PascalReadTo(TTokenizer& t, int kind, std::string& text, const TTokenKindSet* halts) {
  TTextBuilder out(text);
  // One counter for all three group kinds: a mismatched closer still closes something,
  // so a broken group cannot keep the rest of the text from ending the read.
  int64_t depth = 0;
  for (;;) {
    bool passedComment = false;
    const int k = StepKeepingBlanks(t, passedComment);
    if (k == tkEndOfText) return k;
    if (passedComment) out.Gap();
    if (k == tkWhitespace || k == tkLineEnd) {
      out.Gap();
      continue;
    }
    if (depth == 0 && (k == kind || (halts && halts->Contains(k)))) return k;
    if (CloseOf(k) != 0)
      ++depth;
    else if ((k == ptCloseParen || k == ptCloseBracket || k == ptEnd) && depth > 0)
      --depth;
    out.Append(t.TokenView(t.Index()));
  }
}

// ---- TPascalBaseParser ----

namespace {

// Texts of 2 GiB or more do not fit the tokenizer's 32-bit offsets; such a "unit" is not
// parsed at all rather than misread.
const char* const kEmptyText = "";

}  // namespace

TPascalBaseParser::TPascalBaseParser(const char* text, int64_t size)
    : Tokenizer(new TPascalTokenizer), OwnsTokenizer(true) {
  if (!text || size < 0 || size >= std::numeric_limits<int32_t>::max()) {
    text = kEmptyText;
    size = 0;
  }
  Tokenizer->SetText(text, static_cast<int32_t>(size));
}

TPascalBaseParser::TPascalBaseParser(TPascalTokenizer* shared)
    : Tokenizer(shared), OwnsTokenizer(false) {
  VELMORA_DCHECK(shared != nullptr, "a class parser shares its file parser's tokenizer");
}

TPascalBaseParser::~TPascalBaseParser() {
  if (OwnsTokenizer) delete Tokenizer;
}

TTokenizer& TPascalBaseParser::Cursor() {
  return *Tokenizer;
}

void TPascalBaseParser::Parse() {
  TTokenizer& t = *Tokenizer;
  while (!Stopped && t.Kind() != tkEndOfText) {
    handlerStart_ = t.Index();
    HandleToken();
    VELMORA_DCHECK(t.Index() >= handlerStart_,
                   "a handler never leaves the cursor before its token");
    if (Stopped) break;
    // Every handler leaves the cursor on or after the token it began on, so this step
    // always moves on: the loop cannot stand still.
    t.NextSignificant();
  }
}

void TPascalBaseParser::Unread() {
  TTokenizer& t = *Tokenizer;
  if (t.Index() <= handlerStart_) return;
  t.PrevSignificant();
  if (t.Index() < handlerStart_) t.SetIndex(handlerStart_);
}

// ---- Helpers shared by the declaration readers ----

namespace pascal_parser {

std::string ReadTypeName(TTokenizer& t) {
  std::string name = t.Text();
  // A dot counts only when a name follows it; otherwise it belongs to whatever comes next.
  while (PeekSignificant(t) == ptDot) {
    const int32_t dot = NextSignificantIndex(t, t.Index());
    if (!IsNameKind(t.Kinds().Get(NextSignificantIndex(t, dot)))) break;
    t.NextSignificant();
    t.NextSignificant();
    name += '.';
    name += t.TokenView(t.Index());
  }
  return name;
}

void LeaveUnlessSemicolon(TPascalBaseParser& p) {
  const int kind = p.Cursor().Kind();
  if (kind != ptSemicolon && kind != tkEndOfText) p.Unread();
}

bool IsWordAt(const TTokenizer& t, int kind, std::string_view word) {
  return kind == ptIdentifier && SameText(t.TokenView(t.Index()), word);
}

bool PassTypeParameters(TTokenizer& t) {
  VELMORA_DCHECK(t.Kind() == ptLess, "type parameters start on their `<`");
  // Type parameters are names with constraints (`T: class, constructor; U: TBase`); any
  // other token ends the attempt. The walk is short, so `a < b` in a long statement
  // costs a few tokens, never the rest of the text.
  static constexpr TTokenKindSet kInside = {ptComma, ptSemicolon, ptColon,       ptDot,
                                            ptClass, ptRecord,    ptConstructor, ptLess};
  static constexpr int kLongest = 64;
  const TTokenizer::TCursorState start = t.SaveCursor();
  int depth = 1;
  for (int n = 0; n < kLongest; ++n) {
    const int kind = t.NextSignificant();
    if (kind == ptGreater || kind == ptGreaterEqual) {
      if (--depth == 0) return true;
      if (kind == ptGreaterEqual) break;  // `=` inside the list: not one
    } else if (kind == ptLess) {
      ++depth;
    } else if (!IsNameKind(kind) && !kInside.Contains(kind)) {
      break;
    }
  }
  t.RestoreCursor(start);
  return false;
}

bool ReadRoutineHeading(TPascalBaseParser& p, const TTokenKindSet& resultStops,
                        TRoutineHeading& heading) {
  TTokenizer& t = p.Cursor();
  VELMORA_DCHECK(t.Kind() == ptProcedure || t.Kind() == ptFunction || t.Kind() == ptConstructor ||
                     t.Kind() == ptDestructor,
                 "a routine heading is read from its kind word");
  if (!IsNameKind(PeekSignificant(t))) return false;
  t.NextSignificant();
  heading.Name = t.Text();
  int kind = t.NextSignificant();
  // A generic method (`procedure Add<T>(const Item: T)`): the type parameters are no part
  // of the name or of the parameters.
  if (kind == ptLess && PassTypeParameters(t)) kind = t.NextSignificant();
  // `procedure Foo{$IFDEF D}(const Why: string){$ENDIF};`: every branch is read, as
  // everywhere, so the parameters count; left in place they would read as a field.
  while (kind == ptCompilerDirective) kind = t.NextSignificant();
  if (kind == ptDot) {
    p.SkipTo(kSemicolon);
    return false;
  }
  if (kind == ptOpenParen) {
    p.CollectBracket(ptOpenParen, &heading.ParamText);
    kind = t.NextSignificant();
    while (kind == ptCompilerDirective) kind = t.NextSignificant();
  }
  if (kind == ptColon) {
    const int next = PeekSignificant(t);
    if (next != ptSemicolon && next != tkEndOfText && !resultStops.Contains(next)) {
      t.NextSignificant();
      heading.ResultType = ReadTypeName(t);
    }
    t.NextSignificant();
  }
  return true;
}

}  // namespace pascal_parser

}  // namespace velmora
