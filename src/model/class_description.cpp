#include "model/class_description.h"

#include "model/class_info_error.h"
#include "model/class_list.h"
#include "model/domains.h"
#include "support/ansi.h"
#include "support/stream.h"

namespace velmora {
namespace {

// Deeper than any real source nests classes; a file claiming more is damaged, and the
// loader's recursion must not be the one to find the stack's end.
constexpr int kMaxLoadNesting = 256;
thread_local int loadNesting = 0;

struct NestingGuard {
  NestingGuard() {
    if (loadNesting >= kMaxLoadNesting)
      throw EClassInfoFileError(kNestedTooDeeply, TClassInfoErrorKind::NothingUsable);
    ++loadNesting;
  }
  ~NestingGuard() { --loadNesting; }
};

}  // namespace

// ---- TClassAncestor, TClassAncestorList ----

void TClassAncestor::LoadFromStream(TStream& stream) {
  Access = static_cast<TVisibility>(LoadU8(stream));
  AncestorName = LoadString(stream);
}

void TClassAncestor::SaveToStream(TStream& stream) const {
  stream.WriteU8(static_cast<uint8_t>(Access));
  stream.WriteString(AncestorName);
}

void TClassAncestorList::LoadFromStream(TStream& stream) {
  Items.clear();
  for (uint32_t n = LoadU32(stream); n > 0; --n) Items.emplace_back().LoadFromStream(stream);
}

void TClassAncestorList::SaveToStream(TStream& stream) const {
  stream.WriteU32(static_cast<uint32_t>(Items.size()));
  for (const TClassAncestor& a : Items) a.SaveToStream(stream);
}

// ---- TPositionInfo ----

void TPositionInfo::Reset() {
  for (auto& visibility : Blocks) visibility.fill(Positions{});
  Macros.clear();
}

TPositionInfo::Positions& TPositionInfo::At(TVisibility visibility, Block block) {
  const auto v = static_cast<size_t>(visibility);
  if (v >= Blocks.size() || static_cast<size_t>(block) >= 4) {
    scratch_ = Positions{};
    return scratch_;
  }
  return Blocks[v][block];
}

const TPositionInfo::Positions& TPositionInfo::At(TVisibility visibility, Block block) const {
  static const Positions kUnknown;
  const auto v = static_cast<size_t>(visibility);
  if (v >= Blocks.size() || static_cast<size_t>(block) >= 4) return kUnknown;
  return Blocks[v][block];
}

bool TPositionInfo::OfferMacro(std::string_view name, int32_t startLine, int32_t startOffset,
                               int32_t endLine, int32_t endOffset) {
  if (name != "BEGIN_MESSAGE_MAP" && name != "END_MESSAGE_MAP" && name != "MESSAGE_HANDLER" &&
      name != "VCL_MESSAGE_HANDLER")
    return false;
  Macros.push_back(Macro{std::string(name), startLine, startOffset, endLine, endOffset});
  return true;
}

const TPositionInfo::Macro* TPositionInfo::LastMacro(std::string_view name) const {
  for (auto it = Macros.rbegin(); it != Macros.rend(); ++it)
    if (it->Name == name) return &*it;
  return nullptr;
}

// ---- TClassDescription ----

TClassDescription::TClassDescription(TCommonClassList* ownerList, TLanguage language)
    : TCodeObject(language),
      OwnerList(ownerList),
      Ancestors(language),
      DefaultAncestor(velmora::IsCpp(language) ? "" : "TObject"),
      Methods(language, this),
      Fields(this, language) {}

// A domain keeps plain pointers to its classes; whichever way a class goes, it leaves no
// dangling entry behind.
TClassDescription::~TClassDescription() {
  if (Domain) Domain->RemoveClass(this, false);
}

TCommonClassList* TClassDescription::NestedClasses() {
  if (!nestedClasses_)
    nestedClasses_ = std::make_unique<TCommonClassList>(OwnerList ? OwnerList->RootList : nullptr,
                                                        OwnerList, this);
  return nestedClasses_.get();
}

bool TClassDescription::HasNestedClasses() const {
  return nestedClasses_ && nestedClasses_->Count() > 0;
}

std::string TClassDescription::GetDirectAncestorName() const {
  return Ancestors.Count() > 0 ? Ancestors[0].AncestorName : DefaultAncestor;
}

std::string TClassDescription::GetHeader() const {
  if (!IsCpp()) {
    std::string s = Name + " = Class";
    const std::string ancestor = GetDirectAncestorName();
    if (!Trim(ancestor).empty()) s += "(" + ancestor + ")";
    return s;
  }
  std::string s;
  if (ClassKind == TClassKind::Template) s = "template <" + TemplateParams + "> ";
  s += "class " + Name;
  for (int i = 0; i < Ancestors.Count(); ++i) {
    s += i == 0 ? " : " : ", ";
    s += std::string(VisibilityText(Ancestors[i].Access, TLanguage::Cpp)) + " " +
         Ancestors[i].AncestorName;
  }
  return s;
}

int TClassDescription::GetImageIndex(const TInheritsFromFunc& inheritsFrom) const {
  switch (ClassKind) {
    case TClassKind::Interface:
    case TClassKind::DispInterface:
      return 15;
    case TClassKind::Template:
      return 20;
    case TClassKind::Struct:
      return 21;
    default:
      return inheritsFrom && inheritsFrom(*this, "TForm") ? 16 : 1;
  }
}

void TClassDescription::SetValid(bool valid, bool recurse) {
  if (recurse && nestedClasses_)
    for (int i = 0; i < nestedClasses_->Count(); ++i)
      nestedClasses_->Items(i)->SetValid(valid, true);
  Valid = valid;
  Fields.SetValid(valid);
  Methods.SetValid(valid);
}

void TClassDescription::RemoveWithValid(bool flag) {
  if (nestedClasses_) nestedClasses_->Sweep(flag, std::nullopt);
  Fields.RemoveWithValid(flag);
  Methods.RemoveWithValid(flag);
}

void TClassDescription::NotifyAll(int index) {
  Changed(index);
  if (nestedClasses_) nestedClasses_->NotifyAll(index);
  Fields.NotifyAll(index);
  Methods.NotifyAll(index);
}

TPositionInfo* TClassDescription::GetPositionInfo(bool create) {
  if (!positionInfo_ && create) positionInfo_ = std::make_unique<TPositionInfo>();
  return positionInfo_.get();
}

void TClassDescription::LoadFields(TStream& stream) {
  NestingGuard guard;
  Ancestors.LoadFromStream(stream);
  UnitName = LoadString(stream);
  ClassKind = static_cast<TClassKind>(LoadU8(stream));
  TemplateParams = LoadString(stream);
  Guid = LoadString(stream);
  Methods.LoadFromStream(stream);
  Fields.LoadFromStream(stream);
  Methods.SetOwnerClass(this);
  Fields.SetOwnerClass(this);
  if (LoadBool(stream)) NestedClasses()->LoadFromStream(stream);
}

void TClassDescription::SaveFields(TStream& stream) const {
  Ancestors.SaveToStream(stream);
  stream.WriteString(UnitName);
  stream.WriteU8(static_cast<uint8_t>(ClassKind));
  stream.WriteString(TemplateParams);
  stream.WriteString(Guid);
  Methods.SaveToStream(stream);
  Fields.SaveToStream(stream);
  const bool nested = HasNestedClasses();
  stream.WriteBool(nested);
  if (nested) nestedClasses_->SaveToStream(stream);
}

}  // namespace velmora
