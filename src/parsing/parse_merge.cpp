#include "parsing/parse_merge.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <vector>

#include "support/ansi.h"

namespace velmora {
namespace {

void CopyPositions(TCodeObject& to, const TCodeObject& from) {
  to.SetStart(from.StartLine, from.StartOffset);
  to.SetEnd(from.EndLine, from.EndOffset);
}

void MergeClass(TCommonClassList& into, TClassDescription& from, TLanguage parser) {
  TClassDescription* to = into.FindOrAdd(from.Name, from.Language);
  if (!to) return;
  to->Ancestors.Items = from.Ancestors.Items;
  to->UnitName = from.UnitName;
  to->ClassKind = from.ClassKind;
  to->TemplateParams = from.TemplateParams;
  // Only the Pascal parser reads GUIDs; a C++ parse leaves what the class had.
  if (parser == TLanguage::Pascal) to->Guid = from.Guid;
  CopyPositions(*to, from);
  if (const TPositionInfo* info = from.GetPositionInfo(false)) *to->GetPositionInfo(true) = *info;

  for (int i = 0; i < from.Fields.Count(); ++i) {
    const TFieldDescription& f = *from.Fields.Items(i);
    TFieldDescription* field = to->Fields.FindOrAdd(f.Name, f.FieldType, f.Visibility);
    field->SetIsProperty(f.IsProperty);
    if (f.Property) *field->Property = *f.Property;
    field->Modifier = f.Modifier;
    CopyPositions(*field, f);
  }
  for (int i = 0; i < from.Methods.Count(); ++i) {
    const TMethodDescription& m = *from.Methods.Items(i);
    TMethodDescription* method =
        to->Methods.FindOrAdd(m.Name, m.Parameters, m.ResultType, m.Visibility, m.Kind);
    method->Directives = m.Directives;
    method->MessageName = m.MessageName;
    CopyPositions(*method, m);
  }
  if (const TCommonClassList* nested = from.NestedClassesIfAny())
    for (int i = 0; i < nested->Count(); ++i)
      MergeClass(*to->NestedClasses(), *nested->Items(i), parser);
}

}  // namespace

namespace {

// Finds or adds every record of the parse in the model; `routines`, when given, receives
// the model's routine of each routine of the parse.
void MergeRecords(TClasslist& model, const TFileParse& parse,
                  std::vector<TProcDescription*>* routines) {
  const TClasslist& from = *parse.Classes;
  for (int i = 0; i < from.Count(); ++i) MergeClass(model, *from.Items(i), parse.Language);
  for (int i = 0; i < from.Routines.Count(); ++i) {
    const TProcDescription& r = *from.Routines.Items(i);
    TProcDescription* routine = model.Routines.FindOrAdd(
        r.Name, r.FileName, r.Language, r.Parameters, r.ResultType, r.Visibility, r.Kind);
    routine->Directives = r.Directives;
    routine->MessageName = r.MessageName;
    CopyPositions(*routine, r);
    if (routines) routines->push_back(routine);
  }
}

}  // namespace

void MergeFileParse(TClasslist& model, const TFileParse& parse, TMergeMode mode) {
  if (!parse.Classes) return;
  if (mode != TMergeMode::Accumulate) model.Mark(parse.UnitName, false);
  MergeRecords(model, parse, nullptr);
  if (mode == TMergeMode::Replace) model.Sweep(false, parse.UnitName);
}

namespace {

void RewriteIncludeEntry(TClasslist& model, const TParseResult& result) {
  if (result.Reached.empty()) {
    model.Includes.Remove(result.RootFile);
    return;
  }
  TIncludeUnit* entry = model.Includes.FindOrAdd(result.RootFile);
  entry->IncludedNames.Clear();
  for (const std::string& name : result.Reached) entry->IncludedNames.Add(name);
}

}  // namespace

namespace {

void SetRootList(TCommonClassList& list, TCommonClassList& root) {
  list.RootList = &root;
  for (int i = 0; i < list.Count(); ++i)
    if (TCommonClassList* nested = list.Items(i)->NestedClassesIfAny()) SetRootList(*nested, root);
}

// Takes a class of a parse, already out of the parse's index, into the model: what
// FindOrAdd does for a new class, with the parse's object instead of a fresh one.
void Adopt(TClasslist& model, TClassDescription* cls) {
  cls->OwnerList = &model;
  if (TCommonClassList* nested = cls->NestedClassesIfAny()) {
    nested->ParentList = &model;
    SetRootList(*nested, model);
  }
  model.Index.Add(cls->Name, cls);
  model.ClassAdded(cls);
}

}  // namespace

void MergeNewUnitParse(TClasslist& model, TFileParse& parse) {
  if (!parse.Classes) return;
  // A class the model does not have yet would be created and filled with copies of all
  // the parse holds: the parse's own object moves over instead. One the model has (a
  // class another unit declares too) is merged as usual.
  TClasslist& from = *parse.Classes;
  for (int i = from.Count() - 1; i >= 0; --i) {
    TClassDescription* cls = from.Items(i);
    if (model.Find(cls->Name)) continue;
    from.Index.Delete(i);  // the parse lets go of it
    Adopt(model, cls);
  }
  // Every routine of the parse would be added anew (at the end of its name's run, where
  // Add puts it too), so it is moved over instead: a large unit has thousands, and
  // copying and then freeing them is most of a merge.
  TRoutineList& routines = parse.Classes->Routines;
  std::vector<TProcDescription*> moving;
  moving.reserve(routines.Count());
  for (int i = 0; i < routines.Count(); ++i) moving.push_back(routines.Items(i));
  routines.Index.Clear();  // the parse lets go of them
  for (TProcDescription* routine : moving)
    model.Routines.Add(std::unique_ptr<TProcDescription>(routine));
  MergeRecords(model, parse, nullptr);
}

void MergeParseResult(TClasslist& model, const TParseResult& result) {
  if (result.Cancelled) return;
  for (const TFileParse& file : result.Files) MergeFileParse(model, file, TMergeMode::Replace);
  RewriteIncludeEntry(model, result);
}

void TParseMerger::Scan() {
  units_.clear();
  for (int i = 0; i < model_.Count(); ++i)
    units_[AnsiUpperCase(model_.Items(i)->UnitName)].Classes.push_back(model_.Items(i)->Name);
  for (int i = 0; i < model_.Routines.Count(); ++i) {
    TProcDescription* routine = model_.Routines.Items(i);
    units_[AnsiUpperCase(routine->FileName)].Routines.push_back(routine);
  }
  scanned_ = true;
}

void TParseMerger::MergeNewUnit(TFileParse& parse, TUnitRecords& records) {
  const TClasslist& from = *parse.Classes;
  for (int i = 0; i < from.Count(); ++i) records.Classes.push_back(from.Items(i)->Name);
  for (int i = 0; i < from.Routines.Count(); ++i)
    records.Routines.push_back(from.Routines.Items(i));
  MergeNewUnitParse(model_, parse);
}

void TParseMerger::ReplaceUnit(const TFileParse& parse, TUnitRecords& records) {
  // The model's own Mark and Sweep, limited to the records the unit is known to hold:
  // the whole model is not walked for each file.
  const std::string& unit = parse.UnitName;
  auto ofUnit = [&](const std::string& name) -> TClassDescription* {
    TClassDescription* cls = model_.Find(name);
    return cls && SameText(cls->UnitName, unit) ? cls : nullptr;
  };
  for (const std::string& name : records.Classes)
    if (TClassDescription* cls = ofUnit(name)) cls->SetValid(false, true);
  for (TProcDescription* routine : records.Routines) routine->Valid = false;

  std::vector<TProcDescription*> merged;
  MergeRecords(model_, parse, &merged);

  std::vector<std::string> names = std::move(records.Classes);
  for (int i = 0; i < parse.Classes->Count(); ++i) names.push_back(parse.Classes->Items(i)->Name);
  records.Classes.clear();
  for (const std::string& name : names) {
    TClassDescription* cls = ofUnit(name);
    if (!cls) continue;
    cls->RemoveWithValid(false);
    if (cls->Valid) {
      if (std::find(records.Classes.begin(), records.Classes.end(), name) == records.Classes.end())
        records.Classes.push_back(name);
      continue;
    }
    model_.Index.Delete(model_.Index.IndexOf(name));
    model_.ClassRemoved(cls);
  }
  for (TProcDescription* routine : records.Routines) {
    if (routine->Valid) continue;
    for (int i = model_.Routines.IndexOfName(routine->Name); i < model_.Routines.Count(); ++i)
      if (model_.Routines.Items(i) == routine) {
        model_.Routines.Delete(i);
        break;
      }
  }
  std::sort(merged.begin(), merged.end());
  merged.erase(std::unique(merged.begin(), merged.end()), merged.end());
  records.Routines = std::move(merged);
}

bool TParseMerger::Merge(TParseResult result) {
  if (result.Cancelled) return false;
  auto [it, added] = merged_.try_emplace(result.RootFile, result.Generation);
  if (!added) {
    if (result.Generation < it->second) return false;
    it->second = result.Generation;
  }
  std::lock_guard lock(model_.Lock);
  if (!scanned_) Scan();
  for (TFileParse& file : result.Files) {
    if (!file.Classes) continue;
    auto [unit, isNew] = units_.try_emplace(AnsiUpperCase(file.UnitName));
    if (isNew) {
      MergeNewUnit(file, unit->second);
    } else {
      ReplaceUnit(file, unit->second);
    }
  }
  RewriteIncludeEntry(model_, result);
  return true;
}

uint64_t TParseMerger::MergedGeneration(const std::string& rootFile) const {
  auto it = merged_.find(rootFile);
  return it == merged_.end() ? 0 : it->second;
}

}  // namespace velmora
