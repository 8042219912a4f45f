// A class view as the manager sees it: the manager knows views only as model listeners,
// and this one passes what it hears on to a TClassView.
//
// Main thread only, as the view and the manager are.
#pragma once

#include <string>

#include "addin/model_view_listener.h"
#include "views/class_view.h"

namespace velmora {

class TClassViewModelListener : public TModelViewListener {
 public:
  /// `view` is not owned and must outlive this listener's registration.
  explicit TClassViewModelListener(TClassView& view) : view_(view) {}

  void ModelChanged() override { view_.Refresh(); }
  void FileRemoving(const std::string& fileName) override { view_.RemoveFileObjects(fileName); }

 private:
  TClassView& view_;
};

}  // namespace velmora
