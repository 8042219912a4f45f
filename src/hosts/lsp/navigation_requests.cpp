// The jumps, hover and the type hierarchy: what stands under a position, and where its
// declaration, its implementation and its relatives are.
#include <algorithm>
#include <functional>
#include <set>

#include "hosts/lsp/code_requests.h"
#include "model/class_list.h"
#include "model/parameters.h"
#include "parsing/implementation_locator.h"
#include "parsing/source_parser.h"
#include "support/paths.h"

namespace velmora::lsp {
namespace {

struct TWord {
  std::string Name;
  int64_t From = -1;
  std::string Qualifier;  // the name before "::" or "." when there is one
  std::string Separator;  // "::" or "."
};

TWord WordAt(const std::string& text, int64_t offset) {
  TWord word;
  const int64_t size = static_cast<int64_t>(text.size());
  if (offset < 0 || offset > size) return word;
  int64_t from = offset, to = offset;
  while (from > 0 && IsIdentChar(text[from - 1])) --from;
  while (to < size && IsIdentChar(text[to])) ++to;
  if (from == to) return word;
  if (from > 0 && text[from - 1] == '~') --from;  // a destructor's name
  word.Name = text.substr(from, to - from);
  word.From = from;
  int64_t p = from;
  while (p > 0 && (text[p - 1] == ' ' || text[p - 1] == '\t')) --p;
  if (p >= 2 && text[p - 1] == ':' && text[p - 2] == ':') {
    word.Separator = "::";
    p -= 2;
  } else if (p >= 2 && text[p - 1] == '>' && text[p - 2] == '-') {
    word.Separator = "->";
    p -= 2;
  } else if (p >= 1 && text[p - 1] == '.') {
    word.Separator = ".";
    p -= 1;
  } else {
    return word;
  }
  while (p > 0 && (text[p - 1] == ' ' || text[p - 1] == '\t')) --p;
  int64_t q = p;
  while (q > 0 && IsIdentChar(text[q - 1])) --q;
  word.Qualifier = text.substr(q, p - q);
  return word;
}

void ForEachClass(TCommonClassList& list, const std::function<bool(TClassDescription&)>& f) {
  for (int i = 0; i < list.Count(); ++i) {
    TClassDescription* cls = list.Items(i);
    if (f(*cls)) return;
    if (TCommonClassList* nested = cls->NestedClassesIfAny()) ForEachClass(*nested, f);
  }
}

// A member of `cls` or of its ancestors called `name`.
TResolved MemberOf(TModelView view, TClassDescription* cls, const std::string& name) {
  TResolved r;
  std::set<const TClassDescription*> seen;
  for (TClassDescription* at = cls; at && seen.insert(at).second;) {
    if (TMethodDescription* m = at->Methods.Find(name)) {
      r.Class = at;
      r.Method = m;
    } else if (TFieldDescription* f = at->Fields.Find(name)) {
      r.Class = at;
      r.Field = f;
    }
    if (r.Found()) {
      r.File = view.Model.FileOf(at);
      return r;
    }
    const std::string ancestor = at->GetDirectAncestorName();
    at = ancestor.empty() ? nullptr : view.Model.FindClass(ancestor).Class;
  }
  return r;
}

// The line of `offset` opens a Pascal routine's implementation.
bool StartsRoutine(const std::string& text, int64_t offset) {
  int64_t line = offset;
  while (line > 0 && text[line - 1] != '\n') --line;
  while (line < offset && (text[line] == ' ' || text[line] == '\t')) ++line;
  std::string head;
  while (line < offset && IsIdentChar(text[line])) head += text[line++];
  head = FoldName(head);
  return head == "procedure" || head == "function" || head == "constructor" ||
         head == "destructor" || head == "class" || head == "operator";
}

// The class whose method body holds `offset`: the last line before it that starts at the
// margin and names a known class before "::" (C++) or "." (Pascal). Bodies are not nested,
// so the nearest such line is the body's head.
TClassDescription* ClassOfBodyAt(TModelView view, const std::string& text, int64_t offset) {
  int64_t line = offset;
  for (int lines = 0; line > 0 && lines < 5000; ++lines) {
    const int64_t end = line;
    line = end - 1;
    while (line > 0 && text[line - 1] != '\n') --line;
    if (line >= end || !IsIdentChar(text[line])) continue;
    for (int64_t p = line; p + 1 < end; ++p) {
      const bool qualified = (text[p] == ':' && text[p + 1] == ':') || text[p] == '.';
      if (!qualified || p == line || !IsIdentChar(text[p - 1])) continue;
      int64_t q = p;
      while (q > line && IsIdentChar(text[q - 1])) --q;
      if (TClassDescription* cls = view.Model.FindClass(text.substr(q, p - q)).Class) return cls;
    }
  }
  return nullptr;
}

int OverloadCount(const TClassDescription* cls, const TMethodDescription& method) {
  if (!cls) return 1;
  int count = 0;
  for (int i = 0; i < cls->Methods.Count(); ++i)
    count += SameName(cls->Methods.Items(i)->Name, method.Name, method.Language) ? 1 : 0;
  return count;
}

// Where a method's body begins in `text` (the offset of its line), or -1. The Pascal finder
// takes the first `Class.Method` head whatever its parameters, so for an overloaded Pascal
// name each head's parameter list is compared here.
int64_t LocateBody(const std::string& text, const TClassDescription* cls,
                   const TMethodDescription& method) {
  if (cls && !method.IsCpp() && OverloadCount(cls, method) > 1) {
    for (int64_t at = FindWord(text, cls->Name, 0, static_cast<int64_t>(text.size()), false);
         at >= 0;
         at = FindWord(text, cls->Name, at + 1, static_cast<int64_t>(text.size()), false)) {
      int64_t p = at + static_cast<int64_t>(cls->Name.size());
      if (p >= static_cast<int64_t>(text.size()) || text[p] != '.') continue;
      const int64_t name = p + 1;
      if (FindWord(text, method.Name, name, name + static_cast<int64_t>(method.Name.size()),
                   false) != name)
        continue;
      p = name + static_cast<int64_t>(method.Name.size());
      while (p < static_cast<int64_t>(text.size()) && (text[p] == ' ' || text[p] == '\t')) ++p;
      std::string_view inside;
      if (p < static_cast<int64_t>(text.size()) && text[p] == '(') {
        const std::size_t close = text.find(')', static_cast<std::size_t>(p));
        if (close == std::string::npos) continue;
        inside = std::string_view(text).substr(p + 1, close - p - 1);
      }
      TParameterList params(method.Language);
      params.Parse(inside);
      if (!params.SameAs(method.Parameters)) continue;
      int64_t line = at;
      while (line > 0 && text[line - 1] != '\n') --line;
      while (text[line] == ' ' || text[line] == '\t') ++line;
      return line;
    }
    return -1;
  }
  int32_t offset = -1;
  if (!LocateImplementationOffset(text, false, cls, offset, method)) return -1;
  return offset;
}

json DeclarationLocation(TModelView view, const TCodeObject& object, const TFileModel* file) {
  if (!file) return nullptr;
  const std::string* text = view.Texts.Text(file->Path);
  if (!text) return nullptr;
  const int64_t name = NameOffsetOf(*text, object);
  const std::size_t length = std::min(object.Name.size(), object.Name.find('['));
  return view.Texts.Location(file->Path, name, name + static_cast<int64_t>(length));
}

// The files where a method of `cls` declared in `file` may be implemented, most likely
// first: a Pascal unit itself; for C++ the source beside the header, then the project's.
std::vector<std::string> CandidateFiles(TModelView view, const TClassDescription* cls,
                                        const TFileModel* file) {
  std::vector<std::string> files;
  if (!file) return files;
  if (!IsCpp(cls ? cls->Language : LanguageOfFile(file->Path)) || !IsHeaderFile(file->Path)) {
    files.push_back(file->Path);
    if (!IsCpp(cls ? cls->Language : LanguageOfFile(file->Path))) return files;
  }
  const std::string_view ext = ExtractFileExt(file->Path);
  const std::string stem = file->Path.substr(0, file->Path.size() - ext.size());
  for (const char* sourceExt : {".cpp", ".cxx", ".cc", ".c"})
    if (FileExists(stem + sourceExt) || view.Model.File(stem + sourceExt))
      files.push_back(stem + sourceExt);
  for (const std::string& source : view.SourceFiles)
    if (std::find(files.begin(), files.end(), source) == files.end() &&
        LanguageOfFile(source) == TLanguage::Cpp)
      files.push_back(source);
  return files;
}

// Where `method` of `cls` is implemented, or null.
json BodyLocation(TModelView view, TClassDescription* cls, const TMethodDescription& method,
                  const TFileModel* file) {
  for (const std::string& path : CandidateFiles(view, cls, file)) {
    const std::string* text = view.Texts.Text(path);
    if (!text) continue;
    const int64_t offset = LocateBody(*text, cls, method);
    if (offset < 0) continue;
    int64_t lineEnd = static_cast<int64_t>(text->find('\r', static_cast<std::size_t>(offset)));
    if (lineEnd < 0) lineEnd = static_cast<int64_t>(text->size());
    int64_t from = offset;
    if (cls) {
      const int64_t qualified = FindWord(*text, cls->Name, offset, lineEnd, method.IsCpp());
      if (qualified >= 0) from = qualified + 1;
    }
    int64_t name = FindWord(*text, method.Name, from, lineEnd, method.IsCpp());
    if (name < 0) name = offset;
    return view.Texts.Location(path, name, name + static_cast<int64_t>(method.Name.size()));
  }
  return nullptr;
}

json ArrayOf(json location) {
  json out = json::array();
  if (!location.is_null()) out.push_back(std::move(location));
  return out;
}

json TypeItem(TModelView view, TClassDescription& cls, const TFileModel* file) {
  if (!file) return nullptr;
  const std::string* text = view.Texts.Text(file->Path);
  if (!text) return nullptr;
  const int64_t name = NameOffsetOf(*text, cls);
  const int64_t from = std::min<int64_t>(std::max<int32_t>(cls.StartOffset, 0), name);
  return {{"name", cls.Name},
          {"kind", KindOfClass(cls)},
          {"detail", cls.GetHeader()},
          {"uri", UriFromPath(file->Path)},
          {"range", view.Texts.Range(file->Path, from, DeclarationEnd(cls, name))},
          {"selectionRange",
           view.Texts.Range(file->Path, name, name + static_cast<int64_t>(cls.Name.size()))},
          {"data", {{"name", cls.Name}, {"path", file->Path}}}};
}

TClassRef ClassOfItem(TModelView view, const json& item) {
  const json* data = item.is_object() && item.contains("data") ? &item["data"] : nullptr;
  if (!data || !data->is_object()) return {};
  const std::string name = data->value("name", "");
  const std::string path = data->value("path", "");
  for (const TClassRef& r : view.Model.FindClasses(name))
    if (r.File && r.File->Path == path) return r;
  return view.Model.FindClass(name);
}

}  // namespace

TResolved ResolveAt(TModelView view, const std::string& path, int64_t offset) {
  TResolved r;
  const std::string* text = view.Texts.Text(path);
  if (!text) return r;
  const TWord word = WordAt(*text, offset);
  if (word.Name.empty()) return r;
  const TFileModel* file = view.Model.File(path);
  // On a declaration of this file: the name where the model has it.
  TClassDescription* enclosing = nullptr;
  if (file) {
    ForEachClass(*file->Classes, [&](TClassDescription& cls) {
      if (cls.StartOffset <= offset && offset <= cls.EndOffset) enclosing = &cls;
      if (NameOffsetOf(*text, cls) == word.From) {
        r.Class = &cls;
      } else {
        for (int i = 0; i < cls.Methods.Count() && !r.Found(); ++i)
          if (NameOffsetOf(*text, *cls.Methods.Items(i)) == word.From) {
            r.Class = &cls;
            r.Method = cls.Methods.Items(i);
          }
        for (int i = 0; i < cls.Fields.Count() && !r.Found(); ++i)
          if (NameOffsetOf(*text, *cls.Fields.Items(i)) == word.From) {
            r.Class = &cls;
            r.Field = cls.Fields.Items(i);
          }
      }
      return r.Found();
    });
    if (r.Found()) {
      r.File = file;
      r.OnDeclaration = true;
      return r;
    }
  }
  // On a qualified name: a member of the class named, and on an implementation when the
  // line opens one.
  if (!word.Qualifier.empty()) {
    if (TClassDescription* cls = view.Model.FindClass(word.Qualifier).Class) {
      r = MemberOf(view, cls, word.Name);
      if (r.Method && (word.Separator == "::" || StartsRoutine(*text, word.From))) {
        r.OnImplementation = true;
        // Of overloads, the one whose body this is.
        if (OverloadCount(r.Class, *r.Method) > 1) {
          int64_t line = word.From;
          while (line > 0 && (*text)[line - 1] != '\n') --line;
          for (int i = 0; i < r.Class->Methods.Count(); ++i) {
            TMethodDescription* m = r.Class->Methods.Items(i);
            if (!SameName(m->Name, r.Method->Name, m->Language)) continue;
            const int64_t body = LocateBody(*text, r.Class, *m);
            if (body >= line && body <= word.From) r.Method = m;
          }
        }
      }
      if (r.Found()) return r;
    }
  }
  if (!enclosing) enclosing = ClassOfBodyAt(view, *text, word.From);
  // `Object->Member` or `Object.Member`: the member of the class of the object's type,
  // when the object is a field, property or function of the class the cursor is in.
  if (!word.Qualifier.empty() && word.Separator != "::" && enclosing) {
    const TResolved object = MemberOf(view, enclosing, word.Qualifier);
    std::string type = object.Field    ? object.Field->FieldType
                       : object.Method ? object.Method->ResultType
                                       : std::string();
    for (const char* noise : {"const ", "*", "&", "^"})
      for (std::size_t at; (at = type.find(noise)) != std::string::npos;)
        type.erase(at, std::string_view(noise).size());
    if (const std::size_t colons = type.rfind("::"); colons != std::string::npos)
      type.erase(0, colons + 2);
    while (!type.empty() && type.back() == ' ') type.pop_back();
    if (TClassDescription* cls = type.empty() ? nullptr : view.Model.FindClass(type).Class) {
      r = MemberOf(view, cls, word.Name);
      if (r.Found()) return r;
    }
  }
  if (const TClassRef named = view.Model.FindClass(word.Name); named.Class) {
    r.Class = named.Class;
    r.File = named.File;
    return r;
  }
  if (enclosing) {
    r = MemberOf(view, enclosing, word.Name);
    if (r.Found()) return r;
  }
  // A free routine of any file.
  for (const auto& [filePath, model] : view.Model.Files()) {
    if (TMethodDescription* routine =
            static_cast<TMethodDescriptionList&>(model->Classes->Routines).Find(word.Name)) {
      r.Method = routine;
      r.File = model.get();
      return r;
    }
  }
  return r;
}

json Declaration(TModelView view, const std::string& path, int64_t offset) {
  const TResolved r = ResolveAt(view, path, offset);
  if (r.Method) return ArrayOf(DeclarationLocation(view, *r.Method, r.File));
  if (r.Field) return ArrayOf(DeclarationLocation(view, *r.Field, r.File));
  if (r.Class) return ArrayOf(DeclarationLocation(view, *r.Class, r.File));
  return json::array();
}

json Definition(TModelView view, const std::string& path, int64_t offset) {
  const TResolved r = ResolveAt(view, path, offset);
  // On a method's declaration the jump goes to its body; anywhere else to the declaration.
  if (r.Method && r.OnDeclaration) {
    json body = BodyLocation(view, r.Class, *r.Method, r.File);
    if (!body.is_null()) return ArrayOf(std::move(body));
  }
  return Declaration(view, path, offset);
}

json Implementation(TModelView view, const std::string& path, int64_t offset) {
  const TResolved r = ResolveAt(view, path, offset);
  json out = json::array();
  if (r.Method) {
    json own = BodyLocation(view, r.Class, *r.Method, r.File);
    if (!own.is_null()) out.push_back(std::move(own));
    if (!r.Class) return out;
    for (const TClassRef& d : view.Model.AllDescendants(*r.Class))
      if (const TMethodDescription* m = d.Class->Methods.Find(r.Method->Name)) {
        json body = BodyLocation(view, d.Class, *m, d.File);
        if (!body.is_null()) out.push_back(std::move(body));
      }
  } else if (r.Class && !r.Field) {
    for (const TClassRef& d : view.Model.AllDescendants(*r.Class)) {
      json location = DeclarationLocation(view, *d.Class, d.File);
      if (!location.is_null()) out.push_back(std::move(location));
    }
  }
  return out;
}

json Hover(TModelView view, const std::string& path, int64_t offset) {
  const TResolved r = ResolveAt(view, path, offset);
  std::string code;
  TLanguage language = LanguageOfFile(path);
  if (r.Method) {
    code = r.Method->GetDeclaration(0);
    language = r.Method->Language;
  } else if (r.Field) {
    code = r.Field->GetDeclaration(0);
    language = r.Field->Language;
  } else if (r.Class) {
    code = r.Class->GetHeader();
    language = r.Class->Language;
  } else {
    return nullptr;
  }
  std::string value =
      "```" + std::string(IsCpp(language) ? "cpp" : "pascal") + "\n" + code + "\n```";
  if (r.Class && (r.Method || r.Field)) {
    const TVisibility visibility = r.Method ? r.Method->Visibility : r.Field->Visibility;
    value += "\n\n" + std::string(VisibilityText(visibility, language)) + " member of `" +
             r.Class->Name + "`";
  }
  if (r.File) value += "\n\n" + std::string(ExtractFileName(r.File->Path));
  return {{"contents", {{"kind", "markdown"}, {"value", value}}}};
}

json PrepareTypeHierarchy(TModelView view, const std::string& path, int64_t offset) {
  const TResolved r = ResolveAt(view, path, offset);
  if (!r.Class || r.Method || r.Field) return nullptr;
  json item = TypeItem(view, *r.Class, r.File ? r.File : view.Model.FileOf(r.Class));
  if (item.is_null()) return nullptr;
  return json::array({std::move(item)});
}

json Supertypes(TModelView view, const json& item) {
  json out = json::array();
  const TClassRef cls = ClassOfItem(view, item);
  if (!cls.Class) return out;
  for (const TClassAncestor& a : cls.Class->Ancestors.Items)
    if (const TClassRef base = view.Model.FindClass(a.AncestorName); base.Class) {
      json baseItem = TypeItem(view, *base.Class, base.File);
      if (!baseItem.is_null()) out.push_back(std::move(baseItem));
    }
  return out;
}

json Subtypes(TModelView view, const json& item) {
  json out = json::array();
  const TClassRef cls = ClassOfItem(view, item);
  if (!cls.Class) return out;
  for (const TClassRef& d : view.Model.DirectDescendants(*cls.Class)) {
    json subItem = TypeItem(view, *d.Class, d.File);
    if (!subItem.is_null()) out.push_back(std::move(subItem));
  }
  return out;
}

}  // namespace velmora::lsp
