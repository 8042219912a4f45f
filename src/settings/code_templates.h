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
enum class TPascalTemplateIndex : int {
  Visibility = 0,
  MethodParameter = 1,
  FieldDeclaration = 2,
  PropertyDeclaration = 3,
  ProcedureDeclaration = 4,
  FunctionDeclaration = 5,
  ProcedureImplementation = 6,
  FunctionImplementation = 7,
  PropertyGetCode = 8,
  PropertySetCode = 9,
  MethodCall = 10,
  DescriptionBlock = 11,
};

/// Positions of the C++ templates.
enum class TCppTemplateIndex : int {
  Visibility = 0,
  FieldDeclaration = 1,
  PropertyDeclaration = 2,
  PropertyGetCode = 3,
  PropertySetCode = 4,
  MethodParameter = 5,
  MethodDeclaration = 6,
  ImplicitInlineMethod = 7,
  MethodImplementation = 8,
  MessageMapBegin = 9,
  MessageHandlerBlock = 10,
  MessageMapEnd = 11,
  DescriptionBlock = 12,
  MethodCall = 13,
};

static_assert(static_cast<int>(TPascalTemplateIndex::DescriptionBlock) + 1 == kPascalTemplateCount);
static_assert(static_cast<int>(TCppTemplateIndex::MethodCall) + 1 == kCppTemplateCount);

/// The template at a named position.
inline TCodeTemplate& TemplateAt(TPascalTemplates& templates, TPascalTemplateIndex index) {
  return templates[static_cast<size_t>(index)];
}
inline const TCodeTemplate& TemplateAt(const TPascalTemplates& templates,
                                       TPascalTemplateIndex index) {
  return templates[static_cast<size_t>(index)];
}
inline TCodeTemplate& TemplateAt(TCppTemplates& templates, TCppTemplateIndex index) {
  return templates[static_cast<size_t>(index)];
}
inline const TCodeTemplate& TemplateAt(const TCppTemplates& templates, TCppTemplateIndex index) {
  return templates[static_cast<size_t>(index)];
}

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
