#include "hosts/headless/headless_project.h"

#include "hosts/headless/headless_ide.h"

namespace velmora {

TProject OpenProjectFile(THeadlessIDE& ide, const std::string& path,
                         const std::function<void(const TProject&)>& beforeOpen) {
  TProject project = OpenProject(path);
  if (beforeOpen) beforeOpen(project);
  std::vector<std::string> units;
  units.reserve(project.Units.size());
  for (const TProjectUnit& unit : project.Units) units.push_back(unit.FileName);
  ide.OpenProject(project.FileName, std::move(units));
  return project;
}

}  // namespace velmora
