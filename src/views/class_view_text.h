// The class view as indented text: one node a line, two spaces a level, for the command
// line and for golden tests. A line reads
//   KIND [VISIBILITY] TEXT[  FILE:LINE][ [+]]
// ("[+]" marks a node whose children are not inserted yet); a root line is its text
// alone, and a class whose members are all filtered gets the first line of the filtered
// message below it, after "! ".
#pragma once

#include <string>

#include "views/class_view.h"

namespace velmora {

/// The node and everything inserted below it, `depth` levels in.
void RenderNodeText(const TClassViewNode& node, int depth, std::string& out);

/// Both roots of the page with what is inserted below them. Call ExpandAll first for the
/// whole tree.
std::string RenderClassViewText(const TClassView& view, TClassView::TPage page);

}  // namespace velmora
