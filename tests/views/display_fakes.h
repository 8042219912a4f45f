// A window and a docking panel in memory, standing in for the host's widgets in the
// placement and display form tests. Each records what was done to it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "views/display_form.h"
#include "views/display_window.h"
#include "views/window_placement.h"

namespace velmora::testing {

class TFakePanel : public TDockPanel {
 public:
  TDockAlign Side() const override { return side; }
  void SetSide(TDockAlign s) override { side = s; }
  int32_t Size() const override { return size; }
  void SetSize(int32_t s) override { size = s; }
  bool Collapsed() const override { return collapsed; }
  void Collapse() override { collapsed = true; }
  void Expand() override {
    collapsed = false;
    log.push_back("expand");
  }
  void SetTitleBarPosition(int position) override { titleBarPosition = position; }
  void SetTitleButtonFlat(bool flat) override { titleButtonFlat = flat; }
  void SetDraggable(bool d) override { draggable = d; }
  void SetBevels(bool inner, bool outer, bool splitter) override {
    bevels = inner || outer || splitter;
  }
  void SetContent(void* c, std::function<void()> changed) override {
    content = c;
    onChanged = std::move(changed);
    log.push_back(c != nullptr ? "content" : "no content");
  }
  void Show() override { log.push_back("panel show"); }
  void BringParentToFront() override { log.push_back("parent to front"); }

  TDockAlign side = TDockAlign::Left;
  int32_t size = 200;
  bool collapsed = false;
  int titleBarPosition = -1;
  bool titleButtonFlat = true;
  bool draggable = true;
  bool bevels = true;
  void* content = nullptr;
  std::function<void()> onChanged;
  std::vector<std::string> log;
};

class TFakeWindow : public TDisplayWindow {
 public:
  TScreenRect Bounds() const override { return bounds; }
  void SetBounds(const TScreenRect& b) override {
    bounds = b;
    ++setBoundsCalls;
    // A real window reports its move at once; the placement must ignore it while applying.
    if (placement != nullptr) {
      applyingSeen = applyingSeen || placement->Applying;
      placement->Capture(*this);
    }
  }
  bool Visible() const override { return visible; }
  TWindowState WindowState() const override { return state; }
  void SetWindowState(TWindowState s) override { state = s; }
  TScreenRect ScreenArea() const override { return screen; }
  TDockPanel* DockPanel() const override { return panel; }

  TScreenRect bounds{100, 80, 400, 300};
  bool visible = true;
  TWindowState state = TWindowState::Normal;
  TScreenRect screen{0, 0, 1920, 1080};
  TDockPanel* panel = nullptr;
  int setBoundsCalls = 0;
  /// When set, SetBounds captures into it as a host's move signal would.
  TWindowPlacementSettings* placement = nullptr;
  bool applyingSeen = false;
};

}  // namespace velmora::testing
