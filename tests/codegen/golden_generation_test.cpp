// Golden before/after pairs for every path of the code generators. Each folder under
// golden/ holds the sources before (before.h, before.cpp, before.pas), the same after
// (after.*, with "@^" where the editor's focus lands) and request.txt: the members to add,
// one block each ([field], [method], [property]) with the controls of the add-member
// dialog as "key = value" lines, all put through one generator. Global lines before the
// first block: "class = Name" (Outer::Inner for a nested class), "module = before.h" when
// it is not the only header or unit, "ordered = true" for ordered insertion. A "file"
// names a file of the folder.
//
// VELMORA_UPDATE_GOLDEN=1 rewrites the after files from what the generator wrote.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "codegen/add_member_requests.h"
#include "codegen/code_generator.h"
#include "codegen/code_text_buffers.h"
#include "model/class_list.h"
#include "parsing/source_parser.h"
#include "settings/vl_settings.h"
#include "support/ansi.h"
#include "support/stream.h"
#include "support/text_buffer.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kCursor = "@^";

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

std::string ToLf(std::string_view text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i)
    if (!(text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n')) out += text[i];
  return out;
}

struct TBlock {
  std::string Kind;  // field, method or property
  std::map<std::string, std::string> Values;
};

struct TRequestFile {
  std::map<std::string, std::string> Globals;
  std::vector<TBlock> Blocks;
};

TRequestFile ReadRequest(const fs::path& path) {
  TRequestFile file;
  std::istringstream in(ReadFile(path));
  std::string line;
  while (std::getline(in, line)) {
    const std::string_view l = Trim(line);
    if (l.empty() || l[0] == '#') continue;
    if (l.front() == '[' && l.back() == ']') {
      file.Blocks.push_back({std::string(l.substr(1, l.size() - 2)), {}});
      continue;
    }
    const size_t eq = l.find('=');
    if (eq == std::string_view::npos) continue;
    std::string key(Trim(l.substr(0, eq)));
    std::string value(Trim(l.substr(eq + 1)));
    // A value may keep blanks at its ends between double quotes.
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
      value = value.substr(1, value.size() - 2);
    (file.Blocks.empty() ? file.Globals : file.Blocks.back().Values)[key] = value;
  }
  return file;
}

bool Flag(const std::map<std::string, std::string>& v, const std::string& key) {
  auto it = v.find(key);
  return it != v.end() && (it->second == "true" || it->second == "1");
}

std::string Text(const std::map<std::string, std::string>& v, const std::string& key) {
  auto it = v.find(key);
  return it == v.end() ? std::string() : it->second;
}

TVisibility VisibilityOf(const std::string& word) {
  if (word == "private") return TVisibility::Private;
  if (word == "protected") return TVisibility::Protected;
  if (word == "published") return TVisibility::Published;
  return TVisibility::Public;
}

TMethodKind KindOf(const std::string& word) {
  if (word == "function") return TMethodKind::Function;
  if (word == "constructor") return TMethodKind::Constructor;
  if (word == "destructor") return TMethodKind::Destructor;
  return TMethodKind::Procedure;
}

TClassDescription* FindClassPath(TCommonClassList& list, std::string_view path) {
  const size_t sep = path.find("::");
  TClassDescription* cls = list.Find(path.substr(0, sep));
  if (!cls || sep == std::string_view::npos) return cls;
  TCommonClassList* nested = cls->NestedClassesIfAny();
  return nested ? FindClassPath(*nested, path.substr(sep + 2)) : nullptr;
}

// The names each block adds to the class.
std::vector<std::string> AddedNames(const TBlock& b) {
  const auto& v = b.Values;
  if (b.Kind != "property") return {Text(v, "name")};
  TAddPropertyRequest r;
  r.CreateField = Flag(v, "create_field");
  r.CreateGet = Flag(v, "create_get");
  r.CreateSet = Flag(v, "create_set");
  r.Name = Text(v, "name");
  r.NameChanged();
  if (!Text(v, "reads").empty()) r.Reads = Text(v, "reads");
  if (!Text(v, "writes").empty()) r.Writes = Text(v, "writes");
  if (!Text(v, "field").empty()) r.FieldName = Text(v, "field");
  std::vector<std::string> names{r.Name};
  if (r.CreateField) names.push_back(r.FieldName);
  if (Flag(v, "create_get")) names.push_back(r.GetterName());
  if (Flag(v, "create_set")) names.push_back(r.SetterName());
  return names;
}

void StageBlock(const TBlock& b, const fs::path& dir, const TClassDescription& cls,
                const TVLSettings& settings, TAbstractCodeGenerator& generator,
                TStagedMembers& staged) {
  const auto& v = b.Values;
  const TVisibility visibility = VisibilityOf(Text(v, "visibility"));
  if (b.Kind == "field") {
    TAddFieldRequest r{
        .FieldName = Text(v, "name"), .Type = Text(v, "type"), .Visibility = visibility};
    ASSERT_FALSE(r.Check(cls)) << r.Check(cls)->Text;
    r.Stage(cls, generator, staged);
  } else if (b.Kind == "method") {
    TAddMethodRequest r;
    r.MethodName = Text(v, "name");
    r.Arguments = Text(v, "args");
    r.Kind = KindOf(Text(v, "kind"));
    r.ResultType = Text(v, "result");
    r.ResultSuffix = Text(v, "suffix");
    r.Visibility = visibility;
    r.Abstract = Flag(v, "abstract");
    r.Virtual = Flag(v, "virtual");
    r.Override = Flag(v, "override");
    r.Dynamic = Flag(v, "dynamic");
    r.ClassMethod = Flag(v, "class_method");
    r.Const = Flag(v, "const");
    r.FastCall = Flag(v, "fastcall");
    r.MessageHandler = !Text(v, "message").empty();
    r.MessageId = Text(v, "message");
    if (!Text(v, "file").empty()) r.ImplementationFile = (dir / Text(v, "file")).string();
    r.CallInherited = Flag(v, "inherited");
    r.Inline = Flag(v, "inline");
    r.ImplicitInline = Flag(v, "implicit_inline");
    r.Body = Text(v, "body");
    ASSERT_FALSE(r.Check(cls)) << r.Check(cls)->Text;
    r.Stage(cls, settings, generator, staged);
  } else {
    ASSERT_EQ(b.Kind, "property");
    TAddPropertyRequest r;
    r.CreateField = Flag(v, "create_field");
    r.CreateGet = Flag(v, "create_get");
    r.CreateSet = Flag(v, "create_set");
    r.Name = Text(v, "name");
    r.NameChanged();
    if (!Text(v, "reads").empty()) r.Reads = Text(v, "reads");
    if (!Text(v, "writes").empty()) r.Writes = Text(v, "writes");
    if (!Text(v, "field").empty()) r.FieldName = Text(v, "field");
    r.Type = Text(v, "type");
    r.Array = Text(v, "array");
    r.Index = Text(v, "index");
    r.Stored = Text(v, "stored");
    r.Default = Text(v, "default");
    r.UseFieldForGet = Flag(v, "field_for_get");
    r.UseFieldForSet = Flag(v, "field_for_set");
    r.ImplementGetUsingMember = !Text(v, "get_member").empty();
    r.GetMember = Text(v, "get_member");
    r.ImplementSetUsingMember = !Text(v, "set_member").empty();
    r.SetMember = Text(v, "set_member");
    if (!Text(v, "file").empty()) r.ImplementIn = (dir / Text(v, "file")).string();
    r.Visibility = visibility;
    ASSERT_FALSE(r.Check(cls)) << r.Check(cls)->Text;
    r.Stage(cls, settings, generator, staged);
  }
}

void RunCase(const fs::path& dir) {
  SCOPED_TRACE(dir.filename().string());
  const TRequestFile request = ReadRequest(dir / "request.txt");
  TMemoryCodeBuffers buffers;
  std::vector<fs::path> befores;
  std::string module;
  for (const auto& entry : fs::directory_iterator(dir)) {
    const std::string name = entry.path().filename().string();
    if (name.rfind("before.", 0) != 0) continue;
    befores.push_back(entry.path());
    buffers.Set(entry.path().string(), ToBufferForm(ReadFile(entry.path())));
    const std::string ext = entry.path().extension().string();
    if (ext == ".h" || ext == ".pas" || (ext == ".cpp" && module.empty()))
      if (module.empty() || ext != ".cpp") module = entry.path().string();
  }
  if (!Text(request.Globals, "module").empty())
    module = (dir / Text(request.Globals, "module")).string();
  ASSERT_FALSE(module.empty());

  // The model: the module parsed as a project would have it.
  TClasslist model;
  TParseOptions options;
  options.ParseImplementation = true;
  ParseSourceText(LanguageOfFile(module), module, TMemoryStream(*buffers.Text(module)), model,
                  options, nullptr);
  TClassDescription* cls = FindClassPath(model, Text(request.Globals, "class"));
  ASSERT_NE(cls, nullptr);

  TVLSettings settings;
  settings.AlphabeticCodeGen = Flag(request.Globals, "ordered");
  auto generator = TAbstractCodeGenerator::Create(buffers, settings, *cls, module);
  TStagedMembers staged;
  for (const TBlock& b : request.Blocks) {
    StageBlock(b, dir, *cls, settings, *generator, staged);
    if (testing::Test::HasFatalFailure()) return;
  }
  const TAddMemberOutcome outcome = GenerateStaged(*cls, *generator, staged);
  ASSERT_TRUE(outcome.Ok) << (outcome.Message ? outcome.Message->Text : "");

  const bool update = std::getenv("VELMORA_UPDATE_GOLDEN") != nullptr;
  for (const fs::path& before : befores) {
    const std::string file = before.string();
    std::string got = *buffers.Text(file);
    if (file == outcome.FocusFile && outcome.FocusOffset >= 0)
      got.insert(static_cast<size_t>(outcome.FocusOffset), kCursor);
    got = ToLf(got);
    const fs::path after = dir / ("after" + before.extension().string());
    if (update) {
      std::ofstream(after, std::ios::binary) << got;
      continue;
    }
    EXPECT_EQ(got, ReadFile(after)) << after;
  }

  // The changed module still parses, and every new member is in the class it gives.
  ASSERT_TRUE(outcome.Parsed);
  TClassDescription* parsed = FindClassPath(*outcome.Parsed, Text(request.Globals, "class"));
  ASSERT_NE(parsed, nullptr);
  for (const TBlock& b : request.Blocks) {
    for (const std::string& name : AddedNames(b)) {
      const bool inParse = parsed->Fields.Find(name) || parsed->Methods.Find(name);
      EXPECT_TRUE(inParse) << name << " not in the re-parsed class";
      EXPECT_TRUE(cls->Fields.Find(name) || cls->Methods.Find(name))
          << name << " not added to the model's class";
    }
  }
}

TEST(GoldenGenerationTest, EveryCase) {
  const fs::path root = fs::path(VELMORA_TEST_DATA) / "codegen" / "golden";
  std::vector<fs::path> dirs;
  for (const auto& entry : fs::directory_iterator(root))
    if (entry.is_directory()) dirs.push_back(entry.path());
  std::sort(dirs.begin(), dirs.end());
  ASSERT_FALSE(dirs.empty());
  for (const fs::path& dir : dirs) RunCase(dir);
}

}  // namespace
}  // namespace velmora
