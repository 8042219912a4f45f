#include "views/class_view.h"

#include <mutex>

#include "model/class_list.h"
#include "model/filters.h"
#include "settings/vl_settings.h"
#include "support/ansi.h"

namespace velmora {

namespace {

// Holds the Lock of both class lists (each once; they may be the same list) while the
// view walks them.
class TModelLock {
 public:
  TModelLock(TClasslist* a, TClasslist* b) {
    if (a) first_ = std::unique_lock(a->Lock);
    if (b && b != a) second_ = std::unique_lock(b->Lock);
  }

 private:
  std::unique_lock<std::recursive_mutex> first_;
  std::unique_lock<std::recursive_mutex> second_;
};

int MemberCategory(const TFieldDescription& field) {
  return field.IsProperty ? mcProperties : mcFields;
}

}  // namespace

TClassView::TClassView(const TVLSettings& settings, TRepresentationManager& manager)
    : settings_(settings), manager_(manager) {
  manager_.AddSlot(this);
  BuildRoots();
}

TClassView::~TClassView() {
  manager_.RemoveSlot(Slot());
}

void TClassView::BuildRoots() {
  for (auto& page : roots_)
    for (auto& root : page) {
      if (!root) {
        root = NewNode(TNodeKind::Root, nullptr);
        root->ChildrenInserted = true;
        continue;
      }
      std::vector<std::unique_ptr<TClassViewNode>> gone = std::move(root->Children);
      root->Children.clear();
      for (auto& child : gone) Removing(*child);
      Changed(*root);
    }
}

void TClassView::SetSources(const TClassViewSources& sources) {
  sources_ = sources;
  // One object has one node per view, so one list cannot fill both roots.
  if (sources_.ExternalClasses == sources_.ProjectClasses) sources_.ExternalClasses = nullptr;
  if (sources_.ExternalFiles == sources_.ProjectFiles) sources_.ExternalFiles = nullptr;
  BuildRoots();
  Refresh();
}

void TClassView::SetClassFilter(const TFilterDescription* filter) {
  classFilter_ = filter;
  Refresh();
}

std::vector<std::string> TClassView::ClassFilterEntries() const {
  std::vector<std::string> entries{kAllClassesUnfiltered};
  const TFilterList& filters = settings_.FilterList();
  for (int i = 0; i < filters.Count(); ++i) entries.push_back(filters.Name(i));
  return entries;
}

std::unique_ptr<TClassViewNode> TClassView::NewNode(TNodeKind kind, TRepObject* object) {
  auto node = std::make_unique<TClassViewNode>(kind, object, nextId_++);
  nodes_.emplace(node->Id, node.get());
  if (object) {
    TRepresentation* rep = object->Representation(Slot());
    rep->SetData(node->Id);
    rep->SetFlag(0);
  }
  return node;
}

TClassViewNode* TClassView::NodeOf(const TRepresentedObject& object) const {
  if (!object.HasRepresentations()) return nullptr;
  // The table exists, so asking for it creates nothing.
  const TRepresentation* rep =
      const_cast<TRepresentedObject&>(object).Representations().Peek(Slot());
  if (!rep || rep->Data() == 0) return nullptr;
  auto it = nodes_.find(rep->Data());
  if (it == nodes_.end()) return nullptr;
  // Ids are never reused, so a node found by the object's own id shows that object; the
  // comparison guards against an entry written by someone else.
  return it->second->Object == &object ? it->second : nullptr;
}

void TClassView::Forget(TClassViewNode& node) {
  nodes_.erase(node.Id);
  for (auto& child : node.Children) Forget(*child);
}

void TClassView::Removing(TClassViewNode& node) {
  if (listener_) listener_->NodeRemoving(node);
  Forget(node);
}

void TClassView::Changed(TClassViewNode& parent) {
  if (listener_) listener_->ChildrenChanged(parent);
}

void TClassView::SetInsertedFlag(TClassViewNode& node, bool inserted) {
  node.ChildrenInserted = inserted;
  if (node.Object) node.Object->Representation(Slot())->SetFlag(inserted ? 1 : 0);
}

// ---- what each node holds ----

bool TClassView::DomainsShown(const TClasslist* list) const {
  if (!list) return false;
  return list == sources_.ProjectClasses ? settings_.DomainsInternal : settings_.DomainsExternal;
}

TClassView::TRootIndex TClassView::RootIndexOf(const TClassViewNode& node) const {
  const TClassViewNode* n = &node;
  while (n->Parent) n = n->Parent;
  for (const auto& page : roots_)
    if (page[riExternal].get() == n) return riExternal;
  return riProject;
}

const TClasslist* TClassView::OtherList(const TClassViewNode& node) const {
  return RootIndexOf(node) == riProject ? sources_.ExternalClasses : sources_.ProjectClasses;
}

bool TClassView::PassesClassFilter(const TClassDescription& cls, TRootIndex root) const {
  if (!classFilter_) return true;
  const bool applies =
      root == riProject ? classFilter_->ApplyToProject : classFilter_->ApplyToExternals;
  return !applies || classFilter_->Passes(cls);
}

bool TClassView::HasMembers(const TClassDescription& cls) const {
  return cls.Fields.Count() > 0 || cls.Methods.Count() > 0;
}

std::vector<TClassView::TWanted> TClassView::RootChildren(TRootIndex index) const {
  std::vector<TWanted> wanted;
  TClasslist* list = index == riProject ? sources_.ProjectClasses : sources_.ExternalClasses;
  if (!list) return wanted;
  const bool domains = DomainsShown(list);
  auto addDomains = [&] {
    if (!domains) return;
    for (int i = 0; i < list->Domains.Count(); ++i)
      wanted.push_back({list->Domains.Items(i), TNodeKind::Domain});
  };
  if (settings_.DomainsBefore) addDomains();
  for (int i = 0; i < list->Count(); ++i) {
    TClassDescription* cls = list->Items(i);
    // A class in a shown domain appears under its domain only: one node per object.
    if (!cls->Valid || (domains && cls->Domain) || !PassesClassFilter(*cls, index)) continue;
    wanted.push_back({cls, TNodeKind::Class});
  }
  if (!settings_.DomainsBefore) addDomains();
  const bool globals =
      index == riProject ? settings_.UseGlobalsProject : settings_.UseGlobalsExternal;
  if (globals && list->Routines.Count() > 0)
    wanted.push_back({&list->Routines, TNodeKind::RoutineList});
  return wanted;
}

std::vector<TClassView::TWanted> TClassView::FileChildren(TRootIndex index) const {
  std::vector<TWanted> wanted;
  const TFilesList* files = index == riProject ? sources_.ProjectFiles : sources_.ExternalFiles;
  if (!files) return wanted;
  for (int i = 0; i < files->Count(); ++i) wanted.push_back({files->Items(i), TNodeKind::File});
  return wanted;
}

std::vector<TClassView::TWanted> TClassView::ClassChildren(TClassDescription& cls) const {
  std::vector<TWanted> wanted;
  if (const TCommonClassList* nested = cls.NestedClassesIfAny())
    for (int i = 0; i < nested->Count(); ++i)
      if (nested->Items(i)->Valid) wanted.push_back({nested->Items(i), TNodeKind::Class});
  const TClassMemberFilter& filter = settings_.MemberFilter();
  for (int i = 0; i < cls.Fields.Count(); ++i) {
    TFieldDescription* field = cls.Fields.Items(i);
    if (field->Valid && filter.IsShown(MemberCategory(*field), field->Visibility))
      wanted.push_back({field, field->IsProperty ? TNodeKind::Property : TNodeKind::Field});
  }
  for (int i = 0; i < cls.Methods.Count(); ++i) {
    TMethodDescription* method = cls.Methods.Items(i);
    if (method->Valid && filter.IsShown(mcMethods, method->Visibility))
      wanted.push_back({method, TNodeKind::Method});
  }
  return wanted;
}

std::vector<TClassView::TWanted> TClassView::DomainChildren(TClassViewNode& node) const {
  std::vector<TWanted> wanted;
  const TRootIndex root = RootIndexOf(node);
  for (TClassDescription* cls : static_cast<TDomain&>(*node.Object).Classes)
    if (cls->Valid && PassesClassFilter(*cls, root)) wanted.push_back({cls, TNodeKind::Class});
  return wanted;
}

std::vector<TClassView::TWanted> TClassView::RoutineChildren(TClassViewNode& node) const {
  std::vector<TWanted> wanted;
  const auto& routines = static_cast<TRoutineList&>(*node.Object);
  for (int i = 0; i < routines.Count(); ++i)
    if (routines.Items(i)->Valid) wanted.push_back({routines.Items(i), TNodeKind::Routine});
  return wanted;
}

std::vector<TClassView::TWanted> TClassView::ChildrenOf(TClassViewNode& node) const {
  switch (node.Kind) {
    case TNodeKind::Class:
      return ClassChildren(static_cast<TClassDescription&>(*node.Object));
    case TNodeKind::Domain:
      return DomainChildren(node);
    case TNodeKind::RoutineList:
      return RoutineChildren(node);
    default:
      return {};
  }
}

bool TClassView::Expandable(const TClassViewNode& node) const {
  switch (node.Kind) {
    case TNodeKind::Class: {
      const auto& cls = static_cast<const TClassDescription&>(*node.Object);
      return HasMembers(cls) || cls.HasNestedClasses();
    }
    case TNodeKind::Domain:
      return static_cast<const TDomain&>(*node.Object).Count() > 0;
    case TNodeKind::RoutineList:
      return static_cast<const TRoutineList&>(*node.Object).Count() > 0;
    default:
      return false;
  }
}

// ---- expanding ----

TExpandResult TClassView::Expand(TClassViewNode& node) {
  if (node.ChildrenInserted) return TExpandResult::Inserted;  // roots are always filled
  TModelLock lock(sources_.ProjectClasses, sources_.ExternalClasses);
  if (!Expandable(node)) return TExpandResult::NothingToExpand;
  const std::vector<TWanted> wanted = ChildrenOf(node);
  if (wanted.empty() && node.Kind == TNodeKind::Class &&
      HasMembers(static_cast<const TClassDescription&>(*node.Object))) {
    node.AllMembersFiltered = true;
    node.HasExpandMark = true;
    return TExpandResult::AllFiltered;
  }
  node.AllMembersFiltered = false;
  SetInsertedFlag(node, true);
  Reconcile(node, wanted);
  node.HasExpandMark = !node.Children.empty();
  return TExpandResult::Inserted;
}

void TClassView::ExpandAll(TClassViewNode& node) {
  Expand(node);
  for (auto& child : node.Children) ExpandAll(*child);
}

void TClassView::ExpandAll() {
  for (auto& page : roots_)
    for (auto& root : page) ExpandAll(*root);
}

// ---- refreshing ----

void TClassView::Reconcile(TClassViewNode& parent, const std::vector<TWanted>& wanted) {
  std::vector<std::unique_ptr<TClassViewNode>> old = std::move(parent.Children);
  parent.Children.clear();
  parent.Children.reserve(wanted.size());
  std::unordered_map<const TClassViewNode*, size_t> where;
  where.reserve(old.size());
  for (size_t i = 0; i < old.size(); ++i) where.emplace(old[i].get(), i);
  for (const TWanted& w : wanted) {
    std::unique_ptr<TClassViewNode> node;
    // NodeOf reads the live object's own entry, so a node is reused only for the very
    // object it showed; nodes of freed objects are never found and never read.
    if (TClassViewNode* existing = NodeOf(*w.Object); existing && existing->Kind == w.Kind) {
      if (auto it = where.find(existing); it != where.end()) {
        node = std::move(old[it->second]);
        where.erase(it);
      }
    }
    if (!node) node = NewNode(w.Kind, w.Object);
    node->Parent = &parent;
    TClassViewNode& kept = *node;
    parent.Children.push_back(std::move(node));
    Renew(kept);
  }
  // What was not reused goes, in its old order so listeners hear a stable sequence.
  for (auto& node : old)
    if (node) Removing(*node);
  Changed(parent);
}

void TClassView::Renew(TClassViewNode& node) {
  DescribeNode(node, forms_, OtherList(node));
  if (node.ChildrenInserted) {
    RefreshChildren(node);
  } else {
    node.HasExpandMark = Expandable(node);
  }
}

void TClassView::RefreshChildren(TClassViewNode& node) {
  const std::vector<TWanted> wanted = ChildrenOf(node);
  if (wanted.empty() && Expandable(node)) {
    // Members exist but none is visible any more: collapse with the expand mark, so the
    // next expansion tells the user why it stays empty.
    std::vector<std::unique_ptr<TClassViewNode>> gone = std::move(node.Children);
    node.Children.clear();
    for (auto& child : gone) Removing(*child);
    Changed(node);
    SetInsertedFlag(node, false);
    node.HasExpandMark = true;
    return;
  }
  Reconcile(node, wanted);
  node.HasExpandMark = !node.Children.empty();
}

void TClassView::Refresh() {
  TModelLock lock(sources_.ProjectClasses, sources_.ExternalClasses);
  forms_ = TDisplayForms::FromSettings(settings_);
  const std::string& name = sources_.ProjectName;
  roots_[pgClasses][riProject]->Text = name.empty() ? "Classes" : name + " - Classes";
  roots_[pgClasses][riExternal]->Text = "External Classes";
  roots_[pgFiles][riProject]->Text = name.empty() ? "Files" : name + " - Files";
  roots_[pgFiles][riExternal]->Text = "External Files";
  for (TRootIndex index : {riProject, riExternal}) {
    Reconcile(*roots_[pgClasses][index], RootChildren(index));
    Reconcile(*roots_[pgFiles][index], FileChildren(index));
  }
  for (auto& page : roots_)
    for (auto& root : page) root->HasExpandMark = !root->Children.empty();
  for (TClasslist* list : {sources_.ProjectClasses, sources_.ExternalClasses})
    if (list) ResetStale(*list);
}

// ---- representations ----

void TClassView::ResetEntry(TRepresentedObject& object) {
  if (!object.HasRepresentations()) return;
  if (TRepresentation* rep = object.Representations().Peek(Slot())) rep->Reset();
}

void TClassView::ResetIfStale(TRepresentedObject& object) {
  if (!object.HasRepresentations()) return;
  TRepresentation* rep = object.Representations().Peek(Slot());
  if (rep && rep->Data() != 0 && !NodeOf(object)) rep->Reset();
}

void TClassView::ResetClassEntries(TClassDescription& cls, bool onlyStale) {
  auto reset = [&](TRepresentedObject& o) { onlyStale ? ResetIfStale(o) : ResetEntry(o); };
  reset(cls);
  if (TCommonClassList* nested = cls.NestedClassesIfAny())
    for (int i = 0; i < nested->Count(); ++i) ResetClassEntries(*nested->Items(i), onlyStale);
  for (int i = 0; i < cls.Fields.Count(); ++i) reset(*cls.Fields.Items(i));
  for (int i = 0; i < cls.Methods.Count(); ++i) reset(*cls.Methods.Items(i));
}

void TClassView::ResetStale(TClasslist& list) {
  // A node that went (filtered out, moved, or under a collapsed class) leaves a number in
  // its object's entry; clearing it keeps the rule that an entry names a live node.
  for (int i = 0; i < list.Count(); ++i) ResetClassEntries(*list.Items(i), true);
  for (int i = 0; i < list.Domains.Count(); ++i) ResetIfStale(*list.Domains.Items(i));
  ResetIfStale(list.Routines);
  for (int i = 0; i < list.Routines.Count(); ++i) ResetIfStale(*list.Routines.Items(i));
}

void TClassView::Drop(TClassViewNode& node) {
  TClassViewNode* parent = node.Parent;
  if (!parent) return;
  const int index = parent->IndexOf(&node);
  if (index < 0) return;
  std::unique_ptr<TClassViewNode> gone = std::move(parent->Children[index]);
  parent->Children.erase(parent->Children.begin() + index);
  Removing(*gone);
  Changed(*parent);
  parent->HasExpandMark = !parent->Children.empty() || (parent->Object && Expandable(*parent));
}

void TClassView::RemoveFileObjects(std::string_view fileName) {
  TModelLock lock(sources_.ProjectClasses, sources_.ExternalClasses);
  for (TClasslist* list : {sources_.ProjectClasses, sources_.ExternalClasses}) {
    if (!list) continue;
    for (int i = 0; i < list->Count(); ++i) RemoveClassIfIn(*list->Items(i), fileName);
    for (int i = 0; i < list->Routines.Count(); ++i) {
      TProcDescription* routine = list->Routines.Items(i);
      if (!SameText(routine->FileName, fileName)) continue;
      if (TClassViewNode* node = NodeOf(*routine)) Drop(*node);
      ResetEntry(*routine);
    }
  }
}

void TClassView::RemoveClassIfIn(TClassDescription& cls, std::string_view fileName) {
  if (SameText(cls.UnitName, fileName)) {
    if (TClassViewNode* node = NodeOf(cls)) Drop(*node);
    ResetClassEntries(cls, false);
    return;
  }
  if (TCommonClassList* nested = cls.NestedClassesIfAny())
    for (int i = 0; i < nested->Count(); ++i) RemoveClassIfIn(*nested->Items(i), fileName);
}

}  // namespace velmora
