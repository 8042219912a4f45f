// How the manager tells the views about the model without knowing them: a view that
// shows the project's or the external files' class lists implements this and registers
// itself with the manager (TVLManager::AddView). The views sit above the add-in, so the
// add-in reaches them only through this interface.
//
// Main thread only: every call comes from the manager on the main thread.
#pragma once

#include <string>

namespace velmora {

class TModelViewListener {
 public:
  virtual ~TModelViewListener() = default;
  /// The model changed (a merge, a load, a reset): bring the view up to it. Objects
  /// updated in place are the same objects as before.
  virtual void ModelChanged() = 0;
  /// The objects of `fileName` are about to be freed: the view lets go of them now.
  virtual void FileRemoving(const std::string& fileName) = 0;
};

}  // namespace velmora
