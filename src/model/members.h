// Members of classes and free routines: methods, routines, fields and properties, and the
// lists that own them. A list owns its items and frees them; OwnerClass and Owner are back
// links, never freed through.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/code_object.h"
#include "model/parameters.h"
#include "support/stringlist.h"

namespace velmora {

class TClassDescription;
class TRoutineList;

class TMethodDescription : public TCodeObject {
 public:
  TMethodDescription(std::string_view name, TLanguage language);

  virtual void SetOwnerClass(TClassDescription* owner) { OwnerClass = owner; }
  virtual TClassDescription* GetOwnerClass() const { return OwnerClass; }

  bool HasDirective(TDirective d) const { return (Directives & DirectiveBit(d)) != 0; }
  void SetDirective(TDirective d, bool on = true) {
    Directives = on ? (Directives | DirectiveBit(d)) : (Directives & ~DirectiveBit(d));
  }

  /// Without toShowArguments the name; with it the name with its arguments and result
  /// type (toNamesOnly passes to the parameters).
  std::string GetDisplayText(unsigned options) const override;
  /// The declaration as written in a class (toShortForm, toAbstractVirtual), ending in ";".
  std::string GetDeclaration(unsigned options) const override;
  /// The implementation skeleton, with a body unless toHeaderOnly. Only the calling
  /// convention of the directives appears in it.
  std::string GetImplementation(unsigned options = 0) const;
  int GetImageIndex() const;

  TClassDescription* OwnerClass = nullptr;
  TMethodKind Kind = TMethodKind::Procedure;
  TVisibility Visibility = TVisibility::Public;
  std::string ResultType;
  TParameterList Parameters;
  uint16_t Directives = 0;  ///< bit n set: directive n present
  std::string MessageName;  ///< message identifier of a message handler

 protected:
  /// Method record: u8 Kind, u8 Visibility, u16 Directives, ResultType, MessageName,
  /// parameter list.
  void LoadFields(TStream& stream) override;
  void SaveFields(TStream& stream) const override;
};

/// A free routine: a function outside any class.
class TProcDescription : public TMethodDescription {
 public:
  using TMethodDescription::TMethodDescription;

  /// Always null: a free routine has no class.
  TClassDescription* GetOwnerClass() const override { return nullptr; }
  /// 14 for a routine that returns a value, 13 for the others.
  int GetImageIndex() const;

  std::string FileName;  ///< the file that declares it; also its unit for mark and sweep
  TRoutineList* Owner = nullptr;

 protected:
  /// Routine record: the method record, then FileName.
  void LoadFields(TStream& stream) override;
  void SaveFields(TStream& stream) const override;
};

/// The specifiers of a property.
class TPropertyDescription {
 public:
  void LoadFromStream(TStream& stream);
  void SaveToStream(TStream& stream) const;
  bool operator==(const TPropertyDescription&) const = default;

  std::string IndexParams;  ///< text between the brackets of an array property
  std::string IndexSpec;
  std::string ReadSpec;
  std::string WriteSpec;
  std::string StoredSpec;
  std::string DefaultSpec;
};

/// A data member or a property of a class.
class TFieldDescription : public TCodeObject {
 public:
  TFieldDescription(TClassDescription* ownerClass, TLanguage language)
      : TCodeObject(language), OwnerClass(ownerClass) {}

  /// Makes the field a property (creating empty specifiers when it has none) or a plain
  /// field again (freeing them).
  void SetIsProperty(bool isProperty);

  /// Short form: the name; with toWithType and a non-blank type, Pascal "Name: Type",
  /// C++ "Type NameModifier".
  std::string GetDisplayText(unsigned options) const override;
  /// The declaration of the field or property, with the specifiers unless toNoSpecifiers.
  std::string GetDeclaration(unsigned options) const override;
  int GetImageIndex() const;

  TVisibility Visibility = TVisibility::Public;
  TClassDescription* OwnerClass;
  bool IsProperty = false;
  std::unique_ptr<TPropertyDescription> Property;  ///< present exactly when IsProperty
  std::string FieldType;
  std::string Modifier;  ///< as the parameter's: C++ array bounds, Pascal a prefix word

 protected:
  /// Field record: u8 Visibility, u8 IsProperty, the specifiers when a property, then
  /// Modifier before FieldType.
  void LoadFields(TStream& stream) override;
  void SaveFields(TStream& stream) const override;
};

/// The methods of one class (or, as TRoutineList, the free routines), indexed by name:
/// case-sensitive for C++, case-insensitive for Pascal. Overloads stand side by side in
/// the order they were added. Owns its methods unless in reference mode.
class TMethodDescriptionList : public TRepObject {
 public:
  explicit TMethodDescriptionList(TLanguage language, TClassDescription* ownerClass = nullptr);
  ~TMethodDescriptionList() override;

  int Count() const { return Index.Count(); }
  TMethodDescription* Items(int i) const {
    return static_cast<TMethodDescription*>(Index.Objects(i));
  }
  /// Indexes `method` under its current name (set the name first) and takes ownership.
  /// A reference list owns nothing: it refuses (frees `method`, returns null); use
  /// AddReference.
  TMethodDescription* Add(std::unique_ptr<TMethodDescription> method);
  /// Frees (unless in reference mode) and removes entry `i`.
  void Delete(int i);
  int IndexOf(const TMethodDescription* method) const { return Index.IndexOfObject(method); }
  /// Index of the first method called `name`, or -1.
  int IndexOfName(std::string_view name) const;
  /// The first method called `name`, or null.
  TMethodDescription* Find(std::string_view name) const;
  /// The method called `name` whose parameters are the same as `params`, or null.
  TMethodDescription* Find(std::string_view name, const TParameterList& params) const;
  /// True when entry `i` shares its name with a neighbour (an overloaded name).
  bool IsOverloaded(int i) const;

  /// The parsers' way in: finds the method of that name with the same parameters, or,
  /// failing that, the only method of that name if it is invalid (a changed signature
  /// keeps its object and views their items), or else adds a new one. The found or new
  /// method gets `params`, `resultType`, `visibility` and `kind`, this list's owner class,
  /// and Valid set. Directives and positions are the caller's.
  TMethodDescription* FindOrAdd(std::string_view name, TParameterList params,
                                std::string_view resultType, TVisibility visibility,
                                TMethodKind kind);

  /// Frees the methods (unless in reference mode) from the last to the first.
  void Clear();
  /// Reference mode: the list indexes methods owned elsewhere and never frees them.
  void SetReference(bool isReference) { IsReference = isReference; }
  /// Indexes a method owned elsewhere; does nothing unless in reference mode.
  void AddReference(TMethodDescription* method);

  void SetValid(bool valid);
  /// Walks from the last to the first and deletes every method whose Valid equals `flag`.
  void RemoveWithValid(bool flag);
  /// Changed(index) on every method.
  void NotifyAll(int index);
  void SetOwnerClass(TClassDescription* owner);

  /// Method list: u32 count, then the methods (created with the list's language, named by
  /// their own record, then indexed).
  void LoadFromStream(TStream& stream) override;
  void SaveToStream(TStream& stream) const override;

  TStringList Index;
  TClassDescription* OwnerClass;
  TLanguage Language;
  bool IsReference = false;

 protected:
  /// The entries named `name` as [First, End) of Index; both are where the name would go
  /// when there is none. One search serves a whole find-or-add.
  struct TNameRun {
    int First;
    int End;
  };
  TNameRun NameRun(std::string_view name) const;
  /// The first method of `run` with the same parameters, or null.
  TMethodDescription* FindInRun(TNameRun run, const TParameterList& params) const;
  /// Indexes `method` at `index`, the end of its name's run, and takes ownership; null in
  /// reference mode.
  TMethodDescription* AddAt(int index, std::unique_ptr<TMethodDescription> method);
};

/// The free routines of a project, kept like methods.
class TRoutineList : public TMethodDescriptionList {
 public:
  /// Routines of both languages live in one list; their names compare case-sensitively.
  TRoutineList() : TMethodDescriptionList(TLanguage::Cpp) {}

  TProcDescription* Items(int i) const { return static_cast<TProcDescription*>(Index.Objects(i)); }
  /// Indexes `routine` under its name, takes ownership (unless in reference mode) and
  /// makes this list its Owner.
  TProcDescription* Add(std::unique_ptr<TProcDescription> routine);
  /// Add for each routine in turn, the index kept up to date once for all of them: a
  /// parsed unit's thousands of routines moving into a model of tens of thousands. Does
  /// nothing in reference mode (the routines are then freed).
  void AddAll(std::vector<std::unique_ptr<TProcDescription>> routines);
  /// The routine of that name declared in `fileName` (compared case-insensitively) with
  /// the same parameters, or null.
  TProcDescription* Find(std::string_view name, std::string_view fileName,
                         const TParameterList& params) const;
  /// The parsers' way in, as TMethodDescriptionList::FindOrAdd but matched within one
  /// file: a routine declared in two files is two routines. A new routine gets `language`,
  /// `fileName` and this list as Owner.
  TProcDescription* FindOrAdd(std::string_view name, std::string_view fileName, TLanguage language,
                              TParameterList params, std::string_view resultType,
                              TVisibility visibility, TMethodKind kind);

  /// Sets Valid on the routines of `unitName` (a FileName, case-insensitive), or of all.
  void Mark(std::optional<std::string_view> unitName, bool flag);
  /// Walks from the last to the first and deletes the routines of `unitName` (or all)
  /// whose Valid equals `flag`.
  void Sweep(bool flag, std::optional<std::string_view> unitName);

  /// Routine count and routines: u32 count, then per routine its u8 Language and the
  /// routine record.
  void LoadFromStream(TStream& stream) override;
  void SaveToStream(TStream& stream) const override;
};

/// The fields and properties of one class, in declaration order.
class TFieldDescriptionList {
 public:
  TFieldDescriptionList(TClassDescription* ownerClass, TLanguage language)
      : OwnerClass(ownerClass), Language(language) {}

  int Count() const { return static_cast<int>(items_.size()); }
  TFieldDescription* Items(int i) const { return items_[i].get(); }
  TFieldDescription* Add(std::unique_ptr<TFieldDescription> field);
  void Delete(int i);
  void Clear() { items_.clear(); }
  int IndexOf(const TFieldDescription* field) const;
  /// The first field called `name` (by the list's language rule), or null.
  TFieldDescription* Find(std::string_view name) const;

  /// The parsers' way in: the field of that name, or a new one at the end; gets `type`,
  /// `visibility`, this list's owner class and Valid set. Property marks, modifier and
  /// positions are the caller's.
  TFieldDescription* FindOrAdd(std::string_view name, std::string_view type,
                               TVisibility visibility);
  /// Adds one field per declarator of a declaration that names several: Pascal
  /// "A, B: Integer"; C++ "int a, *b, c[3]" (the type of the first declarator without its
  /// `*`/`&` is the base of the others; array bounds go to Modifier). Each is found or
  /// added as by FindOrAdd; returns them in order (nothing for a text without names).
  std::vector<TFieldDescription*> AddDeclaratorList(std::string_view text, TVisibility visibility);

  void SetValid(bool valid);
  /// Walks from the last to the first and deletes every field whose Valid equals `flag`.
  void RemoveWithValid(bool flag);
  void NotifyAll(int index);
  void SetOwnerClass(TClassDescription* owner);

  /// Field list: u32 count, then the fields (each read without an owner class; the class
  /// sets it when it finishes loading).
  void LoadFromStream(TStream& stream);
  void SaveToStream(TStream& stream) const;

  TClassDescription* OwnerClass;
  TLanguage Language;

 private:
  std::vector<std::unique_ptr<TFieldDescription>> items_;
};

}  // namespace velmora
