// Insertion objects: one piece of generated text each (a field, a property, a method's
// declaration or implementation, a message-map entry, a visibility section, a help
// description), with the rule that finds the line it goes before. A code generator
// (code_generator.h) collects them in two lists, computes their lines against a fresh
// parse of the module, orders them and writes them in one pass.
//
// Lines are 1-based and name the line the text goes before; kNoPlace says that no place
// was found (the generator then opens a new visibility section or writes at the end).
//
// Threads: objects live within one generation on one thread.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "codegen/code_gen_texts.h"
#include "model/code_object.h"

namespace velmora {

class TClassDescription;
class TClasslist;
class TCodeObject;
class TFieldDescription;
class TMethodDescription;

inline constexpr int32_t kNoPlace = 2147483647;

/// What the class being extended is called, for the templates that name it.
struct TClassNames {
  std::string Name;
  /// C++: the name qualified by its enclosing classes ("Outer::Inner"); Pascal: Name.
  std::string Qualified;
  /// The first ancestor's name (empty for a C++ class without one).
  std::string FirstAncestor;
};

/// What an object sees when it computes its line: the class as just re-parsed from the
/// module, the list it was parsed into, and the current text of the file the object
/// writes to.
struct TInsertionContext {
  TClassDescription* Class = nullptr;
  const TClasslist* List = nullptr;
  const std::string* FileText = nullptr;
  /// Place members and implementations in name order (the settings' AlphabeticCodeGen).
  bool Ordered = false;
};

/// Everything the objects of one generation share, copied into each object when it is
/// made: a template edited later does not change an object that exists.
struct TInsertionSetup {
  TLanguage Language = TLanguage::Pascal;
  TCodeTemplates Templates;
  TClassNames Names;
  /// Blanks at the ends of the generated lines are dropped (CodeGenRemoveTrailingSpaces).
  bool RemoveTrailingSpaces = true;
};

class TCodeInsertObject {
 public:
  explicit TCodeInsertObject(const TInsertionSetup& setup) : setup_(setup) {}
  virtual ~TCodeInsertObject() = default;
  TCodeInsertObject(const TCodeInsertObject&) = delete;
  TCodeInsertObject& operator=(const TCodeInsertObject&) = delete;

  /// The line before which the text goes, or kNoPlace; the base has none (-1).
  virtual int32_t ComputeInsertionLine(const TInsertionContext& /*context*/) { return -1; }
  /// The visibility the declaration list is ordered by; the base says private.
  virtual TVisibility OrderVisibility() const { return TVisibility::Private; }
  /// The text, built on first use and kept.
  const std::string& GetText();
  /// Computes the line and keeps it in InsertionLine.
  int32_t CalcInsertionLine(const TInsertionContext& context) {
    return InsertionLine = ComputeInsertionLine(context);
  }
  /// The file an implementation-side object writes to; empty for declaration-side ones.
  virtual const std::string& TargetFile() const;

  int32_t InsertionLine = -1;  ///< -1 until computed
  /// 2 a field, 1 a method declaration or message-map entry, 0 anything else: fields go
  /// before methods, methods before properties on one line.
  int OrderClass = 0;
  bool LineBreakBefore = true;
  bool LineBreakAfter = false;

 protected:
  /// The text; the base writes nothing.
  virtual std::string BuildText() { return {}; }
  TLanguage Language() const { return setup_.Language; }
  const TCodeTemplates& Templates() const { return setup_.Templates; }
  const TClassNames& Names() const { return setup_.Names; }

 private:
  TInsertionSetup setup_;
  std::string text_;  // empty until first asked for
  bool built_ = false;
};

/// A new visibility section's specifier; its line is set by the generator.
class TVisibilityInsertObject : public TCodeInsertObject {
 public:
  TVisibilityInsertObject(const TInsertionSetup& setup, TVisibility visibility)
      : TCodeInsertObject(setup), Visibility(visibility) {}
  TVisibility OrderVisibility() const override { return Visibility; }
  TVisibility Visibility;

 protected:
  std::string BuildText() override;
};

/// A field's declaration, after the last field of its section.
class TFieldInsertObject : public TCodeInsertObject {
 public:
  TFieldInsertObject(const TInsertionSetup& setup, const TFieldDescription& field);
  int32_t ComputeInsertionLine(const TInsertionContext& context) override;
  TVisibility OrderVisibility() const override;

 protected:
  std::string BuildText() override;
  const TFieldDescription& field_;  // owned by the caller for the whole generation
};

/// A property's declaration, after the fields, methods and properties of its section.
class TPropertyInsertObject : public TFieldInsertObject {
 public:
  TPropertyInsertObject(const TInsertionSetup& setup, const TFieldDescription& property);
  int32_t ComputeInsertionLine(const TInsertionContext& context) override;

 protected:
  std::string BuildText() override;
};

/// A method's declaration, after the fields and methods of its section.
class TMethodDeclInsertObject : public TCodeInsertObject {
 public:
  TMethodDeclInsertObject(const TInsertionSetup& setup, const TMethodDescription& method);
  int32_t ComputeInsertionLine(const TInsertionContext& context) override;
  TVisibility OrderVisibility() const override;

 protected:
  std::string BuildText() override;
  const TMethodDescription& method_;  // owned by the caller for the whole generation
};

/// A C++ method declared with its body in the class.
class TMethodDeclInlineImplicitInsertObject : public TMethodDeclInsertObject {
 public:
  TMethodDeclInlineImplicitInsertObject(const TInsertionSetup& setup,
                                        const TMethodDescription& method, std::string body)
      : TMethodDeclInsertObject(setup, method), body_(std::move(body)) {}

 protected:
  std::string BuildText() override;

 private:
  std::string body_;
};

/// A C++ message handler's entry in the class's message map, or a whole new map around
/// it when the class has none.
class TMessageMapInsertObject : public TCodeInsertObject {
 public:
  TMessageMapInsertObject(const TInsertionSetup& setup, const TMethodDescription& method);
  int32_t ComputeInsertionLine(const TInsertionContext& context) override;
  /// A new map goes to the protected section, so it is ordered (and, without that
  /// section, opened) as protected.
  TVisibility OrderVisibility() const override { return TVisibility::Protected; }

 protected:
  std::string BuildText() override;

 private:
  const TMethodDescription& method_;
  bool hasMap_ = false;  // the class already has a map: the entry alone is written
};

/// Base of the objects written to an implementation file.
class TImplementationInsertObject : public TCodeInsertObject {
 public:
  TImplementationInsertObject(const TInsertionSetup& setup, std::string fileName)
      : TCodeInsertObject(setup), FileName(std::move(fileName)) {}
  const std::string& TargetFile() const override { return FileName; }
  std::string FileName;
};

/// A method's implementation, placed by the code markers or the unit's own layout.
class TMethodImplInsertObject : public TImplementationInsertObject {
 public:
  TMethodImplInsertObject(const TInsertionSetup& setup, const TMethodDescription& method,
                          std::string body, std::string fileName);
  int32_t ComputeInsertionLine(const TInsertionContext& context) override;

 protected:
  std::string BuildText() override;

 private:
  const TMethodDescription& method_;
  std::string body_;
};

/// A help description block before a member's declaration.
class THelpDescriptionDeclInsertObject : public TCodeInsertObject {
 public:
  THelpDescriptionDeclInsertObject(const TInsertionSetup& setup, const TCodeObject& member,
                                   std::string description);
  int32_t ComputeInsertionLine(const TInsertionContext& context) override;

 protected:
  std::string BuildText() override;
  const TCodeObject& member_;
  std::string description_;
};

/// A help description block at the start or the end of an implementation file.
class THelpDescriptionPositionInsertObject : public TImplementationInsertObject {
 public:
  THelpDescriptionPositionInsertObject(const TInsertionSetup& setup, const TCodeObject& member,
                                       std::string description, bool atStart, std::string fileName);
  int32_t ComputeInsertionLine(const TInsertionContext& context) override;

 protected:
  std::string BuildText() override;

 private:
  const TCodeObject& member_;
  std::string description_;
  bool atStart_;
};

/// A help description block before a method's implementation.
class THelpDescriptionImplInsertObject : public TImplementationInsertObject {
 public:
  THelpDescriptionImplInsertObject(const TInsertionSetup& setup, const TMethodDescription& method,
                                   std::string description, std::string fileName);
  int32_t ComputeInsertionLine(const TInsertionContext& context) override;

 protected:
  std::string BuildText() override;

 private:
  const TMethodDescription& method_;
  std::string description_;
};

/// The declaration side's objects, owned.
class TCodeInsertObjectList {
 public:
  std::vector<std::unique_ptr<TCodeInsertObject>> Items;
};

/// The implementation side's objects, owned.
class TImplementationInsertObjectList {
 public:
  std::vector<std::unique_ptr<TCodeInsertObject>> Items;
};

}  // namespace velmora
