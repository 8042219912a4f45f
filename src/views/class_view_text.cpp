#include "views/class_view_text.h"

#include "model/filters.h"

namespace velmora {

namespace {

std::string_view FirstLine(std::string_view text) {
  return text.substr(0, text.find_first_of("\r\n"));
}

}  // namespace

void RenderNodeText(const TClassViewNode& node, int depth, std::string& out) {
  out.append(2 * static_cast<size_t>(depth), ' ');
  if (node.Kind != TNodeKind::Root) {
    out += NodeKindText(node.Kind);
    out += ' ';
    if (node.HasVisibility) {
      out += VisibilityName(node.Visibility);
      out += ' ';
    }
  }
  out += node.Text;
  if (!node.FileName.empty()) {
    out += "  ";
    out += node.FileName;
    if (node.Line > 0) out += ":" + std::to_string(node.Line);
  }
  if (node.HasExpandMark && !node.ChildrenInserted && !node.AllMembersFiltered) out += " [+]";
  out += '\n';
  if (node.AllMembersFiltered && !node.ChildrenInserted) {
    out.append(2 * static_cast<size_t>(depth + 1), ' ');
    out += "! ";
    out += FirstLine(kAllMembersFiltered);
    out += '\n';
  }
  for (const auto& child : node.Children) RenderNodeText(*child, depth + 1, out);
}

std::string RenderClassViewText(const TClassView& view, TClassView::TPage page) {
  std::string out;
  RenderNodeText(view.Root(page, TClassView::riProject), 0, out);
  RenderNodeText(view.Root(page, TClassView::riExternal), 0, out);
  return out;
}

}  // namespace velmora
