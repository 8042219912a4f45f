#include "parsing/pascal_tokenizer.h"

#include <array>

#include "parsing/keyword_lookup.h"
#include "parsing/scan_chars.h"

namespace velmora {
namespace {

// Every kind number, in the table's order.
constexpr std::array kKindNumbers = {
#define PASCAL_TOKEN(Name, Number, KindName) Number,
#include "parsing/pascal_token_kinds.def"
};
static_assert(keywords::StrictlyAscendingBelow(kKindNumbers, 256),
              "pascal_token_kinds.def: numbers ascending, each used once, below 256");

// Reserved words, then directive words, in kind order: the kind of kPascalKeywords[i] is
// kFirstKeywordKind + i.
constexpr std::array kPascalKeywords = {
#define PASCAL_KEYWORD(Name, Number, Spelling) std::string_view(Spelling),
#include "parsing/pascal_token_kinds.def"
};
constexpr std::array kPascalKeywordKinds = {
#define PASCAL_KEYWORD(Name, Number, Spelling) Number,
#include "parsing/pascal_token_kinds.def"
};
constexpr int kFirstKeywordKind = 10;
static_assert(keywords::RunsFrom(kPascalKeywordKinds, kFirstKeywordKind),
              "pascal_token_kinds.def: the keywords run unbroken from 10");
// Longer identifiers are never keywords and skip the lookup (initialization,
// implementation, resourcestring).
constexpr int kMaxKeywordLength = 14;
static_assert(keywords::LongestWord(kPascalKeywords) == kMaxKeywordLength);
// The scanner lowers the packed word before the lookup, so the table holds lower case.
static_assert(keywords::AllLowerCase(kPascalKeywords));
// The parsers take the directive words for names by their range (IsNameKind).
constexpr std::array kDirectiveWordKinds = {
#define PASCAL_DIRECTIVE_WORD(Name, Number, Spelling) Number,
#include "parsing/pascal_token_kinds.def"
};
static_assert(keywords::RunsFrom(kDirectiveWordKinds, ptAbsolute) &&
                  kDirectiveWordKinds.back() == ptWriteonly,
              "pascal_token_kinds.def: the directive words run from ptAbsolute to ptWriteonly");

constexpr keywords::TKeywordTable<kPascalKeywords.size(), 10> kKeywordTable(kPascalKeywords);

enum CharClass : unsigned char {
  cUnknownChar,  // |, }, 127 and above
  cEnd,
  cBlank,
  cCR,
  cLF,
  cDigit,
  cLetter,
  cUnknownPunct,
  cDollar,
  cHash,
  cQuote,
  cOpenBrace,
  cOpenParen,
  cSlash,
  cColon,
  cDot,
  cLess,
  cGreater,
  cComma,
  cEqual,
  cPlus,
  cCloseParen,
  cSemicolon,
  cCloseBracket,
  cOpenBracket,
  cStar,
  cAmp,
  cAt,
  cCaret,
};

constexpr std::array<CharClass, 256> MakeClasses() {
  std::array<CharClass, 256> t{};  // cUnknownChar
  for (int c = 33; c <= 126; ++c) t[c] = cUnknownPunct;
  for (int c = 0; c < 256; ++c) {
    if (scan::IsBlank(static_cast<unsigned char>(c))) t[c] = cBlank;
    if (c >= '0' && c <= '9') t[c] = cDigit;
    if (scan::IsIdentStart(static_cast<unsigned char>(c))) t[c] = cLetter;
  }
  t[0] = cEnd;
  t['\r'] = cCR;
  t['\n'] = cLF;
  t['|'] = t['}'] = cUnknownChar;
  t['$'] = cDollar;
  t['#'] = cHash;
  t['\''] = cQuote;
  t['{'] = cOpenBrace;
  t['('] = cOpenParen;
  t['/'] = cSlash;
  t[':'] = cColon;
  t['.'] = cDot;
  t['<'] = cLess;
  t['>'] = cGreater;
  t[','] = cComma;
  t['='] = cEqual;
  t['+'] = cPlus;
  t[')'] = cCloseParen;
  t[';'] = cSemicolon;
  t[']'] = cCloseBracket;
  t['['] = cOpenBracket;
  t['*'] = cStar;
  t['&'] = cAmp;
  t['@'] = cAt;
  t['^'] = cCaret;
  return t;
}
constexpr std::array<CharClass, 256> kClass = MakeClasses();

}  // namespace

TPascalTokenizer::TPascalTokenizer() {
  commentKinds_ = {ptParenComment, ptBraceComment, ptLineComment};
  blankKinds_ = {ptWhitespace, ptLineEnd, ptParenComment, ptBraceComment, ptLineComment};
}

void TPascalTokenizer::AdjustLineForComment(int32_t offset, int kind) {
  if (kind == ptParenComment)
    CountCRsUpToStarClose(offset, ')');
  else if (kind == ptBraceComment)
    CountCRsUpTo(offset, '}');
  else if (kind == ptLineComment)
    StepLine();
}

void TPascalTokenizer::Tokenize() {
  const auto* const s = reinterpret_cast<const unsigned char*>(text_);
  TTokenSink out = BeginTokens(scan::EstimateTokenCount(textSize_));
  int32_t p = 0;
  for (;;) {
    const int32_t start = p;
    int kind;
    // Characters after the first are read only once the one before them is known not to
    // be the NUL, so no read goes past the terminator.
    switch (kClass[s[p]]) {
      case cEnd:
        AddToken(out, p, ptEndOfText);
        EndTokens(out);
        return;
      case cBlank:
        p = scan::SkipBlanks(s, p + 1);
        kind = ptWhitespace;
        break;
      case cCR:
        p += s[p + 1] == '\n' ? 2 : 1;
        kind = ptLineEnd;
        break;
      case cLF:
        p += s[p + 1] == '\r' ? 2 : 1;
        kind = ptLineEnd;
        break;
      case cDigit:
        p = scan::SkipDigits(s, p + 1);
        kind = ptNumber;
        break;
      case cLetter: {
        p = scan::SkipIdentChars(s, p + 1);
        kind = ptIdentifier;
        const int length = p - start;
        if (length <= kMaxKeywordLength) {
          keywords::TPacked w = keywords::PackRun(s, start, p);
          w.lo = keywords::LowerIdentWord(w.lo);
          w.hi = keywords::LowerIdentWord(w.hi);
          const int place = kKeywordTable.Find(w);
          if (place >= 0) kind = kFirstKeywordKind + place;
        }
        break;
      }
      case cDollar:
        p = scan::SkipHexDigits(s, p + 1);
        kind = ptHexNumber;
        break;
      case cHash:
        p = scan::SkipDigits(s, p + 1);
        kind = ptCharCode;
        break;
      case cQuote:
        // An unclosed string stops before the line end.
        p = scan::FindAny(s, p + 1, "'\r\n");
        if (s[p] == '\'') ++p;
        kind = ptStringLiteral;
        break;
      case cOpenBrace:
        kind = s[p + 1] == '$' ? ptCompilerDirective : ptBraceComment;
        p = scan::PastClosing(s, p + 1, '}');
        break;
      case cOpenParen:
        if (s[p + 1] == '*') {
          // The search for the closing *) starts after the opening (*, so (*) stays open.
          p = scan::PastStarClose(s, p + 2, ')');
          kind = ptParenComment;
        } else if (s[p + 1] == '.')
          p += 2, kind = ptOpenBracket;
        else
          p += 1, kind = ptOpenParen;
        break;
      case cSlash:
        if (s[p + 1] == '/') {
          p = scan::PastLineCommentEnd(s, p + 2);
          kind = ptLineComment;
        } else
          p += 1, kind = ptSlash;
        break;
      case cColon:
        if (s[p + 1] == '=')
          p += 2, kind = ptAssign;
        else
          p += 1, kind = ptColon;
        break;
      case cDot:
        if (s[p + 1] == '.')
          p += 2, kind = ptDotDot;
        else if (s[p + 1] == ')')
          p += 2, kind = ptCloseBracket;
        else
          p += 1, kind = ptDot;
        break;
      case cLess:
        if (s[p + 1] == '=')
          p += 2, kind = ptLessEqual;
        else if (s[p + 1] == '>')
          p += 2, kind = ptNotEqual;
        else
          p += 1, kind = ptLess;
        break;
      case cGreater:
        if (s[p + 1] == '=')
          p += 2, kind = ptGreaterEqual;
        else
          p += 1, kind = ptGreater;
        break;
      case cComma:
        p += 1, kind = ptComma;
        break;
      case cEqual:
        p += 1, kind = ptEqual;
        break;
      case cPlus:
        p += 1, kind = ptPlus;
        break;
      case cCloseParen:
        p += 1, kind = ptCloseParen;
        break;
      case cSemicolon:
        p += 1, kind = ptSemicolon;
        break;
      case cCloseBracket:
        p += 1, kind = ptCloseBracket;
        break;
      case cOpenBracket:
        p += 1, kind = ptOpenBracket;
        break;
      case cStar:
        p += 1, kind = ptStar;
        break;
      case cAmp:
        p += 1, kind = ptAmpersand;
        break;
      case cAt:
        p += 1, kind = ptAt;
        break;
      case cCaret:
        p += 1, kind = ptCaret;
        break;
      case cUnknownPunct:
        p += 1, kind = ptUnknownPunctuator;
        break;
      case cUnknownChar:
      default:
        p += 1, kind = ptUnknownChar;
        break;
    }
    AddToken(out, start, kind);
  }
}

std::string_view PascalTokenKindName(int kind) {
  static constexpr std::array<std::string_view, 256> kNames = [] {
    std::array<std::string_view, 256> n;
    n.fill("unused");
#define PASCAL_TOKEN(Name, Number, KindName) n[Number] = KindName;
#include "parsing/pascal_token_kinds.def"
    return n;
  }();
  return static_cast<unsigned>(kind) < kNames.size() ? kNames[kind] : "unused";
}

}  // namespace velmora
