// Class and interface bodies: visibility sections, method declarations with their
// directives, interface GUIDs; fields and properties are read in their own files.
#include "model/class_list.h"
#include "parsing/pascal_parser_internal.h"
#include "support/ansi.h"

namespace velmora {

using namespace pascal_parser;

namespace {

// The directive words and their bits.
constexpr struct {
  int kind;
  TDirective directive;
} kDirectiveWords[] = {
    {ptVirtual, TDirective::Virtual},   {ptDynamic, TDirective::Dynamic},
    {ptOverride, TDirective::Override}, {ptAbstract, TDirective::Abstract},
    {ptMessage, TDirective::Message},   {ptStdcall, TDirective::StdCall},
    {ptRegister, TDirective::Register}, {ptPascal, TDirective::Pascal},
    {ptCdecl, TDirective::Cdecl},       {ptSafecall, TDirective::SafeCall},
    {ptOverload, TDirective::Overload},
};

// The directive bit of a directive word, or -1 for any other kind.
int DirectiveBitOf(int kind) {
  for (const auto& w : kDirectiveWords)
    if (w.kind == kind) return static_cast<int>(w.directive);
  return -1;
}

// Directive words that have no bit of their own but, like the others, follow a method
// heading; they must not cut the method off from the directives after them
// (`reintroduce; overload;`, `dispid 12;` in a dispatch interface).
bool IsPassedDirective(int kind) {
  return kind == ptReintroduce || kind == ptDispid;
}

bool IsVisibilityWord(int kind) {
  return kind == ptPrivate || kind == ptProtected || kind == ptPublic || kind == ptPublished ||
         kind == ptAutomated;
}

TVisibility VisibilityOf(int kind) {
  switch (kind) {
    case ptPrivate:
      return TVisibility::Private;
    case ptProtected:
      return TVisibility::Protected;
    case ptPublished:
      return TVisibility::Published;
    default:
      // `public`, and `automated`: its members are public ones that also carry automation
      // information, and the browser shows them with the public ones.
      return TVisibility::Public;
  }
}

TMethodKind MethodKindOf(int kind) {
  switch (kind) {
    case ptConstructor:
      return TMethodKind::Constructor;
    case ptDestructor:
      return TMethodKind::Destructor;
    case ptFunction:
      return TMethodKind::Function;
    default:
      return TMethodKind::Procedure;
  }
}

bool IsMethodWord(int kind) {
  return kind == ptProcedure || kind == ptFunction || kind == ptConstructor || kind == ptDestructor;
}

void SetVisibility(TPascalClassParser& p) {
  TTokenizer& t = p.Cursor();
  p.Visibility = VisibilityOf(t.Kind());
  p.LastMethod = nullptr;
  if (TPositionInfo* table = PositionTable(p)) {
    const TSpot at = Here(t);
    const TSpot after = {at.Line, t.TokenOffset(t.Index() + 1)};
    SetBlock(table->At(p.Visibility, TPositionInfo::Section), at, after);
  }
}

// `['{00000000-0000-0000-0000-000000000000}']`: the text between the quote-brace pairs
// becomes the class's GUID. Anything else in brackets (a GUID constant's name) is passed.
void ReadGuid(TPascalClassParser& p) {
  std::string text;
  p.CollectBracket(ptOpenBracket, &text);
  const std::string_view s = Trim(text);
  if (s.size() < 2 || s[0] != '\'' || s[1] != '{') return;
  const size_t close = s.find("}'");
  if (close == std::string_view::npos || close < 3) return;
  p.Owner->Guid = s.substr(2, close - 2);
}

}  // namespace

// ---- TPascalClassParser ----

TPascalClassParser::TPascalClassParser(TPascalClassFinderParser& outer, TClassDescription* owner)
    : TPascalClassFinderParser(outer), Owner(owner), Visibility(TVisibility::Published) {
  VELMORA_DCHECK(owner != nullptr, "a class parser reads the body of a class");
}

void TPascalClassParser::HandleToken() {
  TTokenizer& t = Cursor();
  const int kind = t.Kind();
  if (kind == ptType || kind == ptConst) {
    InTypeSection = true;
    return;
  }
  if (kind == ptVar || kind == ptProperty || kind == ptClass || IsMethodWord(kind) ||
      IsVisibilityWord(kind))
    InTypeSection = false;
  switch (kind) {
    case ptClass:
    case ptProcedure:
    case ptFunction:
    case ptConstructor:
    case ptDestructor:
      ParseMethodDeclaration(*this);
      return;
    case ptEnd: {
      Stopped = true;
      const TSpot end = Here(t);
      Owner->SetEnd(end.Line, end.Offset);
      return;
    }
    case ptImplementation:
      // The class's `end` is missing; the unit level takes the keyword from here.
      Stopped = true;
      return;
    case ptProperty:
      LastMethod = nullptr;
      ParsePropertyDeclaration(*this);
      return;
    case ptSemicolon:
      return;
    case ptOpenBracket:
      ReadGuid(*this);
      return;
    case ptCompilerDirective:
      // Passed without cutting a method off from its directives:
      // `procedure Foo; {$IFDEF D4} overload; {$ENDIF}`.
      return;
    default:
      break;
  }
  if (IsVisibilityWord(kind)) {
    SetVisibility(*this);
  } else if (DirectiveBitOf(kind) >= 0 || IsPassedDirective(kind)) {
    ParseDirective(*this);
  } else {
    LastMethod = nullptr;
    if (!IsNameKind(kind)) return;
    const int after = PeekSignificant(t);
    if (InTypeSection && (after == ptEqual || after == ptLess)) {
      // A name given a type or a value in the class's own `type` or `const` section:
      // `TInner = class ... end;` is a nested class, whose `end` must not end this one.
      // Outside such a section a name and `=` are broken input (a class body that lost
      // its `end`), and are left to the field reader as before.
      ParseTypeDeclaration(*this, Owner);
      // A nested body missing its `end` stops at `implementation`, and so does this one.
      if (t.Kind() == ptImplementation) Stopped = true;
    } else {
      ParseFieldDeclaration(*this);
    }
  }
}

namespace pascal_parser {

TPositionInfo* PositionTable(TPascalClassParser& p) {
  return p.WantPositions ? p.Owner->GetPositionInfo(true) : nullptr;
}

void ParseMethodDeclaration(TPascalClassParser& p) {
  TTokenizer& t = p.Cursor();
  VELMORA_DCHECK(t.Kind() == ptClass || IsMethodWord(t.Kind()), "a method starts on its word");
  const TSpot start = Here(t);
  p.LastMethod = nullptr;
  uint16_t directives = 0;
  int kind = t.Kind();
  if (kind == ptClass) {
    // `class var` and `class property` are read on from the word after `class`.
    if (!IsMethodWord(PeekSignificant(t))) return;
    directives = DirectiveBit(TDirective::ClassMethod);
    kind = t.NextSignificant();
  }
  const TMethodKind methodKind = MethodKindOf(kind);
  // `procedure IFoo.Bar = Baz;` maps an interface method and declares nothing.
  TRoutineHeading heading;
  if (!ReadRoutineHeading(p, kPropertyBoundary, heading)) return;
  TParameterList params(TLanguage::Pascal);
  params.Parse(heading.ParamText);
  TMethodDescription* m = p.Owner->Methods.FindOrAdd(heading.Name, std::move(params),
                                                     heading.ResultType, p.Visibility, methodKind);
  if (m) {
    m->Directives = directives;
    m->MessageName.clear();
    const TSpot end = Here(t);
    m->SetStart(start.Line, start.Offset);
    m->SetEnd(end.Line, end.Offset);
    if (TPositionInfo* table = PositionTable(p))
      SetBlock(table->At(p.Visibility, TPositionInfo::LastMethod), start, end);
    p.LastMethod = m;
  }
  LeaveUnlessSemicolon(p);
}

void ParseDirective(TPascalClassParser& p) {
  TTokenizer& t = p.Cursor();
  const int kind = t.Kind();
  // A directive word followed by `:` or `,` is the name of a field (`Message: TMessage;`).
  const int next = PeekSignificant(t);
  if (next == ptColon || next == ptComma) {
    p.LastMethod = nullptr;
    ParseFieldDeclaration(p);
    return;
  }
  TMethodDescription* m = p.LastMethod;
  if (!m) return;
  if (const int bit = DirectiveBitOf(kind); bit >= 0) m->SetDirective(static_cast<TDirective>(bit));
  if (kind == ptMessage || kind == ptDispid) {
    // The value runs to `;`: `message WM_USER + 1;`.
    std::string value;
    p.ReadTo(ptSemicolon, value, &kPropertyBoundary);
    if (kind == ptMessage) m->MessageName = value;
  } else if (next == ptSemicolon) {
    t.NextSignificant();
  }
  const TSpot end = Here(t);
  m->SetEnd(end.Line, end.Offset);
  if (TPositionInfo* table = PositionTable(p)) {
    TPositionInfo::Positions& block = table->At(p.Visibility, TPositionInfo::LastMethod);
    block.EndLine = end.Line;
    block.EndOffset = end.Offset;
  }
  LeaveUnlessSemicolon(p);
}

}  // namespace pascal_parser

}  // namespace velmora
