#include "ide/project_units.h"

#include <algorithm>
#include <string_view>

#include "support/paths.h"

namespace velmora {
std::string UnitNameOf(const std::string& fileName) {
  std::string_view name = ExtractFileName(fileName);
  name.remove_suffix(ExtractFileExt(name).size());
  return std::string(name);
}

void TProjectUnits::Open(std::string fileName) {
  fileName_ = std::move(fileName);
  units_.clear();
}

void TProjectUnits::Close() {
  fileName_.clear();
  units_.clear();
}

bool TProjectUnits::Add(const std::string& key) {
  if (fileName_.empty() || std::find(units_.begin(), units_.end(), key) != units_.end())
    return false;
  units_.push_back(key);
  return true;
}

bool TProjectUnits::Remove(const std::string& key) {
  auto it = std::find(units_.begin(), units_.end(), key);
  if (it == units_.end()) return false;
  units_.erase(it);
  return true;
}

bool TProjectUnits::Enum(const TProjectUnitCallback& callback) const {
  if (fileName_.empty()) return false;
  const std::string projectFile = fileName_;
  if (!callback(projectFile, UnitNameOf(projectFile))) return true;
  const std::vector<std::string> units = units_;
  for (const std::string& unit : units)
    if (!callback(unit, UnitNameOf(unit))) break;
  return true;
}

}  // namespace velmora
