#include "ide/addin_notifier_list.h"

#include <algorithm>
#include <exception>

namespace velmora {

bool TAddInNotifierList::Add(TIAddInNotifier* notifier) {
  if (!notifier || std::find(notifiers_.begin(), notifiers_.end(), notifier) != notifiers_.end())
    return false;
  notifiers_.push_back(notifier);
  return true;
}

bool TAddInNotifierList::Remove(TIAddInNotifier* notifier) {
  auto it = std::find(notifiers_.begin(), notifiers_.end(), notifier);
  if (it == notifiers_.end()) return false;
  notifiers_.erase(it);
  return true;
}

void TAddInNotifierList::Broadcast(TFileNotification code, const std::string& fileName,
                                   const std::function<void(const std::string&)>& report) const {
  const std::vector<TIAddInNotifier*> notifiers = notifiers_;
  for (TIAddInNotifier* n : notifiers) {
    if (std::find(notifiers_.begin(), notifiers_.end(), n) == notifiers_.end()) continue;
    bool cancel = false;
    // A notifier must not throw; one that does is reported, as an IDE would.
    try {
      n->FileNotification(code, fileName, cancel);
    } catch (const std::exception& e) {
      report(e.what());
    }
  }
}

}  // namespace velmora
