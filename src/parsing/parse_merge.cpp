#include "parsing/parse_merge.h"

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

void MergeFileParse(TClasslist& model, const TFileParse& parse, TMergeMode mode) {
  if (!parse.Classes) return;
  if (mode != TMergeMode::Accumulate) model.Mark(parse.UnitName, false);
  const TClasslist& from = *parse.Classes;
  for (int i = 0; i < from.Count(); ++i) MergeClass(model, *from.Items(i), parse.Language);
  for (int i = 0; i < from.Routines.Count(); ++i) {
    const TProcDescription& r = *from.Routines.Items(i);
    TProcDescription* routine = model.Routines.FindOrAdd(
        r.Name, r.FileName, r.Language, r.Parameters, r.ResultType, r.Visibility, r.Kind);
    routine->Directives = r.Directives;
    routine->MessageName = r.MessageName;
    CopyPositions(*routine, r);
  }
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

void MergeParseResult(TClasslist& model, const TParseResult& result) {
  if (result.Cancelled) return;
  for (const TFileParse& file : result.Files) MergeFileParse(model, file, TMergeMode::Replace);
  RewriteIncludeEntry(model, result);
}

namespace {

// A unit the model holds nothing of: every routine of the parse would be added anew, so
// it is moved over instead (a large unit has thousands, and copying and then freeing them
// is most of a merge).
void MergeNewUnit(TClasslist& model, TFileParse& parse) {
  TRoutineList& routines = parse.Classes->Routines;
  if (routines.IsReference) return MergeFileParse(model, parse, TMergeMode::Accumulate);
  std::vector<TProcDescription*> moving;
  moving.reserve(routines.Count());
  for (int i = 0; i < routines.Count(); ++i) moving.push_back(routines.Items(i));
  routines.Index.Clear();  // the parse lets go of them
  for (TProcDescription* routine : moving)
    model.Routines.Add(std::unique_ptr<TProcDescription>(routine));
  MergeFileParse(model, parse, TMergeMode::Accumulate);  // the classes
}

}  // namespace

bool TParseMerger::Merge(TParseResult result) {
  if (result.Cancelled) return false;
  auto [it, added] = merged_.try_emplace(result.RootFile, result.Generation);
  if (!added) {
    if (result.Generation < it->second) return false;
    it->second = result.Generation;
  }
  std::lock_guard lock(model_.Lock);
  if (!scanned_) {
    units_.clear();
    for (int i = 0; i < model_.Count(); ++i)
      units_.insert(AnsiUpperCase(model_.Items(i)->UnitName));
    for (int i = 0; i < model_.Routines.Count(); ++i)
      units_.insert(AnsiUpperCase(model_.Routines.Items(i)->FileName));
    scanned_ = true;
  }
  for (TFileParse& file : result.Files) {
    // A unit the model holds nothing of has nothing to mark or sweep.
    if (units_.insert(AnsiUpperCase(file.UnitName)).second)
      MergeNewUnit(model_, file);
    else
      MergeFileParse(model_, file, TMergeMode::Replace);
  }
  RewriteIncludeEntry(model_, result);
  return true;
}

uint64_t TParseMerger::MergedGeneration(const std::string& rootFile) const {
  auto it = merged_.find(rootFile);
  return it == merged_.end() ? 0 : it->second;
}

}  // namespace velmora
