// The main menu over a host's menu bar item: the same in every host once the host's item
// class can find an item by name.
#pragma once

#include <string>

#include "ide/menus.h"

namespace velmora {

/// `TItem` is the host's TIMenuItem class, with `TItem* Find(const std::string& name)`
/// searching its tree depth first without regard to case. Shares the bar, which the host
/// keeps as well. Main thread only, like the menu items.
template <class TItem>
class TMainMenuOf final : public TIMainMenu {
 public:
  explicit TMainMenuOf(TItem* bar) : bar_(TIRef<TItem>::Share(bar)) {}
  TIMenuItem* MenuItems() override { return TIRef<TIMenuItem>::Share(bar_.Get()).Detach(); }
  TIMenuItem* FindMenuItem(const std::string& name) override {
    return TIRef<TIMenuItem>::Share(bar_->Find(name)).Detach();
  }

 private:
  TIRef<TItem> bar_;  ///< never null
};

}  // namespace velmora
