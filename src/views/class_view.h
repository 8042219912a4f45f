// The class view's node layer: two pages ("Classes" and "Files"), each with a project root
// and an external root, filled from the project's and the external files' class lists.
// Class, domain and routine list nodes get their children only when expanded. Every shown
// object keeps its node in this view's representation slot (the node's Id in the first
// word, the children-inserted flag in the fourth), so a refresh after a merge finds the
// node of every object updated in place and keeps it.
//
// How a host drives it: construct (takes a slot), SetSources, then render Roots; call
// Expand when the user opens a node (show kAllMembersFiltered when it says so); after
// every merge call Refresh; before a file's objects are freed call RemoveFileObjects.
//
// Threads and locks: main thread only. Every call that reads the model holds the class
// lists' Lock; the caller guarantees that no merge frees objects between a merge and the
// Refresh that follows it (both run on the main thread, one after the other).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "model/representation.h"
#include "views/class_view_node.h"
#include "views/node_text.h"

namespace velmora {

class TClassDescription;
class TClasslist;
class TFilesList;
class TFilterDescription;
class TVLSettings;

/// The first entry of the class filter combo.
inline constexpr char kAllClassesUnfiltered[] = "[All Classes unfiltered]";

/// What the view shows. The lists are not owned and must outlive the view or be replaced
/// through SetSources first; any of them may be null. An external list that is the
/// project's own is ignored.
struct TClassViewSources {
  std::string ProjectName{};  ///< empty: the roots read "Classes" and "Files"
  TClasslist* ProjectClasses = nullptr;
  TClasslist* ExternalClasses = nullptr;
  TFilesList* ProjectFiles = nullptr;
  TFilesList* ExternalFiles = nullptr;
};

/// What a host with its own items (a Qt model, say) hears about node changes. All calls
/// come from inside TClassView's calls, on the main thread.
class TClassViewListener {
 public:
  virtual ~TClassViewListener() = default;
  /// `node` and everything below it are about to be freed; it is already out of its
  /// parent's Children. Its Object must not be read (it may be freed).
  virtual void NodeRemoving(TClassViewNode& /*node*/) {}
  /// The children of `parent` were set anew: kept nodes are the same objects (possibly
  /// moved), new ones were added, texts may have changed.
  virtual void ChildrenChanged(TClassViewNode& /*parent*/) {}
};

enum class TExpandResult {
  Inserted,         ///< the children are in the tree (or were already)
  AllFiltered,      ///< members exist but the member filter hides all: show the message
  NothingToExpand,  ///< a node of a kind that has no children
};

class TClassView : public TRepresentationClient {
 public:
  enum TPage { pgClasses = 0, pgFiles = 1 };
  enum TRootIndex { riProject = 0, riExternal = 1 };

  /// Takes a slot of `manager`. `settings` (display forms, member filter, domains and
  /// globals switches) must outlive the view; it is read on every Refresh.
  explicit TClassView(const TVLSettings& settings,
                      TRepresentationManager& manager = RepresentationManager());
  /// Gives the slot back, so no object keeps a node number of this view.
  ~TClassView() override;
  TClassView(const TClassView&) = delete;
  TClassView& operator=(const TClassView&) = delete;

  /// Replaces what is shown and rebuilds both pages from scratch: the roots stay, every
  /// other node is new.
  void SetSources(const TClassViewSources& sources);
  /// The filter the class filter combo selected; null for kAllClassesUnfiltered. Not
  /// owned (it lives in the settings' filter list): set null before that list is loaded
  /// or the description removed. Refreshes.
  void SetClassFilter(const TFilterDescription* filter);
  const TFilterDescription* ClassFilter() const { return classFilter_; }
  /// The combo's entries: kAllClassesUnfiltered, then the settings' filters by name.
  std::vector<std::string> ClassFilterEntries() const;

  /// The root `index` of `page`; roots exist for the whole life of the view.
  TClassViewNode& Root(TPage page, TRootIndex index) const { return *roots_[page][index]; }

  /// Inserts the children of a class, domain or routine list node when they are not yet
  /// there. A class with members none of which passes the member filter keeps its expand
  /// mark and gets no children; the host shows kAllMembersFiltered.
  TExpandResult Expand(TClassViewNode& node);
  /// Expands `node` and everything below it (the text renderer's whole tree).
  void ExpandAll(TClassViewNode& node);
  /// Expands every node of both pages.
  void ExpandAll();

  /// Brings the nodes up to the model after a merge or a settings change: objects updated
  /// in place keep their nodes (texts and images renewed), new objects get nodes, nodes of
  /// objects that are gone or filtered out go. Inserted children are refreshed too;
  /// children not yet inserted are left for Expand.
  void Refresh();
  /// Before the objects of a file are freed: the classes whose unit is `fileName`, all
  /// they hold, and the routines declared in it lose their nodes and this view's entry of
  /// their representations is reset. Compared without regard to case.
  void RemoveFileObjects(std::string_view fileName);

  /// Not owned; null for none.
  void SetListener(TClassViewListener* listener) { listener_ = listener; }

  /// The node showing `object` in this view, or null. Creates no representation.
  TClassViewNode* NodeOf(const TRepresentedObject& object) const;
  /// Number of nodes in both pages, roots included.
  int NodeCount() const { return static_cast<int>(nodes_.size()); }

 private:
  struct TWanted {
    TRepObject* Object;
    TNodeKind Kind;
  };

  void BuildRoots();
  std::unique_ptr<TClassViewNode> NewNode(TNodeKind kind, TRepObject* object);
  /// Makes `parent`'s children exactly `wanted`, in that order, reusing the node each
  /// object already has under `parent`; renews every kept or new node.
  void Reconcile(TClassViewNode& parent, const std::vector<TWanted>& wanted);
  /// Renews the node's texts and expand mark, and refreshes its children if inserted.
  void Renew(TClassViewNode& node);
  void RefreshChildren(TClassViewNode& node);
  /// Forgets the ids of `node` and everything below it. Touches no object: some may be
  /// freed already.
  void Forget(TClassViewNode& node);
  /// Tells the listener, then forgets: for a subtree leaving the tree.
  void Removing(TClassViewNode& node);
  void Changed(TClassViewNode& parent);
  void SetInsertedFlag(TClassViewNode& node, bool inserted);

  std::vector<TWanted> RootChildren(TRootIndex index) const;
  std::vector<TWanted> FileChildren(TRootIndex index) const;
  std::vector<TWanted> ChildrenOf(TClassViewNode& node) const;
  std::vector<TWanted> ClassChildren(TClassDescription& cls) const;
  std::vector<TWanted> DomainChildren(TClassViewNode& node) const;
  std::vector<TWanted> RoutineChildren(TClassViewNode& node) const;
  /// Whether the node's object has anything to show below it, filters aside.
  bool Expandable(const TClassViewNode& node) const;
  bool HasMembers(const TClassDescription& cls) const;
  bool PassesClassFilter(const TClassDescription& cls, TRootIndex root) const;
  bool DomainsShown(const TClasslist* list) const;
  /// The class list of the root opposite to the one that holds `node`.
  const TClasslist* OtherList(const TClassViewNode& node) const;
  TRootIndex RootIndexOf(const TClassViewNode& node) const;

  /// Takes the node (and all below it) out of its parent.
  void Drop(TClassViewNode& node);
  void RemoveClassIfIn(TClassDescription& cls, std::string_view fileName);
  /// Clears this view's entry of `object`.
  void ResetEntry(TRepresentedObject& object);
  /// Clears it when it names a node that is no longer in the view.
  void ResetIfStale(TRepresentedObject& object);
  void ResetClassEntries(TClassDescription& cls, bool onlyStale);
  void ResetStale(TClasslist& list);

  const TVLSettings& settings_;
  TRepresentationManager& manager_;
  TClassViewSources sources_;
  const TFilterDescription* classFilter_ = nullptr;
  TDisplayForms forms_;
  /// Every node of both pages by Id; a node is here exactly while it is in a page.
  std::unordered_map<uint32_t, TClassViewNode*> nodes_;
  uint32_t nextId_ = 1;  ///< 0 in a representation means "no node"
  std::unique_ptr<TClassViewNode> roots_[2][2];
  TClassViewListener* listener_ = nullptr;
};

}  // namespace velmora
