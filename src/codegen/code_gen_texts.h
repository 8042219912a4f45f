// The values that code templates are filled with: parameter lists, directive words,
// property specifiers and the like, each built from a member record of the code model
// and the user's templates. The insertion objects and the add-member requests share them.
//
// Threads: plain functions over values the caller owns.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "model/code_object.h"
#include "settings/code_templates.h"

namespace velmora {

class TFieldDescription;
class TMethodDescription;
class TParameterList;
class TVLSettings;

/// Both template sets, taken from the settings when a generation starts, so a template
/// edited during it does not change what one generation writes.
struct TCodeTemplates {
  TPascalTemplates Pascal = DefaultPascalTemplates();
  TCppTemplates Cpp = DefaultCppTemplates();

  TCodeTemplates() = default;
  explicit TCodeTemplates(const TVLSettings& settings);
  /// The template at `index` (a TPascalTemplateIndex or TCppTemplateIndex) of `language`.
  const TCodeTemplate& Get(TLanguage language, int index) const;
  /// Expands the template at `index` of `language` with `values` in its parameter order.
  std::string Build(TLanguage language, int index, const std::vector<std::string>& values) const;
  std::string Build(TCppTemplateIndex index, const std::vector<std::string>& values) const {
    return Build(TLanguage::Cpp, static_cast<int>(index), values);
  }
  std::string Build(TPascalTemplateIndex index, const std::vector<std::string>& values) const {
    return Build(TLanguage::Pascal, static_cast<int>(index), values);
  }
};

/// The word a visibility is written with ("" above automated).
std::string_view VisibilityWord(TVisibility visibility, TLanguage language);
/// Pascal METHODTYPE: "procedure", "function", "constructor", "destructor" or "operator",
/// with "class " in front for a class method.
std::string PascalMethodType(const TMethodDescription& method);

/// Each parameter expanded by the language's "Method parameter" template, joined by "; "
/// (Pascal) or ", " (C++), trimmed. An implementation heading repeats no default values:
/// neither language accepts them a second time.
std::string ParameterListText(const TCodeTemplates& templates, const TParameterList& params,
                              bool forImplementation);
/// The argument names alone, each through the "Method parameter" template with only NAME
/// filled (and trimmed), joined by ", ": the arguments of an inherited call.
std::string ArgumentNamesText(const TCodeTemplates& templates, const TParameterList& params);

/// Pascal DIRECTIVES: "virtual; abstract; override; dynamic; overload; message ID;", each
/// only when set, trimmed.
std::string PascalDirectives(const TMethodDescription& method);
/// C++ DIRECTIVES: "inline" and "__fastcall" when set, joined by blanks.
std::string CppDirectives(const TMethodDescription& method);
/// C++ EXTENDEDDIRS: "const" and, for an abstract method's declaration, "= 0".
std::string CppExtendedDirectives(const TMethodDescription& method, bool forDeclaration);

/// SPECIFIERS of a property: Pascal "read G write S stored X index I default D"; C++
/// "= { read = G, write = S, ... }" (empty when there are none).
std::string PropertySpecifiers(const TFieldDescription& property);

/// The message type of a C++ message handler: its first parameter's type without one
/// trailing "&", trimmed; empty without parameters.
std::string MessageTypeOf(const TMethodDescription& method);

/// `text` with blanks and tabs at the end of every line removed.
std::string RemoveTrailingBlanks(std::string_view text);

}  // namespace velmora
