#include "model/code_object.h"

#include "model/class_info_error.h"
#include "support/ansi.h"
#include "support/stream.h"

namespace velmora {

std::string_view LanguageText(TLanguage language) {
  switch (language) {
    case TLanguage::Pascal:
      return "Pascal";
    case TLanguage::Cpp:
      return "C++";
  }
  return {};
}

std::string_view VisibilityName(TVisibility visibility) {
  return VisibilityText(visibility, TLanguage::Pascal);
}

std::string_view VisibilityText(TVisibility visibility, TLanguage language) {
  const bool cpp = IsCpp(language);
  switch (visibility) {
    case TVisibility::Public:
      return "public";
    case TVisibility::Private:
      return "private";
    case TVisibility::Protected:
      return "protected";
    case TVisibility::Published:
      return cpp ? "__published" : "published";
    case TVisibility::Automated:
      return cpp ? "__automated" : "automated";
  }
  return {};
}

std::string_view MethodKindText(TMethodKind kind) {
  static constexpr std::string_view kTexts[] = {"procedure", "function", "constructor",
                                                "destructor", "operator"};
  const auto n = static_cast<unsigned>(kind);
  return n < std::size(kTexts) ? kTexts[n] : std::string_view{};
}

std::string_view ClassKindText(TClassKind kind) {
  static constexpr std::string_view kTexts[] = {"class", "interface", "dispatch interface",
                                                "template", "struct"};
  const auto n = static_cast<unsigned>(kind);
  return n < std::size(kTexts) ? kTexts[n] : std::string_view{};
}

std::string_view DirectiveText(int n, TLanguage language) {
  // Each language names only its own directives; an empty entry is one it does not know.
  static constexpr std::string_view kPascal[16] = {
      "virtual",  "dynamic", "override", "abstract", "message", "stdcall", "class method",
      "register", "pascal",  "cdecl",    "safecall", "",        "",        "",
      "",         "overload"};
  static constexpr std::string_view kCpp[16] = {"virtual",
                                                "",
                                                "",
                                                "abstract (pure virtual)",
                                                "message handler",
                                                "__stdcall",
                                                "",
                                                "",
                                                "__pascal",
                                                "__cdecl",
                                                "",
                                                "__fastcall",
                                                "inline",
                                                "implicit inline",
                                                "const",
                                                ""};
  if (n < 0 || n > 15) return {};
  return IsCpp(language) ? kCpp[n] : kPascal[n];
}

int CompareNames(std::string_view a, std::string_view b, TLanguage language) {
  return CompareNames(a, b, IsCpp(language));
}

// ---- TNamedObject ----

void TNamedObject::LoadFromStream(TStream& stream) {
  Name = LoadString(stream);
  Language = static_cast<TLanguage>(LoadU8(stream));
}

void TNamedObject::SaveToStream(TStream& stream) const {
  stream.WriteString(Name);
  stream.WriteU8(static_cast<uint8_t>(Language));
}

// ---- TCodeObject ----

void TCodeObject::LoadFromStream(TStream& stream) {
  TNamedObject::LoadFromStream(stream);
  StartLine = LoadI32(stream);
  StartOffset = LoadI32(stream);
  EndLine = LoadI32(stream);
  EndOffset = LoadI32(stream);
  LoadFields(stream);
  Valid = true;
  Changed(-1);
}

void TCodeObject::SaveToStream(TStream& stream) const {
  TNamedObject::SaveToStream(stream);
  stream.WriteI32(StartLine);
  stream.WriteI32(StartOffset);
  stream.WriteI32(EndLine);
  stream.WriteI32(EndOffset);
  SaveFields(stream);
}

}  // namespace velmora
