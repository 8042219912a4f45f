// The part of the tool services that is the same in every host: the add-ins' experts and
// notifiers, the reports of what went wrong, the open project's file and units, and the
// main-thread queue. A host derives from it and adds files, editors, menus and windows.
#pragma once

#include <string>
#include <vector>

#include "ide/addin_experts.h"
#include "ide/addin_notifier_list.h"
#include "ide/main_thread_queue.h"
#include "ide/project_units.h"
#include "ide/tool_services.h"

namespace velmora {

/// Main thread only, except MainThreadQueue(), whose own rule holds. The queue is the
/// first member, so it outlives everything of the host that may post to it.
class TToolServicesBase : public TIToolServices {
 public:
  /// Calls an add-in's entry point with these services; the experts it registers are
  /// held until the host unloads its add-ins. Returns the entry's result.
  bool LoadAddIn(TExpertInitProc entry);
  int ExpertCount() const { return experts_.Count(); }
  TIExpert* Expert(int index) const { return experts_.At(index); }
  /// Messages given to ReportException, oldest first.
  const std::vector<std::string>& Reports() const { return reports_; }

  std::string ProjectName() override { return project_.FileName(); }
  bool AddNotifier(TIAddInNotifier* notifier) override { return notifiers_.Add(notifier); }
  bool RemoveNotifier(TIAddInNotifier* notifier) override { return notifiers_.Remove(notifier); }
  /// Keeps the message for Reports(); a host that shows it calls this first.
  void ReportException(const std::string& message) override { reports_.push_back(message); }
  bool EnumProjectUnits(const TProjectUnitCallback& callback) override {
    return project_.Enum(callback);
  }
  TMainThreadQueue& MainThreadQueue() override { return queue_; }

 protected:
  /// Tells every registered add-in notifier; one that throws is reported.
  void Broadcast(TFileNotification code, const std::string& fileName);
  /// Releases the experts, last first, then calls the add-ins' terminate procedures.
  void UnloadExperts() { experts_.Unload(); }

  TMainThreadQueue queue_;
  TProjectUnits project_;  ///< under the host's file keys

 private:
  TAddInNotifierList notifiers_;
  TAddInExperts experts_;
  std::vector<std::string> reports_;  ///< oldest first
};

}  // namespace velmora
