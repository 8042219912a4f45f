// Parameters of methods and routines: the records, their text forms, the parser that turns
// the text between a declaration's brackets into a list, and the comparison that tells
// overloads apart.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "model/code_object.h"

namespace velmora {

class TStream;

class TParameter {
 public:
  explicit TParameter(TLanguage language) : Language(language) {}

  /// Pascal: [Modifier ' '] Name [': ' ParamType] [' = ' DefaultValue].
  /// C++: ParamType [' ' Name] Modifier [' = ' DefaultValue].
  /// toNamesOnly: Pascal the name alone; C++ a blank and the name.
  std::string GetText(unsigned options = 0) const;

  /// Parameter record: Name, Modifier, ParamType, DefaultValue (the language is the
  /// method's and is not saved).
  void LoadFromStream(TStream& stream);
  void SaveToStream(TStream& stream) const;

  bool operator==(const TParameter&) const = default;

  TLanguage Language;
  std::string Name;
  /// Pascal: the passing word (var, const, out) written before the name. C++: a suffix
  /// written straight after the name, such as array bounds.
  std::string Modifier;
  std::string ParamType;
  std::string DefaultValue;
};

class TParameterList {
 public:
  explicit TParameterList(TLanguage language) : Language(language) {}

  int Count() const { return static_cast<int>(Items.size()); }
  bool Empty() const { return Items.empty(); }
  TParameter& operator[](int i) { return Items[i]; }
  const TParameter& operator[](int i) const { return Items[i]; }
  TParameter& Add(std::string_view name, std::string_view paramType, std::string_view modifier = {},
                  std::string_view defaultValue = {});
  void Clear() { Items.clear(); }

  /// The parameters' texts joined by "; " (Pascal) or ", " (C++).
  std::string GetText(unsigned options = 0) const;

  /// Replaces the items with the parameters of `text`, the text between a declaration's
  /// brackets (brackets excluded), read by the list's language:
  ///  C++: `int a = 5, char *b[]` — the name is the last identifier of the declarator
  ///  before any default value or array bounds; `*` and `&` stay with the type; array
  ///  bounds go to Modifier; unnamed parameters (`int`, `TObject*`) keep an empty name;
  ///  `void` alone is no parameter; `...` is a parameter of type "..."; a function pointer
  ///  `void (*cb)(int)` has the name cb and the type `void (*)(int)`; commas inside
  ///  brackets, template arguments and literals do not split.
  ///  Pascal: `var A, B: Integer; const S: string = 'x'` — one parameter per name, the
  ///  passing word (var, const, out, constref) in Modifier; untyped `var X` has an empty
  ///  type. Never fails: whatever cannot be read ends up as text in some field.
  void Parse(std::string_view text);

  /// True when both lists have as many parameters and each pair has the same type and
  /// modifier after NormalizeTypeText (compared by the language rule of this list). Names
  /// and default values are not compared: they do not tell overloads apart.
  bool SameAs(const TParameterList& other) const;

  /// Parameter list record: u32 count, then the parameters.
  void LoadFromStream(TStream& stream);
  void SaveToStream(TStream& stream) const;

  std::vector<TParameter> Items;  ///< in declaration order
  TLanguage Language;
};

/// Blanks collapsed for comparing types: every run of characters up to 32 becomes one
/// blank; a blank next to a character that cannot be part of an identifier (such as
/// `*`, `&`, `<`, `>`, `,`, `:`, `[`, `(`) is dropped, as are blanks at both ends. So
/// "char  *", "char*" and "char *" agree, "unsigned  int" is "unsigned int", and
/// "std::map<int, int >" is "std::map<int,int>".
std::string NormalizeTypeText(std::string_view text);

}  // namespace velmora
