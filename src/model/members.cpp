#include "model/members.h"

#include <algorithm>

#include "model/class_description.h"
#include "model/class_info_error.h"
#include "support/ansi.h"
#include "support/stream.h"

namespace velmora {
namespace {

// The kind word of a Pascal declaration; an operator has none.
std::string_view PascalKindWord(TMethodKind kind) {
  return kind == TMethodKind::Operator ? std::string_view{} : MethodKindText(kind);
}

// C++ calling conventions in the order they are written.
constexpr std::pair<TDirective, std::string_view> kCppCallingConventions[] = {
    {TDirective::FastCall, "__fastcall "},
    {TDirective::StdCall, "__stdcall "},
    {TDirective::Cdecl, "__cdecl "},
    {TDirective::Pascal, "__pascal "},
};

// Picks the public, protected or private picture; published and automated look public.
int ByVisibility(TVisibility v, int publicLike, int protectedImage, int privateImage) {
  if (v == TVisibility::Protected) return protectedImage;
  if (v == TVisibility::Private) return privateImage;
  return publicLike;
}

}  // namespace

// ---- TMethodDescription ----

TMethodDescription::TMethodDescription(std::string_view name, TLanguage language)
    : TCodeObject(language), Parameters(language) {
  Name = name;
}

std::string TMethodDescription::GetDisplayText(unsigned options) const {
  const bool cpp = IsCpp();
  // A C++ operator is stored by its symbol alone; "<" on its own reads as a stray
  // character in a tree, "operator <" as what the header says.
  std::string s = cpp && Kind == TMethodKind::Operator ? "operator " + Name : Name;
  if (!(options & toShowArguments)) return s;
  if (cpp || !Parameters.Empty()) s += "(" + Parameters.GetText(options) + ")";
  if (!cpp && Kind == TMethodKind::Function) s += ": " + ResultType;
  if (cpp && !ResultType.empty()) s = ResultType + " " + s;
  return s;
}

std::string TMethodDescription::GetDeclaration(unsigned options) const {
  const bool shortForm = options & toShortForm;
  const bool abstractVirtual = options & toAbstractVirtual;
  const unsigned paramOptions = shortForm ? unsigned{toNamesOnly} : 0u;
  std::string s;
  if (IsCpp()) {
    if (!shortForm) {
      if (!ResultType.empty()) s = ResultType + " ";
      if (HasDirective(TDirective::Virtual) || abstractVirtual) s = "virtual " + s;
      if (!abstractVirtual)
        for (const auto& [d, word] : kCppCallingConventions)
          if (HasDirective(d)) s += word;
    }
    if (Kind == TMethodKind::Operator) s += "operator ";
    s += Name + "(" + Parameters.GetText(paramOptions) + ")";
    if (abstractVirtual) s += " = 0";
    if (HasDirective(TDirective::Const) && !shortForm) s += " const";
    return s + ";";
  }
  if (!shortForm) s = std::string(PascalKindWord(Kind)) + " ";
  s += Name;
  if (!Parameters.Empty()) s += "(" + Parameters.GetText(paramOptions) + ")";
  if (!shortForm) {
    if (Kind == TMethodKind::Function) s += ": " + ResultType;
    if (abstractVirtual) {
      s += "; virtual";
    } else {
      if (HasDirective(TDirective::Virtual)) s += "; virtual";
      if (HasDirective(TDirective::Abstract)) s += "; abstract";
      if (HasDirective(TDirective::Override)) s += "; override";
      if (HasDirective(TDirective::Dynamic)) s += "; dynamic";
      if (HasDirective(TDirective::Message)) s += "; message " + MessageName;
    }
    if (HasDirective(TDirective::ClassMethod)) s = "Class " + s;
    static constexpr std::pair<TDirective, std::string_view> kCalling[] = {
        {TDirective::StdCall, "; stdcall"},   {TDirective::SafeCall, "; safecall"},
        {TDirective::Cdecl, "; cdecl"},       {TDirective::Pascal, "; pascal"},
        {TDirective::Register, "; register"}, {TDirective::Overload, "; overload"},
    };
    for (const auto& [d, word] : kCalling)
      if (HasDirective(d)) s += word;
    if (abstractVirtual) s += "; abstract";
  }
  return s + ";";
}

std::string TMethodDescription::GetImplementation(unsigned options) const {
  const TClassDescription* owner = GetOwnerClass();
  std::string s;
  if (IsCpp()) {
    if (!ResultType.empty()) s = ResultType + " ";
    for (const auto& [d, word] : kCppCallingConventions)
      if (HasDirective(d)) s += word;
    // The class qualifies the whole operator name: TFoo::operator ==.
    if (owner) s += owner->Name + "::";
    if (Kind == TMethodKind::Operator) s += "operator ";
    s += Name + "(" + Parameters.GetText() + ")\r\n";
    if (!(options & toHeaderOnly)) s += "{\r\n\r\n}";
    return s;
  }
  s = PascalKindWord(Kind);
  if (HasDirective(TDirective::ClassMethod)) s = "Class " + s;
  s += " ";
  if (owner) s += owner->Name + ".";
  s += Name;
  if (!Parameters.Empty()) s += "(" + Parameters.GetText() + ")";
  if (Kind == TMethodKind::Function) s += ": " + ResultType;
  s += ";\r\n";
  if (!(options & toHeaderOnly)) s += "begin\r\n\r\nend;";
  return s;
}

int TMethodDescription::GetImageIndex() const {
  switch (Kind) {
    case TMethodKind::Constructor:
      return 11;
    case TMethodKind::Destructor:
      return 12;
    case TMethodKind::Operator:
      return ByVisibility(Visibility, 17, 18, 19);
    default:
      return ByVisibility(Visibility, 5, 6, 7);
  }
}

void TMethodDescription::LoadFields(TStream& stream) {
  Kind = static_cast<TMethodKind>(LoadU8(stream));
  Visibility = static_cast<TVisibility>(LoadU8(stream));
  Directives = LoadU16(stream);
  ResultType = LoadString(stream);
  MessageName = LoadString(stream);
  Parameters.Language = Language;
  Parameters.LoadFromStream(stream);
}

void TMethodDescription::SaveFields(TStream& stream) const {
  stream.WriteU8(static_cast<uint8_t>(Kind));
  stream.WriteU8(static_cast<uint8_t>(Visibility));
  stream.WriteU16(Directives);
  stream.WriteString(ResultType);
  stream.WriteString(MessageName);
  Parameters.SaveToStream(stream);
}

// ---- TProcDescription ----

int TProcDescription::GetImageIndex() const {
  return Kind == TMethodKind::Function ? 14 : 13;
}

void TProcDescription::LoadFields(TStream& stream) {
  TMethodDescription::LoadFields(stream);
  FileName = LoadString(stream);
}

void TProcDescription::SaveFields(TStream& stream) const {
  TMethodDescription::SaveFields(stream);
  stream.WriteString(FileName);
}

// ---- TPropertyDescription ----

void TPropertyDescription::LoadFromStream(TStream& stream) {
  for (std::string* s :
       {&IndexParams, &IndexSpec, &ReadSpec, &WriteSpec, &StoredSpec, &DefaultSpec})
    *s = LoadString(stream);
}

void TPropertyDescription::SaveToStream(TStream& stream) const {
  for (const std::string* s :
       {&IndexParams, &IndexSpec, &ReadSpec, &WriteSpec, &StoredSpec, &DefaultSpec})
    stream.WriteString(*s);
}

// ---- TFieldDescription ----

void TFieldDescription::SetIsProperty(bool isProperty) {
  IsProperty = isProperty;
  if (!isProperty)
    Property.reset();
  else if (!Property)
    Property = std::make_unique<TPropertyDescription>();
}

std::string TFieldDescription::GetDisplayText(unsigned options) const {
  if (!(options & toWithType) || Trim(FieldType).empty()) return Name;
  if (IsCpp()) return FieldType + " " + Name + Modifier;
  return Name + ": " + FieldType;
}

std::string TFieldDescription::GetDeclaration(unsigned options) const {
  const TPropertyDescription* prop = IsProperty ? Property.get() : nullptr;
  const bool specifiers = prop && !(options & toNoSpecifiers);
  std::string s;
  if (IsCpp()) {
    if (prop) s = "__property ";
    s += FieldType + " " + Name;
    if (prop && !prop->IndexParams.empty()) s += " [" + prop->IndexParams + "]";
    if (specifiers) {
      std::string list;
      const std::pair<const char*, const std::string*> specs[] = {
          {"index = ", &prop->IndexSpec},
          {"read = ", &prop->ReadSpec},
          {"write = ", &prop->WriteSpec},
          {"stored = ", &prop->StoredSpec},
          {"default = ", &prop->DefaultSpec}};
      for (const auto& [key, value] : specs) {
        if (value->empty()) continue;
        if (!list.empty()) list += ", ";
        list += key + *value;
      }
      if (!list.empty()) s += " = { " + list + " }";
    }
    return s + ";";
  }
  if (prop)
    s = "property ";
  else if (!Modifier.empty())
    s = Modifier + " ";
  s += Name;
  if (prop && !prop->IndexParams.empty()) s += " [" + prop->IndexParams + "]";
  s += ": " + FieldType;
  if (specifiers) {
    const std::pair<const char*, const std::string*> specs[] = {{" Index ", &prop->IndexSpec},
                                                                {" read ", &prop->ReadSpec},
                                                                {" write ", &prop->WriteSpec},
                                                                {" stored ", &prop->StoredSpec},
                                                                {" default ", &prop->DefaultSpec}};
    for (const auto& [key, value] : specs)
      if (!value->empty()) s += key + *value;
  }
  return s + ";";
}

int TFieldDescription::GetImageIndex() const {
  return ByVisibility(Visibility, 2, 3, 4) + (IsProperty ? 6 : 0);
}

void TFieldDescription::LoadFields(TStream& stream) {
  OwnerClass = nullptr;  // given back by the class when it finishes loading
  Visibility = static_cast<TVisibility>(LoadU8(stream));
  SetIsProperty(LoadBool(stream));
  if (IsProperty) Property->LoadFromStream(stream);
  Modifier = LoadString(stream);
  FieldType = LoadString(stream);
}

void TFieldDescription::SaveFields(TStream& stream) const {
  stream.WriteU8(static_cast<uint8_t>(Visibility));
  stream.WriteBool(IsProperty);
  if (IsProperty) (Property ? *Property : TPropertyDescription{}).SaveToStream(stream);
  stream.WriteString(Modifier);
  stream.WriteString(FieldType);
}

// ---- TMethodDescriptionList ----

TMethodDescriptionList::TMethodDescriptionList(TLanguage language, TClassDescription* ownerClass)
    : Index(true, TDuplicates::Accept, IsCpp(language)),
      OwnerClass(ownerClass),
      Language(language) {}

TMethodDescriptionList::~TMethodDescriptionList() {
  Clear();
}

TMethodDescription* TMethodDescriptionList::Add(std::unique_ptr<TMethodDescription> method) {
  if (IsReference || !method) return nullptr;
  Index.Add(method->Name, method.get());
  return method.release();
}

void TMethodDescriptionList::Delete(int i) {
  if (i < 0 || i >= Count()) return;
  TMethodDescription* m = Items(i);
  Index.Delete(i);
  if (!IsReference) delete m;
}

int TMethodDescriptionList::IndexOfName(std::string_view name) const {
  int i;
  return Index.Find(name, i) ? i : -1;
}

TMethodDescription* TMethodDescriptionList::Find(std::string_view name) const {
  const int i = IndexOfName(name);
  return i >= 0 ? Items(i) : nullptr;
}

TMethodDescription* TMethodDescriptionList::Find(std::string_view name,
                                                 const TParameterList& params) const {
  return FindInRun(NameRun(name), params);
}

TMethodDescription* TMethodDescriptionList::FindInRun(TNameRun run,
                                                      const TParameterList& params) const {
  for (int i = run.First; i < run.End; ++i)
    if (Items(i)->Parameters.SameAs(params)) return Items(i);
  return nullptr;
}

bool TMethodDescriptionList::IsOverloaded(int i) const {
  if (i < 0 || i >= Count()) return false;
  return (i > 0 && Index.Compare(Index.Strings(i - 1), Index.Strings(i)) == 0) ||
         (i + 1 < Count() && Index.Compare(Index.Strings(i + 1), Index.Strings(i)) == 0);
}

TMethodDescriptionList::TNameRun TMethodDescriptionList::NameRun(std::string_view name) const {
  TNameRun run{0, 0};
  if (!Index.Find(name, run.First)) return {run.First, run.First};
  run.End = run.First + 1;
  while (run.End < Count() && Index.Compare(Index.Strings(run.End), name) == 0) ++run.End;
  return run;
}

TMethodDescription* TMethodDescriptionList::AddAt(int index,
                                                  std::unique_ptr<TMethodDescription> method) {
  if (IsReference || !method) return nullptr;
  Index.InsertFound(index, method->Name, method.get());
  return method.release();
}

TMethodDescription* TMethodDescriptionList::FindOrAdd(std::string_view name, TParameterList params,
                                                      std::string_view resultType,
                                                      TVisibility visibility, TMethodKind kind) {
  const TNameRun run = NameRun(name);
  TMethodDescription* m = FindInRun(run, params);
  // The only method of that name, not yet seen in this parse: its signature changed.
  if (!m && run.End - run.First == 1 && !Items(run.First)->Valid) m = Items(run.First);
  // After its equals, so that overloads keep the order they were declared in.
  if (!m) m = AddAt(run.End, std::make_unique<TMethodDescription>(name, Language));
  if (!m) return nullptr;
  m->Name = name;  // same index key; a Pascal name may have changed its case
  m->Parameters = std::move(params);
  m->ResultType = resultType;
  m->Visibility = visibility;
  m->Kind = kind;
  m->SetOwnerClass(OwnerClass);
  m->Valid = true;
  return m;
}

void TMethodDescriptionList::Clear() {
  if (!IsReference)
    for (int i = Count() - 1; i >= 0; --i) delete Items(i);
  Index.Clear();
}

void TMethodDescriptionList::AddReference(TMethodDescription* method) {
  if (IsReference && method) Index.Add(method->Name, method);
}

void TMethodDescriptionList::SetValid(bool valid) {
  for (int i = 0; i < Count(); ++i) Items(i)->Valid = valid;
}

void TMethodDescriptionList::RemoveWithValid(bool flag) {
  for (int i = Count() - 1; i >= 0; --i)
    if (Items(i)->Valid == flag) Delete(i);
}

void TMethodDescriptionList::NotifyAll(int index) {
  for (int i = 0; i < Count(); ++i) Items(i)->Changed(index);
}

void TMethodDescriptionList::SetOwnerClass(TClassDescription* owner) {
  OwnerClass = owner;
  for (int i = 0; i < Count(); ++i) Items(i)->SetOwnerClass(owner);
}

void TMethodDescriptionList::LoadFromStream(TStream& stream) {
  uint32_t n = LoadU32(stream);
  // A damaged count reserves no more than a block.
  Index.Reserve(static_cast<int>(std::min<uint32_t>(n, 1u << 16)));
  for (; n > 0; --n) {
    auto m = std::make_unique<TMethodDescription>("", Language);
    m->LoadFromStream(stream);
    Add(std::move(m));
  }
}

void TMethodDescriptionList::SaveToStream(TStream& stream) const {
  stream.WriteU32(static_cast<uint32_t>(Count()));
  for (int i = 0; i < Count(); ++i) Items(i)->SaveToStream(stream);
}

// ---- TRoutineList ----

TProcDescription* TRoutineList::Add(std::unique_ptr<TProcDescription> routine) {
  if (IsReference || !routine) return nullptr;
  routine->Owner = this;
  return static_cast<TProcDescription*>(TMethodDescriptionList::Add(std::move(routine)));
}

TProcDescription* TRoutineList::Find(std::string_view name, std::string_view fileName,
                                     const TParameterList& params) const {
  const TNameRun run = NameRun(name);
  for (int i = run.First; i < run.End; ++i)
    if (SameText(Items(i)->FileName, fileName) && Items(i)->Parameters.SameAs(params))
      return Items(i);
  return nullptr;
}

TProcDescription* TRoutineList::FindOrAdd(std::string_view name, std::string_view fileName,
                                          TLanguage language, TParameterList params,
                                          std::string_view resultType, TVisibility visibility,
                                          TMethodKind kind) {
  // One pass over the routines of that name finds both the exact match and, failing it,
  // the only routine of that name in that file not yet seen in this parse (its signature
  // changed).
  const TNameRun run = NameRun(name);
  TProcDescription* r = nullptr;
  TProcDescription* only = nullptr;
  int inFile = 0;
  for (int i = run.First; i < run.End && !r; ++i) {
    TProcDescription* candidate = Items(i);
    if (!SameText(candidate->FileName, fileName)) continue;
    if (candidate->Parameters.SameAs(params)) r = candidate;
    only = candidate;
    ++inFile;
  }
  if (!r && inFile == 1 && !only->Valid) r = only;
  if (!r) {
    auto fresh = std::make_unique<TProcDescription>(name, language);
    fresh->FileName = fileName;
    fresh->Owner = this;
    r = static_cast<TProcDescription*>(AddAt(run.End, std::move(fresh)));
    if (!r) return nullptr;
  }
  r->Parameters = std::move(params);
  r->ResultType = resultType;
  r->Visibility = visibility;
  r->Kind = kind;
  r->Valid = true;
  return r;
}

void TRoutineList::Mark(std::optional<std::string_view> unitName, bool flag) {
  for (int i = 0; i < Count(); ++i)
    if (!unitName || SameText(Items(i)->FileName, *unitName)) Items(i)->Valid = flag;
}

void TRoutineList::Sweep(bool flag, std::optional<std::string_view> unitName) {
  for (int i = Count() - 1; i >= 0; --i) {
    const TProcDescription* r = Items(i);
    if ((!unitName || SameText(r->FileName, *unitName)) && r->Valid == flag) Delete(i);
  }
}

void TRoutineList::LoadFromStream(TStream& stream) {
  for (uint32_t n = LoadU32(stream); n > 0; --n) {
    const auto language = static_cast<TLanguage>(LoadU8(stream));
    auto r = std::make_unique<TProcDescription>("", language);
    r->LoadFromStream(stream);
    Add(std::move(r));
  }
}

void TRoutineList::SaveToStream(TStream& stream) const {
  stream.WriteU32(static_cast<uint32_t>(Count()));
  for (int i = 0; i < Count(); ++i) {
    stream.WriteU8(static_cast<uint8_t>(Items(i)->Language));
    Items(i)->SaveToStream(stream);
  }
}

// ---- TFieldDescriptionList ----

TFieldDescription* TFieldDescriptionList::Add(std::unique_ptr<TFieldDescription> field) {
  items_.push_back(std::move(field));
  return items_.back().get();
}

void TFieldDescriptionList::Delete(int i) {
  if (i >= 0 && i < Count()) items_.erase(items_.begin() + i);
}

int TFieldDescriptionList::IndexOf(const TFieldDescription* field) const {
  for (int i = 0; i < Count(); ++i)
    if (items_[i].get() == field) return i;
  return -1;
}

TFieldDescription* TFieldDescriptionList::Find(std::string_view name) const {
  for (const auto& f : items_)
    if (SameName(f->Name, name, Language)) return f.get();
  return nullptr;
}

TFieldDescription* TFieldDescriptionList::FindOrAdd(std::string_view name, std::string_view type,
                                                    TVisibility visibility) {
  TFieldDescription* f = Find(name);
  if (!f) {
    f = Add(std::make_unique<TFieldDescription>(OwnerClass, Language));
    f->Name = name;
  }
  f->FieldType = type;
  f->Visibility = visibility;
  f->OwnerClass = OwnerClass;
  f->Valid = true;
  return f;
}

std::vector<TFieldDescription*> TFieldDescriptionList::AddDeclaratorList(std::string_view text,
                                                                         TVisibility visibility) {
  // The parameter reader already splits declarators the way both languages write them.
  TParameterList declarators(Language);
  declarators.Parse(text);
  std::vector<TFieldDescription*> result;
  if (!IsCpp(Language)) {
    for (const TParameter& d : declarators.Items)
      if (!d.Name.empty()) result.push_back(FindOrAdd(d.Name, d.ParamType, visibility));
    return result;
  }
  // C++: the first declarator carries the type; the later ones only their own `*`/`&`
  // ("*b" reads as type "*", name "b"; a bare "c" as an unnamed type "c").
  std::string base;
  for (int i = 0; i < declarators.Count(); ++i) {
    const TParameter& d = declarators[i];
    std::string name = d.Name, type;
    if (i == 0) {
      type = d.ParamType;
      base = type;
      while (!base.empty() && (base.back() == '*' || base.back() == '&' || base.back() == ' '))
        base.pop_back();
    } else if (name.empty()) {
      name = d.ParamType;
      type = base;
    } else {
      type = base + " " + d.ParamType;
    }
    if (name.empty()) continue;
    TFieldDescription* f = FindOrAdd(name, type, visibility);
    f->Modifier = d.Modifier;
    result.push_back(f);
  }
  return result;
}

void TFieldDescriptionList::SetValid(bool valid) {
  for (auto& f : items_) f->Valid = valid;
}

void TFieldDescriptionList::RemoveWithValid(bool flag) {
  for (int i = Count() - 1; i >= 0; --i)
    if (items_[i]->Valid == flag) Delete(i);
}

void TFieldDescriptionList::NotifyAll(int index) {
  for (auto& f : items_) f->Changed(index);
}

void TFieldDescriptionList::SetOwnerClass(TClassDescription* owner) {
  OwnerClass = owner;
  for (auto& f : items_) f->OwnerClass = owner;
}

void TFieldDescriptionList::LoadFromStream(TStream& stream) {
  uint32_t n = LoadU32(stream);
  // A field record takes more than 32 bytes, so a damaged count reserves no more than the
  // stream could hold.
  items_.reserve(items_.size() + std::min<int64_t>(n, stream.Remaining() / 32));
  for (; n > 0; --n) {
    auto f = std::make_unique<TFieldDescription>(nullptr, Language);
    f->LoadFromStream(stream);
    items_.push_back(std::move(f));
  }
}

void TFieldDescriptionList::SaveToStream(TStream& stream) const {
  stream.WriteU32(static_cast<uint32_t>(items_.size()));
  for (const auto& f : items_) f->SaveToStream(stream);
}

}  // namespace velmora
