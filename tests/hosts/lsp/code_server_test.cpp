// The requests that read the code model, over the example project, through the server
// object: every parse inline, so each request sees the whole model.
#include "hosts/lsp/code_server.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace velmora::lsp {
namespace {

namespace fs = std::filesystem;

const fs::path kRoot = fs::path(VELMORA_SOURCE_DIR) / "examples/KilnLog";

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

json Req(const char* method, json params) {
  static int id = 0;
  return {{"jsonrpc", "2.0"}, {"id", ++id}, {"method", method}, {"params", std::move(params)}};
}
json Note(const char* method, json params = json::object()) {
  return {{"jsonrpc", "2.0"}, {"method", method}, {"params", std::move(params)}};
}
json At(const fs::path& file, int line, int character) {
  return {{"textDocument", {{"uri", UriFromPath(file.string())}}},
          {"position", {{"line", line}, {"character", character}}}};
}

// A server initialized on `root` with the messages handled one by one, no loop.
struct Client {
  std::string written;
  TFrameWriter writer{[this](std::string_view bytes) {
    written.append(bytes);
    return true;
  }};
  TServerOptions options;
  TLspServer server{options, writer};
  TCodeServer code;

  explicit Client(const fs::path& root, bool hierarchical = true, std::string project = "")
      : options{.Project = std::move(project)},
        code{server, options, TCodeServerOptions{.Driver = {}, .Inline = true}} {
    json caps = {{"textDocument",
                  {{"documentSymbol", {{"hierarchicalDocumentSymbolSupport", hierarchical}}}}}};
    Call(Req("initialize", {{"rootUri", UriFromPath(root.string())}, {"capabilities", caps}}));
    Send(Note("initialized"));
  }
  json Call(const json& request) {
    const std::optional<json> answer = server.Dispatcher().HandleMessage(request);
    if (!answer) return "<no answer>";
    // As the client reads it: a result written as text is spliced in by Serialize.
    const json message = json::parse(TDispatcher::Serialize(*answer));
    return message.contains("result") ? message["result"] : message["error"];
  }
  void Send(const json& note) { server.Dispatcher().HandleMessage(note); }
  void Open(const fs::path& file, const std::string& text) {
    Send(Note("textDocument/didOpen", {{"textDocument",
                                        {{"uri", UriFromPath(file.string())},
                                         {"languageId", "cpp"},
                                         {"version", 1},
                                         {"text", text}}}}));
  }
  void Open(const fs::path& file) { Open(file, ReadFile(file)); }
  std::vector<json> Notifications(std::string_view method) {
    std::vector<json> found;
    std::size_t pos = 0;
    TFrameReader reader([&](char* buffer, std::size_t size) {
      const std::size_t n = std::min(size, written.size() - pos);
      written.copy(buffer, n, pos);
      pos += n;
      return n;
    });
    std::string body, error;
    while (reader.Next(body, error) == TFrameStatus::Message) {
      json m = json::parse(body);
      if (m.value("method", "") == method) found.push_back(m["params"]);
    }
    return found;
  }
};

// "File:line:character" of a location, ", " between several; hover as its code line; type
// hierarchy items by name.
std::string Summary(const json& answer) {
  if (answer.is_null()) return "null";
  if (answer.is_array()) {
    std::string text;
    for (const json& item : answer) text += (text.empty() ? "" : ", ") + Summary(item);
    return text.empty() ? "[]" : text;
  }
  if (answer.contains("contents")) {
    const std::string value = answer["contents"]["value"];
    const std::size_t from = value.find('\n') + 1;
    return value.substr(from, value.find('\n', from) - from);
  }
  if (answer.contains("location")) return Summary(answer["location"]);
  if (answer.contains("kind") && answer.contains("name")) return answer["name"];
  if (answer.contains("uri")) {
    const json& start = answer["range"]["start"];
    return fs::path(answer["uri"].get<std::string>()).filename().string() + ":" +
           std::to_string(start["line"].get<int>()) + ":" +
           std::to_string(start["character"].get<int>());
  }
  return answer.dump();
}

struct PositionCase {
  const char* name;
  const char* method;
  const char* file;
  int line, character;  // 0-based, as the client counts
  std::string expected;
};

TEST(LspCodeRequests, AnswersAtAPosition) {
  const PositionCase cases[] = {
      {.name = "definition on a C++ method's declaration goes to its body",
       .method = "textDocument/definition",
       .file = "MainForm.h",
       .line = 29,
       .character = 25,
       .expected = "MainForm.cpp:38:27"},
      {.name = "definition on the body goes back to the declaration",
       .method = "textDocument/definition",
       .file = "MainForm.cpp",
       .line = 38,
       .character = 30,
       .expected = "MainForm.h:29:20"},
      {.name = "declaration on a declaration stays there",
       .method = "textDocument/declaration",
       .file = "MainForm.h",
       .line = 29,
       .character = 25,
       .expected = "MainForm.h:29:20"},
      {.name = "definition on a class name goes to the class",
       .method = "textDocument/definition",
       .file = "MainForm.cpp",
       .line = 40,
       .character = 22,
       .expected = "FiringTypes.h:119:6"},
      {.name = "a member used inside a body is found through the body's class",
       .method = "textDocument/definition",
       .file = "MainForm.cpp",
       .line = 42,
       .character = 8,
       .expected = "MainForm.h:48:20"},
      {.name = "a member reached through a field goes to the field's class",
       .method = "textDocument/definition",
       .file = "MainForm.cpp",
       .line = 41,
       .character = 42,
       .expected = "FiringTypes.h:116:23"},
      {.name = "an abstract method has no body: definition stays on it",
       .method = "textDocument/definition",
       .file = "GlazeForm.pas",
       .line = 27,
       .character = 14,
       .expected = "GlazeForm.pas:27:13"},
      {.name = "a Pascal body goes to its declaration",
       .method = "textDocument/definition",
       .file = "GlazeForm.pas",
       .line = 96,
       .character = 30,
       .expected = "GlazeForm.pas:32:13"},
      {.name = "the second overload goes to the second body",
       .method = "textDocument/definition",
       .file = "GlazeForm.pas",
       .line = 62,
       .character = 20,
       .expected = "GlazeForm.pas:132:27"},
      {.name = "the second overload's body goes to the second declaration",
       .method = "textDocument/definition",
       .file = "GlazeForm.pas",
       .line = 132,
       .character = 30,
       .expected = "GlazeForm.pas:62:14"},
      {.name = "implementation of an abstract method: the overrides' bodies",
       .method = "textDocument/implementation",
       .file = "GlazeForm.pas",
       .line = 27,
       .character = 14,
       .expected = "GlazeForm.pas:96:28"},
      {.name = "implementation of a pure virtual C++ method: the descendant's body",
       .method = "textDocument/implementation",
       .file = "FiringTypes.h",
       .line = 116,
       .character = 24,
       .expected = "FiringTypes.cpp:94:26"},
      {.name = "implementation of a class: its descendants",
       .method = "textDocument/implementation",
       .file = "GlazeForm.pas",
       .line = 25,
       .character = 5,
       .expected = "GlazeForm.pas:30:2"},
      {.name = "hover shows the declaration",
       .method = "textDocument/hover",
       .file = "MainForm.h",
       .line = 45,
       .character = 35,
       .expected = "Kiln::TFiring* __fastcall GetFiring(int Index);"},
      {.name = "hover on a class shows its head",
       .method = "textDocument/hover",
       .file = "FiringTypes.h",
       .line = 119,
       .character = 8,
       .expected = "class TElectricCost : public TCostModel"},
      {.name = "type hierarchy starts on a class",
       .method = "textDocument/prepareTypeHierarchy",
       .file = "GlazeForm.pas",
       .line = 30,
       .character = 5,
       .expected = "TTotalPercentCheck"},
      {.name = "nothing under the cursor: hover is null",
       .method = "textDocument/hover",
       .file = "MainForm.h",
       .line = 44,
       .character = 0,
       .expected = "null"},
      {.name = "a position past the end of the file: an empty answer",
       .method = "textDocument/definition",
       .file = "MainForm.h",
       .line = 9999,
       .character = 5,
       .expected = "[]"},
      {.name = "a negative position: an empty answer",
       .method = "textDocument/implementation",
       .file = "MainForm.h",
       .line = -1,
       .character = -7,
       .expected = "[]"},
      {.name = "a document never opened nor in the project: an empty answer",
       .method = "textDocument/definition",
       .file = "NoSuchUnit.pas",
       .line = 1,
       .character = 1,
       .expected = "[]"},
  };
  Client client(kRoot);
  for (const char* file : {"MainForm.h", "MainForm.cpp", "GlazeForm.pas"})
    client.Open(kRoot / file);
  for (const PositionCase& c : cases)
    EXPECT_EQ(Summary(client.Call(Req(c.method, At(kRoot / c.file, c.line, c.character)))),
              c.expected)
        << c.name;
}

TEST(LspCodeRequests, TypeHierarchyWalksBothWays) {
  Client client(kRoot);
  const json item =
      client.Call(Req("textDocument/prepareTypeHierarchy", At(kRoot / "FiringTypes.h", 108, 8)));
  ASSERT_EQ(Summary(item), "TCostModel");
  EXPECT_EQ(Summary(client.Call(Req("typeHierarchy/subtypes", {{"item", item[0]}}))),
            "TElectricCost");
  const json sub = client.Call(Req("typeHierarchy/subtypes", {{"item", item[0]}}));
  EXPECT_EQ(Summary(client.Call(Req("typeHierarchy/supertypes", {{"item", sub[0]}}))),
            "TCostModel");
  EXPECT_EQ(Summary(client.Call(Req("typeHierarchy/supertypes", {{"item", item[0]}}))), "[]");
  // An item the server did not make: no relatives, and no failure.
  EXPECT_EQ(Summary(client.Call(Req("typeHierarchy/subtypes", {{"item", {{"name", "TX"}}}}))),
            "[]");
}

struct SymbolCase {
  const char* query;
  std::string first;  // the best match's name ("" for none)
};

TEST(LspCodeRequests, WorkspaceSymbolsMatchFuzzily) {
  const SymbolCase cases[] = {
      {.query = "TElectricCost", .first = "TElectricCost"},
      {.query = "telec", .first = "TElectricCost"},
      {.query = "gbw", .first = "GlazeBatchWeight"},
      {.query = "TFiring", .first = "TFiring"},
      {.query = "qqqzzz", .first = ""},
  };
  Client client(kRoot);
  for (const SymbolCase& c : cases) {
    const json answer = client.Call(Req("workspace/symbol", {{"query", c.query}}));
    ASSERT_TRUE(answer.is_array()) << c.query;
    EXPECT_EQ(answer.empty() ? "" : answer[0]["name"].get<std::string>(), c.first) << c.query;
    if (!answer.empty()) {
      EXPECT_NE(answer[0]["kind"], skConstructor) << c.query;
    }
  }
}

// Every range holds its name and its children: what clients check before they show an
// outline at all.
void ExpectNested(const json& symbol, const json* parent, const std::string& where) {
  const auto before = [](const json& a, const json& b) {
    return a["line"] < b["line"] || (a["line"] == b["line"] && a["character"] <= b["character"]);
  };
  const json& range = symbol["range"];
  const json& name = symbol["selectionRange"];
  EXPECT_TRUE(before(range["start"], name["start"]) && before(name["end"], range["end"]))
      << where << " " << symbol["name"];
  if (parent) {
    EXPECT_TRUE(before((*parent)["start"], range["start"]) &&
                before(range["end"], (*parent)["end"]))
        << where << " " << symbol["name"];
  }
  for (const json& child : symbol.value("children", json::array()))
    ExpectNested(child, &range, where);
}

// Top-level names with their children's count, "Name(n)".
std::string Outline(const json& symbols) {
  std::string text;
  for (const json& s : symbols)
    text += (text.empty() ? "" : " ") + s["name"].get<std::string>() + "(" +
            std::to_string(s.value("children", json::array()).size()) + ")";
  return text;
}

struct OutlineCase {
  const char* file;
  std::string outline;
};

TEST(LspCodeRequests, DocumentSymbolsOutlineEachFile) {
  const OutlineCase cases[] = {
      {.file = "MainForm.h", .outline = "TFormMain(43)"},
      // The bodies grouped under their class, so the outline does not repeat it.
      {.file = "MainForm.cpp", .outline = "TFormMain(20)"},
      {.file = "GlazeForm.pas",
       .outline = "TRecipeCheck(1) TTotalPercentCheck(1) TGlazeRecipeForm(34) GlazeBatchWeight(0) "
                  "PercentText(0) implementation(2)"},
      {.file = "FiringTypes.cpp", .outline = ""},
  };
  Client client(kRoot);
  for (const OutlineCase& c : cases) {
    client.Open(kRoot / c.file);
    const json symbols =
        client.Call(Req("textDocument/documentSymbol",
                        {{"textDocument", {{"uri", UriFromPath((kRoot / c.file).string())}}}}));
    if (!c.outline.empty()) {
      EXPECT_EQ(Outline(symbols), c.outline) << c.file;
    }
    for (const json& s : symbols) ExpectNested(s, nullptr, c.file);
  }
  // Every file of the project keeps the nesting rule.
  for (const auto& entry : fs::directory_iterator(kRoot)) {
    const json symbols =
        client.Call(Req("textDocument/documentSymbol",
                        {{"textDocument", {{"uri", UriFromPath(entry.path().string())}}}}));
    ASSERT_TRUE(symbols.is_array()) << entry.path();
    for (const json& s : symbols) ExpectNested(s, nullptr, entry.path().filename().string());
  }
}

// The implementation section of a unit: each body under its class, overloads told apart.
TEST(LspCodeRequests, PascalBodiesAreGroupedUnderTheirClass) {
  Client client(kRoot);
  client.Open(kRoot / "GlazeForm.pas");
  const json symbols = client.Call(
      Req("textDocument/documentSymbol",
          {{"textDocument", {{"uri", UriFromPath((kRoot / "GlazeForm.pas").string())}}}}));
  ASSERT_TRUE(symbols.is_array() && !symbols.empty());
  const json& section = symbols.back();
  ASSERT_EQ(section["name"], "implementation");
  ASSERT_EQ(section["children"].size(), 2u);
  std::string overloads;
  for (const json& body : section["children"][1]["children"])
    if (body["name"] == "AddIngredient")
      overloads += std::to_string(body["selectionRange"]["start"]["line"].get<int>()) + " " +
                   body["detail"].get<std::string>() + "; ";
  EXPECT_EQ(overloads,
            "123 AddIngredient(const Material: string; Percent: Double); "
            "132 AddIngredient(const Ingredient: TGlazeIngredient); ");
}

TEST(LspCodeRequests, FlatSymbolsNameTheirContainer) {
  Client client(kRoot, /*hierarchical=*/false);
  const json symbols = client.Call(
      Req("textDocument/documentSymbol",
          {{"textDocument", {{"uri", UriFromPath((kRoot / "GlazeForm.pas").string())}}}}));
  ASSERT_TRUE(symbols.is_array());
  std::string checkContainer;
  for (const json& s : symbols) {
    EXPECT_TRUE(s.contains("location") && !s.contains("children")) << s.dump();
    EXPECT_NE(s["name"], "implementation");
    if (s["name"] == "Check") checkContainer += s.value("containerName", "?") + " ";
  }
  // Both declarations, then the body of the one that has one.
  EXPECT_EQ(checkContainer, "TRecipeCheck TTotalPercentCheck TTotalPercentCheck ");
}

TEST(LspCodeRequests, AnEditIsReparsedAndTheModelFollows) {
  Client client(kRoot);
  const fs::path header = kRoot / "ScheduleDlg.h";
  std::string text = ReadFile(header);
  client.Open(header, text);
  const json doc = {{"uri", UriFromPath(header.string())}, {"version", 2}};
  const std::size_t brace = text.find("private:");
  ASSERT_NE(brace, std::string::npos);
  text.insert(brace, "public:\n    void __fastcall AddedByEdit();\n");
  client.Send(Note("textDocument/didChange",
                   {{"textDocument", doc}, {"contentChanges", json::array({{{"text", text}}})}}));
  const json found = client.Call(Req("workspace/symbol", {{"query", "AddedByEdit"}}));
  ASSERT_EQ(found.size(), 1u) << found.dump();
  EXPECT_EQ(Summary(found),
            "ScheduleDlg.h:" +
                std::to_string(std::count(text.begin(), text.begin() + brace, '\n') + 1) + ":4");
  // Closing the document without saving: the model goes back to the file on disk.
  client.Send(Note("textDocument/didClose", {{"textDocument", {{"uri", doc["uri"]}}}}));
  EXPECT_EQ(client.Call(Req("workspace/symbol", {{"query", "AddedByEdit"}})), json::array());
}

TEST(LspCodeRequests, FilesChangedOnDiskArePickedUp) {
  const fs::path root =
      fs::temp_directory_path() / ("velmora-lsp-watch-" + std::to_string(::getpid()));
  fs::remove_all(root);
  fs::create_directories(root);
  std::ofstream(root / "Alpha.pas") << "unit Alpha;\ninterface\ntype TAlpha = class end;\n"
                                       "implementation\nend.\n";
  Client client(root);
  EXPECT_EQ(Summary(client.Call(Req("workspace/symbol", {{"query", "TAlpha"}}))), "Alpha.pas:2:5");
  std::ofstream(root / "Beta.pas") << "unit Beta;\ninterface\ntype TBeta = class end;\n"
                                      "implementation\nend.\n";
  fs::remove(root / "Alpha.pas");
  fs::create_directory(root / "Gamma.pas");  // a source name that cannot be read
  const auto change = [](const fs::path& p, int type) {
    return json{{"uri", UriFromPath(p.string())}, {"type", type}};
  };
  client.Send(
      Note("workspace/didChangeWatchedFiles",
           {{"changes", json::array({change(root / "Beta.pas", 1), change(root / "Alpha.pas", 3),
                                     change(root / "Gamma.pas", 1)})}}));
  EXPECT_EQ(Summary(client.Call(Req("workspace/symbol", {{"query", "TBeta"}}))), "Beta.pas:2:5");
  EXPECT_EQ(client.Call(Req("workspace/symbol", {{"query", "TAlpha"}})), json::array());
  bool loggedGamma = false;
  for (const json& log : client.Notifications("window/logMessage"))
    loggedGamma |= log["message"].get<std::string>().find("Gamma.pas") != std::string::npos;
  EXPECT_TRUE(loggedGamma);
  fs::remove_all(root);
}

TEST(LspCodeRequests, AProjectThatCannotBeOpenedIsReportedAndTheServerGoesOn) {
  Client client(kRoot, true, "/no/such/folder/Broken.bpr");
  bool reported = false;
  for (const json& log : client.Notifications("window/logMessage"))
    reported |= log["type"] == 1 &&
                log["message"].get<std::string>().find("Broken.bpr") != std::string::npos;
  EXPECT_TRUE(reported);
  // An open document still gets its outline.
  client.Open(kRoot / "ScheduleDlg.h");
  const json symbols = client.Call(
      Req("textDocument/documentSymbol",
          {{"textDocument", {{"uri", UriFromPath((kRoot / "ScheduleDlg.h").string())}}}}));
  EXPECT_FALSE(symbols.empty()) << symbols.dump();
}

TEST(LspCodeRequests, WorkspaceSymbolsCountAnOpenDocumentAsTheClientDoes) {
  const fs::path root =
      fs::temp_directory_path() / ("velmora-lsp-units-" + std::to_string(::getpid()));
  fs::remove_all(root);
  fs::create_directories(root);
  const std::string text =
      "unit Uni;\ninterface\ntype {\xc3\xa9} TUni = class end;\n"
      "implementation\nend.\n";
  std::ofstream(root / "Uni.pas") << text;
  Client client(root);
  // Not open: the column in bytes, from the model's line table.
  EXPECT_EQ(Summary(client.Call(Req("workspace/symbol", {{"query", "TUni"}}))), "Uni.pas:2:10");
  client.Open(root / "Uni.pas", text);
  // Open: in UTF-16 units, the two bytes of the e with its accent one unit.
  EXPECT_EQ(Summary(client.Call(Req("workspace/symbol", {{"query", "TUni"}}))), "Uni.pas:2:9");
  fs::remove_all(root);
}

struct ChoiceCase {
  std::vector<const char*> files;
  const char* option;
  const char* chosen;  // relative to the root; "." for the root itself
};

TEST(LspCodeRequests, TheProjectIsChosenFromTheRoot) {
  const ChoiceCase cases[] = {
      {.files = {"App.bpr", "App.cpp"}, .option = "", .chosen = "App.bpr"},
      {.files = {"App.dpr", "App.dproj"}, .option = "", .chosen = "App.dproj"},
      {.files = {"A.lpi", "B.lpi"}, .option = "", .chosen = "."},
      {.files = {"Unit1.pas"}, .option = "", .chosen = "."},
      {.files = {"A.lpi", "B.lpi"}, .option = "B.lpi", .chosen = "B.lpi"},
  };
  const fs::path root =
      fs::temp_directory_path() / ("velmora-lsp-choice-" + std::to_string(::getpid()));
  for (const ChoiceCase& c : cases) {
    fs::remove_all(root);
    fs::create_directories(root);
    for (const char* f : c.files) std::ofstream(root / f) << "";
    const fs::path expected = std::string(c.chosen) == "." ? root : root / c.chosen;
    EXPECT_EQ(ChooseProject(root.string(), c.option), expected.string()) << c.chosen;
  }
  fs::remove_all(root);
}

}  // namespace
}  // namespace velmora::lsp
