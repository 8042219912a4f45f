// The Qt IDE's main menu as the add-in sees it: a tree of items over the window's menu bar.
// Each item keeps its own QAction (an item of the bar: its QMenu's action); an item gets a
// QMenu of its own when the first child is inserted into it, so an add-in can make a menu
// as an empty item and fill it afterwards.
//
// An item lives while someone holds a reference, as in every host: the IDE holds its own
// items for its whole life, an add-in's item leaves the menu bar when the add-in releases
// it. Main thread only.
#pragma once

#include <QKeySequence>
#include <QPointer>
#include <string>
#include <vector>

#include "ide/main_menu_of.h"
#include "ide/menus.h"

class QAction;
class QMenu;
class QMenuBar;
class QWidget;

namespace velmora {

class TQtMenuItem : public TIMenuItem {
 public:
  /// The menu bar's item.
  explicit TQtMenuItem(QMenuBar* bar);
  ~TQtMenuItem() override;

  std::string Caption() override { return caption_; }
  int Index() override;
  int ItemCount() override { return static_cast<int>(items_.size()); }
  TIMenuItem* Item(int index) override;
  std::string Name() override { return name_; }
  TIMenuItem* Parent() override;
  uint16_t ShortCut() override { return shortCut_; }
  bool SetShortCut(uint16_t shortCut) override;
  TMenuFlags Flags() override { return flags_; }
  bool SetFlags(TMenuFlags mask, TMenuFlags flags) override;
  TIMenuItem* InsertItem(int index, const std::string& caption, const std::string& name,
                         const std::string& hint, uint16_t shortCut, int helpContext,
                         int groupIndex, TMenuFlags flags, TMenuClickHandler onClick) override;
  bool Click() override;

  /// Depth first, without regard to case; this item included.
  TQtMenuItem* Find(const std::string& name);
  QAction* Action() const { return action_; }

 private:
  TQtMenuItem(std::string caption, std::string name, TMenuFlags flags, TMenuClickHandler onClick);
  /// The widget the children's actions go into: the bar, or this item's own menu.
  QWidget* ChildWidget();
  void ApplyFlags();

  std::string caption_;
  std::string name_;
  uint16_t shortCut_ = 0;
  TMenuFlags flags_ = mfEnabled | mfVisible;
  TMenuClickHandler onClick_;
  TQtMenuItem* parent_ = nullptr;    ///< back link; nullptr for the bar and detached items
  std::vector<TQtMenuItem*> items_;  ///< not counted: each child unlinks itself when freed
  QPointer<QMenuBar> bar_;           ///< the bar item only
  QPointer<QMenu> menu_;             ///< made with the first child (at once under the bar)
  QPointer<QAction> action_;         ///< null for the bar item
  bool ownAction_ = false;           ///< action_ is ours (not the menu's own action)
};

using TQtMainMenu = TMainMenuOf<TQtMenuItem>;

/// The key sequence of a short cut in the IDE's encoding (a virtual key in the low byte,
/// Shift 0x2000, Ctrl 0x4000, Alt 0x8000); empty for 0 or a key Qt has no name for.
QKeySequence KeySequenceOfShortCut(uint16_t shortCut);

}  // namespace velmora
