// The outline of a document and the workspace symbol search.
#include <algorithm>

#include "hosts/lsp/code_requests.h"
#include "model/class_list.h"
#include "model/parameters.h"
#include "parsing/implementation_locator.h"
#include "parsing/source_parser.h"
#include "support/paths.h"

namespace velmora::lsp {
namespace {

// One node of the outline, in buffer offsets until it is written out.
struct TNode {
  std::string Name;
  std::string Detail;
  int Kind = skClass;
  int64_t From = 0, To = 0;          // the whole declaration
  int64_t NameFrom = 0, NameTo = 0;  // the name, inside [From, To)
  std::string Container;
  std::vector<TNode> Children;
  /// A grouping of bodies (a class's run, the implementation section), no declaration of
  /// its own: a flat list leaves it out and keeps its children.
  bool Group = false;
};

std::string Detail(TVisibility visibility, TLanguage language, const std::string& declaration) {
  std::string text(VisibilityText(visibility, language));
  if (!text.empty() && !declaration.empty()) text += ' ';
  return text + declaration;
}

TNode NodeOf(const std::string& text, const TCodeObject& object, int kind, std::string detail) {
  TNode node;
  node.Name = object.Name;
  node.Kind = kind;
  node.Detail = std::move(detail);
  node.NameFrom = NameOffsetOf(text, object);
  node.NameTo = node.NameFrom + static_cast<int64_t>(object.Name.find('[') == std::string::npos
                                                         ? object.Name.size()
                                                         : object.Name.find('['));
  node.From = std::min<int64_t>(std::max<int32_t>(object.StartOffset, 0), node.NameFrom);
  node.To = DeclarationEnd(object, node.NameFrom);
  return node;
}

void SortAndEnclose(TNode& node) {
  std::sort(node.Children.begin(), node.Children.end(),
            [](const TNode& a, const TNode& b) { return a.From < b.From; });
  for (TNode& child : node.Children) {
    SortAndEnclose(child);
    // A member the parser placed past its class's recorded end still belongs inside it.
    node.From = std::min(node.From, child.From);
    node.To = std::max(node.To, child.To);
  }
}

TNode ClassNode(const std::string& text, TClassDescription& cls) {
  TNode node = NodeOf(text, cls, KindOfClass(cls), cls.GetHeader());
  if (cls.OwnerList && cls.OwnerList->OuterClass) node.Container = cls.OwnerList->OuterClass->Name;
  if (TCommonClassList* nested = cls.NestedClassesIfAny())
    for (int i = 0; i < nested->Count(); ++i)
      node.Children.push_back(ClassNode(text, *nested->Items(i)));
  for (int i = 0; i < cls.Fields.Count(); ++i) {
    const TFieldDescription& f = *cls.Fields.Items(i);
    TNode child = NodeOf(text, f, f.IsProperty ? skProperty : skField,
                         Detail(f.Visibility, f.Language, f.GetDeclaration(0)));
    child.Container = cls.Name;
    node.Children.push_back(std::move(child));
  }
  for (int i = 0; i < cls.Methods.Count(); ++i) {
    const TMethodDescription& m = *cls.Methods.Items(i);
    TNode child =
        NodeOf(text, m, KindOfMethod(m), Detail(m.Visibility, m.Language, m.GetDeclaration(0)));
    child.Container = cls.Name;
    node.Children.push_back(std::move(child));
  }
  return node;
}

bool IsImplementationFile(const std::string& path) {
  return LanguageOfFile(path) == TLanguage::Cpp && !IsHeaderFile(path);
}

struct TBody {
  int64_t Offset;  // the head's line, after its indentation
  TClassDescription* Class;
  TMethodDescription* Method;
};

// The bodies grouped under their class in runs: a class whose bodies are interleaved with
// another's appears once per run, so no group's range holds another group's body.
std::vector<TNode> GroupBodies(const std::string& text, std::vector<TBody> bodies,
                               bool caseSensitive) {
  std::sort(bodies.begin(), bodies.end(),
            [](const TBody& a, const TBody& b) { return a.Offset < b.Offset; });
  std::vector<TNode> groups;
  for (const TBody& body : bodies) {
    int64_t lineEnd = static_cast<int64_t>(text.find('\r', static_cast<std::size_t>(body.Offset)));
    if (lineEnd < 0) lineEnd = static_cast<int64_t>(text.size());
    TNode node;
    node.Name = body.Method->Name;
    node.Kind = KindOfMethod(*body.Method);
    node.Detail = body.Method->GetDisplayText(toShowArguments);
    node.Container = body.Class->Name;
    node.From = body.Offset;
    node.To = lineEnd;
    const int64_t qualified = FindWord(text, body.Class->Name, body.Offset, lineEnd, caseSensitive);
    int64_t name = FindWord(text, body.Method->Name, qualified < 0 ? body.Offset : qualified + 1,
                            lineEnd, caseSensitive);
    if (name < 0) name = body.Offset;
    node.NameFrom = name;
    node.NameTo = std::min<int64_t>(lineEnd, name + static_cast<int64_t>(body.Method->Name.size()));
    if (groups.empty() || groups.back().Name != body.Class->Name) {
      TNode group;
      group.Name = body.Class->Name;
      group.Kind = KindOfClass(*body.Class);
      group.Detail = "implementation";
      group.Group = true;
      group.From = body.Offset;
      group.NameFrom = qualified < 0 ? node.NameFrom : qualified;
      group.NameTo =
          qualified < 0 ? node.NameTo : qualified + static_cast<int64_t>(body.Class->Name.size());
      groups.push_back(std::move(group));
    }
    groups.back().To = node.To;
    groups.back().Children.push_back(std::move(node));
  }
  return groups;
}

std::vector<TClassDescription*> ClassesOf(const TFileModel& file) {
  std::vector<TClassDescription*> classes;
  for (int i = 0; i < file.Classes->Count(); ++i) classes.push_back(file.Classes->Items(i));
  for (std::size_t c = 0; c < classes.size(); ++c)
    if (TCommonClassList* nested = classes[c]->NestedClassesIfAny())
      for (int i = 0; i < nested->Count(); ++i) classes.push_back(nested->Items(i));
  return classes;
}

// The method bodies of a C++ source file, of the classes it declares and of those of the
// header beside it, found by the code finder.
std::vector<TBody> CppBodies(TModelView view, const std::string& path, const std::string& text) {
  std::vector<const TFileModel*> declaring;
  if (const TFileModel* own = view.Model.File(path)) declaring.push_back(own);
  const std::string_view ext = ExtractFileExt(path);
  const std::string stem = path.substr(0, path.size() - ext.size());
  for (const char* headerExt : {".h", ".hpp", ".hxx", ".H"})
    if (const TFileModel* header = view.Model.File(stem + headerExt)) declaring.push_back(header);
  std::vector<TBody> bodies;
  for (const TFileModel* file : declaring)
    for (TClassDescription* cls : ClassesOf(*file))
      for (int i = 0; i < cls->Methods.Count(); ++i) {
        TMethodDescription* m = cls->Methods.Items(i);
        int32_t offset = -1;
        if (LocateImplementationOffset(text, false, cls, offset, *m) && offset >= 0)
          bodies.push_back({offset, cls, m});
      }
  return bodies;
}

std::string_view WordAt(const std::string& text, int64_t& p) {
  const int64_t from = p;
  while (p < static_cast<int64_t>(text.size()) && IsIdentChar(text[p])) ++p;
  return std::string_view(text).substr(from, p - from);
}

// The method bodies of a Pascal unit's implementation section, in one pass over its lines:
// a line that opens with `procedure`, `function`, `constructor`, `destructor` or
// `operator` (after `class`, for a class method) and names `Class.Method` of a class this
// unit declares. Asking the finder for each method would search the whole unit once per
// method, which for a unit of a thousand methods is most of a second.
std::vector<TBody> PascalBodies(const TFileModel& file, const std::string& text) {
  std::vector<TBody> bodies;
  const int64_t size = static_cast<int64_t>(text.size());
  int64_t section = -1;
  for (int64_t at = FindWord(text, "implementation", 0, size, false); at >= 0;
       at = FindWord(text, "implementation", at + 1, size, false))
    if (at == 0 || text[at - 1] == '\n') {
      section = at;
      break;
    }
  if (section < 0) return bodies;
  const std::vector<TClassDescription*> classes = ClassesOf(file);
  for (int64_t line = section; line < size;) {
    int64_t next = static_cast<int64_t>(text.find('\n', static_cast<std::size_t>(line)));
    next = next < 0 ? size : next + 1;
    int64_t p = line;
    while (p < next && (text[p] == ' ' || text[p] == '\t')) ++p;
    const int64_t head = p;
    std::string word = FoldName(WordAt(text, p));
    if (word == "class") {
      while (p < next && text[p] == ' ') ++p;
      word = FoldName(WordAt(text, p));
    }
    line = next;
    if (word != "procedure" && word != "function" && word != "constructor" &&
        word != "destructor" && word != "operator")
      continue;
    // `Outer.Inner.Method`: the last two names are the class and the method.
    std::vector<std::string_view> names;
    for (;;) {
      while (p < next && (text[p] == ' ' || text[p] == '\t')) ++p;
      names.push_back(WordAt(text, p));
      if (p >= next || text[p] != '.') break;
      ++p;
    }
    if (names.size() < 2) continue;
    const std::string_view className = names[names.size() - 2];
    const std::string_view methodName = names.back();
    std::string_view params;
    while (p < next && (text[p] == ' ' || text[p] == '\t')) ++p;
    if (p < next && text[p] == '(') {
      const std::size_t close = text.find(')', static_cast<std::size_t>(p));
      if (close != std::string::npos) params = std::string_view(text).substr(p + 1, close - p - 1);
    }
    for (TClassDescription* cls : classes) {
      if (!SameName(cls->Name, className, TLanguage::Pascal)) continue;
      TMethodDescription* found = nullptr;
      for (int i = 0; i < cls->Methods.Count() && !found; ++i) {
        TMethodDescription* m = cls->Methods.Items(i);
        if (!SameName(m->Name, methodName, TLanguage::Pascal)) continue;
        TParameterList parsed(TLanguage::Pascal);
        parsed.Parse(params);
        // An overload is told by its parameters; a lone name takes any (the
        // implementation may leave its parameter list out).
        if (!cls->Methods.IsOverloaded(i) || parsed.SameAs(m->Parameters)) found = m;
      }
      if (found) bodies.push_back({head, cls, found});
      break;
    }
  }
  return bodies;
}

// Written as text: a unit of thousands of routines makes an answer of megabytes, which
// costs more to build and free as JSON values than to find.
void Hierarchical(TSourceTexts& texts, const std::string& path, const TNode& node,
                  std::string& out) {
  out += R"({"name":)";
  AppendJsonString(out, node.Name);
  out += R"(,"kind":)";
  out += std::to_string(node.Kind);
  if (!node.Detail.empty()) {
    out += R"(,"detail":)";
    AppendJsonString(out, node.Detail);
  }
  out += R"(,"range":)";
  AppendJsonRange(out, texts.Span(path, node.From, node.To));
  out += R"(,"selectionRange":)";
  AppendJsonRange(out, texts.Span(path, node.NameFrom, node.NameTo));
  if (!node.Children.empty()) {
    out += R"(,"children":[)";
    for (std::size_t i = 0; i < node.Children.size(); ++i) {
      if (i) out += ',';
      Hierarchical(texts, path, node.Children[i], out);
    }
    out += ']';
  }
  out += '}';
}

void Flat(TSourceTexts& texts, const std::string& path, const std::string& uri, const TNode& node,
          std::string& out) {
  if (node.Group) {
    for (const TNode& child : node.Children) Flat(texts, path, uri, child, out);
    return;
  }
  if (out.size() > 1) out += ',';
  out += R"({"name":)";
  AppendJsonString(out, node.Name);
  out += R"(,"kind":)";
  out += std::to_string(node.Kind);
  out += R"(,"location":{"uri":)";
  AppendJsonString(out, uri);
  out += R"(,"range":)";
  AppendJsonRange(out, texts.Span(path, node.From, node.To));
  out += '}';
  if (!node.Container.empty()) {
    out += R"(,"containerName":)";
    AppendJsonString(out, node.Container);
  }
  out += '}';
  for (const TNode& child : node.Children) Flat(texts, path, uri, child, out);
}

// How well `name` matches the folded query: lower is better, -1 no match. A prefix beats a
// substring, which beats letters found in order; shorter names win ties.
int MatchScore(std::string_view folded, std::string_view query) {
  if (query.empty()) return 3;
  if (folded.compare(0, query.size(), query) == 0) return folded.size() == query.size() ? 0 : 1;
  if (folded.find(query) != std::string_view::npos) return 2;
  std::size_t q = 0;
  for (char c : folded)
    if (c == query[q] && ++q == query.size()) return 3;
  return -1;
}

}  // namespace

int64_t NameOffsetOf(const std::string& text, const TCodeObject& object) {
  const int64_t start = std::max<int32_t>(object.StartOffset, 0);
  const int64_t end = object.EndOffset > start ? object.EndOffset + 1 : start + 4096;
  // An array property's name carries its index ("Items[int Index]"); the word is before.
  const std::string_view name = std::string_view(object.Name).substr(0, object.Name.find('['));
  const int64_t at = FindWord(text, name, start, end, object.IsCpp());
  return at < 0 ? start : at;
}

int64_t DeclarationEnd(const TCodeObject& object, int64_t nameOffset) {
  return std::max<int64_t>(object.EndOffset >= 0 ? object.EndOffset + 1 : 0,
                           nameOffset + static_cast<int64_t>(object.Name.size()));
}

std::string DocumentSymbols(TModelView view, const std::string& path, bool hierarchical) {
  const TFileModel* file = view.Model.File(path);
  const std::string* text = view.Texts.Text(path);
  if (!text) return "[]";
  std::vector<TNode> nodes;
  if (file) {
    for (int i = 0; i < file->Classes->Count(); ++i)
      nodes.push_back(ClassNode(*text, *file->Classes->Items(i)));
    for (int i = 0; i < file->Classes->Routines.Count(); ++i) {
      const TProcDescription& r = *file->Classes->Routines.Items(i);
      if (!SameName(ExtractFileName(r.FileName), ExtractFileName(path), TLanguage::Pascal) &&
          !r.FileName.empty())
        continue;
      nodes.push_back(NodeOf(*text, r, skFunction, r.GetDeclaration(0)));
    }
  }
  if (IsImplementationFile(path)) {
    for (TNode& group : GroupBodies(*text, CppBodies(view, path, *text), true))
      nodes.push_back(std::move(group));
  } else if (file && LanguageOfFile(path) == TLanguage::Pascal) {
    // Under one "implementation" node, as the unit itself is laid out: the classes above
    // are their declarations.
    std::vector<TNode> groups = GroupBodies(*text, PascalBodies(*file, *text), false);
    if (!groups.empty()) {
      TNode section;
      section.Name = "implementation";
      section.Kind = skNamespace;
      section.Group = true;
      section.From = section.NameFrom = groups.front().From;
      section.NameTo = groups.front().NameTo;
      section.To = groups.back().To;
      section.Children = std::move(groups);
      nodes.push_back(std::move(section));
    }
  }
  TNode root;
  root.Children = std::move(nodes);
  SortAndEnclose(root);
  std::string out = "[";
  out.reserve(text->size() * 2);  // an outline's text is of the order of its source's
  const std::string uri = UriFromPath(path);
  for (std::size_t i = 0; i < root.Children.size(); ++i) {
    if (hierarchical) {
      if (i) out += ',';
      Hierarchical(view.Texts, path, root.Children[i], out);
    } else {
      Flat(view.Texts, path, uri, root.Children[i], out);
    }
  }
  out += ']';
  return out;
}

json WorkspaceSymbols(TModelView view, std::string_view query, std::size_t limit) {
  const std::string folded = FoldName(query);
  struct THit {
    int Score;
    const TSymbolEntry* Entry;
    const TFileModel* File;
  };
  std::vector<THit> hits;
  for (const auto& [path, file] : view.Model.Files())
    for (const TSymbolEntry& entry : file->Symbols)
      if (const int score = MatchScore(file->Folded(entry), folded); score >= 0)
        hits.push_back({score, &entry, file.get()});
  const auto better = [](const THit& a, const THit& b) {
    if (a.Score != b.Score) return a.Score < b.Score;
    // A class before its constructor of the same name.
    if ((a.Entry->Kind == skConstructor) != (b.Entry->Kind == skConstructor))
      return b.Entry->Kind == skConstructor;
    if (a.Entry->Name.size() != b.Entry->Name.size())
      return a.Entry->Name.size() < b.Entry->Name.size();
    return a.Entry->Name < b.Entry->Name;
  };
  const std::size_t keep = std::min(limit, hits.size());
  std::partial_sort(hits.begin(), hits.begin() + static_cast<std::ptrdiff_t>(keep), hits.end(),
                    better);
  json out = json::array();
  for (std::size_t i = 0; i < keep; ++i) {
    const THit& hit = hits[i];
    // Positions from the file's line table: reading a hundred files to count UTF-16 units
    // would cost more than the search; the column is in bytes, exact for ASCII lines. An
    // open document's text is at hand, so its columns are counted as the client counts.
    json range;
    if (view.Texts.IsOpen(hit.File->Path)) {
      range = view.Texts.Range(hit.File->Path, hit.Entry->Offset, hit.Entry->Offset);
    } else {
      const int line = hit.File->LineOf(hit.Entry->Offset);
      const int character =
          hit.Entry->Offset < 0 ? 0 : hit.Entry->Offset - hit.File->LineStarts[line];
      const json position = {{"line", line}, {"character", character}};
      range = {{"start", position}, {"end", position}};
    }
    json symbol = {{"name", hit.Entry->Name},
                   {"kind", hit.Entry->Kind},
                   {"location", {{"uri", UriFromPath(hit.File->Path)}, {"range", range}}}};
    if (!hit.Entry->Container.empty()) symbol["containerName"] = hit.Entry->Container;
    out.push_back(std::move(symbol));
  }
  return out;
}

}  // namespace velmora::lsp
