// The file notifier an add-in registers with the IDE's tool services.
#pragma once

#include <string>

#include "ide/interface.h"

namespace velmora {

/// What happened to a file or project. Codes above ProjectRemovedFile may arrive and are
/// to be ignored.
enum class TFileNotification : int {
  FileOpening = 0,
  FileOpened = 1,
  FileClosing = 2,
  ProjectOpening = 3,
  ProjectOpened = 4,
  ProjectClosing = 5,
  AddedToProject = 6,
  RemovedFromProject = 7,
};

/// IDE-wide events that are not about one file.
enum class TEventNotification : int {
  BeforeCompile = 0,
  AfterCompile = 1,
};

/// Created by the add-in, which owns it; the tool services only keep a plain pointer to
/// it between AddNotifier and RemoveNotifier. Called on the main thread, and must not
/// let an exception escape.
class TIAddInNotifier : public TInterface {
 public:
  /// Setting `cancel` asks the IDE not to go on with what it announced.
  virtual void FileNotification(TFileNotification code, const std::string& fileName,
                                bool& cancel) = 0;
  virtual void EventNotification(TEventNotification code, bool& cancel) = 0;
};

}  // namespace velmora
