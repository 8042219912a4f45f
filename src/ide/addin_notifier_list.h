// The add-in notifiers a host's tool services hold, and how a file notification reaches
// them: the part of AddNotifier, RemoveNotifier and the broadcast that is the same in
// every host.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ide/notifiers.h"

namespace velmora {

/// Holds plain pointers; the add-ins own the notifiers and remove them before they go.
/// Main thread only, like the tool services that own it.
class TAddInNotifierList {
 public:
  /// False for nullptr or a notifier already registered.
  bool Add(TIAddInNotifier* notifier);
  bool Remove(TIAddInNotifier* notifier);
  /// Tells every registered notifier, in registration order. Works on a copy of the list
  /// so a notifier may remove itself or another; one removed before its turn is skipped.
  /// A notifier that throws is handed to `report`, and the rest are still told.
  void Broadcast(TFileNotification code, const std::string& fileName,
                 const std::function<void(const std::string&)>& report) const;

 private:
  std::vector<TIAddInNotifier*> notifiers_;  ///< no duplicates, no nullptr
};

}  // namespace velmora
