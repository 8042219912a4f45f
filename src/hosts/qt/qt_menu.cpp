#include "hosts/qt/qt_menu.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <algorithm>

#include "support/ansi.h"

namespace velmora {

QKeySequence KeySequenceOfShortCut(uint16_t shortCut) {
  const int vk = shortCut & 0xFF;
  int key = 0;
  if ((vk >= '0' && vk <= '9') || (vk >= 'A' && vk <= 'Z'))
    key = vk;  // Qt's keys for letters and digits are their upper-case characters
  else if (vk >= 0x70 && vk <= 0x87)
    key = Qt::Key_F1 + (vk - 0x70);
  else if (vk == 0x08)
    key = Qt::Key_Backspace;
  else if (vk == 0x0D)
    key = Qt::Key_Return;
  else if (vk == 0x2D)
    key = Qt::Key_Insert;
  else if (vk == 0x2E)
    key = Qt::Key_Delete;
  if (key == 0) return {};
  int modifiers = 0;
  if (shortCut & 0x2000) modifiers |= Qt::SHIFT;
  if (shortCut & 0x4000) modifiers |= Qt::CTRL;
  if (shortCut & 0x8000) modifiers |= Qt::ALT;
  return QKeySequence(key | modifiers);
}

TQtMenuItem::TQtMenuItem(QMenuBar* bar) : name_("MainMenu"), bar_(bar) {}

TQtMenuItem::TQtMenuItem(std::string caption, std::string name, TMenuFlags flags,
                         TMenuClickHandler onClick)
    : caption_(std::move(caption)),
      name_(std::move(name)),
      flags_(flags),
      onClick_(std::move(onClick)) {}

TQtMenuItem::~TQtMenuItem() {
  if (parent_) std::erase(parent_->items_, this);
  for (TQtMenuItem* child : items_) child->parent_ = nullptr;
  if (ownAction_) delete action_.data();
  delete menu_.data();
}

QWidget* TQtMenuItem::ChildWidget() {
  if (bar_) return bar_;
  if (!menu_) {
    menu_ = new QMenu(QString::fromStdString(caption_));
    if (action_) action_->setMenu(menu_.data());
  }
  return menu_;
}

int TQtMenuItem::Index() {
  if (!parent_) return -1;
  auto it = std::find(parent_->items_.begin(), parent_->items_.end(), this);
  return static_cast<int>(it - parent_->items_.begin());
}

TIMenuItem* TQtMenuItem::Item(int index) {
  if (index < 0 || index >= ItemCount()) return nullptr;
  return TIRef<TIMenuItem>::Share(items_[static_cast<size_t>(index)]).Detach();
}

TIMenuItem* TQtMenuItem::Parent() {
  return TIRef<TIMenuItem>::Share(parent_).Detach();
}

bool TQtMenuItem::SetShortCut(uint16_t shortCut) {
  shortCut_ = shortCut;
  if (action_) action_->setShortcut(KeySequenceOfShortCut(shortCut));
  return true;
}

bool TQtMenuItem::SetFlags(TMenuFlags mask, TMenuFlags flags) {
  flags_ = (flags_ & ~mask) | (flags & mask);
  ApplyFlags();
  return true;
}

void TQtMenuItem::ApplyFlags() {
  if (!action_) return;
  action_->setEnabled(flags_ & mfEnabled);
  action_->setVisible(flags_ & mfVisible);
  action_->setCheckable(flags_ & mfChecked);
  action_->setChecked(flags_ & mfChecked);
}

TIMenuItem* TQtMenuItem::InsertItem(int index, const std::string& caption, const std::string& name,
                                    const std::string& hint, uint16_t shortCut, int /*helpContext*/,
                                    int /*groupIndex*/, TMenuFlags flags,
                                    TMenuClickHandler onClick) {
  auto* item = new TQtMenuItem(caption, name, flags, std::move(onClick));
  const int at = std::clamp(index, 0, ItemCount());
  QWidget* widget = ChildWidget();
  if (bar_) {
    // A menu of the bar is a menu from the start, even while it is still empty.
    item->menu_ = new QMenu(QString::fromStdString(caption));
    item->action_ = item->menu_->menuAction();
  } else {
    item->action_ = new QAction(QString::fromStdString(caption));
    item->ownAction_ = true;
    item->action_->setSeparator(caption == "-");
  }
  item->action_->setObjectName(QString::fromStdString(name));
  item->action_->setStatusTip(QString::fromStdString(hint));
  QObject::connect(item->action_.data(), &QAction::triggered, [item] { item->Click(); });
  QAction* before = at < ItemCount() ? items_[static_cast<size_t>(at)]->action_.data() : nullptr;
  widget->insertAction(before, item->action_);
  item->parent_ = this;
  items_.insert(items_.begin() + at, item);
  item->SetShortCut(shortCut);
  item->ApplyFlags();
  return item;  // the caller's reference is the only one
}

bool TQtMenuItem::Click() {
  if ((flags_ & (mfEnabled | mfVisible)) != (mfEnabled | mfVisible) || !onClick_) return false;
  // The handler may release the last other reference to this item.
  TIRef<TQtMenuItem> keep = TIRef<TQtMenuItem>::Share(this);
  TMenuClickHandler handler = onClick_;
  handler(*this);
  return true;
}

TQtMenuItem* TQtMenuItem::Find(const std::string& name) {
  if (SameText(name_, name)) return this;
  for (TQtMenuItem* child : items_)
    if (TQtMenuItem* found = child->Find(name)) return found;
  return nullptr;
}

}  // namespace velmora
