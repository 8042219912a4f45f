// File level: classes, prototypes, includes, and the blocks that are parsed (namespaces,
// `extern "C"`) or passed over (bodies, initializers).
#include <algorithm>
#include <limits>

#include "model/class_list.h"
#include "parsing/cpp_parser_internal.h"
#include "support/stream.h"

namespace velmora {

using namespace cpp_parser;

TCPPFileParser::TCPPFileParser(std::string_view fileName, uint8_t /*option*/, TClasslist* target,
                               const TMemoryStream* stream)
    : TCPPClassFinderParser(fileName, target) {
  if (stream) {
    // The size is only kept by the tokenizer; the scan stops at the NUL after the text.
    const int64_t size = std::min<int64_t>(stream->Size(), std::numeric_limits<int32_t>::max());
    tokenizer_->SetText(stream->Memory(), static_cast<int32_t>(size));
  } else {
    tokenizer_->SetText("", 0);
  }
}

void TCPPFileParser::HandleToken() {
  TCPPTokenizer& t = *tokenizer_;
  const int kind = t.Kind();
  if (kind != ctClass) IsTemplate = false;
  if (kind != ctOpenBrace) ExternBlock = false;
  // Macros are never expanded, and every branch of a conditional is parsed.
  if (IsDirectiveKind(kind) && kind != ctHashInclude) {
    ReadRestOfLine();
    return;
  }
  switch (kind) {
    case ctUnion:
    case ctEnum:
      SkipTo({ctSemicolon});
      return;
    case ctNamespace: {
      // Transparent: the body is read like file level, and its classes keep their plain
      // names.
      int next = t.NextSignificant();
      if (next == ctIdentifier) next = t.NextSignificant();
      if (next == ctOpenBrace) ++Depth;
      return;
    }
    case ctClass:
    case ctStruct:
      ParseClassHead(kind == ctStruct, nullptr);
      IsTemplate = false;
      return;
    case ctExtern: {
      // `extern "C" {` opens a block that is read like file level; any other `extern`
      // leaves its declaration to be read as usual.
      ExternBlock = true;
      const TCursorState word = SaveCursor(t);
      if (t.NextSignificant() != ctStringLiteral) RestoreCursor(t, word);
      return;
    }
    case ctTemplate:
      ReadTemplateHead();
      return;
    case ctTypedef:  // `typedef struct X {...} Y;` records struct X
      return;
    case ctHashInclude:
      ReadInclude();
      return;
    case ctCloseBrace:
      --Depth;
      return;
    case ctOpenBrace:
      if (ExternBlock)
        ++Depth;
      else
        SkipBracket(ctOpenBrace);  // function bodies, initializers
      return;
    case ctBraces:
    case ctSemicolon:
    case ctStringLiteral:
      return;
    case ctOpenParen:
      SkipBracket(ctOpenParen);
      return;
    case ctOpenBracket:  // `[[nodiscard]]` before a declaration: the group is passed
      SkipBracket(ctOpenBracket);
      return;
    default:
      if (IsKnownMacro())
        SkipMacro();
      else if (kind == ctIdentifier || kModifierKinds.Contains(kind) ||
               kTypeWordKinds.Contains(kind))
        ParseGlobalDeclaration();
      return;
  }
}

void TCPPFileParser::ReadInclude() {
  TCPPTokenizer& t = *tokenizer_;
  const int kind = t.NextSignificant();
  if (kind == ctLess) {  // system headers are not recorded
    SkipBracket(ctLess);
    return;
  }
  if (kind != ctStringLiteral) return;
  // Only a closed literal names a file: an unclosed one runs on to the end of the text.
  const std::string_view literal = t.TokenView(t.Index());
  if (literal.size() < 3 || literal.back() != '"') return;
  IncludeNames.Add(literal.substr(1, literal.size() - 2));
}

}  // namespace velmora
