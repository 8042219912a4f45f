// Member declarations in a class body: methods (with what follows their parameter list)
// and fields, a declarator list giving one field per name.
#include <vector>

#include "model/class_list.h"
#include "parsing/cpp_parser_internal.h"
#include "parsing/scan_chars.h"
#include "support/ansi.h"

namespace velmora {

using namespace cpp_parser;

namespace {

// With the cursor on the `)` that closed `(*Name)` or `(__closure *Name)`: reads the
// parameter list of the function pointed to and turns `d` into the field declaration
// (name from the brackets, type `void (__closure *)(TObject *Sender)`). False, with the
// cursor unmoved, when the brackets hold no pointer or no name, or no parameter list
// follows.
bool ReadFunctionPointer(TCPPTokenizer& t, TDeclaration& d) {
  const std::string_view inner = Trim(d.Params);
  if (inner.empty() || !scan::IsIdentChar(static_cast<unsigned char>(inner.back())) ||
      inner.find_first_of("*&^") == std::string_view::npos)
    return false;
  size_t nameStart = inner.size();
  while (nameStart > 0 && scan::IsIdentChar(static_cast<unsigned char>(inner[nameStart - 1])))
    --nameStart;
  if (nameStart == 0 || (inner[nameStart] >= '0' && inner[nameStart] <= '9')) return false;
  const TCursorState after = SaveCursor(t);
  std::string args;
  const int next = t.NextSignificant();
  if (next == ctOpenParen) {
    if (!CollectBracket(t, next, args, true)) {
      RestoreCursor(t, after);
      return false;
    }
  } else if (next != ctParens) {
    RestoreCursor(t, after);
    return false;
  }
  d.Name = std::string(inner.substr(nameStart));
  d.Type = std::string(Trim(d.Type)) + " (" + std::string(Trim(inner.substr(0, nameStart))) + ")(" +
           std::string(Trim(args)) + ")";
  d.Params.clear();
  d.HasParams = false;
  // On to the `;` (passing a `= nullptr`), never over the `}` that ends the class.
  const TCursorState beforeEnd = SaveCursor(t);
  const int end = t.NextSignificant();
  if (end == ctAssign) {
    SkipInitializer(t, d.Cut);
  } else if (end != ctSemicolon) {
    RestoreCursor(t, beforeEnd);
  }
  return true;
}

// The declarators after a list's first comma without their bit-field widths
// (`b : 2, c : 3` gives `b, c`): a width is no part of a name. A `::` is no width.
std::string WithoutBitWidths(std::string_view rest) {
  std::string out;
  bool inWidth = false;
  for (size_t i = 0; i < rest.size(); ++i) {
    const char c = rest[i];
    if (c == ',') {
      inWidth = false;
    } else if (c == ':' && !inWidth) {
      const bool scope =
          (i + 1 < rest.size() && rest[i + 1] == ':') || (i > 0 && rest[i - 1] == ':');
      if (!scope) {
        inWidth = true;
        while (!out.empty() && out.back() == ' ') out.pop_back();
        continue;
      }
    }
    if (!inWidth) out += c;
  }
  return out;
}

}  // namespace

void TCPPClassParser::ParseMemberDeclaration() {
  TCPPTokenizer& t = *tokenizer_;
  TDeclaration d;
  WalkDeclaration(t, TDeclarationScope::Class, d);
  if (d.Cut) return;

  if (d.HasParams && d.Name.empty() && !d.IsOperator) {
    // `void (__closure *FOnClick)(TObject *Sender);`: not a method but a field that
    // points to one, its name in the first brackets.
    if (!ReadFunctionPointer(t, d)) return;
  }
  if (d.HasParams) {
    if (d.Name.empty()) return;
    std::string name = std::move(d.Name);
    TMethodKind kind = TMethodKind::Function;
    if (d.IsOperator) {
      kind = TMethodKind::Operator;
    } else if (name == Owner->Name) {
      kind = d.IsDestructor ? TMethodKind::Destructor : TMethodKind::Constructor;
      if (d.IsDestructor) name.insert(0, 1, '~');
    }

    // What follows the parameter list: `const` and the specifiers of later C++, then an
    // initializer list with the body, the body itself (both make the method inline), or
    // `= 0`.
    uint16_t directives = d.Directives;
    // No type and not the class's name: a macro call, unless what follows shows a function.
    const bool typeless =
        !d.IsOperator && !d.IsDestructor && name != Owner->Name && Trim(d.Type).empty();
    bool continued = false;  // a body, an initializer list, `const` or `= ...` followed
    if (t.Kind() != ctSemicolon) {
      TCursorState after = SaveCursor(t);
      int next = t.NextSignificant();
      if (next == ctConst && typeless) {
        // `Q_DISABLE_COPY(X)` then `const QString &name() const;`: a name or a type word
        // after the `const` makes it the start of the next member.
        const TCursorState atConst = SaveCursor(t);
        const int following = t.NextSignificant();
        const std::string_view word = t.TokenView(t.Index());
        RestoreCursor(t, atConst);
        if ((following == ctIdentifier && word != "override" && word != "final" &&
             word != "noexcept") ||
            kTypeWordKinds.Contains(following)) {
          RestoreCursor(t, after);
          return;
        }
      }
      if (next == ctConst) {
        continued = true;
        directives |= DirectiveBit(TDirective::Const);
        after = SaveCursor(t);
        next = t.NextSignificant();
      }
      PassTrailingSpecifiers(t, next, after);
      switch (next) {
        case ctColon:
          continued = true;
          directives |= DirectiveBit(TDirective::ImplicitInline);
          if (SkipTo({ctOpenBrace, ctBraces}) == ctOpenBrace) SkipBracket(ctOpenBrace);
          break;
        case ctOpenBrace:
          continued = true;
          directives |= DirectiveBit(TDirective::ImplicitInline);
          SkipBracket(ctOpenBrace);
          break;
        case ctBraces:
          continued = true;
          directives |= DirectiveBit(TDirective::ImplicitInline);
          break;
        case ctAssign: {
          continued = true;
          // `= 0` makes the method abstract; `= default` and `= delete` do not.
          const int value = t.NextSignificant();
          if (value != ctDefault && value != ctDelete)
            directives |= DirectiveBit(TDirective::Abstract);
          SkipTo({ctSemicolon});
          break;
        }
        case ctOpenParen:  // the arguments of a macro after the parameter list
          SkipBracket(ctOpenParen);
          break;
        case ctSemicolon:
          break;
        default:
          // Not part of this declaration (a missing `;`, or the `}` of the body): it is
          // read again as the start of what follows.
          RestoreCursor(t, after);
          break;
      }
    }

    // A name and an argument list with no type before them, not the class's own name, and
    // nothing after them that only a function has: no method, but a macro called in the
    // body (`Q_PROPERTY(...)`, `Q_ENUM(X)`, `Q_DISABLE_COPY(X)`), whose expansion is not
    // ours to guess.
    if (!continued && typeless) return;

    TParameterList params(TLanguage::Cpp);
    params.Parse(d.Params);
    TMethodDescription* method =
        Owner->Methods.FindOrAdd(name, std::move(params), Trim(d.Type), Visibility, kind);
    if (!method) return;
    method->Directives = directives;
    method->SetStart(d.StartLine, d.StartOffset);
    method->SetEnd(LineHere(t), t.Offset());
    if (positions_)
      positions_->At(Visibility, TPositionInfo::LastMethod) = {d.StartLine, d.StartOffset,
                                                               LineHere(t), t.Offset()};
    return;
  }

  const std::string_view type = Trim(d.Type);
  if (type.empty() || d.Name.empty()) return;
  std::vector<TFieldDescription*> fields;
  if (d.DeclaratorList) {
    // `int a, *b, c[3];`: every name is a field of its own, sharing the type.
    const std::string text =
        std::string(type) + " " + d.Name + d.ArraySuffix + ", " + WithoutBitWidths(d.Rest);
    fields = Owner->Fields.AddDeclaratorList(text, Visibility);
  } else {
    TFieldDescription* field = Owner->Fields.FindOrAdd(d.Name, type, Visibility);
    field->Modifier = d.ArraySuffix;
    fields.push_back(field);
  }
  for (TFieldDescription* field : fields) {
    if (field->IsProperty) field->SetIsProperty(false);
    field->SetStart(d.StartLine, d.StartOffset);
    field->SetEnd(LineHere(t), t.Offset());
  }
  if (positions_ && !fields.empty())
    positions_->At(Visibility, TPositionInfo::LastField) = {d.StartLine, d.StartOffset, LineHere(t),
                                                            t.Offset()};
}

}  // namespace velmora
