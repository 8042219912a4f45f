// The IDE's tool services: the one object the add-in is given at its entry point, and
// through which it reaches everything else of the IDE - files and modules, the project,
// the main menu, notifications, error reports, the main thread and the IDE's own
// components.
//
// A host implements this class (and the interfaces it hands out) over what it has: the
// headless host over files and buffers in memory, the Qt host over its windows, the
// language server over its client's documents.
#pragma once

#include <functional>
#include <string>

#include "ide/interface.h"

namespace velmora {

class TIAddInNotifier;
class TIComponent;
class TIMainMenu;
class TIModule;
class TMainThreadQueue;

/// Given each unit of the project in turn: its file name and unit name; returns whether
/// to go on.
using TProjectUnitCallback =
    std::function<bool(const std::string& fileName, const std::string& unitName)>;

/// Lives as long as the IDE. Calls that return an interface return a new reference, or
/// nullptr. Main thread only, except MainThreadQueue, whose own rule holds.
class TIToolServices {
 public:
  virtual ~TIToolServices() = default;

  /// Opens the file in an editor (a header in its source file's editor); false when it
  /// cannot be opened.
  virtual bool OpenFile(const std::string& fileName) = 0;
  /// Brings an open file's buffer back in line with the file on disk, when the buffer
  /// holds no changes of its own; false when it is not open or was changed.
  virtual bool ReloadFile(const std::string& fileName) = 0;
  /// The current project's file name, "" when none is open.
  virtual std::string ProjectName() = 0;
  /// The file of the editor the user works in, "" when none.
  virtual std::string CurrentFile() = 0;
  virtual bool IsFileOpen(const std::string& fileName) = 0;
  /// The module of an open file or of the open project, or nullptr.
  virtual TIModule* GetModule(const std::string& fileName) = 0;
  virtual TIMainMenu* GetMainMenu() = 0;
  /// Registers a file notifier (not taking a reference); false when it is already.
  virtual bool AddNotifier(TIAddInNotifier* notifier) = 0;
  virtual bool RemoveNotifier(TIAddInNotifier* notifier) = 0;
  /// Shows the user an error an add-in caught.
  virtual void ReportException(const std::string& message) = 0;
  /// Calls `callback` for each unit of the current project, in project order, until it
  /// returns false; false when no project is open.
  virtual bool EnumProjectUnits(const TProjectUnitCallback& callback) = 0;

  /// The queue whose work the main thread runs (synchronise-with-main-thread).
  virtual TMainThreadQueue& MainThreadQueue() = 0;
  /// The IDE's application object: the root of its component tree.
  virtual TIComponent& Application() = 0;
};

}  // namespace velmora
