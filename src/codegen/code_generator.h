// The code generators: one per (module, class) and per generation. The caller adds the
// members to write (AddField, AddProperty, AddMethod, AddDescription); Generate re-parses
// the module, computes every insertion's line, orders both lists, opens a new visibility
// section for members whose section does not exist, and writes everything through the
// text-buffer seam. All insertions of all files are computed before anything is written,
// so a generation that fails leaves every buffer as it was. A generation that succeeds
// parses the changed module once more into a private class list the caller can merge.
//
// Threads: main thread only (the seam's buffers are the editor's). The class given is
// read while Add* and Generate run; the caller holds the model's lock around them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "codegen/code_insert_objects.h"
#include "codegen/code_text_buffers.h"

namespace velmora {

class TClassDescription;
class TClasslist;
class TCodeObject;
class TFieldDescription;
class TMethodDescription;
class TVLSettings;

/// Where AddDescription puts a help description.
enum TDescriptionPlace : int {
  dpFileStart = 0,       // at the start of the implementation file
  dpFileEnd = 1,         // at its end (any value other than 0, 2 and 3)
  dpDeclaration = 2,     // before the member's declaration
  dpImplementation = 3,  // before a method's implementation (else as 2)
};

class TAbstractCodeGenerator {
 public:
  /// The generator of `moduleFile`'s language (by its name) for `cls`. The settings give
  /// the templates, the ordered-insertion switch and the trailing-blank rule.
  static std::unique_ptr<TAbstractCodeGenerator> Create(TCodeTextBuffers& buffers,
                                                        const TVLSettings& settings,
                                                        const TClassDescription& cls,
                                                        const std::string& moduleFile);
  virtual ~TAbstractCodeGenerator();
  TAbstractCodeGenerator(const TAbstractCodeGenerator&) = delete;
  TAbstractCodeGenerator& operator=(const TAbstractCodeGenerator&) = delete;

  /// The records passed to the Add operations must live until Generate has returned.
  void AddField(const TFieldDescription& field);
  void AddProperty(const TFieldDescription& property);
  /// A C++ method marked implicitly inline is declared with its body. Any other method
  /// gets a declaration and, unless abstract, an implementation in `implementationFile`
  /// (empty: the class's own implementation file, see ImplementationFileOf). A C++
  /// message handler also gets an entry in the class's message map.
  void AddMethod(const TMethodDescription& method, const std::string& implementationFile,
                 const std::string& body);
  /// `where` is a TDescriptionPlace.
  void AddDescription(const TCodeObject& member, const std::string& text, int where);

  /// Applies everything. Returns the offset of the focus in the changed focus file, or
  /// -1 when there is no focus or the generation failed (Error() then says why and no
  /// buffer was changed).
  int32_t Generate();

  bool Succeeded() const { return succeeded_; }
  const std::string& Error() const { return error_; }
  const std::string& FocusFile() const { return focusFile_; }
  /// 1-based line of the focus in FocusFile, -1 without one.
  int32_t FocusLine() const { return focusLine_; }
  /// After a successful Generate: the changed module parsed into a list of its own, and
  /// the class found in it. The caller merges the list into the model.
  std::unique_ptr<TClasslist> TakeParsedList();
  TClassDescription* ParsedClass() const { return parsedClass_; }

  /// The file the implementation of a method of the class goes to by default: a Pascal
  /// unit itself; for a C++ header the source file beside it with the same stem when the
  /// buffers can read one, else the header itself.
  std::string ImplementationFileOf() const;

  TLanguage Language() const { return setup_.Language; }
  const std::string& ModuleFile() const { return moduleFile_; }

 protected:
  TAbstractCodeGenerator(TCodeTextBuffers& buffers, const TVLSettings& settings,
                         const TClassDescription& cls, std::string moduleFile, TLanguage language);
  /// The class to extend in a fresh parse of the module, or null.
  virtual TClassDescription* FindClass(TClasslist& list) const = 0;
  const TClassDescription& Class() const { return class_; }

 private:
  bool Fail(std::string message);

  TCodeTextBuffers& buffers_;
  const TClassDescription& class_;  // the model's class, read only
  std::string moduleFile_;          // the file that declares the class
  TInsertionSetup setup_;
  bool ordered_;
  bool parseImplementation_;  // the Pascal parser's option of the project's model
  TCodeInsertObjectList declarations_;
  TImplementationInsertObjectList implementations_;
  TCodeInsertObject* focusObject_ = nullptr;  // the last object added, in one of the lists
  std::unique_ptr<TClasslist> parsedList_;    // after success: the changed module's parse
  TClassDescription* parsedClass_ = nullptr;  // in parsedList_
  std::string focusFile_;
  int32_t focusLine_ = -1;
  bool succeeded_ = false;
  std::string error_;
};

/// Re-parses with the Pascal file parser and finds the class by name.
class TPascalCodeGenerator : public TAbstractCodeGenerator {
 public:
  TPascalCodeGenerator(TCodeTextBuffers& buffers, const TVLSettings& settings,
                       const TClassDescription& cls, std::string moduleFile);

 protected:
  TClassDescription* FindClass(TClasslist& list) const override;
};

/// Re-parses with the C++ file parser and finds the class through its enclosing classes,
/// outermost first.
class TCPPCodeGenerator : public TAbstractCodeGenerator {
 public:
  TCPPCodeGenerator(TCodeTextBuffers& buffers, const TVLSettings& settings,
                    const TClassDescription& cls, std::string moduleFile);

 protected:
  TClassDescription* FindClass(TClasslist& list) const override;
};

/// The names of `cls` as the templates need them.
TClassNames ClassNamesOf(const TClassDescription& cls);

}  // namespace velmora
