// The unit level: type declarations, interface-section routines, include directives and
// the `implementation` keyword.
#include "model/class_list.h"
#include "parsing/pascal_parser_internal.h"
#include "support/ansi.h"
#include "support/stream.h"

namespace velmora {

using namespace pascal_parser;

namespace {

// Whether `text` begins with `prefix` (upper case) when folded to upper case.
bool StartsWithUpper(std::string_view text, std::string_view prefix) {
  if (text.size() < prefix.size()) return false;
  for (size_t i = 0; i < prefix.size(); ++i)
    if (AnsiUpperChar(text[i]) != prefix[i]) return false;
  return true;
}

// The file name of `{$I name}` or `{$INCLUDE name}`, quotes removed; empty for any other
// directive (`{$I+}` switches I/O checking and is not an include).
std::string_view IncludeNameOf(std::string_view directive) {
  if (directive.empty() || directive.back() != '}') return {};
  size_t from;
  if (StartsWithUpper(directive, "{$I "))
    from = 4;
  else if (StartsWithUpper(directive, "{$INCLUDE "))
    from = 10;
  else
    return {};
  std::string_view name = Trim(directive.substr(from, directive.size() - 1 - from));
  if (name.size() >= 2 && name.front() == '\'' && name.back() == '\'')
    name = name.substr(1, name.size() - 2);
  return name;
}

}  // namespace

// ---- TPascalClassFinderParser ----

TPascalClassFinderParser::TPascalClassFinderParser(std::string_view fileName, TClasslist* target,
                                                   const char* text, int64_t size)
    : TPascalBaseParser(text, size), FileName(fileName), Target(target) {}

TPascalClassFinderParser::TPascalClassFinderParser(TPascalClassFinderParser& outer)
    : TPascalBaseParser(outer.Tokenizer), FileName(outer.FileName), Target(outer.Target) {
  WantPositions = outer.WantPositions;
}

// ---- TPascalFileParser ----

TPascalFileParser::TPascalFileParser(std::string_view fileName, uint8_t /*option*/,
                                     TClasslist* target, const TMemoryStream* stream)
    : TPascalClassFinderParser(fileName, target, stream ? stream->Memory() : nullptr,
                               stream ? stream->Size() : 0) {}

void TPascalFileParser::EnterImplementation() {
  InImplementation = true;
  if (!ParseImplementation) Stopped = true;
}

void TPascalFileParser::HandleToken() {
  TTokenizer& t = Cursor();
  const int kind = t.Kind();
  if (IsNameKind(kind)) {
    ParseTypeDeclaration(*this, nullptr);
    // A class body missing its `end` stops at `implementation`, which is then still
    // this level's to handle.
    if (t.Kind() == ptImplementation) EnterImplementation();
    return;
  }
  switch (kind) {
    case ptImplementation:
      EnterImplementation();
      return;
    case ptProcedure:
    case ptFunction:
      if (!InImplementation) ParseRoutineDeclaration(*this);
      return;
    case ptCompilerDirective: {
      const std::string_view name = IncludeNameOf(t.TokenView(t.Index()));
      if (!name.empty()) IncludeNames.Add(name);
      return;
    }
    default:
      return;  // `uses` clauses, statements and everything else are not recorded
  }
}

namespace pascal_parser {

void ParseRoutineDeclaration(TPascalFileParser& p) {
  TTokenizer& t = p.Cursor();
  VELMORA_DCHECK(t.Kind() == ptProcedure || t.Kind() == ptFunction,
                 "a routine starts on `procedure` or `function`");
  const TSpot start = Here(t);
  const bool isFunction = t.Kind() == ptFunction;
  // `procedure(...)` or `function:` belongs to a procedural type, not a routine, and
  // `procedure TFoo.Bar;` is a method's implementation heading.
  TRoutineHeading heading;
  const int32_t word = t.Index();
  if (!ReadRoutineHeading(p, TTokenKindSet{}, heading)) {
    // `procedure TFoo.Bar;` heads a method's body, so this is implementation code even
    // without the keyword (an `.inc` file included there): the routines that follow, the
    // ones local to that method among them, are implementations, not declarations.
    if (t.Index() != word) p.InImplementation = true;
    return;
  }
  TParameterList params(TLanguage::Pascal);
  params.Parse(heading.ParamText);
  TProcDescription* r = p.Target->Routines.FindOrAdd(
      heading.Name, p.FileName, TLanguage::Pascal, std::move(params), heading.ResultType,
      TVisibility::Public, isFunction ? TMethodKind::Function : TMethodKind::Procedure);
  if (r) {
    r->FileName = p.FileName;
    r->Directives = 0;
    r->MessageName.clear();
    const TSpot end = Here(t);
    r->SetStart(start.Line, start.Offset);
    r->SetEnd(end.Line, end.Offset);
  }
  LeaveUnlessSemicolon(p);
}

}  // namespace pascal_parser

}  // namespace velmora
