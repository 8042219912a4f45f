// The shared enumerations of the code model, their texts in each language, and the three
// base classes of every record: TRepObject (change signal, stream operations), TNamedObject
// (name and language) and TCodeObject (a declaration with a place in a source file).
//
// Every enumeration is stored as one byte and may hold any byte value read from a file;
// the text functions give an empty text for values outside their tables.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "model/representation.h"

namespace velmora {

class TStream;

enum class TLanguage : uint8_t { Pascal = 0, Cpp = 1 };

enum class TVisibility : uint8_t {
  Public = 0,
  Private = 1,
  Protected = 2,
  Published = 3,
  Automated = 4
};

/// C++ functions returning a value are Function, those returning void Procedure.
enum class TMethodKind : uint8_t {
  Procedure = 0,
  Function = 1,
  Constructor = 2,
  Destructor = 3,
  Operator = 4
};

enum class TClassKind : uint8_t {
  Class = 0,
  Interface = 1,
  DispInterface = 2,
  Template = 3,
  Struct = 4
};

/// Directive numbers: bit n of a method's 16-bit directive set.
enum class TDirective : uint8_t {
  Virtual = 0,
  Dynamic = 1,
  Override = 2,
  Abstract = 3,
  Message = 4,
  StdCall = 5,
  ClassMethod = 6,
  Register = 7,
  Pascal = 8,
  Cdecl = 9,
  SafeCall = 10,
  FastCall = 11,
  Inline = 12,
  ImplicitInline = 13,
  Const = 14,
  Overload = 15,
};
constexpr uint16_t DirectiveBit(TDirective d) {
  return static_cast<uint16_t>(1u << static_cast<unsigned>(d));
}

/// Text options. One number means different things to different text forms, so each form
/// names the flags it reads.
enum TTextOption : unsigned {
  toShowArguments = 1,    ///< display text of a method: with its arguments
  toShortForm = 1,        ///< method declaration: name and parameter names only
  toAbstractVirtual = 2,  ///< method declaration: written as an abstract virtual method
  toWithType = 2,         ///< short form of a field: with its type
  toNamesOnly = 4,        ///< parameters: names only
  toHeaderOnly = 8,       ///< implementation skeleton: without a body
  toNoSpecifiers = 16,    ///< declaration of a property: without its specifiers
};

std::string_view LanguageText(TLanguage language);
std::string_view VisibilityText(TVisibility visibility, TLanguage language);
/// The visibility in one vocabulary whatever the language ("published", not
/// "__published"): what views and exports show beside a member.
std::string_view VisibilityName(TVisibility visibility);
std::string_view MethodKindText(TMethodKind kind);
std::string_view ClassKindText(TClassKind kind);
/// Text of directive number `n` (0..15) in `language`; empty when that language does not
/// know the directive or `n` is out of range.
std::string_view DirectiveText(int n, TLanguage language);

/// The model's name comparison: ordinal for C++, ANSI case-insensitive for Pascal.
int CompareNames(std::string_view a, std::string_view b, TLanguage language);
inline bool SameName(std::string_view a, std::string_view b, TLanguage language) {
  return CompareNames(a, b, language) == 0;
}
inline bool IsCpp(TLanguage language) {
  return language == TLanguage::Cpp;
}

/// Base of every record a view can show. Threads: a record is changed only by the thread
/// that holds its class list's lock (or owns a private list).
class TRepObject : public TRepresentedObject {
 public:
  TRepObject() = default;
  ~TRepObject() override = default;

  /// Reads the record; raises EClassInfoFileError on a short read. Nothing read so far is
  /// rolled back.
  virtual void LoadFromStream(TStream& /*stream*/) {}
  virtual void SaveToStream(TStream& /*stream*/) const {}
  /// Signals the representations: -1 all, otherwise the one of that slot.
  virtual void Changed(int index) { SignalChanged(index); }
};

class TNamedObject : public TRepObject {
 public:
  explicit TNamedObject(TLanguage language) : Language(language) {}

  /// Named object record: string Name, u8 Language.
  void LoadFromStream(TStream& stream) override;
  void SaveToStream(TStream& stream) const override;

  virtual void SetName(std::string_view name) { Name = name; }
  virtual const std::string& GetName() const { return Name; }
  /// The name, unless a descendant knows better.
  virtual std::string GetDisplayText(unsigned /*options*/) const { return Name; }
  /// Empty unless a descendant knows better.
  virtual std::string GetDeclaration(unsigned /*options*/) const { return {}; }

  bool IsCpp() const { return Language == TLanguage::Cpp; }

  std::string Name;
  TLanguage Language;
};

/// A declaration with a place in a source file. The parsers set the positions in two
/// pairs, where the declaration starts and where it ends; the model only stores them.
class TCodeObject : public TNamedObject {
 public:
  explicit TCodeObject(TLanguage language) : TNamedObject(language) {}

  /// Code object record (named object, then the four positions in field order) followed by
  /// what the descendant adds (LoadFields); ends with Valid set and Changed(-1).
  void LoadFromStream(TStream& stream) final;
  void SaveToStream(TStream& stream) const final;

  void SetStart(int32_t line, int32_t offset) {
    StartLine = line;
    StartOffset = offset;
  }
  void SetEnd(int32_t line, int32_t offset) {
    EndLine = line;
    EndOffset = offset;
  }

  int32_t StartLine = -1;    ///< 1-based line where the declaration starts, -1 unknown
  int32_t StartOffset = -1;  ///< 0-based offset of its first character, -1 unknown
  int32_t EndLine = -1;
  int32_t EndOffset = -1;
  /// Cleared before a re-parse, set again by the parser for what it still finds.
  bool Valid = true;

 protected:
  /// The descendant's own part of the record; each calls its base's first.
  virtual void LoadFields(TStream& /*stream*/) {}
  virtual void SaveFields(TStream& /*stream*/) const {}
};

}  // namespace velmora
