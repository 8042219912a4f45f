// The MSBuild projects of C++Builder (`.cbproj`) and Delphi (`.dproj`): units are items
// (`<CppCompile Include=...>`, `<DCCReference Include=...>`), options are properties of
// the default configuration.
#include <algorithm>
#include <climits>
#include <cstdlib>

#include "projects/msbuild_properties.h"
#include "projects/project_builder.h"
#include "projects/xml_document.h"
#include "support/ansi.h"

namespace velmora::projects {

namespace {

struct TItem {
  std::string Include;
  long Order;               ///< BuildOrder, or LONG_MAX when the item has none
  std::string DependentOn;  ///< the file the IDE shows the item under (a unit's header)
};

// The items under `project` whose element name is one of `kinds`, in the project's order:
// by BuildOrder when every item has one (the IDE's own order), else as written.
std::vector<TItem> SourceItems(pugi::xml_node project, const TMsBuildProperties& properties,
                               std::initializer_list<std::string_view> kinds) {
  std::vector<TItem> items;
  bool allOrdered = true;
  for (pugi::xml_node group : project.children()) {
    if (!SameText(group.name(), "ItemGroup")) continue;
    if (!properties.Holds(group.attribute("Condition").value())) continue;
    for (pugi::xml_node item : group.children()) {
      if (std::none_of(kinds.begin(), kinds.end(),
                       [&](std::string_view k) { return SameText(item.name(), k); }))
        continue;
      const std::string include = properties.Expand(item.attribute("Include").value());
      if (Trim(include).empty()) continue;
      long order = LONG_MAX;
      const std::string orderText(Trim(ChildNoCase(item, "BuildOrder").child_value()));
      char* end = nullptr;
      const long parsed = std::strtol(orderText.c_str(), &end, 10);
      if (!orderText.empty() && end && *end == '\0')
        order = parsed;
      else
        allOrdered = false;
      // One item may name several files.
      const std::string dependentOn = ChildNoCase(item, "DependentOn").child_value();
      for (std::string_view one : SplitList(include))
        items.push_back({std::string(one), order, dependentOn});
    }
  }
  if (allOrdered)
    std::stable_sort(items.begin(), items.end(),
                     [](const TItem& a, const TItem& b) { return a.Order < b.Order; });
  return items;
}

// Paths left with `$(NAME)` after the properties were applied are the IDE's own folders;
// the environment may name them, else they go with a warning.
std::optional<std::string> NoMacros(std::string_view name) {
  return EnvironmentMacro(name);
}

std::string FirstSet(const TMsBuildProperties& properties,
                     std::initializer_list<std::string_view> names) {
  for (std::string_view n : names)
    if (auto v = properties.Value(n)) return *v;
  return {};
}

}  // namespace

TProject ReadCbProjProject(const std::string& path) {
  pugi::xml_document document;
  LoadXmlProject(path, "Project", document);
  const pugi::xml_node root = document.document_element();
  const TMsBuildProperties properties(root, path);
  TProjectBuilder builder(path, TProjectKind::CbProj);
  for (const TItem& item :
       SourceItems(root, properties, {"CppCompile", "CCompile", "PasCompile", "DelphiCompile"}))
    builder.AddUnit(item.Include, NoMacros, item.DependentOn);
  // Older versions spell the options with the compiler's prefix.
  builder.AddIncludePath(FirstSet(properties, {"IncludePath", "BCC_IncludePath"}), NoMacros);
  builder.AddDefines(FirstSet(properties, {"Defines", "BCC_Defines"}));
  builder.AddUnitSearchPath(FirstSet(properties, {"DCC_UnitSearchPath"}), NoMacros);
  return builder.Finish();
}

TProject ReadDProjProject(const std::string& path) {
  pugi::xml_document document;
  LoadXmlProject(path, "Project", document);
  const pugi::xml_node root = document.document_element();
  const TMsBuildProperties properties(root, path);
  TProjectBuilder builder(path, TProjectKind::DProj);
  // The program source (DelphiCompile, often `$(MainSource)`) first, then the units.
  for (const TItem& item : SourceItems(root, properties, {"DelphiCompile"}))
    builder.AddUnit(item.Include, NoMacros);
  for (const TItem& item : SourceItems(root, properties, {"DCCReference"})) {
    // Packages (`.dcp`) and resources are references too, but not sources.
    if (!IsPascalSourceName(item.Include) && !IsCppSourceName(item.Include)) continue;
    builder.AddUnit(item.Include, NoMacros);
  }
  builder.AddIncludePath(FirstSet(properties, {"DCC_IncludePath"}), NoMacros);
  builder.AddDefines(FirstSet(properties, {"DCC_Define"}));
  builder.AddUnitSearchPath(FirstSet(properties, {"DCC_UnitSearchPath"}), NoMacros);
  return builder.Finish();
}

}  // namespace velmora::projects
