#include "hosts/lsp/code_actions.h"

#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <sstream>
#include <utility>
#include <vector>

#include "codegen/add_member_requests.h"
#include "codegen/code_markers.h"
#include "codegen/code_text_buffers.h"
#include "hosts/lsp/dispatcher.h"
#include "model/class_list.h"
#include "parsing/source_parser.h"
#include "settings/vl_settings.h"
#include "support/text_buffer.h"

namespace velmora::lsp {
namespace {

using TInserts = std::vector<std::pair<int32_t, std::string>>;

// Hands every insertion on to the memory buffer and keeps a note of it: the notes, with
// offsets into the text as it was, are the TextEdits.
class TRecordingWriter : public TCodeTextWriter {
 public:
  TRecordingWriter(std::unique_ptr<TCodeTextWriter> inner, TInserts& notes)
      : inner_(std::move(inner)), notes_(notes) {}
  bool Insert(int32_t offset, const std::string& text) override {
    if (!inner_->Insert(offset, text)) return false;
    notes_.emplace_back(offset, text);
    return true;
  }

 private:
  std::unique_ptr<TCodeTextWriter> inner_;
  TInserts& notes_;
};

// The generator's buffers: an open document's text first, else the file on disk, all in
// memory.
class TEditBuffers : public TCodeTextBuffers {
 public:
  explicit TEditBuffers(const TDocumentStore& documents) : documents_(documents) {}

  std::optional<std::string> ReadText(const std::string& fileName) override {
    if (!memory_.Text(fileName))
      if (const TDocument* doc = documents_.FindByPath(fileName))
        memory_.Set(fileName, doc->Buffer()->Text);
    return memory_.ReadText(fileName);
  }
  std::unique_ptr<TCodeTextWriter> OpenWriter(const std::string& fileName) override {
    if (!ReadText(fileName)) return nullptr;
    // The notes of one file refer to the text before its first writer; a second writer
    // would count from a changed text, so the generation is refused instead.
    if (inserts_.count(fileName)) return nullptr;
    std::unique_ptr<TCodeTextWriter> inner = memory_.OpenWriter(fileName);
    if (!inner) return nullptr;
    return std::make_unique<TRecordingWriter>(std::move(inner), inserts_[fileName]);
  }
  void SetFocus(const std::string& fileName, int32_t line, int32_t offset) override {
    memory_.SetFocus(fileName, line, offset);
  }

  const std::map<std::string, TInserts>& Inserts() const { return inserts_; }
  const std::string* Original(const std::string& fileName) const {
    return memory_.Original(fileName);
  }

 private:
  const TDocumentStore& documents_;
  TMemoryCodeBuffers memory_;
  std::map<std::string, TInserts> inserts_;
};

std::string ReadRaw(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

// {"changes": {uri: [TextEdit...]}}: each insertion at its place in the text as the client
// holds it, in that text's line-end style.
json WorkspaceEditOf(const TEditBuffers& buffers, const TDocumentStore& documents,
                     TPositionEncoding encoding) {
  json changes = json::object();
  for (const auto& [file, inserts] : buffers.Inserts()) {
    const std::string* original = buffers.Original(file);
    if (!original || inserts.empty()) continue;
    const TDocument* doc = documents.FindByPath(file);
    const TLineEndStyle style = DetectLineEndStyle(doc ? doc->Text : ReadRaw(file));
    const TLineIndex lines(*original);
    json edits = json::array();
    for (const auto& [offset, text] : inserts) {
      const TLspPosition at = lines.ToLsp(offset, encoding);
      const json position = {{"line", at.Line}, {"character", at.Character}};
      edits.push_back({{"range", {{"start", position}, {"end", position}}},
                       {"newText", FromBufferForm(text, style)}});
    }
    changes[doc ? doc->Uri : UriFromPath(file)] = std::move(edits);
  }
  return {{"changes", std::move(changes)}};
}

// The classes of a list at any depth, each with its name qualified by its outer classes
// ("Outer::Inner").
void ForEachClass(TCommonClassList& list, const std::string& prefix,
                  const std::function<void(TClassDescription&, const std::string&)>& f) {
  for (int i = 0; i < list.Count(); ++i) {
    TClassDescription* cls = list.Items(i);
    const std::string name = prefix.empty() ? cls->Name : prefix + "::" + cls->Name;
    f(*cls, name);
    if (TCommonClassList* nested = cls->NestedClassesIfAny()) ForEachClass(*nested, name, f);
  }
}

bool SameClassName(const std::string& a, const std::string& b, TLanguage language) {
  return language == TLanguage::Pascal ? FoldName(a) == FoldName(b) : a == b;
}

// ---- arguments ----

[[noreturn]] void BadArgument(const std::string& text) {
  throw TLspError(kInvalidParams, text);
}

std::string Text(const json& args, const char* key, std::string fallback = {}) {
  const auto it = args.find(key);
  if (it == args.end() || it->is_null()) return fallback;
  if (!it->is_string()) BadArgument(std::string(key) + " must be a string");
  return it->get<std::string>();
}

bool Flag(const json& args, const char* key) {
  const auto it = args.find(key);
  if (it == args.end() || it->is_null()) return false;
  if (!it->is_boolean()) BadArgument(std::string(key) + " must be true or false");
  return it->get<bool>();
}

constexpr const char* kVisibilityNames[] = {"public", "private", "protected", "published",
                                            "automated"};
constexpr const char* kKindNames[] = {"procedure", "function", "constructor", "destructor",
                                      "operator"};

// A word of `names` (any case) or its index.
template <std::size_t N>
int Choice(const json& args, const char* key, const char* const (&names)[N], int fallback) {
  const auto it = args.find(key);
  if (it == args.end() || it->is_null()) return fallback;
  if (it->is_number_integer()) {
    const int64_t n = it->get<int64_t>();
    if (n >= 0 && n < static_cast<int64_t>(N)) return static_cast<int>(n);
  } else if (it->is_string()) {
    const std::string word = FoldName(it->get<std::string>());
    for (std::size_t i = 0; i < N; ++i)
      if (word == names[i]) return static_cast<int>(i);
  }
  std::string all;
  for (const char* name : names) all += (all.empty() ? "" : ", ") + std::string(name);
  BadArgument(std::string(key) + " takes one of " + all);
}

TVisibility VisibilityOf(const json& args, TVisibility fallback) {
  return static_cast<TVisibility>(
      Choice(args, "Visibility", kVisibilityNames, static_cast<int>(fallback)));
}

TAddFieldRequest FieldRequest(const json& a) {
  TAddFieldRequest r;
  r.FieldName = Text(a, "FieldName");
  r.Type = Text(a, "Type");
  r.Visibility = VisibilityOf(a, r.Visibility);
  r.CheckSyntax = Flag(a, "CheckSyntax");
  return r;
}

TAddMethodRequest MethodRequest(const json& a) {
  TAddMethodRequest r;
  r.MethodName = Text(a, "MethodName");
  r.Arguments = Text(a, "Arguments");
  r.Kind = static_cast<TMethodKind>(Choice(a, "Kind", kKindNames, static_cast<int>(r.Kind)));
  r.ResultType = Text(a, "ResultType");
  r.ResultSuffix = Text(a, "ResultSuffix");
  r.Visibility = VisibilityOf(a, r.Visibility);
  r.Abstract = Flag(a, "Abstract");
  r.Virtual = Flag(a, "Virtual");
  r.Dynamic = Flag(a, "Dynamic");
  r.Override = Flag(a, "Override");
  r.ClassMethod = Flag(a, "ClassMethod");
  r.Const = Flag(a, "Const");
  r.FastCall = Flag(a, "FastCall");
  r.MessageHandler = Flag(a, "MessageHandler");
  r.MessageId = Text(a, "MessageId");
  r.ImplementationFile = Text(a, "ImplementationFile");
  if (r.ImplementationFile.starts_with("file:"))
    r.ImplementationFile = PathFromUri(r.ImplementationFile);
  r.CallInherited = Flag(a, "CallInherited");
  r.Inline = Flag(a, "Inline");
  r.ImplicitInline = Flag(a, "ImplicitInline");
  r.CheckSyntax = Flag(a, "CheckSyntax");
  r.Body = Text(a, "Body");
  return r;
}

TAddPropertyRequest PropertyRequest(const json& a) {
  TAddPropertyRequest r;
  r.Name = Text(a, "Name");
  r.Type = Text(a, "Type");
  r.Reads = Text(a, "Reads");
  r.Writes = Text(a, "Writes");
  r.CreateGet = Flag(a, "CreateGet");
  r.CreateSet = Flag(a, "CreateSet");
  r.Array = Text(a, "Array");
  r.Index = Text(a, "Index");
  r.Stored = Text(a, "Stored");
  r.Default = Text(a, "Default");
  r.CreateField = Flag(a, "CreateField");
  r.FieldName = Text(a, "FieldName");
  r.UseFieldForGet = Flag(a, "UseFieldForGet");
  r.UseFieldForSet = Flag(a, "UseFieldForSet");
  r.ImplementGetUsingMember = Flag(a, "ImplementGetUsingMember");
  r.GetMember = Text(a, "GetMember");
  r.ImplementSetUsingMember = Flag(a, "ImplementSetUsingMember");
  r.SetMember = Text(a, "SetMember");
  r.ImplementIn = Text(a, "ImplementIn");
  if (r.ImplementIn.starts_with("file:")) r.ImplementIn = PathFromUri(r.ImplementIn);
  r.Visibility = VisibilityOf(a, r.Visibility);
  r.CheckSyntax = Flag(a, "CheckSyntax");
  return r;
}

std::string PathArgument(const json& args) {
  const std::string uri = Text(args, "uri");
  const std::string path = PathFromUri(uri);
  if (path.empty()) BadArgument("uri must name a local file");
  return path;
}

std::optional<std::string> DocumentOrDisk(const TDocumentStore& documents,
                                          const std::string& path) {
  if (const TDocument* doc = documents.FindByPath(path)) return doc->Text;
  return std::nullopt;
}

json AddMemberEdit(const TEditContext& context, std::string_view command, const json& args) {
  const std::string path = PathArgument(args);
  const std::string className = Text(args, "Class");
  if (className.empty()) BadArgument("Class must name the class to add to");
  // A parse of its own: the request adds its records to the class, and the model's class
  // must not get them before the client has applied the edit.
  TParsedFile parsed = ParseFileForModel(path, DocumentOrDisk(context.Documents, path), 0);
  if (!parsed.Ok || !parsed.Classes) BadArgument("cannot read " + path);
  TClassDescription* target = nullptr;
  ForEachClass(*parsed.Classes, "", [&](TClassDescription& cls, const std::string& name) {
    if (!target && SameClassName(name, className, cls.Language)) target = &cls;
  });
  if (!target) BadArgument("no class '" + className + "' in " + path);

  TEditBuffers buffers(context.Documents);
  const TAddMemberTarget where{target, &context.Settings, &buffers, path};
  TAddMemberOutcome outcome;
  if (command == kAddFieldCommand)
    outcome = FieldRequest(args).Apply(where);
  else if (command == kAddMethodCommand)
    outcome = MethodRequest(args).Apply(where);
  else
    outcome = PropertyRequest(args).Apply(where);
  if (!outcome.Ok) {
    if (!outcome.Message) throw TLspError(kRequestFailed, "the code could not be generated");
    // The dialog's message, word for word: a check that refused the request's fields, or
    // the generator's reason. Either way the fields are what the user has to change.
    throw TLspError(kInvalidParams, outcome.Message->Text);
  }
  return WorkspaceEditOf(buffers, context.Documents, context.Encoding);
}

json InsertMarkerEdit(const TEditContext& context, const json& args) {
  const std::string path = PathArgument(args);
  const int kind =
      static_cast<int>(args.value("Kind", json(1)).is_number_integer() ? args.value("Kind", 1) : 0);
  const std::string argument = Text(args, "Argument");
  if (kind < mkInsertEnd || kind > mkDescBegin)
    BadArgument(
        "Kind takes 1 (global insert end), 2 (class implementation end), 3 (method "
        "implementation begin) or 4 (help description)");
  if (MarkerHasArgument(kind) && argument.empty()) BadArgument("this marker needs an Argument");
  const auto line = args.find("Line");
  if (line == args.end() || !line->is_number_integer() || line->get<int64_t>() < 0)
    BadArgument("Line must be a line number from 0");

  TEditBuffers buffers(context.Documents);
  const std::optional<std::string> text = buffers.ReadText(path);
  if (!text) BadArgument("cannot read " + path);
  // The marker goes on a line of its own before the given line (after the last line when
  // it lies past the end).
  const TLineIndex lines(*text);
  const int at = static_cast<int>(std::min<int64_t>(line->get<int64_t>(), lines.LineCount()));
  int64_t offset = at < lines.LineCount() ? lines.LineStart(at) : std::ssize(*text);
  std::string insert = MarkerLines(context.Settings, path, kind, argument);
  if (offset == std::ssize(*text) && !text->empty() && !text->ends_with("\r\n"))
    insert = "\r\n" + insert;
  std::unique_ptr<TCodeTextWriter> writer = buffers.OpenWriter(path);
  if (!writer || !writer->Insert(static_cast<int32_t>(offset), insert))
    throw TLspError(kRequestFailed, "cannot change " + path);
  writer.reset();
  return WorkspaceEditOf(buffers, context.Documents, context.Encoding);
}

json Action(std::string title, std::string_view command, json arguments) {
  return {{"title", std::move(title)},
          {"kind", "refactor"},
          {"data", {{"command", command}, {"arguments", std::move(arguments)}}}};
}

}  // namespace

std::string MarkerLines(const TVLSettings& settings, const std::string& path, int kind,
                        std::string_view argument) {
  const TLanguage language = LanguageOfFile(path);
  const int style = MarkerStyleForSetting(language, language == TLanguage::Pascal
                                                        ? settings.PascalMarkerCommentType
                                                        : settings.CPPCodeGenMarkerCommentType);
  const std::string marker = MarkerText(kind, style, argument);
  if (marker.empty()) return {};
  if (kind == mkDescBegin) return marker + "\r\n" + MarkerText(mkDescEnd, style) + "\r\n";
  return marker + "\r\n";
}

json CodeActions(TModelView view, const std::string& path, int64_t offset) {
  json actions = json::array();
  const std::string* text = view.Texts.Text(path);
  if (!text) return actions;
  const std::string uri = UriFromPath(path);
  const TLineIndex lines(*text);
  if (const TFileModel* file = view.Model.File(path); file && file->Classes) {
    // The innermost class whose declaration holds the offset: nested classes come after
    // their outer class in the walk.
    TClassDescription* at = nullptr;
    std::string atName;
    ForEachClass(*file->Classes, "", [&](TClassDescription& cls, const std::string& name) {
      // From the start of the head's line: a C++ class starts at its name, and the cursor
      // on "class" belongs to it too.
      if (cls.StartOffset < 0) return;
      const int64_t from = lines.LineStart(lines.LineOf(cls.StartOffset));
      if (from <= offset && offset <= cls.EndOffset) {
        at = &cls;
        atName = name;
      }
    });
    if (at) {
      const bool pascal = at->Language == TLanguage::Pascal;
      const std::string type = pascal ? "Integer" : "int";
      const json target = {{"uri", uri}, {"Class", atName}};
      json field = target;
      field.update({{"FieldName", "FNewField"}, {"Type", type}, {"Visibility", "private"}});
      json method = target;
      method.update({{"MethodName", "NewMethod"}, {"Kind", "procedure"}, {"Visibility", "public"}});
      TAddPropertyRequest property;
      property.Name = "NewProperty";
      property.CreateField = true;
      property.NameChanged();
      // Read and written through its new field: the plainest property that compiles.
      property.Reads = property.Writes = property.FieldName;
      json prop = target;
      prop.update({{"Name", property.Name},
                   {"Type", type},
                   {"Reads", property.Reads},
                   {"Writes", property.Writes},
                   {"CreateField", true},
                   {"FieldName", property.FieldName},
                   {"Visibility", pascal ? "published" : "public"}});
      actions.push_back(Action("Add field…", kAddFieldCommand, std::move(field)));
      actions.push_back(Action("Add method…", kAddMethodCommand, std::move(method)));
      actions.push_back(Action("Add property…", kAddPropertyCommand, std::move(prop)));
    }
  }
  actions.push_back(Action("Insert code marker", kInsertMarkerCommand,
                           {{"uri", uri}, {"Kind", mkInsertEnd}, {"Line", lines.LineOf(offset)}}));
  return actions;
}

json CommandEdit(const TEditContext& context, std::string_view command, const json& arguments) {
  if (!arguments.is_object()) BadArgument("the arguments must be one object");
  if (command == kInsertMarkerCommand) return InsertMarkerEdit(context, arguments);
  if (command == kAddFieldCommand || command == kAddMethodCommand || command == kAddPropertyCommand)
    return AddMemberEdit(context, command, arguments);
  BadArgument("unknown command " + std::string(command));
}

}  // namespace velmora::lsp
