#include "parsing/cpp_tokenizer.h"

#include <array>
#include <cstring>

#include "parsing/keyword_lookup.h"
#include "parsing/scan_chars.h"

namespace velmora {
namespace {

// Every kind number, in the table's order.
constexpr std::array kKindNumbers = {
#define CPP_TOKEN(Name, Number, KindName) Number,
#include "parsing/cpp_token_kinds.def"
};
static_assert(keywords::StrictlyAscendingBelow(kKindNumbers, 256),
              "cpp_token_kinds.def: numbers ascending, each used once, below 256");

// The keywords in kind order: the kind of kCppKeywords[i] is kFirstKeywordKind + i.
constexpr std::array kCppKeywords = {
#define CPP_KEYWORD(Name, Number, Spelling) std::string_view(Spelling),
#include "parsing/cpp_token_kinds.def"
};
constexpr std::array kCppKeywordKinds = {
#define CPP_KEYWORD(Name, Number, Spelling) Number,
#include "parsing/cpp_token_kinds.def"
};
constexpr int kFirstKeywordKind = 10;
static_assert(keywords::RunsFrom(kCppKeywordKinds, kFirstKeywordKind),
              "cpp_token_kinds.def: the keywords run unbroken from 10");
constexpr int kMaxKeywordLength = 16;  // reinterpret_cast
static_assert(keywords::LongestWord(kCppKeywords) == kMaxKeywordLength);

// The words after `#`, with their kinds.
constexpr std::array kDirectives = {
#define CPP_DIRECTIVE(Name, Number, Word) std::string_view(Word),
#include "parsing/cpp_token_kinds.def"
};
constexpr std::array kDirectiveKinds = {
#define CPP_DIRECTIVE(Name, Number, Word) Name,
#include "parsing/cpp_token_kinds.def"
};
// The parsers pass every directive by its range (IsDirectiveKind), the lone `#` included.
static_assert(kDirectiveKinds.front() == ctHashDefine && kDirectiveKinds.back() == ctHashUndef &&
                  ctHash > ctHashDefine && ctHash < ctHashUndef,
              "cpp_token_kinds.def: the directives run from ctHashDefine to ctHashUndef");

constexpr keywords::TKeywordTable<kCppKeywords.size(), 10> kKeywordTable(kCppKeywords);
constexpr keywords::TKeywordTable<kDirectives.size(), 6> kDirectiveTable(kDirectives);

// What the first character of a token decides. Every punctuator character has a class of
// its own so that one switch settles the token.
enum CharClass : unsigned char {
  cUnknownChar,  // $, 127 and above
  cEnd,
  cBlank,
  cCR,
  cLF,
  cDigit,
  cLetter,
  cQuote,
  cDoubleQuote,
  cHash,
  cUnknownPunct,
  cBang,
  cPercent,
  cAmp,
  cOpenParen,
  cCloseParen,
  cStar,
  cPlus,
  cComma,
  cMinus,
  cDot,
  cSlash,
  cColon,
  cSemicolon,
  cLess,
  cEqual,
  cGreater,
  cQuestion,
  cOpenBracket,
  cCloseBracket,
  cCaret,
  cOpenBrace,
  cBar,
  cCloseBrace,
  cTilde,
};

constexpr std::array<CharClass, 256> MakeClasses() {
  std::array<CharClass, 256> t{};  // cUnknownChar
  for (int c = 0; c < 256; ++c) {
    if (scan::IsBlank(static_cast<unsigned char>(c))) t[c] = cBlank;
    if (c >= '0' && c <= '9') t[c] = cDigit;
    if (scan::IsIdentStart(static_cast<unsigned char>(c))) t[c] = cLetter;
  }
  t[0] = cEnd;
  t['\r'] = cCR;
  t['\n'] = cLF;
  t['\''] = cQuote;
  t['"'] = cDoubleQuote;
  t['#'] = cHash;
  t['@'] = t['\\'] = t['`'] = cUnknownPunct;
  t['!'] = cBang;
  t['%'] = cPercent;
  t['&'] = cAmp;
  t['('] = cOpenParen;
  t[')'] = cCloseParen;
  t['*'] = cStar;
  t['+'] = cPlus;
  t[','] = cComma;
  t['-'] = cMinus;
  t['.'] = cDot;
  t['/'] = cSlash;
  t[':'] = cColon;
  t[';'] = cSemicolon;
  t['<'] = cLess;
  t['='] = cEqual;
  t['>'] = cGreater;
  t['?'] = cQuestion;
  t['['] = cOpenBracket;
  t[']'] = cCloseBracket;
  t['^'] = cCaret;
  t['{'] = cOpenBrace;
  t['|'] = cBar;
  t['}'] = cCloseBrace;
  t['~'] = cTilde;
  return t;
}
constexpr std::array<CharClass, 256> kClass = MakeClasses();

bool IsLetter(unsigned char c) {
  return static_cast<unsigned>((c | 0x20) - 'a') < 26u;
}

}  // namespace

TCPPTokenizer::TCPPTokenizer() {
  commentKinds_ = {ctBlockComment, ctLineComment};
  blankKinds_ = {ctWhitespace, ctLineEnd, ctBlockComment, ctLineComment};
}

void TCPPTokenizer::AdjustLineForComment(int32_t offset, int kind) {
  if (kind == ctBlockComment)
    CountCRsUpToStarClose(offset, '/');
  else if (kind == ctLineComment)
    StepLine();
}

void TCPPTokenizer::Tokenize() {
  const auto* const s = reinterpret_cast<const unsigned char*>(text_);
  TTokenSink out = BeginTokens(scan::EstimateTokenCount(textSize_));
  int32_t p = 0;
  for (;;) {
    const int32_t start = p;
    const unsigned char c = s[p];
    int kind;
    // Characters after the first are read only once the one before them is known not to
    // be the NUL, so no read goes past the terminator.
    switch (kClass[c]) {
      case cEnd:
        AddToken(out, p, ctEndOfText);
        EndTokens(out);
        return;
      case cBlank:
        p = scan::SkipBlanks(s, p + 1);
        kind = ctWhitespace;
        break;
      case cCR:
        p += s[p + 1] == '\n' ? 2 : 1;
        kind = ctLineEnd;
        break;
      case cLF:
        p += s[p + 1] == '\r' ? 2 : 1;
        kind = ctLineEnd;
        break;
      case cDigit:
        p = scan::SkipDigits(s, p + 1);
        kind = ctNumber;
        break;
      case cLetter: {
        p = scan::SkipIdentChars(s, p + 1);
        kind = ctIdentifier;
        const int length = p - start;
        if (length <= kMaxKeywordLength) {
          const int place = kKeywordTable.Find(keywords::PackRun(s, start, p));
          if (place >= 0) kind = kFirstKeywordKind + place;
        }
        break;
      }
      case cQuote:
        p = scan::PastClosing(s, p + 1, '\'');
        kind = ctCharLiteral;
        break;
      case cDoubleQuote:
        p = scan::PastClosing(s, p + 1, '"');
        kind = ctStringLiteral;
        break;
      case cHash:
        if (s[p + 1] == '#') {
          p += 2;
          kind = ctHashHash;
        } else if (IsLetter(s[p + 1])) {
          p += 2;
          while (IsLetter(s[p])) ++p;
          kind = ctUnknownChar;
          const int length = p - start - 1;
          if (length <= keywords::kMaxLength) {
            const int place = kDirectiveTable.Find(keywords::Pack(s + start + 1, length));
            if (place >= 0) kind = kDirectiveKinds[place];
          }
        } else {
          p += 1;
          kind = ctHash;
        }
        break;
      case cUnknownPunct:
        p += 1;
        kind = ctUnknownPunctuator;
        break;
      case cUnknownChar:
        p += 1;
        kind = ctUnknownChar;
        break;
      case cBang:
        if (s[p + 1] == '=')
          p += 2, kind = ctNotEqual;
        else
          p += 1, kind = ctNot;
        break;
      case cPercent:
        if (s[p + 1] == '=')
          p += 2, kind = ctPercentAssign;
        else
          p += 1, kind = ctPercent;
        break;
      case cAmp:
        if (s[p + 1] == '&')
          p += 2, kind = ctLogicalAnd;
        else if (s[p + 1] == '=')
          p += 2, kind = ctAndAssign;
        else
          p += 1, kind = ctAmpersand;
        break;
      case cOpenParen:
        if (s[p + 1] == ')')
          p += 2, kind = ctParens;
        else
          p += 1, kind = ctOpenParen;
        break;
      case cCloseParen:
        p += 1, kind = ctCloseParen;
        break;
      case cStar:
        if (s[p + 1] == '=')
          p += 2, kind = ctStarAssign;
        else
          p += 1, kind = ctStar;
        break;
      case cPlus:
        if (s[p + 1] == '+')
          p += 2, kind = ctPlusPlus;
        else if (s[p + 1] == '=')
          p += 2, kind = ctPlusAssign;
        else
          p += 1, kind = ctPlus;
        break;
      case cComma:
        p += 1, kind = ctComma;
        break;
      case cMinus:
        if (s[p + 1] == '-')
          p += 2, kind = ctMinusMinus;
        else if (s[p + 1] == '=')
          p += 2, kind = ctMinusAssign;
        else if (s[p + 1] == '>') {
          if (s[p + 2] == '*')
            p += 3, kind = ctArrowStar;
          else
            p += 2, kind = ctArrow;
        } else
          p += 1, kind = ctMinus;
        break;
      case cDot:
        if (s[p + 1] == '.') {
          if (s[p + 2] == '.')
            p += 3, kind = ctEllipsis;
          else
            p += 2, kind = ctDotDot;
        } else if (s[p + 1] == '*')
          p += 2, kind = ctDotStar;
        else
          p += 1, kind = ctDot;
        break;
      case cSlash:
        if (s[p + 1] == '*') {
          // The search for the closing */ starts after the opening /*, so /*/ stays open.
          p = scan::PastStarClose(s, p + 2, '/');
          kind = ctBlockComment;
        } else if (s[p + 1] == '/') {
          p = scan::PastLineCommentEnd(s, p + 2);
          kind = ctLineComment;
        } else if (s[p + 1] == '=')
          p += 2, kind = ctSlashAssign;
        else
          p += 1, kind = ctSlash;
        break;
      case cColon:
        if (s[p + 1] == ':')
          p += 2, kind = ctScope;
        else
          p += 1, kind = ctColon;
        break;
      case cSemicolon:
        p += 1, kind = ctSemicolon;
        break;
      case cLess:
        if (s[p + 1] == '<') {
          if (s[p + 2] == '=')
            p += 3, kind = ctShiftLeftAssign;
          else
            p += 2, kind = ctShiftLeft;
        } else if (s[p + 1] == '=')
          p += 2, kind = ctLessEqual;
        else
          p += 1, kind = ctLess;
        break;
      case cEqual:
        if (s[p + 1] == '=')
          p += 2, kind = ctEqual;
        else
          p += 1, kind = ctAssign;
        break;
      case cGreater:
        if (s[p + 1] == '>') {
          if (s[p + 2] == '=')
            p += 3, kind = ctShiftRightAssign;
          else
            p += 2, kind = ctShiftRight;
        } else if (s[p + 1] == '=')
          p += 2, kind = ctGreaterEqual;
        else
          p += 1, kind = ctGreater;
        break;
      case cQuestion:
        if (s[p + 1] == ':')
          p += 2, kind = ctQuestionColon;
        else
          p += 1, kind = ctUnknownPunctuator;
        break;
      case cOpenBracket:
        if (s[p + 1] == ']')
          p += 2, kind = ctBrackets;
        else
          p += 1, kind = ctOpenBracket;
        break;
      case cCloseBracket:
        p += 1, kind = ctCloseBracket;
        break;
      case cCaret:
        if (s[p + 1] == '=')
          p += 2, kind = ctCaretAssign;
        else
          p += 1, kind = ctCaret;
        break;
      case cOpenBrace:
        if (s[p + 1] == '}')
          p += 2, kind = ctBraces;
        else
          p += 1, kind = ctOpenBrace;
        break;
      case cBar:
        if (s[p + 1] == '|')
          p += 2, kind = ctLogicalOr;
        else if (s[p + 1] == '=')
          p += 2, kind = ctBarAssign;
        else
          p += 1, kind = ctBar;
        break;
      case cCloseBrace:
        p += 1, kind = ctCloseBrace;
        break;
      case cTilde:
        p += 1, kind = ctTilde;
        break;
      default:  // not reached: every class is handled above
        p += 1, kind = ctUnknownChar;
        break;
    }
    AddToken(out, start, kind);
  }
}

std::string_view CppTokenKindName(int kind) {
  static constexpr std::array<std::string_view, 256> kNames = [] {
    std::array<std::string_view, 256> n;
    n.fill("unused");
#define CPP_TOKEN(Name, Number, KindName) n[Number] = KindName;
#include "parsing/cpp_token_kinds.def"
    return n;
  }();
  return static_cast<unsigned>(kind) < kNames.size() ? kNames[kind] : "unused";
}

}  // namespace velmora
