// The C++ file and class parser: reads one tokenized header or source file and records what
// a class browser needs (classes with ancestors, kind and template parameters; their
// fields, methods and properties; free function prototypes; quoted include names; source
// positions). It is deliberately not a compiler front end: a flat loop over significant
// tokens reacts to a few keywords and skips every body, initializer and unknown construct
// by bracket matching. It never reports an error and never reads past the text.
//
// The file parser handles file level; every class body gets a class parser on the same
// token list, and a class head inside a body starts a nested class parser, so nesting is
// recursion (capped, see kMaxClassNesting).
//
// Threads: a parser and its tokenizer are used by one thread; the caller holds the target
// class list's lock for the whole Parse() and does the unit's mark and sweep around it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "parsing/cpp_tokenizer.h"
#include "support/stringlist.h"

namespace velmora {

class TClassDescription;
class TClasslist;
class TMemoryStream;
class TPositionInfo;
enum class TVisibility : uint8_t;

// ---- Operations over a C++ token cursor, shared with the C++ code finder ----

using TCursorState = TTokenizer::TCursorState;
inline TCursorState SaveCursor(const TTokenizer& tokenizer) {
  return tokenizer.SaveCursor();
}
inline void RestoreCursor(TTokenizer& tokenizer, const TCursorState& state) {
  tokenizer.RestoreCursor(state);
}

/// From the open bracket at the cursor (`{`, `<`, `(` or `[`) to its matching close,
/// counting only that bracket pair; `>>`, `()`, `[]` and `{}` neither open nor close.
/// With `collect`, `text` receives the tokens between the brackets with every run of
/// blanks, line ends and comments as one blank (also next to the brackets). True with the
/// cursor on the close; false at the end of text, and with an empty text for any other
/// open kind.
bool CollectBracket(TCPPTokenizer& tokenizer, int openKind, std::string& text, bool collect);

/// Moves on (significant tokens only) until the kind at the cursor is in `stops` and
/// returns it. `{`, `(` and `[` groups are passed whole; when the close of a group is
/// itself a stop, it is the result. ctUnknownChar at the end of text.
int SkipTo(TCPPTokenizer& tokenizer, const TTokenKindSet& stops);

/// From a directive token to the end of its line, a backslash continuing the line over
/// the next line end. Ends on the line end (or the line comment) that ends the line, or at
/// the end of text. With `collect`, `text` gets the tokens with blanks and CR LF between.
void ReadRestOfLine(TCPPTokenizer& tokenizer, bool collect, std::string& text);

/// One of the 72 macro names the parsers pass over as a whole (message maps, USEFORM and
/// friends, COM and OLE declaration macros, GUID definitions).
bool IsKnownMacroName(std::string_view name);
/// True when the token at the cursor is an identifier naming a known macro.
bool IsKnownMacro(TCPPTokenizer& tokenizer);
/// After a known macro name: passes any number of `(...)` and `()` argument lists and
/// stops on the last token of the macro; whatever follows is left where it was.
void SkipMacro(TCPPTokenizer& tokenizer);

// ---- Parsers ----

/// Class bodies nested deeper than this are passed over whole: the class is recorded,
/// its members are not.
inline constexpr int kMaxClassNesting = 200;

// The parsers' state, written down once: every field below says when it is valid and
// what keeps it so. A parser runs on one thread; the parsers of one file (the file parser
// and one class parser per class body being read, nested as the bodies nest) share one
// tokenizer, and only the innermost of them moves its cursor at any time.

/// The cursor loop every C++ parser runs.
class TCPPBaseParser {
 public:
  virtual ~TCPPBaseParser();
  TCPPBaseParser(const TCPPBaseParser&) = delete;
  TCPPBaseParser& operator=(const TCPPBaseParser&) = delete;

  /// Handles tokens from the cursor on until the parser stops or the text ends.
  void Parse();
  TCPPTokenizer& Tokenizer() { return *tokenizer_; }

  /// Set before Parse: classes get a position table with their sections and last members.
  bool WantPositions = false;

 protected:
  /// A parser with a tokenizer of its own.
  TCPPBaseParser();
  /// A parser on its parent parser's tokenizer.
  explicit TCPPBaseParser(TCPPTokenizer& shared) : tokenizer_(&shared) {}

  /// Reacts to the token at the cursor and leaves the cursor on the last token it used;
  /// Parse moves on from there.
  virtual void HandleToken() = 0;

  bool CollectBracket(int openKind, std::string& text, bool collect) {
    return velmora::CollectBracket(*tokenizer_, openKind, text, collect);
  }
  /// Passes the bracket group at the cursor without collecting it.
  void SkipBracket(int openKind) {
    std::string unused;
    velmora::CollectBracket(*tokenizer_, openKind, unused, false);
  }
  int SkipTo(const TTokenKindSet& stops) { return velmora::SkipTo(*tokenizer_, stops); }
  void ReadRestOfLine() {
    std::string unused;
    velmora::ReadRestOfLine(*tokenizer_, false, unused);
  }
  bool IsKnownMacro() { return velmora::IsKnownMacro(*tokenizer_); }
  void SkipMacro() { velmora::SkipMacro(*tokenizer_); }

  // Never null; the parent parser's tokenizer unless ownTokenizer_ is set.
  TCPPTokenizer* tokenizer_;
  // Set only in the parser that made its tokenizer (the file parser); then tokenizer_
  // points at it.
  std::unique_ptr<TCPPTokenizer> ownTokenizer_;
  // Ends Parse's loop; set by a handler, with the cursor on the token that ended the
  // parser (a class body's `}`), and never cleared.
  bool Stopped = false;
};

/// What the file and class parsers share: the target, the pending `template <...>`, and
/// class heads.
class TCPPClassFinderParser : public TCPPBaseParser {
 protected:
  TCPPClassFinderParser(std::string_view fileName, TClasslist* target);
  TCPPClassFinderParser(TCPPTokenizer& shared, std::string_view fileName, TClasslist* target,
                        int nesting);

  /// On `template`: takes the `<...>` text that follows as the pending template head.
  void ReadTemplateHead();
  /// On `class` or `struct`: reads the head and, for a definition, records the class in
  /// `outer`'s nested classes (or in Target) and parses its body. Returns the class, or
  /// null for a forward declaration, a variable of class type or a class without a name.
  TClassDescription* ParseClassHead(bool isStruct, TClassDescription* outer);

  // The unit name written into every record; the same in all parsers of a file.
  std::string FileName;
  // Where classes and routines go; never null, not owned, the same in all parsers of a
  // file. Its lock is held by the caller for the whole parse.
  TClasslist* Target;
  // The text between `<` and `>` of the last `template` head; meaningful only while
  // IsTemplate is set.
  std::string TemplateParams;
  // A `template <...>` head directly precedes the cursor: set by ReadTemplateHead,
  // cleared by every handler on any token but `class` (and after the class head), so a
  // template head applies to the class right after it and to nothing later.
  bool IsTemplate = false;
  // Class bodies around this parser's tokens: 0 at file level, the parent's plus one in a
  // class parser, at most kMaxClassNesting (deeper bodies get no parser of their own).
  int Nesting = 0;
};

class TCPPFileParser : public TCPPClassFinderParser {
 public:
  /// Parses `stream`'s text (buffer form, NUL-terminated) as the unit `fileName` (the file
  /// name without its directory) into `target`. The text is read in the constructor's
  /// tokenizer and must outlive the parser; a null stream reads as an empty text. The
  /// option byte is what the parser threads pass on; no C++ parser reads it.
  TCPPFileParser(std::string_view fileName, uint8_t option, TClasslist* target,
                 const TMemoryStream* stream);

  /// The names of `#include "..."` lines; `#include <...>` is not recorded. Sorted,
  /// case-insensitive, without duplicates.
  TStringList IncludeNames{true, TDuplicates::Ignore, false};

 protected:
  void HandleToken() override;

 private:
  void ReadInclude();
  /// A free function prototype becomes a routine of Target; everything else at file level
  /// (variables, definitions, initializers) is passed over.
  void ParseGlobalDeclaration();

  // Brace depth of the namespace and `extern "C"` blocks the cursor is in: up at each
  // such `{`, down at every `}` met at file level. Negative after a stray `}`, which
  // changes nothing else: namespaces are transparent, and classes keep their plain names.
  int32_t Depth = 0;
  // The next `{` opens a parsed block: set on `extern` (with its "C" passed), cleared by
  // every handler on any token but `{`.
  bool ExternBlock = false;
};

class TCPPClassParser : public TCPPClassFinderParser {
 public:
  /// A parser for the body of `owner`, with the cursor on the first token inside the
  /// body; `nesting` counts the class bodies around it, this one included.
  TCPPClassParser(TCPPTokenizer& tokenizer, std::string_view fileName, TClasslist* target,
                  TClassDescription* owner, int nesting, bool wantPositions);

 protected:
  void HandleToken() override;

 private:
  void ReadSection(TVisibility visibility);
  void SkipFriendDeclaration();
  void ParseMemberDeclaration();
  void ParsePropertyDeclaration();

  // The class whose body is read; never null, owned by Target or by an outer class's
  // nested classes. Its end is set on the body's `}`, which stops this parser.
  TClassDescription* Owner;
  // The current section: public for a struct and private for a class until the first
  // access label, then the last label's.
  TVisibility Visibility;
  // Owner's position table when positions are wanted, else null; fixed for the parser's
  // life.
  TPositionInfo* positions_;
};

}  // namespace velmora
