// What the class view hides: the member filter (which kinds of members are shown per
// visibility) and filter descriptions (named rule sets that hide classes by name,
// ancestor or unit). Both are kept in the settings store.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "model/code_object.h"
#include "support/stringlist.h"

namespace velmora {

class TClassDescription;
class TSettingsStore;

/// Rows of the member filter.
enum TMemberCategory : int { mcFields = 0, mcMethods = 1, mcProperties = 2 };

inline constexpr char kFilterNameNotUnique[] =
    "Please enter a name for this filter. Filter names must be unique!";
inline constexpr char kAllMembersFiltered[] =
    "All members of this class are filtered!\r\nTo disable a filter use the filter toolbar.";

/// Which members are shown: three categories by the five visibilities, all shown when
/// created.
class TClassMemberFilter {
 public:
  static constexpr int kCategories = 3;
  static constexpr int kVisibilities = 5;

  TClassMemberFilter();

  /// True for cells outside the table: what the filter does not know it does not hide.
  bool IsShown(int category, TVisibility visibility) const;
  /// Private and protected are set alone; public, published and automated are shown and
  /// hidden together, so setting one sets all three of the category. Cells outside the
  /// table are ignored.
  void SetShown(int category, TVisibility visibility, bool shown);

  /// Section "Filter", key "F<category><visibility>" per cell, missing keys shown.
  void Load(const TSettingsStore& store);
  void Save(TSettingsStore& store) const;

 private:
  bool shown_[kCategories][kVisibilities];
};

/// One rule of a filter description.
class TFilter {
 public:
  enum Type : int32_t { ftClassName = 0, ftAncestor = 1, ftUnitName = 2 };
  enum Kind : int32_t { mkContains = 0, mkBeginsWith = 1, mkEquals = 2 };

  /// A leading "!" negates; then, for the ancestor type only, a leading "*" tests the
  /// whole ancestor chain; the rest is Value.
  TFilter(std::string_view text, int32_t filterType, int32_t matchKind);

  /// The text back: "!" when negated, "*" for the whole chain, then Value.
  std::string GetText() const;
  /// Whether the rule holds for the class (after Negate). The subject and Value compare
  /// upper-cased; an empty Value is never contained in nor begins a subject. A type or
  /// kind outside the tables never matches (before Negate).
  bool Matches(const TClassDescription& cls) const;

  bool Negate = false;
  bool AnyAncestor = false;
  int32_t FilterType;
  int32_t MatchKind;
  std::string Value;
};

/// A named set of rules; a class passes when any (MatchMode 0) or all (1) rules hold.
class TFilterDescription {
 public:
  int Count() const { return static_cast<int>(filters_.size()); }
  TFilter* Items(int i) const { return filters_[i].get(); }
  TFilter* Add(int32_t filterType, std::string_view text, int32_t matchKind);
  void Clear() { filters_.clear(); }
  /// With no rules every class passes.
  bool Passes(const TClassDescription& cls) const;

  /// Keys "Match", "ApplyToProject", "ApplyToExternals", "Count" and per rule "Value",
  /// "Type" and "Kind" followed by its number. Loading clears the rules first and stops
  /// at the first rule whose value is missing, whatever Count claims; saving replaces the
  /// whole section.
  void Load(const TSettingsStore& store, std::string_view section);
  void Save(TSettingsStore& store, std::string_view section) const;

  int32_t MatchMode = 0;
  bool ApplyToProject = true;
  bool ApplyToExternals = true;

 private:
  std::vector<std::unique_ptr<TFilter>> filters_;
};

/// The filter descriptions by name (case-insensitive, sorted), owned.
class TFilterList {
 public:
  TFilterList() = default;
  ~TFilterList();
  TFilterList(const TFilterList&) = delete;
  TFilterList& operator=(const TFilterList&) = delete;

  int Count() const { return Names.Count(); }
  const std::string& Name(int i) const { return Names.Strings(i); }
  TFilterDescription* Items(int i) const { return Names.Items(i); }
  /// The description of that name, or null.
  TFilterDescription* Find(std::string_view name) const;
  /// A new empty description; null when the name is blank or taken (the dialog then
  /// shows kFilterNameNotUnique).
  TFilterDescription* Add(std::string_view name);
  void Remove(std::string_view name);
  void Clear();

  /// Section "Class Filters" holds "Count" and "Name<i>"; each description lives in
  /// "Filter\<name>". Loading clears the list first and skips blank and repeated names.
  /// Saving also erases the sections of descriptions that are gone.
  void Load(const TSettingsStore& store);
  void Save(TSettingsStore& store) const;

  TObjectStringList<TFilterDescription> Names{true, TDuplicates::Ignore, false};
};

}  // namespace velmora
