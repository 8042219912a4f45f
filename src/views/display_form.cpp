#include "views/display_form.h"

#include <algorithm>
#include <utility>

#include "support/ansi.h"
#include "views/window_placement.h"

namespace velmora {

TCustomDisplayForm::TCustomDisplayForm(std::string name, TCustomDisplayFormList* list)
    : name_(std::move(name)), list_(list) {
  if (list_ != nullptr) list_->Add(this);
}

TCustomDisplayForm::~TCustomDisplayForm() {
  if (list_ != nullptr) list_->Remove(this);
}

void TCustomDisplayForm::ApplyPlacement() {
  if (placement_ != nullptr) placement_->Apply(*this);
}

void TCustomDisplayForm::CapturePlacement() {
  if (placement_ != nullptr) placement_->Capture(*this);
}

TCustomRepresentationDisplayForm::TCustomRepresentationDisplayForm(std::string name,
                                                                   TRepresentationManager& manager,
                                                                   TCustomDisplayFormList* list)
    : TCustomDisplayForm(std::move(name), list), manager_(manager) {
  manager_.AddSlot(this);
}

TCustomRepresentationDisplayForm::~TCustomRepresentationDisplayForm() {
  // Slot() follows the renumbering when an earlier view gave its slot back first.
  manager_.RemoveSlot(Slot());
}

TDockableDisplayForm::~TDockableDisplayForm() {
  // The panel must not call into a form that is gone.
  if (panel_ != nullptr) panel_->SetContent(nullptr, {});
}

void TDockableDisplayForm::Dock(TDockPanel& panel) {
  Hide();
  PrepareDock();
  panel_ = &panel;
  AttachToPanel(&panel);
  Show();
  panel.SetContent(this, [this] { CapturePlacement(); });
  panel.SetTitleButtonFlat(false);
  panel.SetDraggable(false);
  panel.SetBevels(false, false, false);
  ApplyPlacement();
  Show();
  panel.Show();
  DockFinished();
}

void TDockableDisplayForm::Undock() {
  if (panel_ == nullptr) return;
  Hide();
  panel_->SetContent(nullptr, {});
  panel_ = nullptr;
  AttachToPanel(nullptr);
}

void TDockableDisplayForm::Activate() {
  if (panel_ != nullptr)
    panel_->BringParentToFront();
  else
    BringToFront();
  if (CanFocusControl()) {
    if (panel_ != nullptr && panel_->Collapsed()) panel_->Expand();
    FocusControl();
  }
}

bool TDockableDisplayForm::IsActive() const {
  return panel_ != nullptr ? ContainsActiveControl() : IsActiveWindow();
}

TCustomDisplayFormList::~TCustomDisplayFormList() {
  for (TCustomDisplayForm* form : forms_) form->list_ = nullptr;
}

TCustomDisplayForm* TCustomDisplayFormList::Find(std::string_view name) const {
  for (TCustomDisplayForm* form : forms_)
    if (SameText(form->Name(), name)) return form;
  return nullptr;
}

void TCustomDisplayFormList::CaptureAll() {
  for (TCustomDisplayForm* form : forms_) form->CapturePlacement();
}

void TCustomDisplayFormList::Remove(TCustomDisplayForm* form) {
  forms_.erase(std::remove(forms_.begin(), forms_.end(), form), forms_.end());
}

}  // namespace velmora
