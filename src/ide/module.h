// A module: a file the IDE has open (a source, a header with its partner, the project
// itself), and the notifier an add-in attaches to it.
#pragma once

#include <string>

#include "ide/interface.h"

namespace velmora {

class TIEditor;
class TIModule;

/// What happened to a module. Other codes may arrive and are to be ignored.
enum class TModuleNotification : int {
  ModuleDeleted = 0,  ///< closed; the notifier is detached by the module's end
  ModuleRenamed = 1,  ///< saved under another name; FileName() gives the new one
  ModuleSaved = 7,
};

/// Created by the add-in, which owns it; a module only keeps a plain pointer to it while
/// it is attached. Called on the main thread.
class TIModuleNotifier : public TInterface {
 public:
  /// `module` is the module the notifier is attached to; for ModuleDeleted it is being
  /// closed, and the notifier is no longer attached when the call returns (it may free
  /// itself inside the call).
  virtual void Notify(TModuleNotification code, TIModule& module) = 0;
  /// A component of the module's form was renamed.
  virtual void ComponentRenamed(const std::string& oldName, const std::string& newName) = 0;
};

/// Every call that returns an interface returns a new reference, or nullptr. Main
/// thread only.
class TIModule : public TInterface {
 public:
  /// The editor of the module's own file.
  virtual TIEditor* GetEditor() = 0;
  /// Attaches a notifier; false when it is attached already.
  virtual bool AddNotifier(TIModuleNotifier* notifier) = 0;
  virtual bool RemoveNotifier(TIModuleNotifier* notifier) = 0;
  /// The editor that shows `fileName` within this module (a header inside its source
  /// file's editor), or nullptr when the module has none for it.
  virtual TIEditor* GetEditorOfFile(const std::string& fileName) = 0;
  virtual std::string FileName() = 0;
};

}  // namespace velmora
