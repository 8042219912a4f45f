// A class of the code model with its ancestors, members and nested classes, and the
// transient position table the code generators use to place new members.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "model/code_object.h"
#include "model/members.h"

namespace velmora {

class TCommonClassList;
class TDomain;

class TClassAncestor {
 public:
  TClassAncestor() = default;
  TClassAncestor(TVisibility access, std::string_view name) : Access(access), AncestorName(name) {}

  /// Ancestor record: u8 Access, string AncestorName.
  void LoadFromStream(TStream& stream);
  void SaveToStream(TStream& stream) const;
  bool operator==(const TClassAncestor&) const = default;

  TVisibility Access = TVisibility::Public;
  std::string AncestorName;
};

class TClassAncestorList {
 public:
  explicit TClassAncestorList(TLanguage language) : Language(language) {}

  int Count() const { return static_cast<int>(Items.size()); }
  const TClassAncestor& operator[](int i) const { return Items[i]; }
  void Add(TVisibility access, std::string_view name) { Items.emplace_back(access, name); }
  void Clear() { Items.clear(); }

  /// Ancestor list: u32 count, then the ancestors.
  void LoadFromStream(TStream& stream);
  void SaveToStream(TStream& stream) const;

  std::vector<TClassAncestor> Items;  ///< in declaration order
  TLanguage Language;
};

/// Where the sections and the last members of each visibility of a class were found, for
/// placing new members; never saved. Each block is four positions (start line, start
/// offset, end line, end offset), -1 when unknown. For a section the "end" pair is where
/// its keyword ends (the colon in C++).
class TPositionInfo {
 public:
  enum Block { Section = 0, LastField = 1, LastMethod = 2, LastProperty = 3 };
  struct Positions {
    int32_t StartLine = -1, StartOffset = -1, EndLine = -1, EndOffset = -1;
  };
  /// A macro line the code generators look for: the message map's begin, end and handler
  /// lines.
  struct Macro {
    std::string Name;
    int32_t StartLine, StartOffset, EndLine, EndOffset;
  };

  TPositionInfo() { Reset(); }
  void Reset();
  /// Block `block` of `visibility`; out-of-range visibilities share a scratch block.
  Positions& At(TVisibility visibility, Block block);
  const Positions& At(TVisibility visibility, Block block) const;
  /// Keeps the macro when it is one of BEGIN_MESSAGE_MAP, END_MESSAGE_MAP, MESSAGE_HANDLER
  /// and VCL_MESSAGE_HANDLER; returns whether it was kept.
  bool OfferMacro(std::string_view name, int32_t startLine, int32_t startOffset, int32_t endLine,
                  int32_t endOffset);
  /// The last kept macro of that name, or null.
  const Macro* LastMacro(std::string_view name) const;

  std::array<std::array<Positions, 4>, 5> Blocks;
  std::vector<Macro> Macros;  ///< in source order

 private:
  Positions scratch_;
};

/// Tells whether a class descends (through its chain of direct ancestors) from the named
/// class; the class list supplies it (InheritsFrom with the class's root list).
using TInheritsFromFunc =
    std::function<bool(const TClassDescription&, std::string_view ancestorName)>;

class TClassDescription : public TCodeObject {
 public:
  TClassDescription(TCommonClassList* ownerList, TLanguage language);
  ~TClassDescription() override;

  /// The nested class list, created on first use with this class as its outer class.
  TCommonClassList* NestedClasses();
  /// The nested class list if it exists, else null (creates nothing).
  TCommonClassList* NestedClassesIfAny() const { return nestedClasses_.get(); }
  bool HasNestedClasses() const;

  /// The first ancestor's name, or DefaultAncestor when there is none.
  std::string GetDirectAncestorName() const;
  /// Pascal "Name = Class(Ancestor)"; C++ "[template <...> ]class Name[ : access Base, ...]".
  std::string GetHeader() const;
  /// 16 for a class descending from "TForm" (asked through `inheritsFrom`, which may be
  /// empty), 1 for other classes, 15 for interfaces, 20 templates, 21 structs.
  int GetImageIndex(const TInheritsFromFunc& inheritsFrom = {}) const;

  /// Sets Valid on the class and, when `recurse`, first on its nested classes; then on
  /// every field and method.
  void SetValid(bool valid, bool recurse);
  /// Removes the nested classes, then the fields, then the methods whose Valid equals
  /// `flag`, each list walked from the last to the first.
  void RemoveWithValid(bool flag);
  /// Changed(index) on the class, its nested classes, fields and methods.
  void NotifyAll(int index);

  /// The position table, created (or just returned) on request.
  TPositionInfo* GetPositionInfo(bool create);
  void DropPositionInfo() { positionInfo_.reset(); }

  TCommonClassList* OwnerList;
  TDomain* Domain = nullptr;  ///< set when domains are linked; not saved
  TClassAncestorList Ancestors;
  std::string DefaultAncestor;  ///< "TObject" for Pascal, empty for C++
  std::string UnitName;
  TMethodDescriptionList Methods;
  TFieldDescriptionList Fields;
  TClassKind ClassKind = TClassKind::Class;
  std::string TemplateParams;  ///< text between "template <" and ">"
  /// The second saved string: an interface's GUID without its quotes and braces.
  std::string Guid;

 protected:
  /// Class record after the code object: ancestors, UnitName, ClassKind, TemplateParams,
  /// Guid, methods, fields, then the has-nested-classes byte and the nested class list.
  void LoadFields(TStream& stream) override;
  void SaveFields(TStream& stream) const override;

 private:
  std::unique_ptr<TCommonClassList> nestedClasses_;
  std::unique_ptr<TPositionInfo> positionInfo_;
};

}  // namespace velmora
