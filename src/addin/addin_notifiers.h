// The notifiers the add-in gives the IDE: the file notifier registered with the tool
// services, the notifier on the open project's module, and one notifier per source
// module the add-in watches, kept in TCommonModuleList. Each hands what it hears to its
// expert. Called on the main thread; none lets an exception escape into the IDE.
#pragma once

#include <string>
#include <vector>

#include "ide/module.h"
#include "ide/notifiers.h"

namespace velmora {

class TClassBrowserExpert;
class TCommonModuleList;

class TAddInNotifier : public TIAddInNotifier {
 public:
  explicit TAddInNotifier(TClassBrowserExpert& expert) : expert_(expert) {}
  /// Never sets `cancel`.
  void FileNotification(TFileNotification code, const std::string& fileName, bool& cancel) override;
  void EventNotification(TEventNotification code, bool& cancel) override;

 private:
  TClassBrowserExpert& expert_;  ///< back link to the owner
};

class TProjectNotifier : public TIModuleNotifier {
 public:
  explicit TProjectNotifier(TClassBrowserExpert& expert) : expert_(expert) {}
  void Notify(TModuleNotification code, TIModule& module) override;
  void ComponentRenamed(const std::string& oldName, const std::string& newName) override;

 private:
  TClassBrowserExpert& expert_;
};

class TCommonModuleNotifier : public TIModuleNotifier {
 public:
  TCommonModuleNotifier(std::string fileName, TClassBrowserExpert& expert, TCommonModuleList& list)
      : fileName_(std::move(fileName)), expert_(expert), list_(list) {}
  /// On ModuleDeleted it leaves its list and frees itself.
  void Notify(TModuleNotification code, TIModule& module) override;
  void ComponentRenamed(const std::string& oldName, const std::string& newName) override;
  const std::string& FileName() const { return fileName_; }
  TClassBrowserExpert& Expert() const { return expert_; }

 private:
  std::string fileName_;  ///< the module's file name as last known
  TClassBrowserExpert& expert_;
  TCommonModuleList& list_;  ///< the list that owns it
};

/// Owns the module notifiers; freeing it detaches and frees them all.
class TCommonModuleList {
 public:
  explicit TCommonModuleList(TClassBrowserExpert& expert) : expert_(expert) {}
  ~TCommonModuleList();
  TCommonModuleList(const TCommonModuleList&) = delete;
  TCommonModuleList& operator=(const TCommonModuleList&) = delete;

  /// Attaches a notifier to the module of `fileName` unless one watches it already;
  /// false when the IDE has no such module.
  bool Watch(const std::string& fileName);
  /// Forgets a notifier (it frees itself).
  void Forget(TCommonModuleNotifier* notifier);
  int Count() const { return static_cast<int>(notifiers_.size()); }

 private:
  TClassBrowserExpert& expert_;
  std::vector<TCommonModuleNotifier*> notifiers_;  ///< one reference each; attached
};

}  // namespace velmora
