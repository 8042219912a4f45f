#include "hosts/qt/dock_panel.h"

#include <QBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QSplitter>
#include <QStyle>
#include <QToolButton>

namespace velmora {
namespace {

QToolButton* TitleButton(QWidget* parent, const QString& tip) {
  auto* button = new QToolButton(parent);
  button->setAutoRaise(true);
  button->setToolTip(tip);
  button->setIconSize(QSize(12, 12));
  button->setFixedSize(18, 18);
  return button;
}

bool Horizontal(TDockSide side) {
  return side == TDockSide::Left || side == TDockSide::Right;
}

}  // namespace

const char* DockSideName(TDockSide side) {
  switch (side) {
    case TDockSide::Left:
      return "Left";
    case TDockSide::Right:
      return "Right";
    case TDockSide::Top:
      return "Top";
    case TDockSide::Bottom:
      return "Bottom";
  }
  return "";
}

TDockPanel::TDockPanel(const QString& title, QWidget* content, QWidget* parent)
    : QFrame(parent), content_(content) {
  setFrameShape(QFrame::StyledPanel);
  titleBar_ = new QWidget(this);
  titleBar_->setObjectName("DockTitleBar");
  titleBar_->setAutoFillBackground(true);
  QPalette palette = titleBar_->palette();
  palette.setColor(QPalette::Window, QColor(0x3f, 0x6e, 0xa5));
  palette.setColor(QPalette::WindowText, Qt::white);
  palette.setColor(QPalette::ButtonText, Qt::white);
  titleBar_->setPalette(palette);
  title_ = new QLabel(title, titleBar_);
  QFont bold = title_->font();
  bold.setBold(true);
  title_->setFont(bold);

  sideButton_ = TitleButton(titleBar_, tr("Dock at another side"));
  sideButton_->setIcon(style()->standardIcon(QStyle::SP_TitleBarNormalButton));
  sideButton_->setPopupMode(QToolButton::InstantPopup);
  auto* sides = new QMenu(sideButton_);
  for (TDockSide side : {TDockSide::Left, TDockSide::Right, TDockSide::Top, TDockSide::Bottom})
    sides->addAction(tr(DockSideName(side)), this, [this, side] { emit SideRequested(side); });
  sideButton_->setMenu(sides);
  collapseButton_ = TitleButton(titleBar_, tr("Collapse"));
  connect(collapseButton_, &QToolButton::clicked, this, [this] { SetCollapsed(!collapsed_); });
  closeButton_ = TitleButton(titleBar_, tr("Close"));
  closeButton_->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
  connect(closeButton_, &QToolButton::clicked, this, [this] { emit CloseRequested(); });

  auto* bar = new QHBoxLayout(titleBar_);
  bar->setContentsMargins(6, 2, 2, 2);
  bar->setSpacing(1);
  bar->addWidget(title_, 1);
  bar->addWidget(sideButton_);
  bar->addWidget(collapseButton_);
  bar->addWidget(closeButton_);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(titleBar_);
  layout->addWidget(content_, 1);
  UpdateTitleBar();
}

void TDockPanel::SetCollapsed(bool collapsed) {
  if (collapsed_ == collapsed) return;
  collapsed_ = collapsed;
  content_->setVisible(!collapsed);
  UpdateTitleBar();
  emit CollapseChanged(collapsed);
}

void TDockPanel::SetSide(TDockSide side) {
  side_ = side;
  UpdateTitleBar();
}

// A panel collapsed at the left or right keeps only its expand button, so the strip it
// leaves is narrow; at the top or bottom the whole title bar stays.
void TDockPanel::UpdateTitleBar() {
  const bool strip = collapsed_ && Horizontal(side_);
  title_->setVisible(!strip);
  sideButton_->setVisible(!strip);
  closeButton_->setVisible(!strip);
  QStyle::StandardPixmap arrow;
  if (!collapsed_)
    arrow = side_ == TDockSide::Right    ? QStyle::SP_ArrowRight
            : side_ == TDockSide::Top    ? QStyle::SP_ArrowUp
            : side_ == TDockSide::Bottom ? QStyle::SP_ArrowDown
                                         : QStyle::SP_ArrowLeft;
  else
    arrow = side_ == TDockSide::Right    ? QStyle::SP_ArrowLeft
            : side_ == TDockSide::Top    ? QStyle::SP_ArrowDown
            : side_ == TDockSide::Bottom ? QStyle::SP_ArrowUp
                                         : QStyle::SP_ArrowRight;
  collapseButton_->setIcon(style()->standardIcon(arrow));
  collapseButton_->setToolTip(collapsed_ ? tr("Expand") : tr("Collapse"));
  if (strip) {
    setMaximumWidth(titleBar_->sizeHint().width());
    setMaximumHeight(QWIDGETSIZE_MAX);
  } else if (collapsed_) {
    setMaximumWidth(QWIDGETSIZE_MAX);
    setMaximumHeight(titleBar_->sizeHint().height() + 2 * frameWidth());
  } else {
    setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
  }
}

TDockSite::TDockSite(QWidget* centre, TDockPanel* panel, QWidget* parent)
    : QWidget(parent), centre_(centre), panel_(panel) {
  splitter_ = new QSplitter(this);
  splitter_->setObjectName("DockSplitter");
  splitter_->setChildrenCollapsible(false);
  splitter_->setHandleWidth(5);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(splitter_);
  connect(panel_, &TDockPanel::SideRequested, this, &TDockSite::SetSide);
  connect(panel_, &TDockPanel::CollapseChanged, this, &TDockSite::Collapse);
  connect(panel_, &TDockPanel::CloseRequested, this, [this] { ShowPanel(false); });
  SetSide(TDockSide::Left);
}

void TDockSite::SetSide(TDockSide side) {
  const bool horizontal = Horizontal(side);
  const bool first = side == TDockSide::Left || side == TDockSide::Top;
  splitter_->setOrientation(horizontal ? Qt::Horizontal : Qt::Vertical);
  splitter_->insertWidget(first ? 0 : 1, panel_);
  splitter_->insertWidget(first ? 1 : 0, centre_);
  splitter_->setStretchFactor(first ? 0 : 1, 0);
  splitter_->setStretchFactor(first ? 1 : 0, 1);
  panel_->SetSide(side);
  // Before the first layout the splitter has no size yet: the panel then gets its own
  // size and the editors the rest once the window is shown.
  const int total = horizontal ? splitter_->width() : splitter_->height();
  const int size = panel_->Collapsed()
                       ? (horizontal ? panel_->maximumWidth() : panel_->maximumHeight())
                   : total < 2 * expandedSize_ ? expandedSize_
                                               : std::min(expandedSize_, total / 2);
  const int rest = std::max(total - size, 4 * expandedSize_);
  splitter_->setSizes(first ? QList<int>{size, rest} : QList<int>{rest, size});
}

void TDockSite::Collapse(bool collapsed) {
  const int panelIndex = splitter_->indexOf(panel_);
  QList<int> sizes = splitter_->sizes();
  if (collapsed) {
    expandedSize_ = sizes[panelIndex];
  } else {
    const int total = sizes[0] + sizes[1];
    sizes[panelIndex] = expandedSize_;
    sizes[1 - panelIndex] = std::max(total - expandedSize_, 200);
    splitter_->setSizes(sizes);
  }
}

void TDockSite::ShowPanel(bool shown) {
  if (shown) panel_->SetCollapsed(false);
  panel_->setVisible(shown);
}

}  // namespace velmora
