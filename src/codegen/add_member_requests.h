// The apply steps of the Add Field, Add Method and Add Property dialogs without their
// widgets: a front end (the command line, a dialog, a code action) fills a request with
// what its controls hold and applies it. Applying checks the input with the dialogs'
// messages, builds the member records, runs one code generator for the class and, when
// the generation succeeded, adds the records to the class. A check that fails changes
// nothing; a generation that fails changes no buffer and no class.
//
// Threads: main thread (the buffers are the editor's); the caller holds the model's lock
// while Apply reads and changes the class.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "model/code_object.h"

namespace velmora {

class TAbstractCodeGenerator;
class TClassDescription;
class TClasslist;
class TCodeTextBuffers;
class TFieldDescription;
class TMethodDescription;
class TVLSettings;

/// A message of a check, as the dialog would show it.
struct TAddMemberMessage {
  enum Kind { Error, Warning };
  Kind Severity = Error;
  std::string Text;
  /// The control that gets the focus (the dialog's name for it), empty for none.
  std::string Control;
};

/// What an Apply needs besides the request: the class (of the model), the settings, the
/// buffers and the file that declares the class.
struct TAddMemberTarget {
  TClassDescription* Class = nullptr;
  const TVLSettings* Settings = nullptr;
  TCodeTextBuffers* Buffers = nullptr;
  /// Empty: the class's UnitName.
  std::string ModuleFile;
};

struct TAddMemberOutcome {
  bool Ok = false;
  /// Set when a check failed or the generation failed.
  std::optional<TAddMemberMessage> Message;
  /// Where the editor goes: a file, its 1-based line and offset (-1 when none).
  std::string FocusFile;
  int32_t FocusLine = -1;
  int32_t FocusOffset = -1;
  /// The changed module parsed into a list of its own (after success), to merge.
  std::unique_ptr<TClasslist> Parsed;
};

/// The records one request builds; they live until its generation is done and are then
/// handed to the class.
struct TStagedMembers {
  std::vector<std::unique_ptr<TFieldDescription>> Fields;  ///< fields and properties
  std::vector<std::unique_ptr<TMethodDescription>> Methods;
  std::vector<std::string> Bodies;               ///< one per method, parallel to Methods
  std::vector<std::string> ImplementationFiles;  ///< one per method
  TStagedMembers();
  ~TStagedMembers();
  TStagedMembers(TStagedMembers&&) noexcept;
  TStagedMembers& operator=(TStagedMembers&&) noexcept;
};

/// The Add Field dialog's controls.
struct TAddFieldRequest {
  std::string FieldName;  ///< "Field &Name:"
  std::string Type;       ///< "&Type:"
  TVisibility Visibility = TVisibility::Public;
  bool CheckSyntax = false;  ///< "c&heck Syntax"

  /// OK and Apply are enabled: a trimmed name and a trimmed type.
  bool CanApply() const;
  /// The first failing check of `cls`'s apply step, or nothing.
  std::optional<TAddMemberMessage> Check(const TClassDescription& cls) const;
  /// Builds the record and adds it to `generator` (Check passed first).
  void Stage(const TClassDescription& cls, TAbstractCodeGenerator& generator,
             TStagedMembers& staged) const;
  TAddMemberOutcome Apply(const TAddMemberTarget& target) const;
};

/// The Add Method dialog's controls.
struct TAddMethodRequest {
  std::string MethodName;                     ///< "Method &Name:"
  std::string Arguments;                      ///< "&Arguments:", the parameter list as source text
  TMethodKind Kind = TMethodKind::Procedure;  ///< "&Method type"
  std::string ResultType;                     ///< "Function &Result:"
  std::string ResultSuffix;                   ///< "", "*" or "&" (C++)
  TVisibility Visibility = TVisibility::Public;
  bool Abstract = false;
  bool Virtual = false;
  bool Dynamic = false;         ///< Pascal
  bool Override = false;        ///< Pascal
  bool ClassMethod = false;     ///< Pascal
  bool Const = false;           ///< C++
  bool FastCall = false;        ///< C++ "__fastcall"
  bool MessageHandler = false;  ///< "M&essage Handler:"
  std::string MessageId;
  std::string ImplementationFile;  ///< "File:" (C++; a Pascal method goes to its unit)
  bool CallInherited = false;      ///< "call inheri&ted"
  bool Inline = false;             ///< "In&line": the inline word in the declaration
  bool ImplicitInline = false;     ///< "Im&plicit inline" (C++): the body in the class
  bool CheckSyntax = false;
  /// The body when the inherited call is not wanted; the settings keep no default body
  /// text, so it is empty unless a front end fills it.
  std::string Body;

  bool CanApply() const;
  std::optional<TAddMemberMessage> Check(const TClassDescription& cls) const;
  /// The method record the controls describe (for `cls`'s language).
  std::unique_ptr<TMethodDescription> BuildMethod(const TClassDescription& cls) const;
  void Stage(const TClassDescription& cls, const TVLSettings& settings,
             TAbstractCodeGenerator& generator, TStagedMembers& staged) const;
  TAddMemberOutcome Apply(const TAddMemberTarget& target) const;
};

/// The Add Property dialog's controls.
struct TAddPropertyRequest {
  std::string Name;          ///< "Property &Name:"
  std::string Type;          ///< "&Type:"
  std::string Reads;         ///< "&Reads:"
  std::string Writes;        ///< "&Writes:"
  bool CreateGet = false;    ///< "create &Get method"
  bool CreateSet = false;    ///< "create &Set method"
  std::string Array;         ///< "&Array:" (Pascal "I: Integer"; C++ "[int i][int j]")
  std::string Index;         ///< "&Index:"
  std::string Stored;        ///< "Stor&ed:"
  std::string Default;       ///< "&Default:"
  bool CreateField = false;  ///< "create &field:"
  std::string FieldName;
  bool UseFieldForGet = false;           ///< "use this field for implementing the Get method"
  bool UseFieldForSet = false;           ///< "use this field for implementing the Set method"
  bool ImplementGetUsingMember = false;  ///< "I&mplement Get using member"
  std::string GetMember;
  bool ImplementSetUsingMember = false;  ///< "Im&plement Set using member"
  std::string SetMember;
  std::string ImplementIn;  ///< "Implement in:" (C++)
  TVisibility Visibility = TVisibility::Public;
  bool CheckSyntax = false;

  /// The default names after the property name changed: "F", "Get" and "Set" + name for
  /// the boxes that are checked.
  void NameChanged();
  bool CanApply() const;
  std::optional<TAddMemberMessage> Check(const TClassDescription& cls) const;
  /// The getter's and setter's names: Reads / Writes, or "Get" / "Set" + name.
  std::string GetterName() const;
  std::string SetterName() const;
  /// The parameter texts of the getter and the setter, as the dialog builds them.
  std::string GetterParameters(TLanguage language) const;
  std::string SetterParameters(TLanguage language) const;
  void Stage(const TClassDescription& cls, const TVLSettings& settings,
             TAbstractCodeGenerator& generator, TStagedMembers& staged) const;
  TAddMemberOutcome Apply(const TAddMemberTarget& target) const;
};

/// The body that calls the inherited method: C++ "Base::Name(args);", Pascal
/// "inherited Name(args);", with "result := " in front of a Pascal function's whole text.
std::string InheritedCall(const TVLSettings& settings, const TClassDescription& cls,
                          const TMethodDescription& method);

/// A letter or "_" followed by letters, digits and "_".
bool IsValidIdent(std::string_view text);

/// Runs the staged members through `generator` and, on success, moves them into `cls`.
TAddMemberOutcome GenerateStaged(TClassDescription& cls, TAbstractCodeGenerator& generator,
                                 TStagedMembers& staged);

}  // namespace velmora
