// Class heads (`class`/`struct` name, ancestors, template head) and the loop over a class
// body that hands each member to its reader.
#include "model/class_list.h"
#include "parsing/cpp_parser_internal.h"
#include "support/ansi.h"

namespace velmora {

using namespace cpp_parser;

namespace {

// Reads the base clause from the `:` at the cursor up to the body. Access is private until
// a keyword says otherwise, also for a struct; of a qualified name the last identifier
// wins (`ns::Base` gives `Base`), and template arguments are no names of their own. Ends
// on `{`, `{}` or the end of text; a `;` ends it too, and a `}` is left unread, since
// neither belongs in a base clause: a broken head then costs itself, not the next class.
int ReadAncestors(TCPPTokenizer& t, TClassAncestorList& ancestors) {
  TVisibility access = TVisibility::Private;
  std::string name;
  auto add = [&] {
    if (!name.empty()) ancestors.Add(access, name);
    access = TVisibility::Private;
    name.clear();
  };
  for (;;) {
    const TCursorState before = SaveCursor(t);
    const int kind = t.NextSignificant();
    switch (kind) {
      case ctPrivate:
        access = TVisibility::Private;
        break;
      case ctProtected:
        access = TVisibility::Protected;
        break;
      case ctPublic:
        access = TVisibility::Public;
        break;
      case ctIdentifier:
        name = t.TokenView(t.Index());
        break;
      case ctLess:
        CollectTemplateArguments(t, nullptr);
        break;
      case ctComma:
        add();
        break;
      case ctOpenBrace:
      case ctBraces:
      case ctEndOfText:
        add();
        return kind;
      case ctSemicolon:
        return kind;
      case ctCloseBrace:
        RestoreCursor(t, before);
        return kind;
      default:  // `virtual`, `::` and whatever else stands between the names
        break;
    }
  }
}

// Kinds that start no member a word before them could be part of: a section, the end of
// the body, or a declaration the body reads on its own. A macro name right before one of
// them stands alone. (Before a member's type or modifiers it joins that type, as an export
// macro does.)
bool StartsSectionOrOwnDeclaration(int kind) {
  switch (kind) {
    case ctPublic:
    case ctPrivate:
    case ctProtected:
    case ctPublished_2:
    case ctAutomated_2:
    case ctCloseBrace:
    case ctFriend:
    case ctTemplate:
    case ctTypedef:
    case ctUsing:
    case ctEnum:
    case ctClass:
    case ctStruct:
    case ctUnion:
      return true;
    default:
      return false;
  }
}

// Kinds that carry on a declaration after its parameter list.
bool ContinuesDeclarator(int kind, std::string_view text) {
  switch (kind) {
    case ctSemicolon:
    case ctConst:
    case ctAssign:
    case ctOpenBrace:
    case ctBraces:
    case ctColon:
    case ctThrow:
    case ctVolatile:
    case ctArrow:
      return true;
    case ctIdentifier:
      return text == "override" || text == "final" || text == "noexcept";
    default:
      return false;
  }
}

// At a macro-like word that begins a member: true when it is a macro written on a line of
// its own with no `;` (`Q_OBJECT`, `Q_GADGET`, an annotation before a declaration such as
// `Q_DECLARE_PRIVATE` without arguments), as what follows shows: a section label, a
// declaration the body reads on its own, or a macro called on its own. A word followed by
// a member (`DWORD FCount;`, `EXPORT_API int Count;`, `BOOL CALLBACK Enum(...)`) joins
// that member's type. The cursor does not move.
// The next significant token after any directive lines (`Q_OBJECT` then `#endif`).
int NextPastDirectives(TCPPTokenizer& t) {
  int kind = t.NextSignificant();
  while (IsDirectiveKind(kind)) {
    std::string unused;
    ReadRestOfLine(t, false, unused);
    kind = t.NextSignificant();
  }
  return kind;
}

bool StandsAlone(TCPPTokenizer& t, std::string_view owner, int depth = 0) {
  const std::string_view word = t.TokenView(t.Index());
  // `DYNAMIC` is a directive, which the member's own walk reads.
  if (word == owner || word == "DYNAMIC" || !LooksLikeMacroName(word)) return false;
  const TCursorState here = SaveCursor(t);
  bool alone = false;
  const int next = NextPastDirectives(t);
  if (StartsSectionOrOwnDeclaration(next)) {
    alone = true;
  } else if (next == ctIdentifier) {
    const std::string_view nextWord = t.TokenView(t.Index());
    const TCursorState atNext = SaveCursor(t);
    const int after = NextPastDirectives(t);
    if (after == ctColon) {
      alone = true;  // `Q_OBJECT` then `signals:`
    } else if ((after == ctOpenParen || after == ctParens) && LooksLikeMacroName(nextWord) &&
               nextWord != owner) {
      // `Q_OBJECT` then `Q_PROPERTY(...)`: a macro call that no declarator follows.
      std::string unused;
      if (after == ctOpenParen) CollectBracket(t, ctOpenParen, unused, false);
      const int then = NextPastDirectives(t);
      alone = !ContinuesDeclarator(then, t.TokenView(t.Index()));
    } else if (depth < 3) {
      RestoreCursor(t, atNext);
      alone = StandsAlone(t, owner, depth + 1);  // `Q_OBJECT QML_ELEMENT public:`
    }
  }
  RestoreCursor(t, here);
  return alone;
}

}  // namespace

// ---- TCPPClassFinderParser ----

TCPPClassFinderParser::TCPPClassFinderParser(std::string_view fileName, TClasslist* target)
    : FileName(fileName), Target(target) {}

TCPPClassFinderParser::TCPPClassFinderParser(TCPPTokenizer& shared, std::string_view fileName,
                                             TClasslist* target, int nesting)
    : TCPPBaseParser(shared), FileName(fileName), Target(target), Nesting(nesting) {}

void TCPPClassFinderParser::ReadTemplateHead() {
  VELMORA_DCHECK(tokenizer_->Kind() == ctTemplate, "a template head starts on `template`");
  if (tokenizer_->NextSignificant() != ctLess) return;
  CollectTemplateArguments(*tokenizer_, &TemplateParams);
  TemplateParams = Trim(TemplateParams);
  IsTemplate = true;
}

TClassDescription* TCPPClassFinderParser::ParseClassHead(bool isStruct, TClassDescription* outer) {
  TCPPTokenizer& t = *tokenizer_;
  VELMORA_DCHECK(t.Kind() == (isStruct ? ctStruct : ctClass), "a class head starts on its keyword");
  TCursorState before = SaveCursor(t);
  int kind = t.NextSignificant();
  const int32_t startLine = LineHere(t);
  const int32_t startOffset = t.Offset();

  // The name is the last identifier before the stop, so export macros in front of it
  // (`class PACKAGE TForm1`) are passed over, as are `__declspec(...)` and the argument
  // list of a specialization.
  std::string name;
  for (;;) {
    if (kind == ctSemicolon || kind == ctAssign || kind == ctOpenBrace || kind == ctBraces ||
        kind == ctColon || kind == ctEndOfText)
      break;
    if (kind == ctCloseBrace) {  // `class` right before the end of a body: leave the `}`
      RestoreCursor(t, before);
      return nullptr;
    }
    if (kind == ctIdentifier) {
      // `class TFoo final : ...`: the word after the name closes the class to derivation
      // and is no name of its own.
      const std::string_view word = t.TokenView(t.Index());
      if (word != "final" || name.empty()) name = word;
    } else if (kind == ctLess) {
      CollectTemplateArguments(t, nullptr);
    } else if (kind == ctOpenParen) {
      SkipBracket(ctOpenParen);
    }
    before = SaveCursor(t);
    kind = t.NextSignificant();
  }
  // A forward declaration, or a variable of class type.
  if (kind == ctSemicolon || kind == ctAssign || kind == ctEndOfText) return nullptr;
  if (name.empty()) {
    // An unnamed struct or class is not recorded; its body is passed whole so that its
    // members do not land in the enclosing class and its `}` does not end that class.
    if (kind == ctOpenBrace) SkipBracket(ctOpenBrace);
    return nullptr;
  }

  TClassAncestorList ancestors(TLanguage::Cpp);
  if (kind == ctColon) kind = ReadAncestors(t, ancestors);
  if (kind != ctOpenBrace && kind != ctBraces) return nullptr;

  const bool isTemplate = !isStruct && IsTemplate;
  TCommonClassList& list = outer ? *outer->NestedClasses() : *Target;
  TClassDescription* cls = parser_common::RecordClassHead(
      list, FileName, WantPositions,
      {.Name = name,
       .Language = TLanguage::Cpp,
       .Kind = isStruct     ? TClassKind::Struct
               : isTemplate ? TClassKind::Template
                            : TClassKind::Class,
       .TemplateParams = isTemplate ? std::string_view(TemplateParams) : std::string_view(),
       .Ancestors = std::move(ancestors.Items),
       .Start = {startLine, startOffset},
       .End = {LineHere(t), t.Offset()}});
  if (!cls) {  // a reference list holds no classes of its own
    if (kind == ctOpenBrace) SkipBracket(ctOpenBrace);
    return nullptr;
  }

  if (kind == ctOpenBrace) {
    if (Nesting >= kMaxClassNesting) {
      // Deeper than any real source: the members are not read, and the recursion ends.
      SkipBracket(ctOpenBrace);
      if (t.Kind() == ctCloseBrace) cls->SetEnd(LineHere(t), t.Offset());
    } else {
      t.NextSignificant();
      TCPPClassParser body(t, FileName, Target, cls, Nesting + 1, WantPositions);
      body.Parse();
    }
  }
  return cls;
}

// ---- TCPPClassParser ----

TCPPClassParser::TCPPClassParser(TCPPTokenizer& tokenizer, std::string_view fileName,
                                 TClasslist* target, TClassDescription* owner, int nesting,
                                 bool wantPositions)
    : TCPPClassFinderParser(tokenizer, fileName, target, nesting),
      Owner(owner),
      Visibility(owner->ClassKind == TClassKind::Struct ? TVisibility::Public
                                                        : TVisibility::Private),
      positions_(wantPositions ? owner->GetPositionInfo(true) : nullptr) {
  VELMORA_DCHECK(nesting > 0 && nesting <= kMaxClassNesting,
                 "a class parser runs only as deep as kMaxClassNesting");
  WantPositions = wantPositions;
}

void TCPPClassParser::HandleToken() {
  TCPPTokenizer& t = *tokenizer_;
  const int kind = t.Kind();
  if (kind != ctClass) IsTemplate = false;
  if (IsDirectiveKind(kind)) {
    ReadRestOfLine();
    return;
  }
  if (IsKnownMacro()) {
    const std::string name(t.TokenView(t.Index()));
    const int32_t line = LineHere(t);
    const int32_t offset = t.Offset();
    SkipMacro();
    if (positions_) positions_->OfferMacro(name, line, offset, LineHere(t), t.Offset());
    return;
  }
  switch (kind) {
    case ctCloseBrace:
      Stopped = true;
      Owner->SetEnd(LineHere(t), t.Offset());
      return;
    case ctTemplate:
      ReadTemplateHead();
      return;
    case ctTypedef:
    case ctUnion:
    case ctUsing:
    case ctEnum:
      SkipTo({ctSemicolon});
      return;
    case ctFriend:
      SkipFriendDeclaration();
      return;
    case ctOpenBrace:
      SkipBracket(ctOpenBrace);
      return;
    case ctSemicolon:
      return;
    case ctClass:
    case ctStruct:
      // Declarators after a nested class's body (`} FItem, *FItems;`) are not members.
      if (ParseClassHead(kind == ctStruct, Owner)) SkipTo({ctSemicolon});
      IsTemplate = false;
      return;
    case ctAutomated_2:
      ReadSection(TVisibility::Automated);
      return;
    case ctPrivate:
      ReadSection(TVisibility::Private);
      return;
    case ctProtected:
      ReadSection(TVisibility::Protected);
      return;
    case ctPublic:
      ReadSection(TVisibility::Public);
      return;
    case ctPublished_2:
      ReadSection(TVisibility::Published);
      return;
    case ctProperty_2:
      ParsePropertyDeclaration();
      return;
    default:
      // `Q_SIGNALS:`, `slots:`: a word and a colon mark a section for a framework, are no
      // member, and leave the visibility as it was.
      if (kind == ctIdentifier && PeekSignificant(t) == ctColon) {
        // Signals are public: what `signals` and `Q_SIGNALS` stand for.
        const std::string_view word = t.TokenView(t.Index());
        if (word == "signals" || word == "Q_SIGNALS") {
          ReadSection(TVisibility::Public);
        } else {
          t.NextSignificant();
        }
        return;
      }
      // A macro line with no `;`, which would otherwise join the next member's type or
      // swallow the section label after it.
      if (kind == ctIdentifier && StandsAlone(t, Owner->Name)) return;
      ParseMemberDeclaration();
      return;
  }
}

// A friend function may be defined in the class, and then its body ends the declaration
// with no `;` after it; a skip to the next `;` would take the member after it, or run
// over the `}` that ends the class. So: up to a `;` or past a body, and never over a `}`.
void TCPPClassParser::SkipFriendDeclaration() {
  TCPPTokenizer& t = *tokenizer_;
  for (;;) {
    const TCursorState before = SaveCursor(t);
    const int kind = t.NextSignificant();
    switch (kind) {
      case ctEndOfText:
      case ctSemicolon:
      case ctBraces:
        return;
      case ctCloseBrace:  // the class ends here: left for the body's loop to read
        RestoreCursor(t, before);
        return;
      case ctOpenBrace:
        SkipBracket(ctOpenBrace);
        return;
      case ctOpenParen:
      case ctOpenBracket:
        SkipBracket(kind);
        break;
      default:
        break;
    }
  }
}

void TCPPClassParser::ReadSection(TVisibility visibility) {
  TCPPTokenizer& t = *tokenizer_;
  const int32_t line = LineHere(t);
  const int32_t offset = t.Offset();
  const TCursorState keyword = SaveCursor(t);
  int next = t.NextSignificant();
  // `public slots:`, `protected Q_SLOTS:`: a word between the keyword and the colon marks
  // the section for a framework and leaves its visibility as the keyword says.
  if (next == ctIdentifier && PeekSignificant(t) == ctColon) next = t.NextSignificant();
  if (next != ctColon) {
    // Not a section label; whatever follows the word is read as usual.
    RestoreCursor(t, keyword);
    return;
  }
  Visibility = visibility;
  if (positions_)
    positions_->At(visibility, TPositionInfo::Section) = {line, offset, LineHere(t), t.Offset()};
}

}  // namespace velmora
