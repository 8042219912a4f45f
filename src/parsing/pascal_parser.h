// The Object Pascal file and class parser: reads one unit, already tokenized, and records
// what a class browser needs: the classes, interfaces and dispatch interfaces with their
// ancestors and GUIDs; their fields, methods and properties with visibility, types,
// parameters and directives; the routines of the interface section; and the names of
// included files.
//
// Like the C++ parser it is a flat loop over significant tokens that reacts to a few
// keywords and skips everything else; a class body is read by a class parser on the same
// tokenizer. Pascal needs no recursion here (class bodies do not nest and bracket groups
// are counted, not descended into), so no input can drive the stack deep. Nothing is ever
// reported: unknown constructs are ignored or skipped to `;`, an unclosed group runs to
// the end of the text, and every loop moves the cursor or ends.
//
// Threads: a parser is used by one thread. It changes its target class list, so the
// caller holds that list's lock for the whole Parse (or owns a private list). The caller
// also drives mark and sweep around the parse; the parser only finds or adds, and thereby
// marks valid what it sees.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "support/stringlist.h"

namespace velmora {

class TClassDescription;
class TClasslist;
class TMemoryStream;
class TMethodDescription;
class TPascalTokenizer;
class TTokenizer;
class TTokenKindSet;
enum class TVisibility : uint8_t;

// ---- Bracket operations on a Pascal token cursor (also for the Pascal code finder) ----

/// With the cursor on an opening `(`, `[` or `record`: moves to the matching `)`, `]` or
/// `end` (a nested opener of the same kind raises the depth) and returns true; false with
/// the cursor on the end of text when the group does not close, and false at once for any
/// other kind. With `text`, the tokens between the brackets are collected into it with
/// comments dropped and every run of blanks, line ends and comments made one space.
bool PascalCollectBracket(TTokenizer& t, int openKind, std::string* text);

/// From the cursor on: the first token whose kind is in `stops`, passing `(`, `[` and
/// `record` groups whole (their closing token counts when it is a stop). Returns the kind
/// reached, or ptUnknownChar at the end of the text.
int PascalSkipTo(TTokenizer& t, const TTokenKindSet& stops);

/// Collects the tokens after the cursor up to the first one of `kind` outside `(`, `[` and
/// `record` groups (or, when `halts` is given, up to the first one of those kinds outside
/// a group), comments dropped and blanks collapsed to single spaces, no blank at either
/// end. The cursor ends on the stopping token; returns its kind (0 at the end of text).
int PascalReadTo(TTokenizer& t, int kind, std::string& text, const TTokenKindSet* halts = nullptr);

// ---- Parsers ----

// The parsers' state, written down once: every field below says when it is valid and
// what keeps it so. A parser runs on one thread; the parsers of one unit (the file parser
// and the class parser of the body being read) share one tokenizer, and only the
// innermost of them moves its cursor at any time.

/// Base of the Pascal parsers: a token cursor and the loop that hands each significant
/// token to HandleToken.
class TPascalBaseParser {
 public:
  virtual ~TPascalBaseParser();
  TPascalBaseParser(const TPascalBaseParser&) = delete;
  TPascalBaseParser& operator=(const TPascalBaseParser&) = delete;

  /// From the cursor on, HandleToken for every significant token until Stopped or the end
  /// of the text. A parser that stops keeps its cursor on the token that stopped it.
  void Parse();

  /// The tokenizer as a cursor.
  TTokenizer& Cursor();
  /// Steps back to the previous significant token, never before the token the current
  /// HandleToken began on, so that the loop's next step lands on the token just left
  /// unread.
  void Unread();

  bool CollectBracket(int openKind, std::string* text) {
    return PascalCollectBracket(Cursor(), openKind, text);
  }
  int SkipTo(const TTokenKindSet& stops) { return PascalSkipTo(Cursor(), stops); }
  int ReadTo(int kind, std::string& text, const TTokenKindSet* halts = nullptr) {
    return PascalReadTo(Cursor(), kind, text, halts);
  }

  /// Never null: created by the file parser (which owns it, OwnsTokenizer), shared by its
  /// class parsers.
  TPascalTokenizer* Tokenizer;
  bool OwnsTokenizer;  ///< true in the parser that created the tokenizer, and only there
  /// Ends Parse; set by a handler, with the cursor on the token that ended the parser (a
  /// class body's `end`, `implementation` when that is not parsed), and never cleared.
  bool Stopped = false;
  /// Classes get a position table (sections and last members per visibility) when set.
  /// Set before Parse; class parsers take it from the parser that made them.
  bool WantPositions = false;

 protected:
  /// A parser with a tokenizer of its own, given `text` (NUL-terminated).
  TPascalBaseParser(const char* text, int64_t size);
  /// A parser on another parser's tokenizer, from its current cursor.
  explicit TPascalBaseParser(TPascalTokenizer* shared);

  /// Reacts to the significant token under the cursor. May move the cursor on; whatever
  /// it looked at but did not use it leaves for the next call by stepping back.
  virtual void HandleToken() = 0;

 private:
  // The token the running HandleToken was called on: Unread never steps before it, so
  // every call moves the cursor on or leaves it there, and the loop always advances.
  int32_t handlerStart_ = 0;
};

/// What every parser of one file shares: the unit name and the class list it fills.
class TPascalClassFinderParser : public TPascalBaseParser {
 public:
  /// The unit name written into every record; the same in all parsers of a unit.
  std::string FileName;
  /// Where classes and routines go; never null, not owned, the same in all parsers of a
  /// unit. Its lock is held by the caller for the whole parse.
  TClasslist* Target;

 protected:
  TPascalClassFinderParser(std::string_view fileName, TClasslist* target, const char* text,
                           int64_t size);
  /// Shares `outer`'s tokenizer, unit name, target and WantPositions.
  explicit TPascalClassFinderParser(TPascalClassFinderParser& outer);
};

/// Reads a whole unit: type declaration heads (and through them class bodies), the
/// routines of the interface section and `{$I name}` / `{$INCLUDE name}` directives.
class TPascalFileParser : public TPascalClassFinderParser {
 public:
  /// `stream` holds the whole text in buffer form; its memory is NUL-terminated and must
  /// outlive the parser. A text of 2 GiB or more is not parsed at all. The option byte is
  /// what the parser threads pass on; no parser reads it (ParseImplementation is what
  /// the Pascal option sets).
  TPascalFileParser(std::string_view fileName, uint8_t option, TClasslist* target,
                    const TMemoryStream* stream);

  /// Names of included files: sorted, case-insensitive, duplicates ignored. Only grows.
  TStringList IncludeNames{true, TDuplicates::Ignore, false};
  /// Set at the `implementation` keyword and never cleared; from then on routine
  /// headings are implementations, not declarations, and are not recorded.
  bool InImplementation = false;
  /// Whether to go on past `implementation` (classes declared there are then recorded).
  /// Set before Parse.
  bool ParseImplementation = true;

  /// Passes the `implementation` keyword: InImplementation, and a stop unless
  /// ParseImplementation.
  void EnterImplementation();

 protected:
  void HandleToken() override;
};

/// Reads one class or interface body, from the first token after its head up to its `end`.
class TPascalClassParser : public TPascalClassFinderParser {
 public:
  TPascalClassParser(TPascalClassFinderParser& outer, TClassDescription* owner);

  /// The class whose body is read; never null, not owned (Target or an outer class's
  /// nested classes hold it).
  TClassDescription* Owner;
  /// The method that directive words after it apply to: a method of Owner, set by the
  /// method reader and cleared by every other member, so that `virtual;` never lands on
  /// a method it does not follow. Null when something else came between.
  TMethodDescription* LastMethod = nullptr;
  /// The current section; published until the first visibility word.
  TVisibility Visibility;
  /// In a `type` or `const` section of the body, where `Name = ...` declares a nested
  /// type or a constant; a visibility word or a member of another kind ends it.
  bool InTypeSection = false;

 protected:
  void HandleToken() override;
};

}  // namespace velmora
