// The hierarchy tree the hierarchy views show: one node per object, each under the node
// of its parent (for classes, the direct ancestor), objects without a parent under a root
// without data.
//
// Ownership: the tree owns every node it built; Children and ParentNode are plain links.
// Ancestors that form a cycle (A from B, B from A) hang under each other and are not
// reachable from the root; owning the nodes in the tree rather than through the child
// links still frees them.
//
// Threads: built and read on the main thread while the class list's lock is held.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

class TBaseHierarchy;
class TClassDescription;
class TCommonClassList;
class TRepObject;

class TBaseHierarchyNode {
 public:
  explicit TBaseHierarchyNode(TBaseHierarchy* hierarchy) : Hierarchy(hierarchy) {}
  virtual ~TBaseHierarchyNode() = default;
  TBaseHierarchyNode(const TBaseHierarchyNode&) = delete;
  TBaseHierarchyNode& operator=(const TBaseHierarchyNode&) = delete;

  /// The name the tree sorts and looks nodes up by; empty here.
  virtual std::string GetNodeName() const { return {}; }
  virtual void SetData(TRepObject* data) { Data = data; }
  /// The node this one belongs under, or null; here the node's current parent.
  virtual TBaseHierarchyNode* FindParentNode() const { return ParentNode; }

  TBaseHierarchy* Hierarchy;
  TBaseHierarchyNode* ParentNode = nullptr;   ///< the root for a top node
  std::vector<TBaseHierarchyNode*> Children;  ///< in tree order
  TRepObject* Data = nullptr;                 ///< not owned
};

/// A class in the tree: named after the class, under the node of its direct ancestor.
class TClassHierarchyNode : public TBaseHierarchyNode {
 public:
  using TBaseHierarchyNode::TBaseHierarchyNode;

  TClassDescription* Class() const;
  std::string GetNodeName() const override;
  /// The first node (in AllNodes order) named like the class's direct ancestor.
  TBaseHierarchyNode* FindParentNode() const override;
};

class TBaseHierarchy {
 public:
  /// Makes the node for one object (a class reference in other words).
  using TNodeFactory = std::function<std::unique_ptr<TBaseHierarchyNode>(TBaseHierarchy*)>;
  /// Whether `a` goes before `b` among siblings.
  using TNodeLess = std::function<bool(const TBaseHierarchyNode&, const TBaseHierarchyNode&)>;

  TBaseHierarchy();
  ~TBaseHierarchy();
  TBaseHierarchy(const TBaseHierarchy&) = delete;
  TBaseHierarchy& operator=(const TBaseHierarchy&) = delete;

  /// Frees every node but the root and empties AllNodes.
  void Clear();
  /// Clears, makes one node per object with `factory`, sorts AllNodes by name
  /// (case-insensitive, equal names in the order of `objects`), then places each node,
  /// in that order, under FindParentNode, or under the root when it has none or is its
  /// own parent.
  void Build(const std::vector<TRepObject*>& objects, const TNodeFactory& factory);
  /// Build with a TClassHierarchyNode per class of `list`.
  void BuildFromClasses(const TCommonClassList& list);
  /// The first node of that name (case-insensitive), or null.
  TBaseHierarchyNode* FindNode(std::string_view name) const;
  /// Sorts every Children list, from the root down; by name (case-insensitive) when
  /// `less` is empty. Equal nodes keep their order.
  void Sort(const TNodeLess& less = {});

  TBaseHierarchyNode* Root() const { return root_.get(); }
  /// Every node but the root, sorted by name, case-insensitive (not owning).
  std::vector<TBaseHierarchyNode*> AllNodes;

 private:
  std::unique_ptr<TBaseHierarchyNode> root_;
  std::vector<std::unique_ptr<TBaseHierarchyNode>> nodes_;  ///< owns AllNodes' nodes
};

}  // namespace velmora
