// Member declarations in a class body: methods (with what follows their parameter list)
// and fields, a declarator list giving one field per name.
#include <vector>

#include "model/class_list.h"
#include "parsing/cpp_parser_internal.h"
#include "support/ansi.h"

namespace velmora {

using namespace cpp_parser;

void TCPPClassParser::ParseMemberDeclaration() {
  TCPPTokenizer& t = *tokenizer_;
  TDeclaration d;
  WalkDeclaration(t, TDeclarationScope::Class, d);
  if (d.Cut) return;

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
    if (t.Kind() != ctSemicolon) {
      TCursorState after = SaveCursor(t);
      int next = t.NextSignificant();
      if (next == ctConst) {
        directives |= DirectiveBit(TDirective::Const);
        after = SaveCursor(t);
        next = t.NextSignificant();
      }
      PassTrailingSpecifiers(t, next, after);
      switch (next) {
        case ctColon:
          directives |= DirectiveBit(TDirective::ImplicitInline);
          if (SkipTo({ctOpenBrace, ctBraces}) == ctOpenBrace) SkipBracket(ctOpenBrace);
          break;
        case ctOpenBrace:
          directives |= DirectiveBit(TDirective::ImplicitInline);
          SkipBracket(ctOpenBrace);
          break;
        case ctBraces:
          directives |= DirectiveBit(TDirective::ImplicitInline);
          break;
        case ctAssign: {
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
    const std::string text = std::string(type) + " " + d.Name + d.ArraySuffix + ", " + d.Rest;
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
