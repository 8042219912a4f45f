// Code templates: the texts from which generated declarations and implementations are
// expanded, one set for Object Pascal sources (12) and one for C++ sources (14). A
// template names its placeholders (upper case, in the order their values are passed) and
// keeps one example value per placeholder for the template editor's "Code Example" box.
//
// Only the template texts are the user's to change and are kept with the settings;
// titles, descriptions, placeholder names and example values always come from the
// built-in defaults here.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "model/code_object.h"

namespace velmora {

inline constexpr int kTemplateParamSlots = 10;
inline constexpr int kPascalTemplateCount = 12;
inline constexpr int kCppTemplateCount = 14;

struct TCodeTemplate {
  /// Used entries of ParamNames and Examples (0..10).
  int32_t ParamCount = 0;
  std::array<std::string, kTemplateParamSlots> ParamNames;
  /// Line breaks are CR LF.
  std::string Template;
  std::array<std::string, kTemplateParamSlots> Examples;
  /// Two further words kept with each template; zero in the defaults.
  std::array<uint32_t, 2> Reserved{};

  bool operator==(const TCodeTemplate&) const = default;
};

using TPascalTemplates = std::array<TCodeTemplate, kPascalTemplateCount>;
using TCppTemplates = std::array<TCodeTemplate, kCppTemplateCount>;

/// Positions of the Object Pascal templates.
enum TPascalTemplateIndex : int {
  ptVisibility = 0,
  ptMethodParameter = 1,
  ptFieldDeclaration = 2,
  ptPropertyDeclaration = 3,
  ptProcedureDeclaration = 4,
  ptFunctionDeclaration = 5,
  ptProcedureImplementation = 6,
  ptFunctionImplementation = 7,
  ptPropertyGetCode = 8,
  ptPropertySetCode = 9,
  ptMethodCall = 10,
  ptDescriptionBlock = 11,
};

/// Positions of the C++ templates.
enum TCppTemplateIndex : int {
  ctVisibility = 0,
  ctFieldDeclaration = 1,
  ctPropertyDeclaration = 2,
  ctPropertyGetCode = 3,
  ctPropertySetCode = 4,
  ctMethodParameter = 5,
  ctMethodDeclaration = 6,
  ctImplicitInlineMethod = 7,
  ctMethodImplementation = 8,
  ctMessageMapBegin = 9,
  ctMessageHandlerBlock = 10,
  ctMessageMapEnd = 11,
  ctDescriptionBlock = 12,
  ctMethodCall = 13,
};

const TPascalTemplates& DefaultPascalTemplates();
const TCppTemplates& DefaultCppTemplates();
/// 12 for Pascal, 14 for C++.
int TemplateCount(TLanguage language);
/// The built-in template at `index` of the language (index must be in range).
const TCodeTemplate& DefaultTemplate(TLanguage language, int index);
/// The title the options dialog lists the template under; "" out of range.
std::string_view TemplateTitle(TLanguage language, int index);
/// The sentence that describes the template; "" out of range.
std::string_view TemplateDescription(TLanguage language, int index);

}  // namespace velmora
