// The views and dialogs the menu commands bring up, as named entries. The add-in's
// widgets belong to each host, so the manager does not make a window: a command looks
// for its entry by name, brings it up if it is there and makes it otherwise, and the
// host that listens (SetHandler) shows the window of that name. A host with no windows
// (the command line) still sees which form a command asked for.
//
// The names are the ones the views are kept under in the project settings: "ClassView",
// "ClassHierarchy", "ContextBar", "BrowseHistory"; dialogs are named after what they do.
//
// Main thread only.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "addin/vl_manager_interface.h"

namespace velmora {

struct TDisplayFormEntry {
  std::string Name;
  /// Brought up and not hidden since.
  bool Visible = false;
  /// How many times a command brought it up; 1 after the command that made it.
  int ShowCount = 0;
};

/// The form a menu command brings up; "" for the commands that act without one (the
/// quick finds, browse back, the code markers).
std::string_view FormNameOf(TVLMenuCommand command);

class TDisplayFormEntries {
 public:
  /// Called after a form was brought up; `created` on the first time.
  using THandler = std::function<void(const TDisplayFormEntry& form, bool created)>;

  /// Finds the entry of `name` or makes it, marks it visible and tells the handler.
  TDisplayFormEntry& BringUp(std::string_view name);
  /// The entry of `name`, or null when no command has made it.
  const TDisplayFormEntry* Find(std::string_view name) const;
  /// Marks the form hidden (the host closed its window); false when there is none.
  bool Hide(std::string_view name);
  const std::vector<TDisplayFormEntry>& Entries() const { return entries_; }
  void SetHandler(THandler handler) { handler_ = std::move(handler); }

 private:
  std::vector<TDisplayFormEntry> entries_;  ///< in the order they were made, names unique
  THandler handler_;
};

}  // namespace velmora
