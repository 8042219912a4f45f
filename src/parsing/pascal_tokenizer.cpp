#include "parsing/pascal_tokenizer.h"

#include <array>
#include <string>

#include "parsing/keyword_lookup.h"
#include "parsing/scan_chars.h"

namespace velmora {
namespace {

// In kind order: the kind of kPascalKeywords[i] is 10 + i.
constexpr std::array<std::string_view, 103> kPascalKeywords = {
    // reserved words
    "and", "array", "as", "begin", "case", "class", "const", "constructor", "destructor",
    "dispinterface", "div", "do", "downto", "else", "end", "except", "exports", "file",
    "finalization", "finally", "for", "function", "goto", "if", "implementation", "in", "inherited",
    "initialization", "inline", "interface", "is", "label", "library", "mod", "nil", "not",
    "object", "of", "or", "out", "packed", "procedure", "program", "property", "raise", "record",
    "repeat", "resourcestring", "set", "shl", "shr", "string", "then", "threadvar", "to", "try",
    "type", "unit", "until", "uses", "var", "while", "with", "xor",
    // directive words
    "absolute", "abstract", "assembler", "automated", "cdecl", "contains", "default", "dispid",
    "dynamic", "export", "external", "far", "forward", "implements", "index", "message", "name",
    "near", "nodefault", "overload", "override", "package", "pascal", "private", "protected",
    "public", "published", "read", "readonly", "register", "reintroduce", "requires", "resident",
    "safecall", "stdcall", "stored", "virtual", "write", "writeonly"};
constexpr int kFirstKeywordKind = 10;
// Longer identifiers are never keywords and skip the lookup (initialization,
// implementation, resourcestring).
constexpr int kMaxKeywordLength = 14;

constexpr keywords::TKeywordTable<103, 10> kKeywordTable(kPascalKeywords);

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
  static const std::array<std::string, 256> names = [] {
    std::array<std::string, 256> n;
    for (auto& name : n) name = "unused";
    n[ptEndOfText] = "end";
    n[ptWhitespace] = "whitespace";
    n[ptLineEnd] = "line-end";
    for (size_t i = 0; i < kPascalKeywords.size(); ++i)
      n[kFirstKeywordKind + i] = "kw:" + std::string(kPascalKeywords[i]);
    n[ptParenComment] = "paren-comment";
    n[ptBraceComment] = "brace-comment";
    n[ptLineComment] = "line-comment";
    n[ptCompilerDirective] = "directive";
    n[ptCharCode] = "char-code";
    n[ptHexNumber] = "hex-number";
    n[ptNumber] = "number";
    n[ptIdentifier] = "identifier";
    n[ptStringLiteral] = "string";
    n[ptUnknownPunctuator] = "unknown-punctuator";
    n[ptUnknownChar] = "unknown-char";
    const std::pair<int, const char*> punctuators[] = {
        {ptAssign, ":="},     {ptColon, ":"},     {ptComma, ","},         {ptDotDot, ".."},
        {ptEqual, "="},       {ptGreater, ">"},   {ptGreaterEqual, ">="}, {ptLess, "<"},
        {ptLessEqual, "<="},  {ptNotEqual, "<>"}, {ptPlus, "+"},          {ptDot, "."},
        {ptCloseParen, ")"},  {ptOpenParen, "("}, {ptSemicolon, ";"},     {ptCloseBracket, "]"},
        {ptOpenBracket, "["}, {ptStar, "*"},      {ptSlash, "/"},         {ptAmpersand, "&"},
        {ptAt, "@"},          {ptCaret, "^"},
    };
    for (const auto& [k, text] : punctuators) n[k] = text;
    return n;
  }();
  return static_cast<unsigned>(kind) < 256 ? std::string_view(names[kind]) : "unused";
}

}  // namespace velmora
