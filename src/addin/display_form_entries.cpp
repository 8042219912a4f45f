#include "addin/display_form_entries.h"

#include <algorithm>

namespace velmora {

std::string_view FormNameOf(TVLMenuCommand command) {
  using C = TVLMenuCommand;
  switch (command) {
    case C::ShowClassView:
      return "ClassView";
    case C::ShowClassHierarchy:
      return "ClassHierarchy";
    case C::ShowContextBar:
      return "ContextBar";
    case C::BrowseHistory:
      return "BrowseHistory";
    case C::Options:
      return "Options";
    case C::ProjectOptions:
      return "ProjectOptions";
    case C::HelpExportManager:
      return "HelpExportManager";
    case C::Find:
      return "Find";
    case C::AddField:
      return "AddField";
    case C::AddProperty:
      return "AddProperty";
    case C::AddMethod:
      return "AddMethod";
    case C::AddDescription:
      return "AddDescription";
    case C::Help:
      return "Help";
    case C::About:
      return "About";
    case C::QuickFindCode:
    case C::QuickFindTree:
    case C::BrowseBack:
    case C::InsertGlobalMarker:
    case C::InsertClassMarker:
    case C::InsertMethodMarker:
    case C::InsertHelpDescriptionMarker:
      return "";
  }
  return "";
}

TDisplayFormEntry& TDisplayFormEntries::BringUp(std::string_view name) {
  auto it = std::find_if(entries_.begin(), entries_.end(),
                         [&](const TDisplayFormEntry& e) { return e.Name == name; });
  const bool created = it == entries_.end();
  if (created) {
    entries_.push_back({.Name = std::string(name)});
    it = entries_.end() - 1;
  }
  it->Visible = true;
  ++it->ShowCount;
  // The handler may bring up another form, which may move the entries: it gets a copy,
  // and the entry is found again afterwards.
  const size_t index = static_cast<size_t>(it - entries_.begin());
  if (handler_) handler_(TDisplayFormEntry(entries_[index]), created);
  return entries_[index];
}

const TDisplayFormEntry* TDisplayFormEntries::Find(std::string_view name) const {
  auto it = std::find_if(entries_.begin(), entries_.end(),
                         [&](const TDisplayFormEntry& e) { return e.Name == name; });
  return it == entries_.end() ? nullptr : &*it;
}

bool TDisplayFormEntries::Hide(std::string_view name) {
  for (TDisplayFormEntry& e : entries_)
    if (e.Name == name) {
      e.Visible = false;
      return true;
    }
  return false;
}

}  // namespace velmora
