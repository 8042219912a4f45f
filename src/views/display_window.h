// What a view's window looks like to the placement code: a small abstract window and an
// abstract docking panel that each host (Qt, tests) implements over its own widgets. The
// placement, form and list classes work on these alone, so they are tested without any
// widget toolkit.
//
// Threads: main thread only, like every widget behind them.
#pragma once

#include <cstdint>
#include <functional>

namespace velmora {

/// Window state as stored: 0 normal, 1 minimised, 2 maximised.
enum class TWindowState : uint8_t { Normal = 0, Minimized = 1, Maximized = 2 };

/// Docking side as stored: 0 none, 1 top, 2 bottom, 3 left, 4 right, 5 client.
enum class TDockAlign : uint8_t { None = 0, Top = 1, Bottom = 2, Left = 3, Right = 4, Client = 5 };

/// A rectangle in screen coordinates (left, top, width, height).
struct TScreenRect {
  int32_t Left = 0;
  int32_t Top = 0;
  int32_t Width = 0;
  int32_t Height = 0;

  bool operator==(const TScreenRect&) const = default;
};

/// The container that hosts a docked view inside the editor window: a title bar, a side,
/// a size (the extent across its side), a collapsed state and one content view.
class TDockPanel {
 public:
  virtual ~TDockPanel() = default;

  virtual TDockAlign Side() const = 0;
  virtual void SetSide(TDockAlign side) = 0;
  virtual int32_t Size() const = 0;
  virtual void SetSize(int32_t size) = 0;
  virtual bool Collapsed() const = 0;
  virtual void Collapse() = 0;
  virtual void Expand() = 0;
  /// Where the title bar sits: 2 for a panel on the top side, else 0.
  virtual void SetTitleBarPosition(int position) = 0;
  /// The title-bar switches the docked views use: button flat, draggable, inner and outer
  /// bevel, splitter bevel.
  virtual void SetTitleButtonFlat(bool flat) = 0;
  virtual void SetDraggable(bool draggable) = 0;
  virtual void SetBevels(bool inner, bool outer, bool splitter) = 0;
  /// The panel shows `content` (null: none) and calls `changed` when the user moves,
  /// resizes, collapses or closes it.
  virtual void SetContent(void* content, std::function<void()> changed) = 0;
  virtual void Show() = 0;
  /// Brings the window that holds the panel to the front.
  virtual void BringParentToFront() = 0;
};

/// A view's window as the placement code sees it. Bounds are those of the floating window;
/// the screen area is what the host can show windows in (the work area, without task bars).
class TDisplayWindow {
 public:
  virtual ~TDisplayWindow() = default;

  virtual TScreenRect Bounds() const = 0;
  virtual void SetBounds(const TScreenRect& bounds) = 0;
  virtual bool Visible() const = 0;
  virtual TWindowState WindowState() const = 0;
  virtual void SetWindowState(TWindowState state) = 0;
  /// The area windows may occupy on the screen the window is on.
  virtual TScreenRect ScreenArea() const = 0;
  /// The panel the window is docked in, null while it floats.
  virtual TDockPanel* DockPanel() const { return nullptr; }
};

}  // namespace velmora
