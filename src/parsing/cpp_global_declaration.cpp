// The walk over one declaration, shared by file level and class bodies, and what file
// level makes of it: a free function prototype becomes a routine.
#include "model/class_list.h"
#include "parsing/cpp_parser_internal.h"
#include "support/ansi.h"

namespace velmora {

using namespace cpp_parser;

namespace {

// After the first comma of a declarator list: the rest up to the `;`, every run of blanks
// as one blank, brace initializers left out. Stops before a `}`.
void CollectRest(TCPPTokenizer& t, std::string* text, bool& cut) {
  bool blank = false;
  std::string group;
  for (;;) {
    const TCursorState before = SaveCursor(t);
    const int kind = t.NextSkipComments();
    if (kind == ctEndOfText || kind == ctSemicolon) return;
    if (kind == ctCloseBrace) {
      RestoreCursor(t, before);
      cut = true;
      return;
    }
    if (kind == ctWhitespace || kind == ctLineEnd || t.Index() > before.Index + 1) blank = true;
    if (kind == ctWhitespace || kind == ctLineEnd) continue;
    if (kind == ctOpenBrace) {
      // A brace initializer (`b{2}`) is passed: it is no part of a name or a type, and
      // any comma in it separates nothing.
      if (!CollectBracket(t, kind, group, false)) return;
    } else if (kind == ctBraces) {
      // `b{}`: nothing to pass.
    } else if (text) {
      AppendSeparated(*text, t.TokenView(t.Index()), blank);
    }
    blank = false;
  }
}

// Words of later C++ that take an argument group and are no names: the group must not read
// as a parameter list.
enum class TWordRole {
  Name,
  Assertion,  // static_assert(...): the declaration declares nothing
  Attribute,  // alignas(...), __attribute__((...)): passed
  TypeOf,     // decltype(...): part of the type
};

TWordRole RoleOf(std::string_view word) {
  if (word == "static_assert") return TWordRole::Assertion;
  if (word == "alignas" || word == "__attribute__" || word == "__attribute")
    return TWordRole::Attribute;
  if (word == "decltype") return TWordRole::TypeOf;
  return TWordRole::Name;
}

// At a word of `role` (not Name): when a `(` group follows, passes it (a decltype's word
// and group joining `type`) and returns true with the cursor on the group's `)`. Otherwise
// the cursor stays and the word reads as a name.
bool PassWordArguments(TCPPTokenizer& t, TWordRole role, std::string& type, bool blank) {
  const TCursorState word = SaveCursor(t);
  const std::string_view text = t.TokenView(t.Index());
  const int next = t.NextSignificant();
  if (next != ctOpenParen && next != ctParens) {
    RestoreCursor(t, word);
    return false;
  }
  std::string group;
  if (next == ctOpenParen && !CollectBracket(t, next, group, role == TWordRole::TypeOf)) {
    return true;  // ran to the end of the text
  }
  if (role == TWordRole::TypeOf)
    AppendSeparated(type, std::string(text) + "(" + group + ")", blank);
  return true;
}

// From `operator` on: the symbol is the next token and whatever touches it up to the
// parameter list (`==`, `()`, `new[]`, a conversion's type), written without blanks.
void ReadOperator(TCPPTokenizer& t, TDeclaration& d) {
  d.IsOperator = true;
  TCursorState before = SaveCursor(t);
  int kind = t.NextSignificant();
  for (bool first = true;; first = false) {
    if (kind == ctEndOfText) return;
    if (kind == ctCloseBrace) {  // broken input: the end of the body is not ours to take
      RestoreCursor(t, before);
      d.Cut = true;
      return;
    }
    if (!first && (kind == ctOpenParen || kind == ctParens || kind == ctSemicolon)) break;
    d.Name += t.TokenView(t.Index());
    before = SaveCursor(t);
    kind = t.NextSignificant();
  }
  if (kind == ctOpenParen) {
    CollectBracket(t, kind, d.Params, true);
    d.HasParams = true;
  } else if (kind == ctParens) {
    d.HasParams = true;
  }
}

}  // namespace

namespace cpp_parser {

bool LooksLikeMacroName(std::string_view word) {
  bool capital = false;
  for (const char c : word) {
    if (c >= 'A' && c <= 'Z') {
      capital = true;
    } else if (!(c >= '0' && c <= '9') && c != '_') {
      return false;
    }
  }
  return capital;
}

// Stops at the `,` or `;` at the outer level only: a value is often a call or a list.
bool SkipInitializer(TCPPTokenizer& t, bool& cut) {
  std::string unused;
  for (;;) {
    const TCursorState before = SaveCursor(t);
    const int kind = t.NextSignificant();
    switch (kind) {
      case ctComma:
        return true;
      case ctSemicolon:
      case ctEndOfText:
        return false;
      case ctCloseBrace:
        RestoreCursor(t, before);
        cut = true;
        return false;
      case ctOpenParen:
      case ctOpenBracket:
      case ctOpenBrace:
        if (!CollectBracket(t, kind, unused, false)) return false;
        break;
      case ctLess:
        // Most often template arguments (`std::is_same_v<A, B>`), whose commas end
        // nothing; a comparison runs into the `;` and leaves it to be read.
        CollectTemplateArguments(t, nullptr);
        break;
      default:
        break;
    }
  }
}

void WalkDeclaration(TCPPTokenizer& t, TDeclarationScope scope, TDeclaration& d) {
  const bool inClass = scope == TDeclarationScope::Class;
  d.StartLine = LineHere(t);
  d.StartOffset = t.Offset();
  bool blank = false;      // blanks since the last token taken
  bool nameBlank = false;  // blanks before the candidate name
  auto flushName = [&] {
    if (d.Name.empty()) return;
    AppendSeparated(d.Type, d.Name, nameBlank);
    d.Name.clear();
  };
  auto appendToType = [&](std::string_view text) {
    flushName();
    AppendSeparated(d.Type, text, blank);
    blank = false;
  };
  std::string group;
  TCursorState before = SaveCursor(t);
  int kind = t.Kind();
  for (;;) {
    switch (kind) {
      case ctEndOfText:
      case ctSemicolon:
      case ctBraces:
        return;
      case ctCloseBrace:  // the end of the enclosing body: not ours to take
        RestoreCursor(t, before);
        d.Cut = true;
        return;
      case ctWhitespace:
      case ctLineEnd:
        blank = true;
        break;
      case ctIdentifier: {
        if (t.TokenView(t.Index()) == "DYNAMIC") {
          // C++Builder's word for a dynamic method: a directive, no part of the result type.
          d.Directives |= DirectiveBit(TDirective::Dynamic);
          break;
        }
        const TWordRole role = RoleOf(t.TokenView(t.Index()));
        if (role == TWordRole::Assertion) {
          // `static_assert(...);` declares nothing.
          d.Type.clear();
          d.Name.clear();
          CollectRest(t, nullptr, d.Cut);
          return;
        }
        if (role != TWordRole::Name && PassWordArguments(t, role, d.Type, blank)) {
          blank = false;
          break;
        }
        flushName();
        d.Name = t.TokenView(t.Index());
        nameBlank = blank;
        blank = false;
        break;
      }
      case ctNamespace:
      case ctClass:
      case ctStruct:
      case ctUnion:
      case ctEnum:
      case ctTemplate:
      case ctTypedef:
      case ctUsing:
      case ctExtern:
        if (!inClass && d.Type.empty() && !d.Name.empty()) {
          // A macro on a line of its own (`QT_BEGIN_NAMESPACE`, `QT_WARNING_POP`) before
          // a declaration file level reads by itself: the word declares nothing, and the
          // keyword is left to the caller, like a `}`, so the class or namespace after it
          // is not passed over as this declaration's initializer.
          RestoreCursor(t, before);
          d.Cut = true;
          return;
        }
        appendToType(t.TokenView(t.Index()));
        break;
      case ctOperator:
        flushName();
        ReadOperator(t, d);
        return;
      case ctLess:
        appendToType("<");
        if (CollectTemplateArguments(t, &group)) d.Type += group + ">";
        break;
      case ctOpenParen:
        CollectBracket(t, kind, d.Params, true);
        d.HasParams = true;
        return;
      case ctParens:
        d.HasParams = true;
        return;
      case ctAssign:
        // An initializer (`int x = f(1);`, a member's default value): the declarator is
        // complete, and the value must not read as a type, a name or a parameter list.
        if (!SkipInitializer(t, d.Cut)) return;
        [[fallthrough]];
      case ctComma:
        if (inClass) d.DeclaratorList = true;
        CollectRest(t, inClass ? &d.Rest : nullptr, d.Cut);
        return;
      case ctBrackets:
        if (inClass) {
          d.ArraySuffix += "[]";
          break;
        }
        SkipTo(t, {ctOpenBrace, ctBraces, ctSemicolon});
        return;
      case ctOpenBracket: {
        CollectBracket(t, kind, group, true);
        const std::string_view inside = Trim(group);
        // `[[nodiscard]]`, `[[deprecated("...")]]`: an attribute, passed wherever it stands.
        if (inside.size() >= 2 && inside.front() == '[' && inside.back() == ']') {
          blank = true;
          break;
        }
        if (inClass) {
          d.ArraySuffix += "[" + std::string(inside) + "]";
          break;
        }
        SkipTo(t, {ctOpenBrace, ctBraces, ctSemicolon});
        return;
      }
      case ctOpenBrace:
        CollectBracket(t, kind, group, false);
        return;
      case ctStatic:
        // A storage class, no part of the type: a generated implementation must not repeat
        // it. In a class it makes the method one of the class.
        if (inClass) d.Directives |= DirectiveBit(TDirective::ClassMethod);
        break;
      case ctExplicit:
        break;
      case ctColon:
        if (inClass && !d.Name.empty()) {
          // A bit-field (`uint isWidget : 1;`): the width is passed like an initializer.
          if (!SkipInitializer(t, d.Cut)) return;
          d.DeclaratorList = true;
          CollectRest(t, &d.Rest, d.Cut);
          return;
        }
        appendToType(t.TokenView(t.Index()));
        break;
      case ctTilde:
        if (inClass) {
          d.IsDestructor = true;
          break;
        }
        appendToType(t.TokenView(t.Index()));
        break;
      default:
        if (IsDirectiveKind(kind)) {
          ReadRestOfLine(t, false, group);
          blank = true;
        } else if (const uint16_t bit = ModifierDirective(kind)) {
          d.Directives |= bit;
        } else {
          appendToType(t.TokenView(t.Index()));
        }
        break;
    }
    before = SaveCursor(t);
    kind = t.NextSkipComments();
    // A comment separates like a blank (a line comment even holds the line end).
    if (t.Index() > before.Index + 1) blank = true;
  }
}

}  // namespace cpp_parser

void TCPPFileParser::ParseGlobalDeclaration() {
  TCPPTokenizer& t = *tokenizer_;
  TDeclaration d;
  WalkDeclaration(t, TDeclarationScope::File, d);
  if (!d.HasParams || d.Cut) return;
  const TCursorState afterParams = SaveCursor(t);
  TCursorState beforeKind = afterParams;
  int kind = t.NextSignificant();
  if (kind == ctConst) {
    beforeKind = SaveCursor(t);
    kind = t.NextSignificant();
  }
  PassTrailingSpecifiers(t, kind, beforeKind);
  if (kind == ctOpenBrace) {  // a definition: its body is passed, the function not recorded
    SkipBracket(ctOpenBrace);
    return;
  }
  if (kind != ctSemicolon) {
    RestoreCursor(t, afterParams);
    return;
  }
  const std::string_view name = Trim(d.Name);
  if (name.empty()) return;
  // A macro's name with no result type before it: a macro called at file level
  // (`Q_DECLARE_TYPEINFO(X, Y);`), no prototype.
  if (Trim(d.Type).empty() && LooksLikeMacroName(name)) return;
  TParameterList params(TLanguage::Cpp);
  params.Parse(d.Params);
  TProcDescription* routine =
      Target->Routines.FindOrAdd(name, FileName, TLanguage::Cpp, std::move(params), Trim(d.Type),
                                 TVisibility::Public, TMethodKind::Function);
  if (!routine) return;
  routine->FileName = FileName;
  routine->Directives = d.Directives;
  routine->SetStart(d.StartLine, d.StartOffset);
  routine->SetEnd(LineHere(t), t.Offset());
}

}  // namespace velmora
