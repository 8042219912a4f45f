// The open project as the tool services know it: its file name and its units in project
// order, kept under the host's file keys. What a host adds (the project's module, its
// parse, its windows) stays with the host.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "ide/tool_services.h"

namespace velmora {

/// A unit's name: its file name without folder and extension.
std::string UnitNameOf(const std::string& fileName);

/// Main thread only, like the tool services that own it.
class TProjectUnits {
 public:
  /// The project's file name, "" when none is open.
  const std::string& FileName() const { return fileName_; }
  bool IsOpen() const { return !fileName_.empty(); }
  /// Makes `fileName` the open project, with no units yet.
  void Open(std::string fileName);
  /// Forgets the project and its units.
  void Close();
  /// The project saved under another name; its units stay.
  void Rename(std::string fileName) { fileName_ = std::move(fileName); }
  /// False when no project is open or `key` is a unit already.
  bool Add(const std::string& key);
  /// False when `key` is not a unit.
  bool Remove(const std::string& key);
  const std::vector<std::string>& Units() const { return units_; }
  /// The project file first (it is a unit of the project too), then each unit, until
  /// `callback` returns false; false when no project is open. A callback may change the
  /// project: the units as they were when the call began are given.
  bool Enum(const TProjectUnitCallback& callback) const;

 private:
  std::string fileName_;            ///< "" when no project is open
  std::vector<std::string> units_;  ///< no duplicates; empty when no project is open
};

}  // namespace velmora
