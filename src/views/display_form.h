// The form classes every browser view derives from, without widgets: the host (Qt, tests)
// subclasses them and implements TDisplayWindow over its own window. They give a view its
// remembered placement, its representation slot in the code model's objects, and, for the
// dockable ones, the docking panel that hosts it inside the editor window.
//
// Threads: main thread only. The representation slot is taken and given back through the
// manager's lock, so worker threads building class lists meanwhile are safe.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "model/representation.h"
#include "views/display_window.h"

namespace velmora {

class TWindowPlacementSettings;
class TCustomDisplayFormList;

/// Base of every view: a name, the placement kept for it (may be none) and the list of
/// open views it belongs to (may be none).
class TCustomDisplayForm : public TDisplayWindow {
 public:
  /// Joins `list` (when given) until destroyed.
  explicit TCustomDisplayForm(std::string name, TCustomDisplayFormList* list = nullptr);
  ~TCustomDisplayForm() override;
  TCustomDisplayForm(const TCustomDisplayForm&) = delete;
  TCustomDisplayForm& operator=(const TCustomDisplayForm&) = delete;

  const std::string& Name() const { return name_; }

  /// The placement this form applies and captures; not owned, may be null.
  TWindowPlacementSettings* Placement() const { return placement_; }
  void SetPlacement(TWindowPlacementSettings* placement) { placement_ = placement; }
  /// Puts the form where its placement says (nothing without one).
  void ApplyPlacement();
  /// Takes the form's placement into its settings (nothing without one). Hosts call it
  /// when the window moves, resizes, docks, or closes.
  void CapturePlacement();

  /// Shows and hides the host window.
  virtual void Show() = 0;
  virtual void Hide() = 0;

 private:
  std::string name_;
  TWindowPlacementSettings* placement_ = nullptr;
  TCustomDisplayFormList* list_;  ///< back link, cleared when the list goes first
  friend class TCustomDisplayFormList;
};

/// A view that keeps per-object data in the code model: it holds a representation slot
/// from its creation to its destruction.
class TCustomRepresentationDisplayForm : public TCustomDisplayForm, public TRepresentationClient {
 public:
  TCustomRepresentationDisplayForm(std::string name, TRepresentationManager& manager,
                                   TCustomDisplayFormList* list = nullptr);
  ~TCustomRepresentationDisplayForm() override;

  TRepresentationManager& Manager() const { return manager_; }

 private:
  TRepresentationManager& manager_;
};

/// A view that can live in a docking panel of the editor window as well as float.
class TDockableDisplayForm : public TCustomRepresentationDisplayForm {
 public:
  using TCustomRepresentationDisplayForm::TCustomRepresentationDisplayForm;
  ~TDockableDisplayForm() override;

  bool IsDocked() const { return panel_ != nullptr; }
  TDockPanel* DockPanel() const override { return panel_; }

  /// Moves the form into `panel`: hidden, prepared, parented filling the panel, placed
  /// as stored, then shown with the panel.
  /// The panel must outlive the form or see it undocked first.
  void Dock(TDockPanel& panel);
  /// Leaves the panel (hidden, a top-level window again); the host shows it where it
  /// wants. Nothing when floating.
  void Undock();
  /// Brings the form's window to the front and, when it has a control that can take the
  /// focus, opens a collapsed panel and focuses that control.
  void Activate();
  /// Docked: the active control of the window holding the panel lies inside this form.
  /// Floating: the form's own window is the active one.
  bool IsActive() const;

 protected:
  /// Called by Dock before the form moves into the panel, and after it is shown there.
  virtual void PrepareDock() {}
  virtual void DockFinished() {}
  /// The host makes `panel` the form's parent (null: back to a top-level window) with no
  /// border and filling the panel's client area.
  virtual void AttachToPanel(TDockPanel* panel) = 0;
  /// Whether the form has a control to focus that can take the focus now, and focusing it.
  virtual bool CanFocusControl() const { return false; }
  virtual void FocusControl() {}
  /// Host questions for IsActive and a floating Activate.
  virtual bool ContainsActiveControl() const = 0;
  virtual bool IsActiveWindow() const = 0;
  virtual void BringToFront() = 0;

 private:
  TDockPanel* panel_ = nullptr;  ///< not owned; null while floating
};

/// The open views, in the order they were opened. Forms join and leave it themselves.
class TCustomDisplayFormList {
 public:
  TCustomDisplayFormList() = default;
  ~TCustomDisplayFormList();
  TCustomDisplayFormList(const TCustomDisplayFormList&) = delete;
  TCustomDisplayFormList& operator=(const TCustomDisplayFormList&) = delete;

  int Count() const { return static_cast<int>(forms_.size()); }
  TCustomDisplayForm& At(int index) const { return *forms_[static_cast<size_t>(index)]; }
  /// The open view of that name (case-insensitive), or null.
  TCustomDisplayForm* Find(std::string_view name) const;
  /// Captures the placement of every open view, as before the placements are saved.
  void CaptureAll();

 private:
  friend class TCustomDisplayForm;
  void Add(TCustomDisplayForm* form) { forms_.push_back(form); }
  void Remove(TCustomDisplayForm* form);
  std::vector<TCustomDisplayForm*> forms_;  ///< not owned; each removes itself on destruction
};

}  // namespace velmora
