#include "codegen/add_member_requests.h"

#include <functional>

#include "codegen/code_gen_texts.h"
#include "codegen/code_generator.h"
#include "model/class_description.h"
#include "model/class_list.h"
#include "model/members.h"
#include "settings/vl_settings.h"
#include "support/ansi.h"

namespace velmora {

namespace {

bool IsAlpha(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool IsAlnum(char c) {
  return IsAlpha(c) || (c >= '0' && c <= '9');
}

std::string Format(const char* pattern, std::string_view a, std::string_view b = {}) {
  std::string out;
  bool first = true;
  for (const char* p = pattern; *p; ++p) {
    if (p[0] == '%' && p[1] == 's') {
      out += first ? a : b;
      first = false;
      ++p;
    } else {
      out += *p;
    }
  }
  return out;
}

TAddMemberMessage Duplicate(const TClassDescription& cls, std::string_view name) {
  return {TAddMemberMessage::Error,
          Format("A member with name \"%s\" already exists in class \"%s\"!", name, cls.Name),
          {}};
}

TAddMemberMessage NotIdent(std::string_view label, std::string_view control) {
  return {TAddMemberMessage::Warning,
          Format("The value in field \"%s\" is not a valid identifier!", label),
          std::string(control)};
}

TAddMemberMessage NotMethodIdent(std::string_view label, std::string_view control) {
  return {TAddMemberMessage::Warning,
          Format("The value in field \"%s\", which is used to create a method name, is not a "
                 "valid identifier!",
                 label),
          std::string(control)};
}

bool HasMember(const TClassDescription& cls, std::string_view name) {
  return cls.Fields.Find(name) != nullptr || cls.Methods.Find(name) != nullptr;
}

// A dotted name such as "Classes.TList": identifiers joined by single dots.
bool IsValidTypeName(std::string_view text) {
  size_t from = 0;
  while (true) {
    const size_t dot = text.find('.', from);
    if (!IsValidIdent(text.substr(from, dot == std::string_view::npos ? dot : dot - from)))
      return false;
    if (dot == std::string_view::npos) return true;
    from = dot + 1;
  }
}

// A constant a stored or default specifier may hold: an identifier, or a number
// (decimal, Pascal "$" hex, with a sign).
bool IsValidConstant(std::string_view text) {
  if (IsValidIdent(text)) return true;
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) text.remove_prefix(1);
  if (!text.empty() && text[0] == '$') text.remove_prefix(1);
  if (text.empty()) return false;
  for (char c : text)
    if (!IsAlnum(c) && c != '.') return false;
  return true;
}

// Whether the argument text reads as a parameter list: brackets balance and pair up,
// literals are closed, and (Pascal) no parameter lacks its name.
bool ArgumentsReadable(std::string_view text, TLanguage language) {
  std::string open;
  const bool cpp = IsCpp(language);
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '\'' || (cpp && c == '"')) {
      size_t j = i + 1;
      while (j < text.size() && text[j] != c) j += (cpp && text[j] == '\\') ? 2 : 1;
      if (j >= text.size()) return false;
      i = j;
    } else if (c == '(' || c == '[' || (cpp && c == '<')) {
      open += c;
    } else if (c == ')' || c == ']' || (cpp && c == '>')) {
      const char want = c == ')' ? '(' : c == ']' ? '[' : '<';
      if (open.empty() || open.back() != want) return false;
      open.pop_back();
    }
  }
  if (!open.empty()) return false;
  if (cpp) return true;
  TParameterList params(language);
  params.Parse(text);
  for (const TParameter& p : params.Items)
    if (!IsValidIdent(p.Name)) return false;
  return true;
}

std::string TrimmedText(std::string_view text) {
  return std::string(Trim(text));
}

}  // namespace

bool IsValidIdent(std::string_view text) {
  if (text.empty() || !(IsAlpha(text[0]) || text[0] == '_')) return false;
  for (char c : text)
    if (!(IsAlnum(c) || c == '_')) return false;
  return true;
}

TStagedMembers::TStagedMembers() = default;
TStagedMembers::~TStagedMembers() = default;
TStagedMembers::TStagedMembers(TStagedMembers&&) noexcept = default;
TStagedMembers& TStagedMembers::operator=(TStagedMembers&&) noexcept = default;

TAddMemberOutcome GenerateStaged(TClassDescription& cls, TAbstractCodeGenerator& generator,
                                 TStagedMembers& staged) {
  TAddMemberOutcome outcome;
  const int32_t focus = generator.Generate();
  if (!generator.Succeeded()) {
    outcome.Message = TAddMemberMessage{TAddMemberMessage::Error, generator.Error(), {}};
    return outcome;
  }
  outcome.Ok = true;
  outcome.FocusFile = generator.FocusFile();
  outcome.FocusLine = generator.FocusLine();
  outcome.FocusOffset = focus;
  outcome.Parsed = generator.TakeParsedList();
  for (auto& field : staged.Fields) {
    field->OwnerClass = &cls;
    cls.Fields.Add(std::move(field));
  }
  for (auto& method : staged.Methods) {
    method->SetOwnerClass(&cls);
    cls.Methods.Add(std::move(method));
  }
  staged = {};
  return outcome;
}

namespace {

TAddMemberOutcome RunOne(
    const TAddMemberTarget& target,
    const std::function<void(TAbstractCodeGenerator&, TStagedMembers&)>& stage) {
  TClassDescription& cls = *target.Class;
  const std::string module = target.ModuleFile.empty() ? cls.UnitName : target.ModuleFile;
  auto generator = TAbstractCodeGenerator::Create(*target.Buffers, *target.Settings, cls, module);
  TStagedMembers staged;
  stage(*generator, staged);
  return GenerateStaged(cls, *generator, staged);
}

TAddMemberOutcome Refused(TAddMemberMessage message) {
  TAddMemberOutcome outcome;
  outcome.Message = std::move(message);
  return outcome;
}

}  // namespace

// ---- Add Field ----

bool TAddFieldRequest::CanApply() const {
  return !Trim(FieldName).empty() && !Trim(Type).empty();
}

std::optional<TAddMemberMessage> TAddFieldRequest::Check(const TClassDescription& cls) const {
  const std::string name = TrimmedText(FieldName);
  if (HasMember(cls, name)) return Duplicate(cls, name);
  if (CheckSyntax && !IsValidIdent(name)) return NotIdent("Field Name", "FieldNameEdit");
  return std::nullopt;
}

void TAddFieldRequest::Stage(const TClassDescription& cls, TAbstractCodeGenerator& generator,
                             TStagedMembers& staged) const {
  auto field = std::make_unique<TFieldDescription>(nullptr, cls.Language);
  field->Name = TrimmedText(FieldName);
  field->FieldType = TrimmedText(Type);
  field->Visibility = Visibility;
  generator.AddField(*field);
  staged.Fields.push_back(std::move(field));
}

TAddMemberOutcome TAddFieldRequest::Apply(const TAddMemberTarget& target) const {
  if (!CanApply())
    return Refused({TAddMemberMessage::Error, "A field needs a name and a type.", "FieldNameEdit"});
  if (auto message = Check(*target.Class)) return Refused(*message);
  return RunOne(target,
                [&](TAbstractCodeGenerator& g, TStagedMembers& s) { Stage(*target.Class, g, s); });
}

// ---- Add Method ----

bool TAddMethodRequest::CanApply() const {
  return !Trim(MethodName).empty();
}

std::optional<TAddMemberMessage> TAddMethodRequest::Check(const TClassDescription& cls) const {
  const std::string name = TrimmedText(MethodName);
  if (HasMember(cls, name)) return Duplicate(cls, name);
  if (!IsCpp(cls.Language) && CheckSyntax) {
    if (!IsValidIdent(name)) return NotIdent("Method Name", "MethodnameEdit");
    if (Kind == TMethodKind::Function && !IsValidTypeName(Trim(ResultType)))
      return NotIdent("Function Result", "FunctionResultTypeCOB");
  }
  if (!ArgumentsReadable(Arguments, cls.Language))
    return TAddMemberMessage{
        TAddMemberMessage::Error,
        Format("Syntax error in argumentlist \"%s\"!\rCannot create method!", Arguments),
        "ArgumentsEdit"};
  return std::nullopt;
}

std::unique_ptr<TMethodDescription> TAddMethodRequest::BuildMethod(
    const TClassDescription& cls) const {
  const TLanguage language = cls.Language;
  const bool cpp = IsCpp(language);
  auto method = std::make_unique<TMethodDescription>(TrimmedText(MethodName), language);
  method->Kind = Kind;
  method->Visibility = Visibility;
  method->Parameters.Parse(Arguments);
  const std::string result = TrimmedText(ResultType) + ResultSuffix;
  if (Kind == TMethodKind::Function) {
    method->ResultType = result;
  } else if (cpp && Kind == TMethodKind::Procedure) {
    method->ResultType = "void";
  }
  // A pure C++ function must be virtual, so "abstract" brings "virtual" along.
  method->SetDirective(TDirective::Virtual, Virtual || (cpp && Abstract));
  method->SetDirective(TDirective::Abstract, Abstract);
  if (!cpp) {
    method->SetDirective(TDirective::Dynamic, Dynamic);
    method->SetDirective(TDirective::Override, Override);
    method->SetDirective(TDirective::ClassMethod, ClassMethod);
  } else {
    method->SetDirective(TDirective::Const, Const);
    method->SetDirective(TDirective::FastCall, FastCall);
    method->SetDirective(TDirective::ImplicitInline, ImplicitInline);
  }
  method->SetDirective(TDirective::Inline, Inline);
  if (MessageHandler && !Trim(MessageId).empty()) {
    method->SetDirective(TDirective::Message);
    method->MessageName = TrimmedText(MessageId);
  }
  return method;
}

void TAddMethodRequest::Stage(const TClassDescription& cls, const TVLSettings& settings,
                              TAbstractCodeGenerator& generator, TStagedMembers& staged) const {
  auto method = BuildMethod(cls);
  std::string body = CallInherited ? InheritedCall(settings, cls, *method) : Body;
  const std::string file = IsCpp(cls.Language) ? TrimmedText(ImplementationFile) : std::string();
  generator.AddMethod(*method, file, body);
  staged.Methods.push_back(std::move(method));
  staged.Bodies.push_back(std::move(body));
  staged.ImplementationFiles.push_back(file);
}

TAddMemberOutcome TAddMethodRequest::Apply(const TAddMemberTarget& target) const {
  if (!CanApply())
    return Refused({TAddMemberMessage::Error, "A method needs a name.", "MethodnameEdit"});
  if (auto message = Check(*target.Class)) return Refused(*message);
  return RunOne(target, [&](TAbstractCodeGenerator& g, TStagedMembers& s) {
    Stage(*target.Class, *target.Settings, g, s);
  });
}

std::string InheritedCall(const TVLSettings& settings, const TClassDescription& cls,
                          const TMethodDescription& method) {
  const TCodeTemplates templates(settings);
  const std::string args = ArgumentNamesText(templates, method.Parameters);
  if (IsCpp(cls.Language)) {
    const std::string base = cls.Ancestors.Count() > 0 ? cls.Ancestors[0].AncestorName : "";
    return templates.Build(TCppTemplateIndex::MethodCall, {base, method.Name, args});
  }
  const bool hasArgs = !args.empty();
  std::string call = templates.Build(TPascalTemplateIndex::MethodCall,
                                     {method.Name, hasArgs ? "(" : "", args, hasArgs ? ")" : ""});
  // The assignment goes in front of the whole text, its indentation included.
  if (method.Kind == TMethodKind::Function) call.insert(0, "result := ");
  return call;
}

// ---- Add Property ----

void TAddPropertyRequest::NameChanged() {
  if (CreateField) FieldName = "F" + Name;
  if (CreateGet) Reads = "Get" + Name;
  if (CreateSet) Writes = "Set" + Name;
}

bool TAddPropertyRequest::CanApply() const {
  return !Trim(Name).empty();
}

std::string TAddPropertyRequest::GetterName() const {
  return Trim(Reads).empty() ? "Get" + TrimmedText(Name) : TrimmedText(Reads);
}

std::string TAddPropertyRequest::SetterName() const {
  return Trim(Writes).empty() ? "Set" + TrimmedText(Name) : TrimmedText(Writes);
}

namespace {

// "[int i][int j]" as "int i, int j": every "[" after the first becomes ", ", brackets go.
std::string CppArrayParameters(std::string_view array) {
  std::string out;
  bool first = true;
  for (char c : Trim(array)) {
    if (c == '[') {
      if (!first) out += ", ";
      first = false;
    } else if (c != ']') {
      out += c;
    }
  }
  return out;
}

}  // namespace

std::string TAddPropertyRequest::GetterParameters(TLanguage language) const {
  const bool hasIndex = !Trim(Index).empty();
  if (IsCpp(language)) {
    std::string text = CppArrayParameters(Array);
    if (hasIndex) text += ", int __index";
    return text;
  }
  // Even without array parameters the index parameter keeps its separator: that is how
  // the text has always been built, and the parameter parser skips the empty part.
  std::string text = TrimmedText(Array);
  if (hasIndex) text += "; __index: integer";
  return text;
}

std::string TAddPropertyRequest::SetterParameters(TLanguage language) const {
  std::string text = GetterParameters(language);
  const std::string type = TrimmedText(Type);
  if (IsCpp(language)) return text.empty() ? type + " value" : text + ", " + type + " value";
  return text.empty() ? "Value: " + type : text + "; Value: " + type;
}

std::optional<TAddMemberMessage> TAddPropertyRequest::Check(const TClassDescription& cls) const {
  const std::string name = TrimmedText(Name);
  if (HasMember(cls, name)) return Duplicate(cls, name);
  if (CreateField && HasMember(cls, Trim(FieldName))) return Duplicate(cls, Trim(FieldName));
  if (CreateGet && HasMember(cls, GetterName())) return Duplicate(cls, GetterName());
  if (CreateSet && HasMember(cls, SetterName())) return Duplicate(cls, SetterName());
  if (!CheckSyntax) return std::nullopt;
  const bool cpp = IsCpp(cls.Language);
  if (!IsValidIdent(name)) return NotIdent("Property Name", "PropertyNameEdit");
  if (!cpp && !Trim(Type).empty() && !IsValidTypeName(Trim(Type)))
    return NotIdent("Type", "TypeCOB");
  if (CreateGet && !IsValidIdent(GetterName()))
    return Trim(Reads).empty() ? NotMethodIdent("Property Name", "PropertyNameEdit")
                               : NotMethodIdent("Read Specifier", "ReadsCOB");
  if (!CreateGet && !Trim(Reads).empty() && !IsValidIdent(Trim(Reads)))
    return NotIdent("Read Specifier", "ReadsCOB");
  if (CreateSet && !IsValidIdent(SetterName()))
    return Trim(Writes).empty() ? NotMethodIdent("Property Name", "PropertyNameEdit")
                                : NotMethodIdent("Write Specifier", "WritesCOB");
  if (!CreateSet && !Trim(Writes).empty() && !IsValidIdent(Trim(Writes)))
    return NotIdent("Write Specifier", "WritesCOB");
  if (!Trim(Stored).empty() && !IsValidConstant(Trim(Stored)))
    return NotIdent("Stored Specifier", "StoredEdit");
  if (!Trim(Default).empty() && !IsValidConstant(Trim(Default)))
    return NotIdent("Default Specifier", "DefaultEdit");
  if (CreateField && !IsValidIdent(Trim(FieldName)))
    return NotIdent("Create Field", "FieldNameEdit");
  return std::nullopt;
}

void TAddPropertyRequest::Stage(const TClassDescription& cls, const TVLSettings& settings,
                                TAbstractCodeGenerator& generator, TStagedMembers& staged) const {
  const TLanguage language = cls.Language;
  const bool cpp = IsCpp(language);
  const std::string field = TrimmedText(FieldName);
  const std::string type = TrimmedText(Type);
  // Pascal: the created field may stand in the read or write specifier itself.
  const bool fieldReads = CreateField && UseFieldForGet;
  const bool fieldWrites = CreateField && UseFieldForSet;

  auto property = std::make_unique<TFieldDescription>(nullptr, language);
  property->Name = TrimmedText(Name);
  property->FieldType = type;
  property->Visibility = Visibility;
  property->SetIsProperty(true);
  TPropertyDescription& specifiers = *property->Property;
  specifiers.IndexParams = TrimmedText(Array);
  specifiers.ReadSpec = CreateGet              ? GetterName()
                        : !Trim(Reads).empty() ? TrimmedText(Reads)
                        : (!cpp && fieldReads) ? field
                                               : std::string();
  specifiers.WriteSpec = CreateSet               ? SetterName()
                         : !Trim(Writes).empty() ? TrimmedText(Writes)
                         : (!cpp && fieldWrites) ? field
                                                 : std::string();
  specifiers.IndexSpec = TrimmedText(Index);
  specifiers.StoredSpec = TrimmedText(Stored);
  specifiers.DefaultSpec = TrimmedText(Default);
  generator.AddProperty(*property);
  staged.Fields.push_back(std::move(property));

  if (CreateField) {
    auto f = std::make_unique<TFieldDescription>(nullptr, language);
    f->Name = field;
    f->FieldType = type;
    f->Visibility = TVisibility::Private;
    generator.AddField(*f);
    staged.Fields.push_back(std::move(f));
  }

  const TCodeTemplates templates(settings);
  const std::string implFile = cpp ? TrimmedText(ImplementIn) : std::string();
  auto addAccessor = [&](bool getter) {
    auto m = std::make_unique<TMethodDescription>(getter ? GetterName() : SetterName(), language);
    m->Visibility = TVisibility::Private;
    m->Kind = getter ? TMethodKind::Function : TMethodKind::Procedure;
    m->ResultType = getter ? type : cpp ? "void" : "";
    m->Parameters.Parse(getter ? GetterParameters(language) : SetterParameters(language));
    const std::string member = getter ? (fieldReads                ? field
                                         : ImplementGetUsingMember ? TrimmedText(GetMember)
                                                                   : std::string())
                                      : (fieldWrites               ? field
                                         : ImplementSetUsingMember ? TrimmedText(SetMember)
                                                                   : std::string());
    std::string body;
    if (!member.empty()) {
      const int index = cpp ? (getter ? static_cast<int>(TCppTemplateIndex::PropertyGetCode)
                                      : static_cast<int>(TCppTemplateIndex::PropertySetCode))
                            : (getter ? static_cast<int>(TPascalTemplateIndex::PropertyGetCode)
                                      : static_cast<int>(TPascalTemplateIndex::PropertySetCode));
      body = templates.Build(language, index, {member});
    }
    generator.AddMethod(*m, implFile, body);
    staged.Methods.push_back(std::move(m));
    staged.Bodies.push_back(std::move(body));
    staged.ImplementationFiles.push_back(implFile);
  };
  if (CreateGet) addAccessor(true);
  if (CreateSet) addAccessor(false);
}

TAddMemberOutcome TAddPropertyRequest::Apply(const TAddMemberTarget& target) const {
  if (!CanApply())
    return Refused({TAddMemberMessage::Error, "A property needs a name.", "PropertyNameEdit"});
  if (auto message = Check(*target.Class)) return Refused(*message);
  return RunOne(target, [&](TAbstractCodeGenerator& g, TStagedMembers& s) {
    Stage(*target.Class, *target.Settings, g, s);
  });
}

}  // namespace velmora
