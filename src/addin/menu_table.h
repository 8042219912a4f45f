// The add-in's menu: one record per entry of the menu-name table, in menu order, with
// the caption's string id, what a click does and where the item hangs. The captions
// come from the string table, so that they can be translated without touching the code.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "addin/vl_manager_interface.h"

namespace velmora {

enum class TVLMenuItemKind {
  Root,       ///< the add-in's menu in the menu bar
  Command,    ///< enabled and visible, with a click handler
  Separator,  ///< "-", visible only, no handler
  Submenu,    ///< enabled and visible, no handler
  Unused,     ///< in the table, never inserted
};

struct TVLMenuRecord {
  std::string_view Name;
  int CaptionId;
  TVLMenuItemKind Kind;
  /// The record index of the item it hangs in (the root, or the marker submenu).
  int Parent;
  TVLMenuCommand Command;  ///< meaningful for commands only
};

inline constexpr int kVLMenuRecordCount = 29;
inline constexpr int kVLRootRecord = 0;
extern const TVLMenuRecord kVLMenuRecords[kVLMenuRecordCount];

/// The record index of the item with this name, or -1.
int MenuRecordIndex(std::string_view name);

/// The text of a string-table entry, "" for an unknown id.
std::string_view LoadResString(int id);

}  // namespace velmora
