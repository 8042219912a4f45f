// The IDE's main menu as the add-in sees it: a tree of items, each found by its
// component name, into which the add-in inserts a menu of its own. A host maps this onto
// whatever menus it has (a menu bar of its own, a tree kept only in memory, a client's
// command list).
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "ide/interface.h"

namespace velmora {

/// Bits of a menu item's flags. An item the user can pick is enabled and visible (6); a
/// separator is visible only (4).
using TMenuFlags = uint32_t;
inline constexpr TMenuFlags mfInvalid = 1;
inline constexpr TMenuFlags mfEnabled = 2;
inline constexpr TMenuFlags mfVisible = 4;
inline constexpr TMenuFlags mfChecked = 8;

class TIMenuItem;

/// Called on the main thread when the user picks the item it was given to.
using TMenuClickHandler = std::function<void(TIMenuItem& item)>;

/// One item of the main menu, the menu bar included. Every call that returns an item
/// returns a new reference (nullptr when there is none). An item stays valid while a
/// reference is held, also after its host menu dropped it; calls on such an item change
/// nothing and return false. Main thread only.
class TIMenuItem : public TInterface {
 public:
  virtual std::string Caption() = 0;
  /// Position among its parent's items (0-based), -1 for the menu bar.
  virtual int Index() = 0;
  virtual int ItemCount() = 0;
  /// The child at `index`, or nullptr.
  virtual TIMenuItem* Item(int index) = 0;
  /// The component name that finds the item ("ProjectAddItem").
  virtual std::string Name() = 0;
  /// The item that holds this one, or nullptr for the menu bar.
  virtual TIMenuItem* Parent() = 0;
  virtual uint16_t ShortCut() = 0;
  virtual bool SetShortCut(uint16_t shortCut) = 0;
  virtual TMenuFlags Flags() = 0;
  /// Sets the bits of `mask` to those of `flags`, keeping the others.
  virtual bool SetFlags(TMenuFlags mask, TMenuFlags flags) = 0;
  /// Inserts a child at `index` (clamped to the item count) and returns it. A handler
  /// that is empty makes an item that does nothing when picked (a submenu, a separator).
  virtual TIMenuItem* InsertItem(int index, const std::string& caption, const std::string& name,
                                 const std::string& hint, uint16_t shortCut, int helpContext,
                                 int groupIndex, TMenuFlags flags, TMenuClickHandler onClick) = 0;
  /// As if the user picked the item: runs its handler when it is enabled and visible.
  /// Returns whether a handler ran.
  virtual bool Click() = 0;
};

/// The main menu of the IDE's main window. Main thread only.
class TIMainMenu : public TInterface {
 public:
  /// The menu bar: the item whose children are the top-level menus (a new reference).
  virtual TIMenuItem* MenuItems() = 0;
  /// The item anywhere in the tree with this component name (compared without regard
  /// to case), or nullptr (a new reference).
  virtual TIMenuItem* FindMenuItem(const std::string& name) = 0;
};

}  // namespace velmora
