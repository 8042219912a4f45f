// The operations over a C++ token cursor that the parsers and the code finder share, and
// the parse loop every parser runs.
#include <algorithm>
#include <array>

#include "parsing/cpp_parser_internal.h"

namespace velmora {
namespace {

// The tokenizer keeps its last visited index and its direction to itself. Undoing a
// look-ahead has to put them back as well, or a line end or comment read during the look
// would be counted twice. A pointer to the protected members, formed in a class derived
// from the tokenizer, reaches them without widening the tokenizer's interface for this
// one use.
// Sorted by ordinal comparison for the binary search.
constexpr auto kKnownMacros = [] {
  std::array<std::string_view, 72> names = {
      "BEGIN_MESSAGE_MAP",
      "MESSAGE_HANDLER",
      "END_MESSAGE_MAP",
      "VCL_MESSAGE_HANDLER",
      "USEDATAMODULE",
      "USEDATAMODULENS",
      "USEFORM",
      "USEFORMNS",
      "USEUNIT",
      "USEOBJ",
      "USERC",
      "USEASM",
      "USEDEF",
      "USERES",
      "USETLB",
      "USELIB",
      "USEFILE",
      "USEPACKAGE",
      "DECLARE_DINTERFACE_TYPE",
      "DECLARE_DYNAMIC",
      "DECLARE_MESSAGE_MAP",
      "DECLARE_INTERFACE_MAP",
      "DECLARE_CONNECTION_MAP",
      "DECLARE_DYNCREATE",
      "DECLARE_SERIAL",
      "DECLARE_EVENT_MAP",
      "DECLARE_OLECREATE_EX",
      "DECLARE_OLECTLTYPE",
      "DECLARE_PROPPAGEIDS",
      "DECLARE_OLECREATE",
      "DECLARE_OLETYPELIB",
      "DECLARE_PARSE_MAP",
      "DECLARE_DISPATCH_MAP",
      "DECLARE_OLECMD_MAP",
      "DECLARE_EVENTSINK_MAP",
      "BEGIN_COM_MAP",
      "END_COM_MAP",
      "BEGIN_INTERFACE_PART",
      "INIT_INTERFACE_PART",
      "STDMETHOD",
      "STDMETHOD_",
      "END_INTERFACE_PART",
      "BEGIN_INTERFACE",
      "DEFINE_BOLEGUID",
      "END_INTERFACE",
      "COM_INTERFACE_ENTRY",
      "BEGIN_MSG_MAP",
      "END_MSG_MAP",
      "COM_INTERFACE_ENTRY_IID",
      "THREAD_LOCAL",
      "EXTERN_THREAD_LOCAL",
      "BEGIN_CONNECTION_PART",
      "CONNECTION_IID",
      "END_CONNECTION_PART",
      "_ATL_DEBUG_ADDREF_RELEASE_IMPL",
      "DECLARE_DIAG_GROUP",
      "DECLARE_HANDLE",
      "DECLARE_HANDLE32",
      "DECLARE_MAPI_INTERFACE_PTR",
      "DECLARE_OPAQUE32",
      "DECLARE_RESPONSE_TABLE",
      "DEFINE_AVIGUID",
      "DEFINE_OLEGUID",
      "DEFINE_DAOGUID",
      "DEFINE_EXCHEXTGUID",
      "DEFINE_EXCHFORMGUID",
      "DEFINE_GUID",
      "DEFINE_OID_1",
      "DEFINE_OID_2",
      "DEFINE_OID_3",
      "DEFINE_SHLGUID",
      "WIN_TYPES",
  };
  std::sort(names.begin(), names.end());
  return names;
}();
static_assert(std::adjacent_find(kKnownMacros.begin(), kKnownMacros.end()) == kKnownMacros.end(),
              "a macro name is listed twice");

// The close of a group CollectBracket counts: the bracket pairs of the token table, and
// `<` with `>` for template argument lists.
int CloseKindOf(int openKind) {
  return openKind == ctLess ? ctGreater : CppClosingKind(openKind);
}

}  // namespace

bool CollectBracket(TCPPTokenizer& tokenizer, int openKind, std::string& text, bool collect) {
  text.clear();
  const int closeKind = CloseKindOf(openKind);
  if (closeKind < 0) return false;
  VELMORA_DCHECK(tokenizer.Kind() == openKind, "CollectBracket starts on the group's opener");
  int depth = 1;
  bool inBlanks = false;  // the last thing collected was the blank of a run
  for (;;) {
    const int32_t from = tokenizer.Index();
    const int kind = tokenizer.NextSkipComments();
    if (kind == ctEndOfText) return false;
    if (kind == closeKind) {
      if (--depth == 0) return true;
    } else if (kind == openKind) {
      ++depth;
    }
    if (!collect) continue;
    // A comment stands for a blank, as it does to the compiler (a line comment even holds
    // the line end), so that `unsigned// x` CR LF `int` does not read as one word.
    const bool blank = kind == ctWhitespace || kind == ctLineEnd;
    if ((blank || tokenizer.Index() > from + 1) && !inBlanks) {
      text += ' ';
      inBlanks = true;
    }
    if (blank) continue;
    text += tokenizer.TokenView(tokenizer.Index());
    inBlanks = false;
  }
}

int SkipTo(TCPPTokenizer& tokenizer, const TTokenKindSet& stops) {
  std::string unused;
  for (;;) {
    int kind = tokenizer.Kind();
    if (kind == ctEndOfText) return ctUnknownChar;
    if (stops.Contains(kind)) return kind;
    if (kind == ctOpenBrace || kind == ctOpenParen || kind == ctOpenBracket) {
      if (!CollectBracket(tokenizer, kind, unused, false)) return ctUnknownChar;
      kind = tokenizer.Kind();
      if (stops.Contains(kind)) return kind;
    }
    tokenizer.NextSignificant();
  }
}

void ReadRestOfLine(TCPPTokenizer& tokenizer, bool collect, std::string& text) {
  text.clear();
  std::string pending;  // blanks and continued line ends not yet followed by a token
  bool continued = false;
  for (;;) {
    tokenizer.Next();
    const int kind = tokenizer.Kind();
    if (kind == ctEndOfText || kind == ctLineComment) return;
    if (kind == ctLineEnd) {
      if (!continued) return;
      continued = false;
      if (collect) pending += "\r\n";
      continue;
    }
    if (kind == ctWhitespace) {
      if (collect) pending += ' ';
      continue;
    }
    const std::string_view token = tokenizer.TokenView(tokenizer.Index());
    if (kind == ctUnknownPunctuator && token == "\\") {
      continued = true;
      continue;
    }
    continued = false;
    if (collect) {
      text += pending;
      text += token;
    }
    pending.clear();
  }
}

bool IsKnownMacroName(std::string_view name) {
  return std::binary_search(kKnownMacros.begin(), kKnownMacros.end(), name);
}

bool IsKnownMacro(TCPPTokenizer& tokenizer) {
  return tokenizer.Kind() == ctIdentifier &&
         IsKnownMacroName(tokenizer.TokenView(tokenizer.Index()));
}

void SkipMacro(TCPPTokenizer& tokenizer) {
  std::string unused;
  for (;;) {
    const TCursorState before = SaveCursor(tokenizer);
    const int kind = tokenizer.NextSignificant();
    if (kind == ctOpenParen) {
      if (!CollectBracket(tokenizer, kind, unused, false)) return;
    } else if (kind != ctParens) {
      RestoreCursor(tokenizer, before);
      return;
    }
  }
}

// ---- TCPPBaseParser ----

TCPPBaseParser::TCPPBaseParser()
    : tokenizer_(nullptr), ownTokenizer_(std::make_unique<TCPPTokenizer>()) {
  tokenizer_ = ownTokenizer_.get();
}

TCPPBaseParser::~TCPPBaseParser() = default;

void TCPPBaseParser::Parse() {
  TCPPTokenizer& t = *tokenizer_;
  // Every handler leaves the cursor on a token at or after the one it was called on, so
  // the step below always moves on. A parser that stopped keeps its last token (a class
  // body's `}`) under the cursor for whoever called it.
  while (!Stopped && t.Kind() != ctEndOfText) {
    [[maybe_unused]] const int32_t start = t.Index();
    HandleToken();
    VELMORA_DCHECK(t.Index() >= start, "a handler never leaves the cursor before its token");
    if (Stopped) break;
    t.NextSignificant();
  }
}

namespace cpp_parser {

uint16_t ModifierDirective(int kind) {
  switch (kind) {
    case ctVirtual:
      return DirectiveBit(TDirective::Virtual);
    case ctStdcall_2:
      return DirectiveBit(TDirective::StdCall);
    case ctPascal_2:
      return DirectiveBit(TDirective::Pascal);
    case ctCdecl_2:
      return DirectiveBit(TDirective::Cdecl);
    case ctFastcall_2:
      return DirectiveBit(TDirective::FastCall);
    case ctInline:
      return DirectiveBit(TDirective::Inline);
    default:
      return 0;
  }
}

bool CollectTemplateArguments(TCPPTokenizer& tokenizer, std::string* text) {
  VELMORA_DCHECK(tokenizer.Kind() == ctLess, "template arguments start on their `<`");
  if (text) text->clear();
  int depth = 1;
  int parens = 0;
  bool inBlanks = false;
  auto append = [&](std::string_view token) {
    if (!text) return;
    *text += token;
    inBlanks = false;
  };
  for (;;) {
    const TCursorState before = SaveCursor(tokenizer);
    const int kind = tokenizer.NextSkipComments();
    if (kind == ctEndOfText) return false;
    if (kind == ctSemicolon || kind == ctOpenBrace || kind == ctBraces || kind == ctCloseBrace) {
      RestoreCursor(tokenizer, before);
      return false;
    }
    const bool blank = kind == ctWhitespace || kind == ctLineEnd;
    if (text && (blank || tokenizer.Index() > before.Index + 1) && !inBlanks) {
      *text += ' ';
      inBlanks = true;
    }
    if (blank) continue;
    if (kind == ctOpenParen) {
      ++parens;
    } else if (kind == ctCloseParen) {
      if (parens > 0) --parens;
    } else if (parens == 0) {
      if (kind == ctLess) {
        ++depth;
      } else if (kind == ctGreater) {
        if (--depth == 0) return true;
      } else if (kind == ctShiftRight) {
        // One `>` for an inner list and one for this one; met at the outer level, it
        // closes the group all the same.
        if (depth == 2) append(">");
        depth -= 2;
        if (depth <= 0) return true;
      }
    }
    append(tokenizer.TokenView(tokenizer.Index()));
  }
}

namespace {

// Whether the token at the cursor, of kind `kind`, is the identifier `word`.
bool IsWordAt(const TCPPTokenizer& t, int kind, std::string_view word) {
  return kind == ctIdentifier && t.TokenView(t.Index()) == word;
}

// Spelled as macros are: upper case with digits and underscores (`Q_DECL_CONST_FUNCTION`,
// `DYNAMIC`), or beginning with two underscores (`__THROW`, `__wur`).
bool LooksLikeMacro(std::string_view word) {
  if (word.size() < 2) return false;
  if (word.starts_with("__")) return true;
  bool letter = false;
  for (const char c : word) {
    if (c >= 'A' && c <= 'Z')
      letter = true;
    else if (!(c >= '0' && c <= '9') && c != '_')
      return false;
  }
  return letter;
}

// What may stand after an annotation macro behind a parameter list: the end of the
// declaration, its body, `= 0`, or more of what PassTrailingSpecifiers passes. Not a
// `:`: after a call-like macro with no `;` (`QT_DECLARE_X(Foo)`) a `Q_SIGNALS:` or
// `PUBLISHED:` opens a section, and taking it for an initializer list would pass the
// members up to the next body.
bool CanFollowAnnotation(const TCPPTokenizer& t, int kind) {
  switch (kind) {
    case ctSemicolon:
    case ctOpenBrace:
    case ctBraces:
    case ctAssign:
    case ctThrow:
    case ctArrow:
    case ctVolatile:
    case ctAmpersand:
    case ctLogicalAnd:
      return true;
    case ctIdentifier: {
      const std::string_view word = t.TokenView(t.Index());
      return word == "noexcept" || word == "override" || word == "final" || LooksLikeMacro(word);
    }
    default:
      return false;
  }
}

}  // namespace

void PassTrailingSpecifiers(TCPPTokenizer& t, int& next, TCursorState& before) {
  std::string unused;
  auto step = [&] {
    before = SaveCursor(t);
    next = t.NextSignificant();
  };
  // A group that runs to the end of the text leaves the cursor there.
  auto passGroup = [&] {
    if (!CollectBracket(t, next, unused, false)) {
      next = t.Kind();
      return false;
    }
    step();
    return true;
  };
  for (;;) {
    if (next == ctVolatile || next == ctAmpersand || next == ctLogicalAnd ||
        IsWordAt(t, next, "override") || IsWordAt(t, next, "final")) {
      step();
    } else if (next == ctThrow || IsWordAt(t, next, "noexcept")) {
      step();
      if (next == ctParens) {
        step();
      } else if (next == ctOpenParen) {
        if (!passGroup()) return;
      }
    } else if (next == ctArrow) {
      // A trailing return type: up to what may follow a declaration's type. A `}` is not
      // ours to pass (broken input), and `override` and `final` are met again above.
      step();
      while (next != ctSemicolon && next != ctOpenBrace && next != ctBraces && next != ctAssign &&
             next != ctCloseBrace && next != ctEndOfText && !IsWordAt(t, next, "override") &&
             !IsWordAt(t, next, "final")) {
        if (next == ctOpenParen || next == ctOpenBracket) {
          if (!passGroup()) return;
        } else {
          step();
        }
      }
    } else if (next == ctIdentifier && LooksLikeMacro(t.TokenView(t.Index()))) {
      // An annotation macro (`Q_DECL_PURE_FUNCTION`, `__THROW __nonnull ((1))`), passed
      // only when what follows it can end the declaration: a declaration missing its `;`
      // before a macro-named one does not take that one.
      const TCursorState atMacro = SaveCursor(t);
      const TCursorState beforeMacro = before;
      step();
      if (next == ctParens) {
        step();
      } else if (next == ctOpenParen && !passGroup()) {
        return;
      }
      if (!CanFollowAnnotation(t, next)) {
        RestoreCursor(t, atMacro);
        before = beforeMacro;
        next = ctIdentifier;
        return;
      }
    } else {
      return;
    }
  }
}

}  // namespace cpp_parser
}  // namespace velmora
