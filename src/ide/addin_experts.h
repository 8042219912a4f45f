// The experts a host holds for the add-ins it loaded: calling an add-in's entry point
// with the host's tool services, keeping what it registers, and releasing it all again.
// The same in every host; what differs is where the entry point comes from.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ide/expert.h"

namespace velmora {

/// Holds one reference to each registered expert. Main thread only: the registration
/// procedure an entry point is given finds this list through the loading thread.
class TAddInExperts {
 public:
  TAddInExperts() = default;
  TAddInExperts(const TAddInExperts&) = delete;
  TAddInExperts& operator=(const TAddInExperts&) = delete;

  /// Calls `entry` with `services`; the experts it registers are held until Unload. An
  /// exception from the entry goes to `report` and counts as false. Returns the entry's
  /// result.
  bool Load(TIToolServices* services, TExpertInitProc entry,
            const std::function<void(const std::string&)>& report);
  /// Releases the experts, last first, then calls the add-ins' terminate procedures.
  void Unload();
  int Count() const { return static_cast<int>(experts_.size()); }
  TIExpert* At(int index) const { return experts_[static_cast<size_t>(index)]; }

 private:
  std::vector<TIExpert*> experts_;                ///< one reference each, in registration order
  std::vector<TExpertTerminateProc> terminates_;  ///< of the add-ins that gave one
};

}  // namespace velmora
