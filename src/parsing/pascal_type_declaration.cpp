// Type declaration heads at unit level and in a class's type sections: `TFoo = [packed]
// class(TBar, IBaz)`, interfaces, dispatch interfaces and object types. Only these are
// recorded; records, enumerations, aliases, procedural types, class references
// (`class of`) and forward declarations are not.
#include <vector>

#include "model/class_list.h"
#include "parsing/pascal_parser_internal.h"

namespace velmora {

using namespace pascal_parser;

namespace {

// Reads the names of an ancestor list, the cursor on its `(`. Every name is an ancestor
// with public access: the class ancestor first, then the implemented interfaces. In a
// qualified name (`Forms.TForm`) the last part is the name. The list ends at `)` (the
// cursor then moves past it) or at the first token that cannot be part of it, where the
// cursor stays: a list missing its `)` does not swallow the class body.
std::vector<std::string> ReadAncestors(TTokenizer& t) {
  std::vector<std::string> names;
  bool qualified = false;
  for (int kind = t.NextSignificant();; kind = t.NextSignificant()) {
    // A generic ancestor (`TList<T>`, `specialize TFPGList<TFoo>`) is named by its
    // generic's name: its type arguments are no ancestors.
    if (kind == ptLess && PassTypeParameters(t)) continue;
    if (IsWordAt(t, kind, "specialize")) continue;
    if (IsNameKind(kind)) {
      if (qualified && !names.empty())
        names.back() = t.Text();
      else
        names.push_back(t.Text());
      qualified = false;
    } else if (kind == ptDot) {
      qualified = true;
    } else if (kind == ptComma) {
      qualified = false;
    } else {
      if (kind == ptCloseParen) t.NextSignificant();
      return names;
    }
  }
}

}  // namespace

namespace pascal_parser {

void ParseTypeDeclaration(TPascalClassFinderParser& p, TClassDescription* outer) {
  TTokenizer& t = p.Cursor();
  VELMORA_DCHECK(IsNameKind(t.Kind()), "a type declaration starts on its name");
  // Every name of the unit comes here, so the cheap test goes first.
  const int after = PeekSignificant(t);
  if (after != ptEqual && after != ptLess) return;
  const TSpot start = Here(t);
  const std::string name = t.Text();
  const TTokenizer::TCursorState atName = t.SaveCursor();
  if (after == ptLess) {
    // A generic (`TList<T> = class`) is recorded under its plain name.
    t.NextSignificant();
    if (!PassTypeParameters(t)) {
      t.RestoreCursor(atName);
      return;
    }
    if (t.Kind() != ptGreaterEqual && t.NextSignificant() != ptEqual) {
      t.RestoreCursor(atName);
      return;
    }
  } else {
    t.NextSignificant();
  }
  int kind = t.NextSignificant();
  if (kind == ptPacked) kind = t.NextSignificant();
  TClassKind classKind;
  switch (kind) {
    case ptClass:
    case ptObject:  // the object types of old: classes as far as a browser is concerned
      classKind = TClassKind::Class;
      break;
    case ptInterface:
      classKind = TClassKind::Interface;
      break;
    case ptDispinterface:
      classKind = TClassKind::DispInterface;
      break;
    case ptRecord:
      // Passed whole, so that methods of a record are not taken for unit routines.
      p.CollectBracket(ptRecord, nullptr);
      return;
    default:
      // Not a class. At unit level whatever follows `=` is read again by the loop; in a
      // class's type section the declaration is passed whole, so that an enumeration's
      // names or a constant's value are not read as members.
      if (outer)
        p.SkipTo(kSemicolon);
      else
        p.Unread();
      return;
  }
  kind = t.NextSignificant();
  // `class sealed` and `class abstract` say how the class may be used, not what it is.
  while (kind == ptAbstract || IsWordAt(t, kind, "sealed")) kind = t.NextSignificant();
  if (kind == ptOf || kind == ptSemicolon) return;  // `class of TFoo;` and `class;`
  std::vector<TClassAncestor> ancestors;
  if (kind == ptOpenParen)
    for (const std::string& a : ReadAncestors(t)) ancestors.emplace_back(TVisibility::Public, a);

  TCommonClassList& list = outer ? *outer->NestedClasses() : *p.Target;
  TClassDescription* c = parser_common::RecordClassHead(list, p.FileName, p.WantPositions,
                                                        {.Name = name,
                                                         .Language = TLanguage::Pascal,
                                                         .Kind = classKind,
                                                         .TemplateParams = {},
                                                         .Ancestors = std::move(ancestors),
                                                         .Start = start,
                                                         .End = Here(t)});
  if (!c) {  // a reference list holds no classes of its own: the body is still passed
    if (t.Kind() != ptSemicolon) p.CollectBracket(ptRecord, nullptr);
    return;
  }
  if (t.Kind() == ptSemicolon) return;  // `TBar = class(TFoo);`: no body

  TPascalClassParser body(p, c);
  body.Parse();
}

}  // namespace pascal_parser

}  // namespace velmora
