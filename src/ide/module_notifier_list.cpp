#include "ide/module_notifier_list.h"

#include <algorithm>

namespace velmora {

bool TModuleNotifierList::Add(TIModuleNotifier* notifier) {
  if (!notifier || closed_) return false;
  if (std::find(notifiers_.begin(), notifiers_.end(), notifier) != notifiers_.end()) return false;
  notifiers_.push_back(notifier);
  return true;
}

bool TModuleNotifierList::Remove(TIModuleNotifier* notifier) {
  auto it = std::find(notifiers_.begin(), notifiers_.end(), notifier);
  if (it == notifiers_.end()) return false;
  notifiers_.erase(it);
  return true;
}

void TModuleNotifierList::Notify(TModuleNotification code, TIModule& module) const {
  // A notifier may release the last reference to the module it is told about.
  TIRef<TIModule> keep = TIRef<TIModule>::Share(&module);
  const std::vector<TIModuleNotifier*> notifiers = notifiers_;
  for (TIModuleNotifier* n : notifiers) {
    // One that an earlier notifier detached is not called any more.
    if (std::find(notifiers_.begin(), notifiers_.end(), n) == notifiers_.end()) continue;
    n->Notify(code, module);
  }
}

void TModuleNotifierList::Close(TIModule& module) {
  TIRef<TIModule> keep = TIRef<TIModule>::Share(&module);
  Notify(TModuleNotification::ModuleDeleted, module);
  notifiers_.clear();
  closed_ = true;
}

}  // namespace velmora
