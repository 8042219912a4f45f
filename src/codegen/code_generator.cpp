#include "codegen/code_generator.h"

#include <algorithm>
#include <cstring>
#include <map>

#include "model/class_description.h"
#include "model/class_list.h"
#include "model/members.h"
#include "parsing/source_parser.h"
#include "settings/vl_settings.h"
#include "support/ansi.h"
#include "support/stream.h"

namespace velmora {

namespace {

constexpr std::string_view kLineBreak = "\r\n";

// Visibility ranks when ordering insertions on one line: private, protected, public,
// published, automated.
int Rank(TVisibility visibility) {
  switch (visibility) {
    case TVisibility::Private:
      return 0;
    case TVisibility::Protected:
      return 1;
    case TVisibility::Public:
      return 2;
    case TVisibility::Published:
      return 3;
    default:
      return 4;
  }
}

// Where each line of a text in buffer form starts; line n (1-based) starts at
// Starts[n - 1]. Every line end of buffer form is CR LF, so the LFs alone mark them, and
// memchr finds those at memory speed: the table is built for every file a generation
// writes, and source files run to megabytes.
struct TLineTable {
  explicit TLineTable(const std::string& text) {
    Starts.push_back(0);
    const char* begin = text.data();
    const char* end = begin + text.size();
    for (const char* p = begin; (p = static_cast<const char*>(std::memchr(p, '\n', end - p)));) {
      ++p;
      Starts.push_back(static_cast<int32_t>(p - begin));
    }
  }
  int32_t LineOf(int32_t offset) const {
    return static_cast<int32_t>(std::upper_bound(Starts.begin(), Starts.end(), offset) -
                                Starts.begin());
  }
  std::vector<int32_t> Starts;
};

// The offset where text that goes before `line` is put: with a line break in front of
// the text, at the end of the line before (so the break opens the new line); else at the
// start of `line`. Lines past the end put the text at the end.
int32_t InsertOffset(const std::string& text, const TLineTable& lines, int32_t line,
                     bool breakBefore) {
  const auto size = static_cast<int32_t>(text.size());
  if (line <= 1) return 0;
  if (line > static_cast<int32_t>(lines.Starts.size())) return size;
  int32_t p = lines.Starts[static_cast<size_t>(line - 1)];
  if (!breakBefore) return p;
  if (p >= 2 && text[p - 2] == '\r' && text[p - 1] == '\n') return p - 2;
  if (p >= 1 && (text[p - 1] == '\n' || text[p - 1] == '\r')) return p - 1;
  return p;
}

std::string PieceOf(TCodeInsertObject& object) {
  std::string piece;
  if (object.LineBreakBefore) piece += kLineBreak;
  piece += object.GetText();
  if (object.LineBreakAfter) piece += kLineBreak;
  return piece;
}

// One insertion into one file, at an offset of the file's text as read. Key orders the
// insertions that share an offset: a declaration's is odd, an implementation that goes
// before it one less, one that goes after it one more.
struct TEdit {
  int32_t Offset;
  int32_t Key;
  std::string Text;
  TCodeInsertObject* Object;
  int32_t Lead = 0;  // characters of Text before the object's own text (line breaks)
};

// Places `objects` (their lines computed, in writing order) into `text`: an object goes at
// its line, or at the current point when an earlier one went further already.
std::vector<TEdit> PlaceObjects(const std::string& text,
                                const std::vector<TCodeInsertObject*>& objects) {
  const TLineTable lines(text);
  std::vector<TEdit> edits;
  int32_t at = 0;
  for (TCodeInsertObject* object : objects) {
    const int32_t target =
        InsertOffset(text, lines, object->InsertionLine, object->LineBreakBefore);
    at = std::max(at, target);
    std::string piece = PieceOf(*object);
    // At the end of a text whose last line has no line end, a piece that starts no line of
    // its own would join that line.
    if (!object->LineBreakBefore && at == static_cast<int32_t>(text.size()) && !text.empty() &&
        text.back() != '\n')
      piece.insert(0, kLineBreak);
    const auto lead = static_cast<int32_t>(piece.size() - object->GetText().size() -
                                           (object->LineBreakAfter ? kLineBreak.size() : 0));
    edits.push_back({at, 0, std::move(piece), object, lead});
  }
  return edits;
}

std::string ApplyEdits(const std::string& text, const std::vector<TEdit>& edits) {
  std::string out;
  size_t from = 0;
  for (const TEdit& e : edits) {
    out.append(text, from, static_cast<size_t>(e.Offset) - from);
    out += e.Text;
    from = static_cast<size_t>(e.Offset);
  }
  out.append(text, from, std::string::npos);
  return out;
}

std::unique_ptr<TClasslist> ParseText(TLanguage language, const std::string& fileName,
                                      const std::string& text, bool parseImplementation) {
  auto list = std::make_unique<TClasslist>();
  TParseOptions options;
  options.WantPositions = true;
  options.ParseImplementation = parseImplementation;
  ParseSourceText(language, fileName, TMemoryStream(text), *list, options, nullptr);
  return list;
}

}  // namespace

TClassNames ClassNamesOf(const TClassDescription& cls) {
  TClassNames names;
  names.Name = cls.Name;
  names.Qualified = cls.Name;
  if (IsCpp(cls.Language)) {
    for (const TCommonClassList* list = cls.OwnerList; list && list->OuterClass;
         list = list->OuterClass->OwnerList) {
      names.Qualified.insert(0, list->OuterClass->Name + "::");
    }
  }
  if (cls.Ancestors.Count() > 0) names.FirstAncestor = cls.Ancestors[0].AncestorName;
  return names;
}

// ---- TAbstractCodeGenerator ----

std::unique_ptr<TAbstractCodeGenerator> TAbstractCodeGenerator::Create(
    TCodeTextBuffers& buffers, const TVLSettings& settings, const TClassDescription& cls,
    const std::string& moduleFile) {
  if (IsCpp(LanguageOfFile(moduleFile)))
    return std::make_unique<TCPPCodeGenerator>(buffers, settings, cls, moduleFile);
  return std::make_unique<TPascalCodeGenerator>(buffers, settings, cls, moduleFile);
}

TAbstractCodeGenerator::TAbstractCodeGenerator(TCodeTextBuffers& buffers,
                                               const TVLSettings& settings,
                                               const TClassDescription& cls, std::string moduleFile,
                                               TLanguage language)
    : buffers_(buffers),
      class_(cls),
      moduleFile_(std::move(moduleFile)),
      ordered_(settings.AlphabeticCodeGen),
      parseImplementation_(settings.ParseImplementation) {
  setup_.Language = language;
  setup_.Templates = TCodeTemplates(settings);
  setup_.Names = ClassNamesOf(cls);
  setup_.RemoveTrailingSpaces = settings.CodeGenRemoveTrailingSpaces;
}

TAbstractCodeGenerator::~TAbstractCodeGenerator() = default;

void TAbstractCodeGenerator::AddField(const TFieldDescription& field) {
  declarations_.Items.push_back(std::make_unique<TFieldInsertObject>(setup_, field));
  focusObject_ = declarations_.Items.back().get();
}

void TAbstractCodeGenerator::AddProperty(const TFieldDescription& property) {
  declarations_.Items.push_back(std::make_unique<TPropertyInsertObject>(setup_, property));
  focusObject_ = declarations_.Items.back().get();
}

void TAbstractCodeGenerator::AddMethod(const TMethodDescription& method,
                                       const std::string& implementationFile,
                                       const std::string& body) {
  const bool cpp = IsCpp(Language());
  if (cpp && method.HasDirective(TDirective::ImplicitInline)) {
    declarations_.Items.push_back(
        std::make_unique<TMethodDeclInlineImplicitInsertObject>(setup_, method, body));
    focusObject_ = declarations_.Items.back().get();
  } else {
    declarations_.Items.push_back(std::make_unique<TMethodDeclInsertObject>(setup_, method));
    focusObject_ = declarations_.Items.back().get();
    if (!method.HasDirective(TDirective::Abstract)) {
      const std::string file =
          implementationFile.empty() ? ImplementationFileOf() : implementationFile;
      implementations_.Items.push_back(
          std::make_unique<TMethodImplInsertObject>(setup_, method, body, file));
      focusObject_ = implementations_.Items.back().get();
    }
  }
  if (cpp && method.HasDirective(TDirective::Message))
    declarations_.Items.push_back(std::make_unique<TMessageMapInsertObject>(setup_, method));
}

void TAbstractCodeGenerator::AddDescription(const TCodeObject& member, const std::string& text,
                                            int where) {
  const auto* method = dynamic_cast<const TMethodDescription*>(&member);
  if (where == dpDeclaration ||
      (where == dpImplementation && (!method || method->HasDirective(TDirective::Abstract) ||
                                     method->HasDirective(TDirective::ImplicitInline)))) {
    declarations_.Items.push_back(
        std::make_unique<THelpDescriptionDeclInsertObject>(setup_, member, text));
    focusObject_ = declarations_.Items.back().get();
  } else if (where == dpImplementation) {
    implementations_.Items.push_back(std::make_unique<THelpDescriptionImplInsertObject>(
        setup_, *method, text, ImplementationFileOf()));
    focusObject_ = implementations_.Items.back().get();
  } else {
    implementations_.Items.push_back(std::make_unique<THelpDescriptionPositionInsertObject>(
        setup_, member, text, where == dpFileStart, ImplementationFileOf()));
    focusObject_ = implementations_.Items.back().get();
  }
}

std::string TAbstractCodeGenerator::ImplementationFileOf() const {
  if (!IsCpp(Language()) || !IsHeaderFile(moduleFile_)) return moduleFile_;
  const size_t dot = moduleFile_.rfind('.');
  const std::string stem = moduleFile_.substr(0, dot);
  for (const char* ext : {".cpp", ".cc", ".cxx", ".c"}) {
    const std::string candidate = stem + ext;
    if (buffers_.ReadText(candidate)) return candidate;
  }
  return moduleFile_;
}

std::unique_ptr<TClasslist> TAbstractCodeGenerator::TakeParsedList() {
  parsedClass_ = nullptr;
  return std::move(parsedList_);
}

bool TAbstractCodeGenerator::Fail(std::string message) {
  error_ = std::move(message);
  succeeded_ = false;
  return false;
}

int32_t TAbstractCodeGenerator::Generate() {
  succeeded_ = false;
  error_.clear();
  focusFile_.clear();
  focusLine_ = -1;
  parsedList_.reset();
  parsedClass_ = nullptr;

  const std::optional<std::string> moduleText = buffers_.ReadText(moduleFile_);
  if (!moduleText) return Fail("Cannot read \"" + moduleFile_ + "\"."), -1;
  // A Pascal unit is parsed as the project's model is (the implementation part only when
  // the settings ask for it), and once more through to its end when the class is declared
  // in the implementation part.
  bool parseImplementation = parseImplementation_;
  std::unique_ptr<TClasslist> before =
      ParseText(Language(), moduleFile_, *moduleText, parseImplementation);
  TClassDescription* cls = FindClass(*before);
  if (!cls && !parseImplementation && !IsCpp(Language())) {
    parseImplementation = true;
    before = ParseText(Language(), moduleFile_, *moduleText, parseImplementation);
    cls = FindClass(*before);
  }
  if (!cls || cls->EndLine < 0)
    return Fail("Class \"" + class_.Name + "\" was not found in \"" + moduleFile_ + "\"."), -1;

  // Declarations: lines, order, and a new section for those whose section is missing.
  TInsertionContext context{cls, before.get(), &*moduleText, ordered_};
  std::vector<TCodeInsertObject*> declared;
  for (auto& object : declarations_.Items) {
    object->CalcInsertionLine(context);
    declared.push_back(object.get());
  }
  std::stable_sort(declared.begin(), declared.end(), [](auto* a, auto* b) {
    if (a->InsertionLine != b->InsertionLine) return a->InsertionLine < b->InsertionLine;
    const int ra = Rank(a->OrderVisibility()), rb = Rank(b->OrderVisibility());
    if (ra != rb) return ra < rb;
    return a->OrderClass > b->OrderClass;
  });
  std::vector<std::unique_ptr<TCodeInsertObject>> sections;
  std::vector<TCodeInsertObject*> written;
  bool opened = false;
  TVisibility previous = TVisibility::Public;
  for (TCodeInsertObject* object : declared) {
    if (object->InsertionLine == kNoPlace) {
      if (!opened || object->OrderVisibility() != previous) {
        sections.push_back(
            std::make_unique<TVisibilityInsertObject>(setup_, object->OrderVisibility()));
        sections.back()->InsertionLine = cls->EndLine;
        written.push_back(sections.back().get());
      }
      object->InsertionLine = cls->EndLine;
      previous = object->OrderVisibility();
      opened = true;
    }
    written.push_back(object);
  }
  std::vector<TEdit> moduleEdits = PlaceObjects(*moduleText, written);
  for (size_t i = 0; i < moduleEdits.size(); ++i)
    moduleEdits[i].Key = static_cast<int32_t>(2 * i + 1);

  // Implementations, file by file; a file that is the module itself is searched in its
  // text with the declarations already in.
  std::vector<TCodeInsertObject*> implemented;
  for (auto& object : implementations_.Items) implemented.push_back(object.get());
  std::stable_sort(implemented.begin(), implemented.end(), [](auto* a, auto* b) {
    const int c = CompareText(a->TargetFile(), b->TargetFile());
    if (c != 0) return c < 0;
    return a->OrderClass > b->OrderClass;
  });
  std::map<std::string, std::vector<TEdit>> fileEdits;
  std::map<std::string, std::string> originals;  // the files other than the module, as read
  std::string moduleAfterDeclarations;
  bool haveModuleAfter = false;
  for (size_t first = 0; first < implemented.size();) {
    const std::string file = implemented[first]->TargetFile();
    size_t end = first;
    while (end < implemented.size() && CompareText(implemented[end]->TargetFile(), file) == 0)
      ++end;
    const std::vector<TCodeInsertObject*> group(implemented.begin() + first,
                                                implemented.begin() + end);
    first = end;
    const bool isModule = CompareText(file, moduleFile_) == 0;
    const std::string* textOf = nullptr;
    if (isModule) {
      if (!haveModuleAfter) {
        moduleAfterDeclarations = ApplyEdits(*moduleText, moduleEdits);
        haveModuleAfter = true;
      }
      textOf = &moduleAfterDeclarations;
    } else {
      std::optional<std::string> read = buffers_.ReadText(file);
      if (!read) return Fail("Cannot read \"" + file + "\"."), -1;
      textOf = &(originals[file] = std::move(*read));
    }
    const std::string& text = *textOf;
    TInsertionContext fileContext{cls, before.get(), &text, ordered_};
    for (TCodeInsertObject* object : group) object->CalcInsertionLine(fileContext);
    std::vector<TEdit> edits = PlaceObjects(text, group);
    if (!isModule) {
      for (TEdit& e : edits) fileEdits[file].push_back(std::move(e));
      continue;
    }
    // Back from the text with the declarations in to the text as read.
    for (TEdit& e : edits) {
      int32_t shift = 0;
      int32_t key = static_cast<int32_t>(2 * moduleEdits.size());
      int32_t offset = -1;
      for (size_t i = 0; i < moduleEdits.size(); ++i) {
        const TEdit& d = moduleEdits[i];
        const int32_t start = d.Offset + shift;
        const auto length = static_cast<int32_t>(d.Text.size());
        if (e.Offset <= start) {
          offset = e.Offset - shift;
          key = static_cast<int32_t>(2 * i);
          break;
        }
        if (e.Offset < start + length) {
          offset = d.Offset;
          key = static_cast<int32_t>(2 * i + 2);
          break;
        }
        shift += length;
      }
      if (offset < 0) offset = e.Offset - shift;
      e.Offset = offset;
      e.Key = key;
      fileEdits[moduleFile_].push_back(std::move(e));
    }
  }
  for (TEdit& e : moduleEdits) fileEdits[moduleFile_].push_back(std::move(e));

  // The final texts, and the focus in them.
  std::map<std::string, std::string> finals;
  int32_t focusOffset = -1;
  for (auto& [file, edits] : fileEdits) {
    std::stable_sort(edits.begin(), edits.end(), [](const TEdit& a, const TEdit& b) {
      return a.Offset != b.Offset ? a.Offset < b.Offset : a.Key < b.Key;
    });
    int32_t added = 0;
    for (const TEdit& e : edits) {
      if (e.Object == focusObject_ && focusObject_) {
        focusFile_ = file;
        focusOffset = e.Offset + added + e.Lead;
      }
      added += static_cast<int32_t>(e.Text.size());
    }
    finals[file] = ApplyEdits(file == moduleFile_ ? *moduleText : originals[file], edits);
  }

  // Every writer first, so a file that cannot be changed stops the generation before
  // anything was written.
  {
    std::vector<std::unique_ptr<TCodeTextWriter>> writers;
    for (const auto& [file, edits] : fileEdits) {
      if (edits.empty()) continue;
      writers.push_back(buffers_.OpenWriter(file));
      if (!writers.back()) return Fail("Cannot change \"" + file + "\"."), -1;
    }
    size_t w = 0;
    bool allWritten = true;
    for (const auto& [file, edits] : fileEdits) {
      if (edits.empty()) continue;
      for (const TEdit& e : edits) allWritten = writers[w]->Insert(e.Offset, e.Text) && allWritten;
      ++w;
    }
    if (!allWritten) Fail("Not every piece of code could be written.");
  }
  if (!error_.empty()) return -1;

  auto module = finals.find(moduleFile_);
  const std::string& moduleAfter = module == finals.end() ? *moduleText : module->second;
  parsedList_ = ParseText(Language(), moduleFile_, moduleAfter, parseImplementation);
  parsedClass_ = FindClass(*parsedList_);
  succeeded_ = true;
  if (focusOffset < 0) return -1;
  focusLine_ = TLineTable(finals[focusFile_]).LineOf(focusOffset);
  buffers_.SetFocus(focusFile_, focusLine_, focusOffset);
  return focusOffset;
}

// ---- the two languages ----

TPascalCodeGenerator::TPascalCodeGenerator(TCodeTextBuffers& buffers, const TVLSettings& settings,
                                           const TClassDescription& cls, std::string moduleFile)
    : TAbstractCodeGenerator(buffers, settings, cls, std::move(moduleFile), TLanguage::Pascal) {}

TClassDescription* TPascalCodeGenerator::FindClass(TClasslist& list) const {
  if (TClassDescription* found = list.Find(Class().Name)) return found;
  for (int i = 0; i < list.Count(); ++i)
    if (SameText(list.Items(i)->Name, Class().Name)) return list.Items(i);
  return nullptr;
}

TCPPCodeGenerator::TCPPCodeGenerator(TCodeTextBuffers& buffers, const TVLSettings& settings,
                                     const TClassDescription& cls, std::string moduleFile)
    : TAbstractCodeGenerator(buffers, settings, cls, std::move(moduleFile), TLanguage::Cpp) {}

TClassDescription* TCPPCodeGenerator::FindClass(TClasslist& list) const {
  std::vector<std::string> chain{Class().Name};
  for (const TCommonClassList* owner = Class().OwnerList; owner && owner->OuterClass;
       owner = owner->OuterClass->OwnerList) {
    chain.insert(chain.begin(), owner->OuterClass->Name);
  }
  const TCommonClassList* scope = &list;
  TClassDescription* found = nullptr;
  for (const std::string& name : chain) {
    if (!scope) return nullptr;
    found = scope->Find(name);
    if (!found) return nullptr;
    scope = found->NestedClassesIfAny();
  }
  return found;
}

}  // namespace velmora
