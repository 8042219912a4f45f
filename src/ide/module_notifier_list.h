// The notifiers attached to one module, and how a module notification reaches them: the
// part of a module's AddNotifier, RemoveNotifier, notify and close that is the same in
// every host.
#pragma once

#include <vector>

#include "ide/module.h"

namespace velmora {

/// Holds plain pointers; the add-in owns the notifiers. Once closed it takes no new
/// notifier. Main thread only, like the module that owns it.
class TModuleNotifierList {
 public:
  /// False for nullptr, a notifier attached already, or after Close.
  bool Add(TIModuleNotifier* notifier);
  bool Remove(TIModuleNotifier* notifier);
  /// Tells every attached notifier about `module`, holding a reference to it meanwhile.
  /// Works on a copy of the list so a notifier may detach itself or another; one
  /// detached before its turn is skipped.
  void Notify(TModuleNotification code, TIModule& module) const;
  /// ModuleDeleted to every notifier, then detaches them all for good.
  void Close(TIModule& module);

 private:
  std::vector<TIModuleNotifier*> notifiers_;  ///< no duplicates, no nullptr; empty once closed
  bool closed_ = false;
};

}  // namespace velmora
