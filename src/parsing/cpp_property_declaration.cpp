// `__property` declarations: type, name (with an array property's index list), and the
// attribute list `= { read = ..., write = ... }`.
#include "model/class_list.h"
#include "parsing/cpp_parser_internal.h"
#include "support/ansi.h"

namespace velmora {

using namespace cpp_parser;

namespace {

// From the `{` of the attribute list to its `}`: pairs of identifiers, key and value.
// Only identifiers count, as keys and as values, so `stored = false` sets nothing, and
// `default`, being a keyword, is never a key: the default attribute stays empty. Keep it
// so; the code generators write back what was read. False at the end of text.
bool ReadAttributes(TCPPTokenizer& t, TPropertyDescription& attributes) {
  std::string key;
  for (;;) {
    const int kind = t.NextSkipComments();
    if (kind == ctEndOfText) return false;
    if (kind == ctCloseBrace) return true;
    if (kind == ctComma) {
      key.clear();
    } else if (kind == ctIdentifier) {
      const std::string_view word = t.TokenView(t.Index());
      if (key.empty()) {
        key = word;
        continue;
      }
      if (key == "read")
        attributes.ReadSpec = word;
      else if (key == "write")
        attributes.WriteSpec = word;
      else if (key == "stored")
        attributes.StoredSpec = word;
      else if (key == "default")
        attributes.DefaultSpec = word;
      else if (key == "index")
        attributes.IndexSpec = word;
      key.clear();
    }
    // `=`, blanks, and values that are not identifiers are passed over.
  }
}

}  // namespace

void TCPPClassParser::ParsePropertyDeclaration() {
  TCPPTokenizer& t = *tokenizer_;
  VELMORA_DCHECK(t.Kind() == ctProperty_2, "a property starts on `__property`");
  const int32_t startLine = LineHere(t);
  const int32_t startOffset = t.Offset();
  std::string name, type, group;
  bool blank = false;      // blanks since the last token taken
  bool nameBlank = false;  // blanks before the candidate name
  bool assigned = false;   // past the `=` that introduces the attribute list
  TPropertyDescription attributes;
  auto flushName = [&] {
    if (name.empty()) return;
    AppendSeparated(type, name, nameBlank);
    name.clear();
  };
  for (;;) {
    const TCursorState before = SaveCursor(t);
    const int kind = t.NextSkipComments();
    if (t.Index() > before.Index + 1) blank = true;  // a comment separates like a blank
    switch (kind) {
      case ctEndOfText:
        return;
      case ctCloseBrace:  // a `;` is missing: the end of the class body is not ours
        RestoreCursor(t, before);
        return;
      case ctWhitespace:
      case ctLineEnd:
        blank = true;
        continue;
      case ctIdentifier:
        flushName();
        name = t.TokenView(t.Index());
        nameBlank = blank;
        blank = false;
        continue;
      case ctBrackets:
        name += "[]";
        blank = false;
        continue;
      case ctOpenBracket:
        CollectBracket(ctOpenBracket, group, true);
        name += "[" + std::string(Trim(group)) + "]";
        blank = false;
        continue;
      case ctAssign:
        assigned = true;
        blank = false;
        continue;
      case ctSemicolon:
        break;
      default:
        if (assigned && kind == ctOpenBrace) {
          if (!ReadAttributes(t, attributes)) return;
        } else if (!(assigned && kind == ctBraces)) {
          flushName();
          AppendSeparated(type, t.TokenView(t.Index()), blank);
        }
        blank = false;
        continue;
    }
    break;  // at the `;`
  }
  if (name.empty()) return;

  TFieldDescription* property = Owner->Fields.FindOrAdd(name, Trim(type), Visibility);
  property->SetIsProperty(true);
  TPropertyDescription& specifiers = *property->Property;
  specifiers.IndexSpec = attributes.IndexSpec;
  specifiers.ReadSpec = attributes.ReadSpec;
  specifiers.WriteSpec = attributes.WriteSpec;
  specifiers.StoredSpec = attributes.StoredSpec;
  specifiers.DefaultSpec = attributes.DefaultSpec;
  property->Modifier.clear();
  property->SetStart(startLine, startOffset);
  property->SetEnd(LineHere(t), t.Offset());
  if (positions_)
    positions_->At(Visibility, TPositionInfo::LastProperty) = {startLine, startOffset, LineHere(t),
                                                               t.Offset()};
}

}  // namespace velmora
