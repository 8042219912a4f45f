#include "codegen/code_insert_objects.h"

#include <algorithm>

#include "codegen/marker_position_finder.h"
#include "model/class_description.h"
#include "model/members.h"
#include "parsing/implementation_locator.h"
#include "support/ansi.h"

namespace velmora {

namespace {

enum class TMemberSort { Field, Method, Property };

// Whether `text` holds `lowerWord` (lower case letters), letter case aside.
bool ContainsText(const std::string& text, std::string_view lowerWord) {
  const size_t n = lowerWord.size();
  if (n == 0 || text.size() < n) return n == 0;
  for (size_t i = 0; i + n <= text.size(); ++i) {
    if ((text[i] | 0x20) != lowerWord[0]) continue;
    size_t k = 1;
    while (k < n && (text[i + k] | 0x20) == lowerWord[k]) ++k;
    if (k == n) return true;
  }
  return false;
}

// The end line of the last member of `sort` in section `visibility` whose name sorts
// before `name`, walking the class's members in order and stopping at the first that does
// not; -1 when none does.
int32_t LastLineSortingBefore(const TClassDescription& cls, TMemberSort sort,
                              TVisibility visibility, std::string_view name) {
  int32_t line = -1;
  if (sort == TMemberSort::Method) {
    for (int i = 0; i < cls.Methods.Count(); ++i) {
      const TMethodDescription* m = cls.Methods.Items(i);
      if (m->Visibility != visibility) continue;
      if (CompareText(m->Name, name) >= 0) break;
      line = std::max(line, m->EndLine);
    }
    return line;
  }
  const bool wantProperty = sort == TMemberSort::Property;
  for (int i = 0; i < cls.Fields.Count(); ++i) {
    const TFieldDescription* f = cls.Fields.Items(i);
    if (f->Visibility != visibility || f->IsProperty != wantProperty) continue;
    if (CompareText(f->Name, name) >= 0) break;
    line = std::max(line, f->EndLine);
  }
  return line;
}

// The declaration rule: the section's line, then the last field (and for a method the
// last method, for a property the last method and property) of that section; with
// `ordered` the last step is the last member of the same sort whose name sorts before.
int32_t DeclarationLine(const TInsertionContext& context, TMemberSort sort, TVisibility visibility,
                        std::string_view name) {
  if (!context.Class) return kNoPlace;
  const TPositionInfo* table = context.Class->GetPositionInfo(false);
  if (!table) return kNoPlace;
  const TPositionInfo::Positions& section = table->At(visibility, TPositionInfo::Section);
  if (section.StartLine < 0) return kNoPlace;
  int32_t line = std::max(section.StartLine, section.EndLine);
  const TPositionInfo::Block steps[] = {TPositionInfo::LastField, TPositionInfo::LastMethod,
                                        TPositionInfo::LastProperty};
  const int count = sort == TMemberSort::Field ? 1 : sort == TMemberSort::Method ? 2 : 3;
  for (int i = 0; i < count; ++i) {
    if (i == count - 1 && context.Ordered) {
      line = std::max(line, LastLineSortingBefore(*context.Class, sort, visibility, name));
    } else {
      line = std::max(line, table->At(visibility, steps[i]).EndLine);
    }
  }
  return line + 1;
}

std::string DescriptionText(const TCodeTemplates& templates, TLanguage language,
                            const TClassNames& names, const TCodeObject& member,
                            const std::string& description) {
  return templates.Build(language,
                         IsCpp(language) ? static_cast<int>(TCppTemplateIndex::DescriptionBlock)
                                         : static_cast<int>(TPascalTemplateIndex::DescriptionBlock),
                         {names.Name + "." + member.Name, description});
}

}  // namespace

// ---- TCodeInsertObject ----

const std::string& TCodeInsertObject::GetText() {
  if (!built_) {
    text_ = BuildText();
    if (setup_.RemoveTrailingSpaces) text_ = RemoveTrailingBlanks(text_);
    built_ = true;
  }
  return text_;
}

const std::string& TCodeInsertObject::TargetFile() const {
  static const std::string kNone;
  return kNone;
}

std::string TVisibilityInsertObject::BuildText() {
  return Templates().Build(Language(),
                           IsCpp(Language()) ? static_cast<int>(TCppTemplateIndex::Visibility)
                                             : static_cast<int>(TPascalTemplateIndex::Visibility),
                           {std::string(VisibilityWord(Visibility, Language()))});
}

// ---- fields and properties ----

TFieldInsertObject::TFieldInsertObject(const TInsertionSetup& setup, const TFieldDescription& field)
    : TCodeInsertObject(setup), field_(field) {
  OrderClass = 2;
}

int32_t TFieldInsertObject::ComputeInsertionLine(const TInsertionContext& context) {
  return DeclarationLine(context, TMemberSort::Field, field_.Visibility, field_.Name);
}

TVisibility TFieldInsertObject::OrderVisibility() const {
  return field_.Visibility;
}

std::string TFieldInsertObject::BuildText() {
  if (IsCpp(Language()))
    return Templates().Build(TCppTemplateIndex::FieldDeclaration,
                             {field_.Name + field_.Modifier, field_.FieldType, Names().Name});
  return Templates().Build(TPascalTemplateIndex::FieldDeclaration,
                           {field_.Name, field_.FieldType, Names().Name});
}

TPropertyInsertObject::TPropertyInsertObject(const TInsertionSetup& setup,
                                             const TFieldDescription& property)
    : TFieldInsertObject(setup, property) {
  OrderClass = 0;
}

int32_t TPropertyInsertObject::ComputeInsertionLine(const TInsertionContext& context) {
  return DeclarationLine(context, TMemberSort::Property, field_.Visibility, field_.Name);
}

std::string TPropertyInsertObject::BuildText() {
  const std::string arrayText =
      field_.Property ? std::string(Trim(field_.Property->IndexParams)) : std::string();
  const std::string specifiers = PropertySpecifiers(field_);
  if (IsCpp(Language())) {
    // The model keeps an array property's parameters without their brackets.
    std::string array = arrayText;
    if (!array.empty() && array.front() != '[') array = "[" + array + "]";
    return Templates().Build(TCppTemplateIndex::PropertyDeclaration,
                             {field_.Name, field_.FieldType, Names().Name, specifiers, array});
  }
  const bool hasArray = !arrayText.empty();
  const bool hasType = !Trim(field_.FieldType).empty();
  return Templates().Build(TPascalTemplateIndex::PropertyDeclaration,
                           {field_.Name, hasArray ? "[" : "", arrayText, hasArray ? "]" : "",
                            hasType ? ":" : "", field_.FieldType, specifiers, Names().Name});
}

// ---- method declarations ----

TMethodDeclInsertObject::TMethodDeclInsertObject(const TInsertionSetup& setup,
                                                 const TMethodDescription& method)
    : TCodeInsertObject(setup), method_(method) {
  OrderClass = 1;
}

int32_t TMethodDeclInsertObject::ComputeInsertionLine(const TInsertionContext& context) {
  return DeclarationLine(context, TMemberSort::Method, method_.Visibility, method_.Name);
}

TVisibility TMethodDeclInsertObject::OrderVisibility() const {
  return method_.Visibility;
}

namespace {

std::vector<std::string> CppDeclarationValues(const TCodeTemplates& templates,
                                              const TMethodDescription& method,
                                              const std::string& className) {
  return {method.Name,
          ParameterListText(templates, method.Parameters, false),
          method.ResultType,
          CppDirectives(method),
          CppExtendedDirectives(method, true),
          className,
          method.HasDirective(TDirective::Virtual) ? "virtual" : ""};
}

}  // namespace

std::string TMethodDeclInsertObject::BuildText() {
  if (IsCpp(Language()))
    return Templates().Build(TCppTemplateIndex::MethodDeclaration,
                             CppDeclarationValues(Templates(), method_, Names().Name));
  const std::string params = ParameterListText(Templates(), method_.Parameters, false);
  const std::string open = params.empty() ? "" : "(";
  const std::string close = params.empty() ? "" : ")";
  if (method_.Kind == TMethodKind::Function)
    return Templates().Build(TPascalTemplateIndex::FunctionDeclaration,
                             {PascalMethodType(method_), method_.Name, open, params, close,
                              method_.ResultType, PascalDirectives(method_), Names().Name});
  return Templates().Build(TPascalTemplateIndex::ProcedureDeclaration,
                           {PascalMethodType(method_), method_.Name, open, params, close,
                            PascalDirectives(method_), Names().Name});
}

std::string TMethodDeclInlineImplicitInsertObject::BuildText() {
  // Template 7 takes IMPLEMENTATION before VIRTUAL.
  std::vector<std::string> values = CppDeclarationValues(Templates(), method_, Names().Name);
  values.insert(values.begin() + 6, body_);
  return Templates().Build(TCppTemplateIndex::ImplicitInlineMethod, values);
}

// ---- message map ----

TMessageMapInsertObject::TMessageMapInsertObject(const TInsertionSetup& setup,
                                                 const TMethodDescription& method)
    : TCodeInsertObject(setup), method_(method) {
  OrderClass = 1;
}

int32_t TMessageMapInsertObject::ComputeInsertionLine(const TInsertionContext& context) {
  hasMap_ = false;
  const TPositionInfo* table = context.Class ? context.Class->GetPositionInfo(false) : nullptr;
  if (!table) return kNoPlace;
  if (const TPositionInfo::Macro* begin = table->LastMacro("BEGIN_MESSAGE_MAP")) {
    hasMap_ = true;
    const TPositionInfo::Macro* last = table->LastMacro("VCL_MESSAGE_HANDLER");
    if (!last) last = table->LastMacro("MESSAGE_HANDLER");
    if (!last) last = begin;
    return std::max(last->StartLine, last->EndLine) + 1;
  }
  const TPositionInfo::Positions& section =
      table->At(TVisibility::Protected, TPositionInfo::Section);
  if (section.StartLine < 0) return kNoPlace;
  return std::max(section.StartLine, section.EndLine) + 1;
}

std::string TMessageMapInsertObject::BuildText() {
  const std::string handler =
      Templates().Build(TCppTemplateIndex::MessageHandlerBlock,
                        {method_.MessageName, MessageTypeOf(method_), method_.Name});
  if (hasMap_) return handler;
  return Templates().Build(TCppTemplateIndex::MessageMapBegin, {}) + "\r\n" + handler + "\r\n" +
         Templates().Build(TCppTemplateIndex::MessageMapEnd, {Names().FirstAncestor});
}

// ---- implementations ----

TMethodImplInsertObject::TMethodImplInsertObject(const TInsertionSetup& setup,
                                                 const TMethodDescription& method, std::string body,
                                                 std::string fileName)
    : TImplementationInsertObject(setup, std::move(fileName)),
      method_(method),
      body_(std::move(body)) {
  OrderClass = 1;
  if (!IsCpp(setup.Language)) {
    LineBreakBefore = false;
    LineBreakAfter = true;
  }
}

int32_t TMethodImplInsertObject::ComputeInsertionLine(const TInsertionContext& context) {
  if (!context.FileText || !context.Class) return kNoPlace;
  // Every marker that places an implementation has "marker" in its name. Without one in
  // the text a C++ implementation has no place, and the search over the file's tokens can
  // be spared.
  if (IsCpp(Language()) && !ContainsText(*context.FileText, "marker")) return kNoPlace;
  const int32_t line = MethodImplementationLine(Language(), *context.FileText, *context.Class,
                                                method_.Name, context.Ordered);
  return line < 0 ? kNoPlace : line;
}

std::string TMethodImplInsertObject::BuildText() {
  const std::string params = ParameterListText(Templates(), method_.Parameters, true);
  if (IsCpp(Language()))
    return Templates().Build(TCppTemplateIndex::MethodImplementation,
                             {method_.Name, params, method_.ResultType, CppDirectives(method_),
                              CppExtendedDirectives(method_, false), Names().Qualified, body_});
  const std::string open = params.empty() ? "" : "(";
  const std::string close = params.empty() ? "" : ")";
  if (method_.Kind == TMethodKind::Function)
    return Templates().Build(TPascalTemplateIndex::FunctionImplementation,
                             {PascalMethodType(method_), Names().Name, method_.Name, open, params,
                              close, method_.ResultType, body_});
  return Templates().Build(
      TPascalTemplateIndex::ProcedureImplementation,
      {PascalMethodType(method_), Names().Name, method_.Name, open, params, close, body_});
}

// ---- help descriptions ----

THelpDescriptionDeclInsertObject::THelpDescriptionDeclInsertObject(const TInsertionSetup& setup,
                                                                   const TCodeObject& member,
                                                                   std::string description)
    : TCodeInsertObject(setup), member_(member), description_(std::move(description)) {
  LineBreakBefore = false;
  LineBreakAfter = true;
}

int32_t THelpDescriptionDeclInsertObject::ComputeInsertionLine(const TInsertionContext& context) {
  if (!context.Class) return kNoPlace;
  if (const TFieldDescription* f = context.Class->Fields.Find(member_.Name)) return f->StartLine;
  if (const TMethodDescription* m = context.Class->Methods.Find(member_.Name)) return m->StartLine;
  return kNoPlace;
}

std::string THelpDescriptionDeclInsertObject::BuildText() {
  return DescriptionText(Templates(), Language(), Names(), member_, description_);
}

THelpDescriptionPositionInsertObject::THelpDescriptionPositionInsertObject(
    const TInsertionSetup& setup, const TCodeObject& member, std::string description, bool atStart,
    std::string fileName)
    : TImplementationInsertObject(setup, std::move(fileName)),
      member_(member),
      description_(std::move(description)),
      atStart_(atStart) {
  LineBreakAfter = true;
  LineBreakBefore = !atStart;
}

int32_t THelpDescriptionPositionInsertObject::ComputeInsertionLine(const TInsertionContext&) {
  return atStart_ ? 0 : kNoPlace;
}

std::string THelpDescriptionPositionInsertObject::BuildText() {
  return DescriptionText(Templates(), Language(), Names(), member_, description_);
}

THelpDescriptionImplInsertObject::THelpDescriptionImplInsertObject(const TInsertionSetup& setup,
                                                                   const TMethodDescription& method,
                                                                   std::string description,
                                                                   std::string fileName)
    : TImplementationInsertObject(setup, std::move(fileName)),
      method_(method),
      description_(std::move(description)) {}

int32_t THelpDescriptionImplInsertObject::ComputeInsertionLine(const TInsertionContext& context) {
  if (!context.FileText) return kNoPlace;
  int32_t line = -1;
  if (!LocateImplementationLine(*context.FileText, false, context.Class, line, method_))
    return kNoPlace;
  return line;
}

std::string THelpDescriptionImplInsertObject::BuildText() {
  return DescriptionText(Templates(), Language(), Names(), method_, description_);
}

}  // namespace velmora
