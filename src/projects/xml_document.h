// Loading a project file that is XML. pugixml reads it without a document type and so
// without entity definitions: a file that declares entities gets them left unexpanded,
// never multiplied.
#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>

namespace velmora::projects {

/// Parses the file at `path` into `document`; EProjectError naming the file and the first
/// fault when it cannot be read or is not well-formed XML, or its root element is not
/// `rootName` (compared without regard to case).
void LoadXmlProject(const std::string& path, std::string_view rootName,
                    pugi::xml_document& document);

/// The first child element of `node` named `name` without regard to case.
pugi::xml_node ChildNoCase(pugi::xml_node node, std::string_view name);

/// The attribute of `node` named `name` without regard to case ("" when missing).
std::string AttributeNoCase(pugi::xml_node node, std::string_view name);

}  // namespace velmora::projects
