// The properties of an MSBuild project (`.cbproj`, `.dproj`) as the IDE would see them
// for the project's default configuration: property groups are evaluated in document
// order, each kept or skipped by its Condition, and a value may refer to any property set
// before it, itself included (`<Defines>_DEBUG;$(Defines)</Defines>`).
//
// Conditions are the small language RAD Studio writes: quoted strings compared with `==`
// and `!=`, joined with `and`/`or`, negated with `!`, grouped with parentheses. Anything
// else makes the condition false, so an unknown construct leaves a group out rather than
// letting it in.
//
// Not changed after construction: its const members may be called from any thread.
#pragma once

#include <map>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>

namespace velmora::projects {

class TMsBuildProperties {
 public:
  /// Evaluates the property groups under `project`. `projectPath` gives the
  /// MSBuildProjectName and MSBuildProjectDirectory properties.
  TMsBuildProperties(pugi::xml_node project, const std::string& projectPath);

  std::optional<std::string> Value(std::string_view name) const;

  /// `text` with the properties it refers to replaced. A property the project never sets
  /// is empty, as MSBuild has it; a name the project does not know at all (`$(BDS)`, the
  /// IDE's own folder) comes from the environment, or else stays in the text as it was,
  /// so the path it is part of can be left out with a warning.
  std::string Expand(std::string_view text) const;

  /// The condition `condition` (true when empty).
  bool Holds(std::string_view condition) const;

 private:
  /// Upper-case name → value; MSBuild property names ignore case.
  std::map<std::string, std::string> values_;
  /// Upper-case names of every property some group of the project sets.
  std::map<std::string, bool> known_;
};

}  // namespace velmora::projects
