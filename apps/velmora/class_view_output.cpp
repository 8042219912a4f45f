#include "class_view_output.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <functional>
#include <map>
#include <set>

#include "browse_session.h"
#include "model/class_description.h"
#include "model/class_list.h"
#include "model/domains.h"
#include "model/files.h"
#include "model/filters.h"
#include "model/members.h"
#include "support/ansi.h"

namespace velmora::app {
namespace {

using Json = nlohmann::ordered_json;

std::string_view VisibilityWord(TVisibility v) {
  switch (v) {
    case TVisibility::Public:
      return "public";
    case TVisibility::Private:
      return "private";
    case TVisibility::Protected:
      return "protected";
    case TVisibility::Published:
      return "published";
    case TVisibility::Automated:
      return "automated";
  }
  return "public";
}

/// The directives a method carries, by name, in directive order.
std::vector<std::string> DirectiveNames(const TMethodDescription& method) {
  std::vector<std::string> names;
  for (int n = 0; n < 16; ++n) {
    if (n == static_cast<int>(TDirective::ImplicitInline)) continue;  // defined in the body
    if ((method.Directives & (1u << n)) == 0) continue;
    // The C++ spelling explains itself in brackets ("abstract (pure virtual)"): the name
    // alone reads better in a list.
    std::string_view text = DirectiveText(n, method.Language);
    text = text.substr(0, text.find(" ("));
    // C++ has no word of its own for these two bits: the parser sets them for `static`
    // and `DYNAMIC`, so those are the words shown.
    if (text.empty() && IsCpp(method.Language)) {
      if (n == static_cast<int>(TDirective::ClassMethod)) text = "static";
      if (n == static_cast<int>(TDirective::Dynamic)) text = "DYNAMIC";
    }
    if (!text.empty()) names.emplace_back(text);
  }
  return names;
}

const TMethodDescription* MethodOf(const TClassViewNode& node) {
  if (node.Kind != TNodeKind::Method && node.Kind != TNodeKind::Routine) return nullptr;
  return static_cast<const TMethodDescription*>(node.Object);
}

std::string ClassHead(const TClassDescription& cls) {
  std::string text(ClassKindText(cls.ClassKind));
  if (text.empty()) text = "class";
  text += ' ';
  text += cls.Name;
  for (int i = 0; i < cls.Ancestors.Count(); ++i) {
    text += i == 0 ? " : " : ", ";
    text += cls.Ancestors[i].AncestorName;
  }
  return text;
}

void Place(std::string& line, const TPathNamer& paths, std::string_view file, int32_t lineNo) {
  if (file.empty()) return;
  line += "  ";
  line += paths.Relative(file);
  if (lineNo > 0) line += ":" + std::to_string(lineNo);
}

void RenderNode(const TClassViewNode& node, int depth, const TPathNamer& paths, std::string& out) {
  std::string line(2 * static_cast<size_t>(depth), ' ');
  switch (node.Kind) {
    case TNodeKind::Root:
    case TNodeKind::RoutineList:
      line += node.Text;
      break;
    case TNodeKind::Class:
      line += ClassHead(*static_cast<const TClassDescription*>(node.Object));
      break;
    case TNodeKind::Domain:
      line += "domain " + node.Text;
      break;
    default: {
      line += NodeKindText(node.Kind);
      line += ' ';
      if (node.HasVisibility) {
        line += VisibilityWord(node.Visibility);
        line += ' ';
      }
      line += node.Text;
      if (const TMethodDescription* method = MethodOf(node)) {
        const std::vector<std::string> directives = DirectiveNames(*method);
        for (size_t i = 0; i < directives.size(); ++i)
          line += (i == 0 ? " [" : " ") + directives[i];
        if (!directives.empty()) line += ']';
      }
    }
  }
  Place(line, paths, node.FileName, node.Line);
  out += line;
  out += '\n';
  if (node.AllMembersFiltered && !node.ChildrenInserted) {
    out.append(2 * static_cast<size_t>(depth + 1), ' ');
    const std::string_view message(kAllMembersFiltered);
    out += "! ";
    out += message.substr(0, message.find('\r'));
    out += '\n';
  }
  for (const auto& child : node.Children) RenderNode(*child, depth + 1, paths, out);
}

Json NodeJson(const TClassViewNode& node, const TPathNamer& paths) {
  Json j;
  j["kind"] = std::string(NodeKindText(node.Kind));
  if (node.Kind == TNodeKind::Class) {
    const auto& cls = *static_cast<const TClassDescription*>(node.Object);
    j["name"] = cls.Name;
    j["classKind"] = std::string(ClassKindText(cls.ClassKind));
    Json ancestors = Json::array();
    for (int i = 0; i < cls.Ancestors.Count(); ++i)
      ancestors.push_back(cls.Ancestors[i].AncestorName);
    if (!ancestors.empty()) j["ancestors"] = ancestors;
  } else if (node.Kind == TNodeKind::Field || node.Kind == TNodeKind::Property) {
    const auto& field = *static_cast<const TFieldDescription*>(node.Object);
    j["name"] = field.Name;
    if (!field.FieldType.empty()) j["type"] = field.FieldType;
  } else if (const TMethodDescription* method = MethodOf(node)) {
    j["name"] = method->Name;
    j["methodKind"] = std::string(MethodKindText(method->Kind));
    if (!method->ResultType.empty()) j["result"] = method->ResultType;
    const std::vector<std::string> directives = DirectiveNames(*method);
    if (!directives.empty()) j["directives"] = directives;
  } else {
    j["name"] = node.Text;
  }
  if (node.Kind != TNodeKind::Domain && node.Kind != TNodeKind::RoutineList) j["text"] = node.Text;
  if (node.HasVisibility) j["visibility"] = std::string(VisibilityWord(node.Visibility));
  if (!node.FileName.empty()) {
    const std::string full = paths.FullPath(node.FileName);
    j["path"] = full.empty() ? node.FileName : full;
    if (node.Line > 0) j["line"] = node.Line;
  }
  if (node.AllMembersFiltered) j["allMembersFiltered"] = true;
  if (!node.Children.empty()) {
    Json children = Json::array();
    for (const auto& child : node.Children) children.push_back(NodeJson(*child, paths));
    j["children"] = children;
  }
  return j;
}

}  // namespace

TPathNamer::TPathNamer(TBrowseSession& session) : session_(session) {
  std::error_code ec;
  cwd_ = std::filesystem::current_path(ec).string();
}

std::string TPathNamer::FullPath(std::string_view unitName) const {
  if (const TFileDescription* file = session_.Files().Find(unitName)) return file->FullName();
  if (const TFileDescription* file = session_.ExternalFiles().Find(unitName))
    return file->FullName();
  return {};
}

std::string TPathNamer::Relative(std::string_view unitName) const {
  const std::string full = FullPath(unitName);
  if (full.empty()) return std::string(unitName);
  if (cwd_.empty()) return full;
  const std::filesystem::path relative = std::filesystem::path(full).lexically_relative(cwd_);
  return relative.empty() ? full : relative.string();
}

std::string RenderTreeText(const TClassView& view, const TPathNamer& paths) {
  std::string out;
  RenderNode(view.Root(TClassView::pgClasses, TClassView::riProject), 0, paths, out);
  RenderNode(view.Root(TClassView::pgClasses, TClassView::riExternal), 0, paths, out);
  return out;
}

std::string RenderTreeJson(const TClassView& view, const TPathNamer& paths,
                           TBrowseSession& session) {
  Json j;
  j["format"] = "velmora-class-view";
  j["version"] = kJsonFormatVersion;
  const TProject& project = session.Project();
  j["project"] = {
      {"name", project.Name}, {"path", project.FileName}, {"kind", ProjectKindName(project.Kind)}};
  Json roots = Json::array();
  for (TClassView::TRootIndex index : {TClassView::riProject, TClassView::riExternal}) {
    const TClassViewNode& root = view.Root(TClassView::pgClasses, index);
    Json classes = Json::array(), domains = Json::array(), routines = Json::array();
    for (const auto& child : root.Children) {
      if (child->Kind == TNodeKind::Class) classes.push_back(NodeJson(*child, paths));
      if (child->Kind == TNodeKind::Domain) domains.push_back(NodeJson(*child, paths));
      if (child->Kind == TNodeKind::RoutineList)
        for (const auto& routine : child->Children) routines.push_back(NodeJson(*routine, paths));
    }
    roots.push_back(
        {{"name", root.Text}, {"classes", classes}, {"domains", domains}, {"routines", routines}});
  }
  j["roots"] = roots;
  // Names are single-byte source text; a byte that is not UTF-8 becomes U+FFFD rather
  // than failing the whole output.
  return j.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

namespace {

void CollectClasses(const TCommonClassList& list, std::vector<const TClassDescription*>& all) {
  for (int i = 0; i < list.Count(); ++i) {
    const TClassDescription* cls = list.Items(i);
    all.push_back(cls);
    if (const TCommonClassList* nested = cls->NestedClassesIfAny()) CollectClasses(*nested, all);
  }
}

std::string Folded(std::string_view text, bool matchCase) {
  return matchCase ? std::string(text) : AnsiUpperCase(text);
}

}  // namespace

bool RenderHierarchy(TBrowseSession& session, const TPathNamer& paths, std::string_view className,
                     std::string& out) {
  std::vector<const TClassDescription*> all;
  CollectClasses(session.Classes(), all);
  // Children by ancestor name; ancestors the model does not hold head trees of their own.
  std::map<std::string, std::vector<const TClassDescription*>> children;
  std::map<std::string, const TClassDescription*> byName;
  for (const TClassDescription* cls : all) byName.emplace(cls->Name, cls);
  std::set<std::string> outside;
  for (const TClassDescription* cls : all) {
    const std::string ancestor = cls->GetDirectAncestorName();
    children[ancestor].push_back(cls);
    if (!ancestor.empty() && !byName.count(ancestor)) outside.insert(ancestor);
  }
  std::set<const TClassDescription*> printed;
  std::function<void(const TClassDescription&, int)> walk = [&](const TClassDescription& cls,
                                                                int depth) {
    std::string line(2 * static_cast<size_t>(depth), ' ');
    line += cls.Name;
    Place(line, paths, cls.UnitName, cls.StartLine);
    out += line + "\n";
    if (!printed.insert(&cls).second) return;  // an ancestor cycle ends here
    auto it = children.find(cls.Name);
    if (it == children.end()) return;
    for (const TClassDescription* child : it->second) walk(*child, depth + 1);
  };

  if (!className.empty()) {
    auto found = byName.find(std::string(className));
    if (found == byName.end()) {
      // An ancestor the model does not hold (a library class): its descendants here.
      auto below = children.find(std::string(className));
      if (below == children.end() || className.empty()) return false;
      out += std::string(className) + "\n";
      for (const TClassDescription* cls : below->second) walk(*cls, 1);
      return true;
    }
    // The chain above the class, outermost first, then the class with its descendants.
    std::vector<std::string> chain;
    std::set<std::string> seen{found->second->Name};
    for (std::string name = found->second->GetDirectAncestorName(); !name.empty();) {
      if (!seen.insert(name).second) break;
      chain.insert(chain.begin(), name);
      auto up = byName.find(name);
      name = up == byName.end() ? std::string() : up->second->GetDirectAncestorName();
    }
    int depth = 0;
    for (const std::string& name : chain) {
      std::string line(2 * static_cast<size_t>(depth++), ' ');
      line += name;
      auto up = byName.find(name);
      if (up != byName.end()) Place(line, paths, up->second->UnitName, up->second->StartLine);
      out += line + "\n";
    }
    walk(*found->second, depth);
    return true;
  }
  for (const TClassDescription* cls : children[""]) walk(*cls, 0);
  for (const std::string& ancestor : outside) {
    out += ancestor + "\n";
    for (const TClassDescription* cls : children[ancestor]) walk(*cls, 1);
  }
  return true;
}

int RenderFind(TBrowseSession& session, const TPathNamer& paths, std::string_view text,
               const TFindOptions& options, std::string& out) {
  const std::string wanted = Folded(text, options.MatchCase);
  auto matches = [&](std::string_view name) {
    const std::string subject = Folded(name, options.MatchCase);
    return options.WholeWord ? subject == wanted : subject.find(wanted) != std::string::npos;
  };
  int count = 0;
  auto emit = [&](std::string_view kind, const std::string& name, std::string_view unit,
                  int32_t line) {
    std::string row(kind);
    row += ' ';
    row += name;
    Place(row, paths, unit, line);
    out += row + "\n";
    ++count;
  };
  std::vector<const TClassDescription*> all;
  CollectClasses(session.Classes(), all);
  for (const TClassDescription* cls : all) {
    if (matches(cls->Name))
      emit(ClassKindText(cls->ClassKind), cls->Name, cls->UnitName, cls->StartLine);
    for (int i = 0; i < cls->Fields.Count(); ++i) {
      const TFieldDescription& field = *cls->Fields.Items(i);
      if (matches(field.Name))
        emit(field.IsProperty ? "property" : "field", cls->Name + "." + field.Name, cls->UnitName,
             field.StartLine);
    }
    for (int i = 0; i < cls->Methods.Count(); ++i) {
      const TMethodDescription& method = *cls->Methods.Items(i);
      if (matches(method.Name))
        emit("method", cls->Name + "." + method.Name, cls->UnitName, method.StartLine);
    }
  }
  const TRoutineList& routines = session.Classes().Routines;
  for (int i = 0; i < routines.Count(); ++i) {
    const TProcDescription& routine = *routines.Items(i);
    if (matches(routine.Name)) emit("routine", routine.Name, routine.FileName, routine.StartLine);
  }
  return count;
}

}  // namespace velmora::app
