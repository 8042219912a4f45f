// One node of the class view's trees, without widgets. A host renders the nodes (the
// command line as indented text, the Qt host as tree items, the language server as an
// outline) and asks the owning TClassView to expand them; only TClassView changes them.
//
// A node caches everything a host shows (text, image, visibility, place), so rendering
// never reaches into the model. Object is the shown model object; it is valid from one
// TClassView call to the next, and a merge that frees objects must be followed by
// TClassView::Refresh before anyone reads it again.
//
// Threads: main thread only, like the view that owns the node.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "model/code_object.h"

namespace velmora {

enum class TNodeKind : uint8_t {
  Root,         ///< one of the four roots; no object
  Class,        ///< TClassDescription
  Field,        ///< TFieldDescription that is not a property
  Property,     ///< TFieldDescription that is a property
  Method,       ///< TMethodDescription of a class
  Domain,       ///< TDomain
  RoutineList,  ///< the TRoutineList of a class list
  Routine,      ///< TProcDescription
  File,         ///< TFileDescription
};

/// "root", "class", "field", ... as the text renderer writes them.
std::string_view NodeKindText(TNodeKind kind);

class TClassViewNode {
 public:
  TClassViewNode(TNodeKind kind, TRepObject* object, uint32_t id)
      : Kind(kind), Object(object), Id(id) {}
  TClassViewNode(const TClassViewNode&) = delete;
  TClassViewNode& operator=(const TClassViewNode&) = delete;

  int Count() const { return static_cast<int>(Children.size()); }
  TClassViewNode* Child(int i) const { return Children[i].get(); }
  int IndexOf(const TClassViewNode* child) const;
  /// The first child whose Text equals `text`, or null (for tests and hosts' look-ups).
  TClassViewNode* FindChild(std::string_view text) const;

  const TNodeKind Kind;
  /// The shown object; null for roots. Never read after a merge until the next Refresh.
  TRepObject* const Object;
  /// The number kept in the first word of Object's representation in the view's slot;
  /// unique within its view for the view's whole life, never reused.
  const uint32_t Id;
  TClassViewNode* Parent = nullptr;  ///< null for roots

  std::string Text;    ///< the display name in the form the settings choose
  int ImageIndex = 0;  ///< both the normal and the selected image
  /// Members and routines only; meaningless for other kinds (HasVisibility tells).
  TVisibility Visibility = TVisibility::Public;
  bool HasVisibility = false;
  std::string FileName;  ///< the declaring file without its folder; empty when unknown
  int32_t Line = -1;     ///< 1-based declaration line, -1 when unknown
  /// The "+" of a collapsed node: it has (or may have) children not inserted yet.
  bool HasExpandMark = false;
  /// Children are in Children. Mirrors the flag word of Object's representation.
  bool ChildrenInserted = false;
  /// Set when the last expansion found members but the member filter hid all of them;
  /// the host showed the filtered message and the node stays collapsed.
  bool AllMembersFiltered = false;
  /// In display order; filled only when the node is expanded (roots are always filled).
  std::vector<std::unique_ptr<TClassViewNode>> Children;
};

}  // namespace velmora
