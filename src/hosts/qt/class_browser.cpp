#include "hosts/qt/class_browser.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QTabWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "model/files.h"
#include "model/filters.h"
#include "support/paths.h"

namespace velmora {
namespace {

constexpr int kNodeRole = Qt::UserRole;
constexpr int kIconNameRole = Qt::UserRole + 1;
/// The node's Id: what a rebuild reads of old items, whose nodes may be gone already.
constexpr int kIdRole = Qt::UserRole + 2;

QString Place(const TClassViewNode& node) {
  if (node.FileName.empty()) return {};
  QString place = QString::fromLatin1(node.FileName.c_str());
  if (node.Line > 0) place += QStringLiteral(":%1").arg(node.Line);
  return place;
}

void TextOf(const QTreeWidgetItem* item, int depth, QString& out) {
  if (item->isHidden()) return;
  out += QString(depth * 2, QLatin1Char(' ')) + item->data(0, kIconNameRole).toString() +
         QLatin1Char(' ') + item->text(0);
  const QString place = item->toolTip(0);
  if (!place.isEmpty()) out += QStringLiteral("  ") + place;
  out += QLatin1Char('\n');
  if (!item->isExpanded()) return;
  for (int i = 0; i < item->childCount(); ++i) TextOf(item->child(i), depth + 1, out);
}

// Shows the items whose text holds `text` and the parents of those; true when `item` or
// something below it matched.
bool Filter(QTreeWidgetItem* item, const QString& text) {
  bool below = false;
  for (int i = 0; i < item->childCount(); ++i) below = Filter(item->child(i), text) || below;
  const bool match = item->text(0).contains(text, Qt::CaseInsensitive);
  item->setHidden(!match && !below && item->parent() != nullptr);
  if (below) item->setExpanded(true);
  return match || below;
}

void Unhide(QTreeWidgetItem* item) {
  item->setHidden(false);
  for (int i = 0; i < item->childCount(); ++i) Unhide(item->child(i));
}

}  // namespace

TClassBrowser::TClassBrowser(const TVLSettings& settings, QWidget* parent)
    : QWidget(parent), settings_(settings), view_(std::make_unique<TClassView>(settings)) {
  view_->SetListener(this);
  filter_ = new QLineEdit(this);
  filter_->setObjectName("ClassFilterBox");
  filter_->setPlaceholderText(tr("Filter by name"));
  filter_->setClearButtonEnabled(true);
  connect(filter_, &QLineEdit::textChanged, this, [this] { ApplyFilter(); });

  pages_ = new QTabWidget(this);
  pages_->setObjectName("ClassViewPages");
  pages_->setDocumentMode(true);
  pages_->setTabPosition(QTabWidget::South);
  for (TClassView::TPage page : {TClassView::pgClasses, TClassView::pgFiles}) {
    auto* tree = new QTreeWidget(pages_);
    tree->setObjectName(page == TClassView::pgClasses ? "ClassTree" : "FileTree");
    tree->setHeaderHidden(true);
    tree->setUniformRowHeights(true);
    tree->setIconSize(QSize(16, 16));
    tree->setIndentation(16);
    tree->setAnimated(false);
    connect(tree, &QTreeWidget::itemExpanded, this, &TClassBrowser::Expanded);
    connect(tree, &QTreeWidget::itemActivated, this, &TClassBrowser::Activated);
    trees_[page] = tree;
    pages_->addTab(tree, page == TClassView::pgClasses ? tr("Classes") : tr("Files"));
  }

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(2);
  layout->addWidget(filter_);
  layout->addWidget(pages_, 1);
  Rebuild();
}

TClassBrowser::~TClassBrowser() {
  view_->SetListener(nullptr);
}

void TClassBrowser::SetSources(const TClassViewSources& sources) {
  sources_ = sources;
  view_->SetSources(sources);
  Rebuild();
}

void TClassBrowser::UseRepresentations(TRepresentationManager& manager) {
  view_->SetListener(nullptr);
  view_ = std::make_unique<TClassView>(settings_, manager);
  view_->SetListener(this);
  sources_ = {};
  Rebuild();
}

void TClassBrowser::Refresh() {
  view_->Refresh();
  ApplyFilter();
}

void TClassBrowser::Rebuild() {
  items_.clear();
  for (TClassView::TPage page : {TClassView::pgClasses, TClassView::pgFiles}) {
    QTreeWidget* tree = trees_[page];
    tree->clear();
    for (TClassView::TRootIndex root : {TClassView::riProject, TClassView::riExternal}) {
      TClassViewNode& node = view_->Root(page, root);
      QTreeWidgetItem* item = NewItem(node);
      tree->addTopLevelItem(item);
      Fill(item, node);
      filling_ = true;
      item->setExpanded(root == TClassView::riProject);
      filling_ = false;
    }
  }
  ApplyFilter();
}

QTreeWidgetItem* TClassBrowser::NewItem(TClassViewNode& node) {
  auto* item = new QTreeWidgetItem;
  item->setText(0, QString::fromLatin1(node.Text.c_str()));
  bool external = false;
  if (node.Kind == TNodeKind::Root)
    external = &node == &view_->Root(TClassView::pgClasses, TClassView::riExternal) ||
               &node == &view_->Root(TClassView::pgFiles, TClassView::riExternal);
  const QString icon = IconNameOf(node, external);
  item->setIcon(0, icons_.Icon(icon));
  item->setData(0, kIconNameRole, icon);
  item->setData(0, kNodeRole, QVariant::fromValue(reinterpret_cast<quintptr>(&node)));
  item->setData(0, kIdRole, node.Id);
  item->setToolTip(0, Place(node));
  if (node.Kind == TNodeKind::Root) {
    QFont bold = item->font(0);
    bold.setBold(true);
    item->setFont(0, bold);
  }
  item->setChildIndicatorPolicy(node.HasExpandMark || node.Count() > 0
                                    ? QTreeWidgetItem::ShowIndicator
                                    : QTreeWidgetItem::DontShowIndicatorWhenChildless);
  items_[node.Id] = item;
  return item;
}

void TClassBrowser::Fill(QTreeWidgetItem* item, TClassViewNode& node) {
  // Expanded children stay expanded through a rebuild of their parent.
  std::vector<uint32_t> expanded;
  for (int i = 0; i < item->childCount(); ++i)
    if (item->child(i)->isExpanded()) expanded.push_back(item->child(i)->data(0, kIdRole).toUInt());
  for (QTreeWidgetItem* child : item->takeChildren()) delete child;
  for (const auto& child : node.Children) {
    QTreeWidgetItem* childItem = NewItem(*child);
    item->addChild(childItem);
    if (child->ChildrenInserted) Fill(childItem, *child);
    if (std::find(expanded.begin(), expanded.end(), child->Id) != expanded.end()) {
      filling_ = true;
      childItem->setExpanded(true);
      filling_ = false;
    }
  }
}

TClassViewNode* TClassBrowser::NodeOf(const QTreeWidgetItem* item) const {
  return item ? reinterpret_cast<TClassViewNode*>(item->data(0, kNodeRole).value<quintptr>())
              : nullptr;
}

void TClassBrowser::NodeRemoving(TClassViewNode& node) {
  items_.erase(node.Id);
  for (const auto& child : node.Children) NodeRemoving(*child);
}

void TClassBrowser::ChildrenChanged(TClassViewNode& parent) {
  auto it = items_.find(parent.Id);
  if (it == items_.end()) return;
  QTreeWidgetItem* item = it->second;
  item->setText(0, QString::fromLatin1(parent.Text.c_str()));
  item->setToolTip(0, Place(parent));
  Fill(item, parent);
}

void TClassBrowser::Expanded(QTreeWidgetItem* item) {
  if (filling_) return;
  TClassViewNode* node = NodeOf(item);
  if (!node || node->ChildrenInserted) return;
  const TExpandResult result = view_->Expand(*node);
  if (result == TExpandResult::AllFiltered) {
    filling_ = true;
    item->setExpanded(false);
    filling_ = false;
    emit Message(QString::fromLatin1(kAllMembersFiltered).section(QLatin1Char('\n'), 0, 0));
    return;
  }
  Fill(item, *node);
  if (node->Children.empty()) item->setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicator);
}

void TClassBrowser::Activated(QTreeWidgetItem* item) {
  const TClassViewNode* node = NodeOf(item);
  if (!node || node->FileName.empty()) return;
  const std::string full = FullFileName(node->FileName);
  if (full.empty()) {
    emit Message(tr("File not found: %1").arg(QString::fromLatin1(node->FileName.c_str())));
    return;
  }
  emit JumpRequested(QString::fromStdString(full), std::max(node->Line, 1));
}

std::string TClassBrowser::FullFileName(const std::string& fileName) const {
  for (const TFilesList* list : {sources_.ProjectFiles, sources_.ExternalFiles})
    if (list)
      if (const TFileDescription* file = list->Find(fileName)) return file->FullName();
  return {};
}

void TClassBrowser::ExpandAllItems() {
  view_->ExpandAll();
  for (QTreeWidget* tree : trees_) {
    for (int i = 0; i < tree->topLevelItemCount(); ++i) {
      QTreeWidgetItem* top = tree->topLevelItem(i);
      if (TClassViewNode* node = NodeOf(top)) Fill(top, *node);
    }
    filling_ = true;
    tree->expandAll();
    filling_ = false;
  }
  ApplyFilter();
}

// Matches only among the nodes made so far: typing into the box opens the whole tree
// first, so the filter sees every name.
void TClassBrowser::ApplyFilter() {
  const QString text = filter_->text().trimmed();
  if (!text.isEmpty()) {
    const int before = view_->NodeCount();
    view_->ExpandAll();
    if (view_->NodeCount() != before)
      for (QTreeWidget* tree : trees_)
        for (int i = 0; i < tree->topLevelItemCount(); ++i)
          if (TClassViewNode* node = NodeOf(tree->topLevelItem(i)))
            Fill(tree->topLevelItem(i), *node);
  }
  for (QTreeWidget* tree : trees_)
    for (int i = 0; i < tree->topLevelItemCount(); ++i) {
      filling_ = true;
      if (text.isEmpty())
        Unhide(tree->topLevelItem(i));
      else
        Filter(tree->topLevelItem(i), text);
      filling_ = false;
    }
}

QString TClassBrowser::TreeText(TClassView::TPage page) const {
  QString out;
  const QTreeWidget* tree = trees_[page];
  for (int i = 0; i < tree->topLevelItemCount(); ++i) TextOf(tree->topLevelItem(i), 0, out);
  return out;
}

}  // namespace velmora
