#include "codegen/code_gen_texts.h"

#include "codegen/code_builder.h"
#include "model/members.h"
#include "model/parameters.h"
#include "settings/vl_settings.h"
#include "support/ansi.h"

namespace velmora {

TCodeTemplates::TCodeTemplates(const TVLSettings& settings)
    : Pascal(settings.PascalTemplates), Cpp(settings.CppTemplates) {}

const TCodeTemplate& TCodeTemplates::Get(TLanguage language, int index) const {
  return IsCpp(language) ? Cpp[static_cast<size_t>(index)] : Pascal[static_cast<size_t>(index)];
}

std::string TCodeTemplates::Build(TLanguage language, int index,
                                  const std::vector<std::string>& values) const {
  return BuildCode(Get(language, index), values, language);
}

std::string_view VisibilityWord(TVisibility visibility, TLanguage language) {
  return VisibilityText(visibility, language);
}

std::string PascalMethodType(const TMethodDescription& method) {
  std::string word(MethodKindText(method.Kind));
  if (method.HasDirective(TDirective::ClassMethod)) word.insert(0, "class ");
  return word;
}

std::string ParameterListText(const TCodeTemplates& templates, const TParameterList& params,
                              bool forImplementation) {
  const bool cpp = IsCpp(params.Language);
  std::string result;
  for (const TParameter& p : params.Items) {
    const std::string initializer =
        forImplementation || p.DefaultValue.empty() ? std::string() : "= " + p.DefaultValue;
    std::string one;
    if (cpp) {
      one = templates.Build(TCppTemplateIndex::MethodParameter,
                            {p.ParamType, p.Name, p.Modifier, initializer});
    } else {
      const std::string colon = Trim(p.ParamType).empty() ? "" : ":";
      one = templates.Build(TPascalTemplateIndex::MethodParameter,
                            {p.Modifier, p.Name, colon, p.ParamType, initializer});
    }
    if (!result.empty()) result += cpp ? ", " : "; ";
    result += one;
  }
  return std::string(Trim(result));
}

std::string ArgumentNamesText(const TCodeTemplates& templates, const TParameterList& params) {
  const bool cpp = IsCpp(params.Language);
  std::string result;
  for (const TParameter& p : params.Items) {
    // NAME is the second parameter of both languages' template; the rest stay empty.
    const std::string one(
        Trim(templates.Build(params.Language,
                             cpp ? static_cast<int>(TCppTemplateIndex::MethodParameter)
                                 : static_cast<int>(TPascalTemplateIndex::MethodParameter),
                             {"", p.Name})));
    if (!result.empty()) result += ", ";
    result += one;
  }
  return result;
}

std::string PascalDirectives(const TMethodDescription& method) {
  std::string text;
  if (method.HasDirective(TDirective::Virtual)) text += "virtual; ";
  if (method.HasDirective(TDirective::Abstract)) text += "abstract; ";
  if (method.HasDirective(TDirective::Override)) text += "override; ";
  if (method.HasDirective(TDirective::Dynamic)) text += "dynamic; ";
  if (method.HasDirective(TDirective::Overload)) text += "overload; ";
  if (method.HasDirective(TDirective::Message)) text += "message " + method.MessageName + ";";
  return std::string(Trim(text));
}

namespace {

void JoinWord(std::string& text, std::string_view word) {
  if (!text.empty()) text += ' ';
  text += word;
}

}  // namespace

std::string CppDirectives(const TMethodDescription& method) {
  std::string text;
  if (method.HasDirective(TDirective::Inline)) JoinWord(text, "inline");
  if (method.HasDirective(TDirective::FastCall)) JoinWord(text, "__fastcall");
  return text;
}

std::string CppExtendedDirectives(const TMethodDescription& method, bool forDeclaration) {
  std::string text;
  if (method.HasDirective(TDirective::Const)) JoinWord(text, "const");
  if (forDeclaration && method.HasDirective(TDirective::Abstract)) JoinWord(text, "= 0");
  return text;
}

std::string PropertySpecifiers(const TFieldDescription& property) {
  if (!property.Property) return {};
  const TPropertyDescription& p = *property.Property;
  const bool cpp = IsCpp(property.Language);
  const std::pair<std::string_view, const std::string*> parts[] = {
      {"read", &p.ReadSpec},   {"write", &p.WriteSpec},     {"stored", &p.StoredSpec},
      {"index", &p.IndexSpec}, {"default", &p.DefaultSpec},
  };
  std::string text;
  for (const auto& [word, value] : parts) {
    if (Trim(*value).empty()) continue;
    if (!text.empty()) text += cpp ? ", " : " ";
    text += word;
    text += cpp ? " = " : " ";
    text += Trim(*value);
  }
  // The template puts a blank before SPECIFIERS already; the braces follow it directly so
  // that a declaration reads "__property int Count = { read = GetCount };".
  if (cpp && !text.empty()) return "= { " + text + " }";
  return text;
}

std::string MessageTypeOf(const TMethodDescription& method) {
  if (method.Parameters.Empty()) return {};
  std::string_view type = method.Parameters[0].ParamType;
  if (!type.empty() && type.back() == '&') type.remove_suffix(1);
  return std::string(Trim(type));
}

std::string RemoveTrailingBlanks(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  size_t keep = 0;  // the size `out` has without the blanks seen since the last non-blank
  for (char c : text) {
    if (c == '\r' || c == '\n') out.resize(keep);
    out += c;
    if (c != ' ' && c != '\t') keep = out.size();
  }
  out.resize(keep);
  return out;
}

}  // namespace velmora
