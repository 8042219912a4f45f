#include "views/window_placement.h"

#include <algorithm>
#include <stdexcept>

#include "model/settings_store.h"
#include "settings/project_settings.h"
#include "support/ansi.h"

namespace velmora {

namespace {

// Moves one axis of a window of `extent` at `pos` into [start, start + limit).
void ClampAxis(int32_t& pos, int32_t& extent, int32_t start, int32_t limit) {
  if (limit <= 0) return;  // a host that reports no area: leave the window where it is
  if (extent > limit) extent = limit;
  const int64_t last = int64_t{start} + limit - extent;
  if (pos > last) pos = static_cast<int32_t>(last);
  if (pos < start) pos = start;
}

}  // namespace

TScreenRect ClampToScreen(TScreenRect bounds, const TScreenRect& area) {
  ClampAxis(bounds.Left, bounds.Width, area.Left, area.Width);
  ClampAxis(bounds.Top, bounds.Height, area.Top, area.Height);
  return bounds;
}

void TWindowPlacementSettings::Apply(TDisplayWindow& window) {
  if (Locked) return;
  Applying = true;
  if (StateSaved) {
    TDockPanel* panel = window.DockPanel();
    if (panel == nullptr) {
      TScreenRect bounds = window.Bounds();
      if (Saves(TPlacementAttribute::Position) && Left != kPlacementNotStored &&
          Top != kPlacementNotStored) {
        bounds.Left = Left;
        bounds.Top = Top;
      }
      if (Saves(TPlacementAttribute::Width) && Width != kPlacementNotStored) bounds.Width = Width;
      if (Saves(TPlacementAttribute::Height) && Height != kPlacementNotStored)
        bounds.Height = Height;
      // The screen may have shrunk since the placement was taken (another monitor, a
      // lower resolution): a window that would open out of reach is brought back.
      window.SetBounds(ClampToScreen(bounds, window.ScreenArea()));
      if (Saves(TPlacementAttribute::WindowState)) window.SetWindowState(WindowState);
    } else {
      if (Saves(TPlacementAttribute::Align)) {
        panel->SetSide(Align);
        panel->SetTitleBarPosition(Align == TDockAlign::Top ? 2 : 0);
      }
      if (Saves(TPlacementAttribute::DockedSize) && DockedSize != kPlacementNotStored)
        panel->SetSize(DockedSize);
    }
  }
  Applying = false;
}

void TWindowPlacementSettings::Capture(const TDisplayWindow& window) {
  if (Locked || Applying) return;
  StateSaved = true;
  if (const TDockPanel* panel = window.DockPanel()) {
    Docked = true;
    Align = panel->Side();
    // A collapsed panel's size is its title bar; keep the size it opens to.
    if (!panel->Collapsed()) DockedSize = panel->Size();
  } else {
    Docked = false;
    const TScreenRect bounds = window.Bounds();
    if (Saves(TPlacementAttribute::Position)) {
      Left = bounds.Left;
      Top = bounds.Top;
    }
    if (Saves(TPlacementAttribute::Width)) Width = bounds.Width;
    if (Saves(TPlacementAttribute::Height)) Height = bounds.Height;
    if (Saves(TPlacementAttribute::WindowState)) WindowState = window.WindowState();
  }
  Visible = window.Visible();
}

void TWindowPlacementSettings::Load(const TSettingsStore& store, std::string_view section) {
  StateSaved = store.ReadBool(section, kPlacementStateSavedKey, false);
  if (Saves(TPlacementAttribute::Position)) {
    Left = store.ReadInteger(section, kPlacementPositionXKey, kPlacementNotStored);
    Top = store.ReadInteger(section, kPlacementPositionYKey, kPlacementNotStored);
  }
  if (Saves(TPlacementAttribute::Width))
    Width = store.ReadInteger(section, kPlacementWidthKey, kPlacementNotStored);
  if (Saves(TPlacementAttribute::Height))
    Height = store.ReadInteger(section, kPlacementHeightKey, kPlacementNotStored);
  if (Saves(TPlacementAttribute::Visible))
    Visible = store.ReadBool(section, kPlacementVisibleKey, false);
  if (Saves(TPlacementAttribute::WindowState)) {
    const int32_t state = store.ReadInteger(section, kPlacementStateKey, kPlacementNotStored);
    WindowState =
        state >= 0 && state <= 2 ? static_cast<TWindowState>(state) : TWindowState::Normal;
  }
  if (Saves(TPlacementAttribute::Docked))
    Docked = store.ReadBool(section, kPlacementDockedKey, false);
  if (Saves(TPlacementAttribute::Align)) {
    const int32_t align = store.ReadInteger(section, kPlacementAlignKey, kPlacementNotStored);
    if (align >= 0 && align <= 5) Align = static_cast<TDockAlign>(align);
    if (!AllowsAlign(Align)) Align = TDockAlign::Top;
  }
  if (Saves(TPlacementAttribute::DockedSize))
    DockedSize = store.ReadInteger(section, kPlacementSizeKey, kPlacementNotStored);
}

void TWindowPlacementSettings::Save(TSettingsStore& store, std::string_view section) const {
  store.WriteBool(section, kPlacementStateSavedKey, StateSaved);
  if (Saves(TPlacementAttribute::Position)) {
    store.WriteInteger(section, kPlacementPositionXKey, Left);
    store.WriteInteger(section, kPlacementPositionYKey, Top);
  }
  if (Saves(TPlacementAttribute::Width)) store.WriteInteger(section, kPlacementWidthKey, Width);
  if (Saves(TPlacementAttribute::Height)) store.WriteInteger(section, kPlacementHeightKey, Height);
  if (Saves(TPlacementAttribute::Visible)) store.WriteBool(section, kPlacementVisibleKey, Visible);
  if (Saves(TPlacementAttribute::WindowState))
    store.WriteInteger(section, kPlacementStateKey, static_cast<int32_t>(WindowState));
  if (Saves(TPlacementAttribute::Docked)) store.WriteBool(section, kPlacementDockedKey, Docked);
  if (Saves(TPlacementAttribute::Align))
    store.WriteInteger(section, kPlacementAlignKey, static_cast<int32_t>(Align));
  if (Saves(TPlacementAttribute::DockedSize))
    store.WriteInteger(section, kPlacementSizeKey, DockedSize);
}

void TWindowPlacementSettings::LoadFromProject(const TProjectWindowSettings& settings) {
  StateSaved = settings.Statesaved;
  if (!StateSaved) return;  // the file's zeros mean nothing before the first save
  if (Saves(TPlacementAttribute::Position)) {
    Left = settings.Left;
    Top = settings.Top;
  }
  if (Saves(TPlacementAttribute::Width)) Width = settings.Width;
  if (Saves(TPlacementAttribute::Height)) Height = settings.Height;
  if (Saves(TPlacementAttribute::Visible)) Visible = settings.Visible;
  if (Saves(TPlacementAttribute::Docked)) Docked = settings.Docked;
}

void TWindowPlacementSettings::SaveToProject(TProjectWindowSettings& settings) const {
  settings = TProjectWindowSettings();
  settings.Statesaved = StateSaved;
  if (Saves(TPlacementAttribute::Position)) {
    settings.Left = Left;
    settings.Top = Top;
  }
  if (Saves(TPlacementAttribute::Width)) settings.Width = Width;
  if (Saves(TPlacementAttribute::Height)) settings.Height = Height;
  if (Saves(TPlacementAttribute::Visible)) settings.Visible = Visible;
  if (Saves(TPlacementAttribute::Docked)) settings.Docked = Docked;
}

size_t TWindowPlacementList::LowerBound(std::string_view name) const {
  const auto it =
      std::lower_bound(items_.begin(), items_.end(), name,
                       [](const std::unique_ptr<TWindowPlacementSettings>& item,
                          std::string_view key) { return CompareText(item->Name, key) < 0; });
  return static_cast<size_t>(it - items_.begin());
}

TWindowPlacementSettings& TWindowPlacementList::Add(std::string_view name,
                                                    TPlacementAttributes savedAttributes) {
  const size_t at = LowerBound(name);
  if (at < items_.size() && SameText(items_[at]->Name, name))
    throw std::invalid_argument("Duplicate window placement: " + std::string(name));
  items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(at),
                std::make_unique<TWindowPlacementSettings>(std::string(name), savedAttributes));
  return *items_[at];
}

const TWindowPlacementSettings* TWindowPlacementList::Find(std::string_view name) const {
  const size_t at = LowerBound(name);
  if (at < items_.size() && SameText(items_[at]->Name, name)) return items_[at].get();
  return nullptr;
}

TWindowPlacementSettings* TWindowPlacementList::Find(std::string_view name) {
  return const_cast<TWindowPlacementSettings*>(std::as_const(*this).Find(name));
}

bool TWindowPlacementList::IsOpen(std::string_view name) const {
  const TWindowPlacementSettings* p = Find(name);
  return p != nullptr && p->StateSaved && p->Visible;
}

void TWindowPlacementList::ForgetState() {
  for (auto& item : items_) item->StateSaved = false;
}

std::string TWindowPlacementList::SectionName(std::string_view prefix, std::string_view name) {
  if (prefix.empty()) return std::string(name);
  std::string section(prefix);
  section += '\\';
  section += name;
  return section;
}

void TWindowPlacementList::Load(const TSettingsStore& store, std::string_view prefix) {
  for (auto& item : items_) item->Load(store, SectionName(prefix, item->Name));
}

void TWindowPlacementList::Save(TSettingsStore& store, std::string_view prefix) const {
  for (const auto& item : items_) item->Save(store, SectionName(prefix, item->Name));
}

namespace {

// The views the project settings file has a section for, and where each one lives.
struct TProjectWindow {
  const char* name;
  TProjectWindowSettings TCurrentProjectSettings::*field;
};
constexpr TProjectWindow kProjectWindows[] = {
    {"ClassView", &TCurrentProjectSettings::ClassViewWindow},
    {"ContextBar", &TCurrentProjectSettings::ContextBarWindow},
    {"ClassHierarchy", &TCurrentProjectSettings::ClassHierarchyWindow},
    {"BrowseHistory", &TCurrentProjectSettings::BrowseHistoryWindow},
};

}  // namespace

void TWindowPlacementList::LoadFromProject(const TCurrentProjectSettings& project) {
  for (const TProjectWindow& w : kProjectWindows)
    if (TWindowPlacementSettings* p = Find(w.name)) p->LoadFromProject(project.*w.field);
}

void TWindowPlacementList::SaveToProject(TCurrentProjectSettings& project) const {
  for (const TProjectWindow& w : kProjectWindows)
    if (const TWindowPlacementSettings* p = Find(w.name)) p->SaveToProject(project.*w.field);
}

}  // namespace velmora
