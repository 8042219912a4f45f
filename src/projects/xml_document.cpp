#include "projects/xml_document.h"

#include "projects/project_builder.h"
#include "support/ansi.h"
#include "support/paths.h"

namespace velmora::projects {

void LoadXmlProject(const std::string& path, std::string_view rootName,
                    pugi::xml_document& document) {
  const std::string text = ReadProjectFile(path);
  const std::string name(ExtractFileName(path));
  const pugi::xml_parse_result result =
      document.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_auto);
  if (!result)
    throw EProjectError("\"" + name + "\" is damaged: " + result.description() + " at byte " +
                        std::to_string(result.offset));
  const pugi::xml_node root = document.document_element();
  if (!root || !SameText(root.name(), rootName))
    throw EProjectError("\"" + name + "\" is not a project of its kind: its root element is <" +
                        std::string(root ? root.name() : "") + ">, not <" + std::string(rootName) +
                        ">");
}

pugi::xml_node ChildNoCase(pugi::xml_node node, std::string_view name) {
  for (pugi::xml_node child : node.children())
    if (child.type() == pugi::node_element && SameText(child.name(), name)) return child;
  return {};
}

std::string AttributeNoCase(pugi::xml_node node, std::string_view name) {
  for (pugi::xml_attribute a : node.attributes())
    if (SameText(a.name(), name)) return a.value();
  return {};
}

}  // namespace velmora::projects
