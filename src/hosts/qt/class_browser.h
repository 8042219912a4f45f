// The class view window's widget (`TClassBrowser`): the node layer's two pages
// ("Classes" and "Files") as trees with a filter box above them. Children are made when
// the user opens a node, as the node layer inserts them; double-click or Enter on a node
// asks for a jump to its declaration.
//
// Items hold their node; the listener hears when the node layer renews a node's children
// and rebuilds that item's children, so an item never outlives its node.
//
// Main thread only.
#pragma once

#include <QWidget>
#include <memory>
#include <string>

#include "hosts/qt/class_view_icons.h"
#include "views/class_view.h"

class QLineEdit;
class QTabWidget;
class QTreeWidget;
class QTreeWidgetItem;

namespace velmora {

class TVLSettings;

class TClassBrowser : public QWidget, private TClassViewListener {
  Q_OBJECT

 public:
  /// `settings` must outlive the browser.
  explicit TClassBrowser(const TVLSettings& settings, QWidget* parent = nullptr);
  ~TClassBrowser() override;

  /// Shows new lists (or none) and rebuilds both pages.
  void SetSources(const TClassViewSources& sources);
  /// Makes the view anew over the slots of `manager`, the one the shown objects were
  /// made with (an add-in loaded as a library has its own); shows nothing until the next
  /// SetSources.
  void UseRepresentations(TRepresentationManager& manager);
  /// After a merge: the node layer catches up and the trees follow.
  void Refresh();

  TClassView& View() { return *view_; }
  QTreeWidget* Tree(TClassView::TPage page) const { return trees_[page]; }
  QTabWidget* Pages() const { return pages_; }
  QLineEdit* FilterBox() const { return filter_; }
  /// Opens every node of both pages.
  void ExpandAllItems();
  /// What the page shows, one item a line indented two spaces a level: its picture's
  /// name, its text and its place ("class TFiring  FiringTypes.h:58"); items hidden by
  /// the filter and children of collapsed items are left out.
  QString TreeText(TClassView::TPage page) const;
  /// The full name of a file the model knows (project files first), "" when unknown.
  std::string FullFileName(const std::string& fileName) const;

 signals:
  /// A node was activated: open `fileName` (full path) at `line`.
  void JumpRequested(const QString& fileName, int line);
  /// A short text for the status bar.
  void Message(const QString& text);

 private:
  void NodeRemoving(TClassViewNode& node) override;
  void ChildrenChanged(TClassViewNode& parent) override;

  void Rebuild();
  /// Makes `item`'s children those of `node`, recursively where the node has them.
  void Fill(QTreeWidgetItem* item, TClassViewNode& node);
  QTreeWidgetItem* NewItem(TClassViewNode& node);
  TClassViewNode* NodeOf(const QTreeWidgetItem* item) const;
  void Expanded(QTreeWidgetItem* item);
  void Activated(QTreeWidgetItem* item);
  void ApplyFilter();

  const TVLSettings& settings_;
  std::unique_ptr<TClassView> view_;
  TClassViewSources sources_;
  TClassViewIcons icons_;
  QLineEdit* filter_;
  QTabWidget* pages_;
  QTreeWidget* trees_[2];
  /// The item of every node that has one, by node Id.
  std::unordered_map<uint32_t, QTreeWidgetItem*> items_;
  bool filling_ = false;  ///< set while items are made, so expansions are not the user's
};

}  // namespace velmora
