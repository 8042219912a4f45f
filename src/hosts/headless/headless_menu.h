// The headless IDE's main menu: a tree of items in memory, with the IDE's own menus
// (the Project menu among them, holding "ProjectAddItem") and whatever add-ins insert.
//
// An item lives while someone holds a reference. The host holds its own items for its
// whole life; an item an add-in inserted is held only by the add-in, and leaves the menu
// when the add-in releases it - so releasing children before their parent takes an
// add-in's menu out again. Main thread only.
#pragma once

#include <string>
#include <vector>

#include "ide/main_menu_of.h"
#include "ide/menus.h"

namespace velmora {

class THeadlessMenuItem : public TIMenuItem {
 public:
  THeadlessMenuItem(std::string caption, std::string name, TMenuFlags flags,
                    TMenuClickHandler onClick);
  ~THeadlessMenuItem() override;

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

  /// A child without handing out a reference.
  THeadlessMenuItem* Child(int index) const;
  /// Depth first, without regard to case; this item included.
  THeadlessMenuItem* Find(const std::string& name);
  /// The item's children as "caption|name|flags|shortcut" lines, indented two spaces per
  /// level, for tests and for a host that prints its menu.
  std::string Dump(int depth = 0) const;

 private:
  std::string caption_;
  std::string name_;
  uint16_t shortCut_ = 0;
  TMenuFlags flags_;
  TMenuClickHandler onClick_;
  THeadlessMenuItem* parent_ = nullptr;    ///< back link; nullptr for the bar and detached items
  std::vector<THeadlessMenuItem*> items_;  ///< not counted: each child unlinks itself when freed
};

using THeadlessMainMenu = TMainMenuOf<THeadlessMenuItem>;

}  // namespace velmora
