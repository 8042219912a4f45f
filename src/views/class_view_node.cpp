#include "views/class_view_node.h"

namespace velmora {

std::string_view NodeKindText(TNodeKind kind) {
  switch (kind) {
    case TNodeKind::Root:
      return "root";
    case TNodeKind::Class:
      return "class";
    case TNodeKind::Field:
      return "field";
    case TNodeKind::Property:
      return "property";
    case TNodeKind::Method:
      return "method";
    case TNodeKind::Domain:
      return "domain";
    case TNodeKind::RoutineList:
      return "routines";
    case TNodeKind::Routine:
      return "routine";
    case TNodeKind::File:
      return "file";
  }
  return {};
}

int TClassViewNode::IndexOf(const TClassViewNode* child) const {
  for (int i = 0; i < Count(); ++i)
    if (Children[i].get() == child) return i;
  return -1;
}

TClassViewNode* TClassViewNode::FindChild(std::string_view text) const {
  for (const auto& child : Children)
    if (child->Text == text) return child.get();
  return nullptr;
}

}  // namespace velmora
