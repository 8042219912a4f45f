#include "hosts/lsp/code_model.h"

#include <algorithm>
#include <functional>
#include <set>

#include "model/class_list.h"

namespace velmora::lsp {
namespace {

void ForEachClass(const TCommonClassList& list, const std::function<void(TClassDescription&)>& f) {
  for (int i = 0; i < list.Count(); ++i) {
    TClassDescription* cls = list.Items(i);
    f(*cls);
    if (const TCommonClassList* nested = cls->NestedClassesIfAny()) ForEachClass(*nested, f);
  }
}

void AddSymbol(TFileModel& file, const std::string& name, std::string container, int kind,
               int32_t offset) {
  file.Symbols.push_back(
      {name, static_cast<uint32_t>(file.FoldedNames.size()), std::move(container), kind, offset});
  file.FoldedNames += FoldName(name);
}

}  // namespace

std::string FoldName(std::string_view text) {
  std::string folded(text);
  for (char& c : folded)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return folded;
}

TSymbolKind KindOfClass(const TClassDescription& cls) {
  switch (cls.ClassKind) {
    case TClassKind::Interface:
    case TClassKind::DispInterface:
      return skInterface;
    case TClassKind::Struct:
      return skStruct;
    default:
      return skClass;
  }
}

TSymbolKind KindOfMethod(const TMethodDescription& method) {
  if (method.Kind == TMethodKind::Constructor || method.Kind == TMethodKind::Destructor)
    return skConstructor;
  return method.GetOwnerClass() ? skMethod : skFunction;
}

int TFileModel::LineOf(int32_t offset) const {
  if (LineStarts.empty() || offset < 0) return 0;
  const auto it = std::upper_bound(LineStarts.begin(), LineStarts.end(), offset);
  return static_cast<int>(it - LineStarts.begin()) - 1;
}

TCodeModel::TCodeModel() = default;
TCodeModel::~TCodeModel() = default;

bool TCodeModel::Merge(TParsedFile parsed) {
  if (!parsed.Ok || !parsed.Classes) return false;
  auto it = files_.find(parsed.Path);
  if (it != files_.end()) {
    if (it->second->Generation > parsed.Generation) return false;
    Index(*it->second, false);
  }
  auto file = std::make_unique<TFileModel>();
  file->Path = parsed.Path;
  file->Generation = parsed.Generation;
  file->Classes = std::move(parsed.Classes);
  file->LineStarts = std::move(parsed.LineStarts);
  ForEachClass(*file->Classes, [&](TClassDescription& cls) {
    const std::string container =
        cls.OwnerList && cls.OwnerList->OuterClass ? cls.OwnerList->OuterClass->Name : "";
    AddSymbol(*file, cls.Name, container, KindOfClass(cls), cls.StartOffset);
    for (int i = 0; i < cls.Fields.Count(); ++i) {
      const TFieldDescription* f = cls.Fields.Items(i);
      AddSymbol(*file, f->Name, cls.Name, f->IsProperty ? skProperty : skField, f->StartOffset);
    }
    for (int i = 0; i < cls.Methods.Count(); ++i) {
      const TMethodDescription* m = cls.Methods.Items(i);
      AddSymbol(*file, m->Name, cls.Name, KindOfMethod(*m), m->StartOffset);
    }
  });
  for (int i = 0; i < file->Classes->Routines.Count(); ++i) {
    const TProcDescription* r = file->Classes->Routines.Items(i);
    AddSymbol(*file, r->Name, "", skFunction, r->StartOffset);
  }
  Index(*file, true);
  files_[file->Path] = std::move(file);
  return true;
}

void TCodeModel::Remove(const std::string& path) {
  auto it = files_.find(path);
  if (it == files_.end()) return;
  Index(*it->second, false);
  files_.erase(it);
}

void TCodeModel::Index(const TFileModel& file, bool add) {
  ForEachClass(*file.Classes, [&](TClassDescription& cls) {
    std::vector<TClassRef>& refs = classes_[FoldName(cls.Name)];
    if (add) {
      refs.push_back({&cls, &file});
      fileOfClass_[&cls] = &file;
    } else {
      std::erase_if(refs, [&](const TClassRef& r) { return r.Class == &cls; });
      fileOfClass_.erase(&cls);
    }
  });
}

const TFileModel* TCodeModel::File(std::string_view path) const {
  const auto it = files_.find(path);
  return it == files_.end() ? nullptr : it->second.get();
}

std::vector<TClassRef> TCodeModel::FindClasses(std::string_view name) const {
  const auto it = classes_.find(FoldName(name));
  if (it == classes_.end()) return {};
  std::vector<TClassRef> exact, other;
  for (const TClassRef& r : it->second) {
    if (r.Class->Name == name)
      exact.push_back(r);
    else if (!r.Class->IsCpp())
      other.push_back(r);
  }
  exact.insert(exact.end(), other.begin(), other.end());
  return exact;
}

TClassRef TCodeModel::FindClass(std::string_view name) const {
  std::vector<TClassRef> refs = FindClasses(name);
  return refs.empty() ? TClassRef{} : refs.front();
}

const TFileModel* TCodeModel::FileOf(const TClassDescription* cls) const {
  const auto it = fileOfClass_.find(cls);
  return it == fileOfClass_.end() ? nullptr : it->second;
}

std::vector<TClassRef> TCodeModel::AllClasses() const {
  std::vector<TClassRef> all;
  for (const auto& [name, refs] : classes_) all.insert(all.end(), refs.begin(), refs.end());
  return all;
}

std::vector<TClassRef> TCodeModel::DirectDescendants(const TClassDescription& cls) const {
  std::vector<TClassRef> result;
  for (const auto& [name, refs] : classes_)
    for (const TClassRef& r : refs) {
      if (r.Class == &cls) continue;
      for (const TClassAncestor& a : r.Class->Ancestors.Items)
        if (SameName(a.AncestorName, cls.Name, cls.Language)) {
          result.push_back(r);
          break;
        }
    }
  std::sort(result.begin(), result.end(),
            [](const TClassRef& a, const TClassRef& b) { return a.Class->Name < b.Class->Name; });
  return result;
}

std::vector<TClassRef> TCodeModel::AllDescendants(const TClassDescription& cls) const {
  // One pass over the model for the children of every name, then a walk down from `cls`:
  // asking DirectDescendants for each class met would scan the model once per class.
  std::unordered_map<std::string, std::vector<TClassRef>> children;
  for (const auto& [name, refs] : classes_)
    for (const TClassRef& r : refs)
      for (const TClassAncestor& a : r.Class->Ancestors.Items)
        children[FoldName(a.AncestorName)].push_back(r);
  std::vector<TClassRef> result;
  std::set<const TClassDescription*> seen{&cls};
  std::vector<const TClassDescription*> frontier{&cls};
  // Breadth first, so nearer descendants come first; a cycle stops at a class already seen.
  while (!frontier.empty()) {
    std::vector<const TClassDescription*> next;
    for (const TClassDescription* c : frontier) {
      const auto it = children.find(FoldName(c->Name));
      if (it == children.end()) continue;
      std::vector<TClassRef> direct = it->second;
      std::sort(direct.begin(), direct.end(), [](const TClassRef& a, const TClassRef& b) {
        return a.Class->Name < b.Class->Name;
      });
      for (const TClassRef& d : direct) {
        bool named = false;  // a C++ ancestor is named in its own letter case
        for (const TClassAncestor& a : d.Class->Ancestors.Items)
          named |= SameName(a.AncestorName, c->Name, c->Language);
        if (named && seen.insert(d.Class).second) {
          result.push_back(d);
          next.push_back(d.Class);
        }
      }
    }
    frontier = std::move(next);
  }
  return result;
}

}  // namespace velmora::lsp
