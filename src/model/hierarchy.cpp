#include "model/hierarchy.h"

#include <algorithm>

#include "model/class_list.h"
#include "support/ansi.h"

namespace velmora {

// ---- TClassHierarchyNode ----

TClassDescription* TClassHierarchyNode::Class() const {
  return static_cast<TClassDescription*>(Data);
}

std::string TClassHierarchyNode::GetNodeName() const {
  return Data ? Class()->Name : std::string();
}

TBaseHierarchyNode* TClassHierarchyNode::FindParentNode() const {
  if (!Data || !Hierarchy) return nullptr;
  return Hierarchy->FindNode(Class()->GetDirectAncestorName());
}

// ---- TBaseHierarchy ----

TBaseHierarchy::TBaseHierarchy() : root_(std::make_unique<TBaseHierarchyNode>(this)) {}

TBaseHierarchy::~TBaseHierarchy() = default;

void TBaseHierarchy::Clear() {
  root_->Children.clear();
  AllNodes.clear();
  nodes_.clear();
}

void TBaseHierarchy::Build(const std::vector<TRepObject*>& objects, const TNodeFactory& factory) {
  Clear();
  nodes_.reserve(objects.size());
  for (TRepObject* object : objects) {
    std::unique_ptr<TBaseHierarchyNode> node = factory(this);
    node->SetData(object);
    AllNodes.push_back(node.get());
    nodes_.push_back(std::move(node));
  }
  // Names are asked for once; a descendant's GetNodeName may build its text each time.
  std::vector<std::pair<std::string, TBaseHierarchyNode*>> named;
  named.reserve(AllNodes.size());
  for (TBaseHierarchyNode* node : AllNodes) named.emplace_back(node->GetNodeName(), node);
  std::stable_sort(named.begin(), named.end(),
                   [](const auto& a, const auto& b) { return CompareText(a.first, b.first) < 0; });
  for (size_t i = 0; i < named.size(); ++i) AllNodes[i] = named[i].second;

  for (TBaseHierarchyNode* node : AllNodes) {
    TBaseHierarchyNode* parent = node->FindParentNode();
    if (!parent || parent == node) parent = root_.get();
    node->ParentNode = parent;
    parent->Children.push_back(node);
  }
}

void TBaseHierarchy::BuildFromClasses(const TCommonClassList& list) {
  std::vector<TRepObject*> classes;
  classes.reserve(static_cast<size_t>(list.Count()));
  for (int i = 0; i < list.Count(); ++i) classes.push_back(list.Items(i));
  Build(classes, [](TBaseHierarchy* h) { return std::make_unique<TClassHierarchyNode>(h); });
}

TBaseHierarchyNode* TBaseHierarchy::FindNode(std::string_view name) const {
  const auto it = std::lower_bound(AllNodes.begin(), AllNodes.end(), name,
                                   [](const TBaseHierarchyNode* node, std::string_view n) {
                                     return CompareText(node->GetNodeName(), n) < 0;
                                   });
  return it != AllNodes.end() && SameText((*it)->GetNodeName(), name) ? *it : nullptr;
}

void TBaseHierarchy::Sort(const TNodeLess& less) {
  const TNodeLess byName = [](const TBaseHierarchyNode& a, const TBaseHierarchyNode& b) {
    return CompareText(a.GetNodeName(), b.GetNodeName()) < 0;
  };
  const TNodeLess& order = less ? less : byName;
  // Iterative: a long single chain of ancestors must not be limited by the stack.
  std::vector<TBaseHierarchyNode*> pending{root_.get()};
  while (!pending.empty()) {
    TBaseHierarchyNode* node = pending.back();
    pending.pop_back();
    std::stable_sort(node->Children.begin(), node->Children.end(),
                     [&order](const TBaseHierarchyNode* a, const TBaseHierarchyNode* b) {
                       return order(*a, *b);
                     });
    pending.insert(pending.end(), node->Children.begin(), node->Children.end());
  }
}

}  // namespace velmora
