// The add-member code actions and commands through the server object: which actions the
// cursor gets, the edits their resolve computes (checked against the code generation
// goldens), the edit a command sends to the client, and a refused request.
#include "hosts/lsp/code_actions.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "hosts/lsp/code_server.h"
#include "settings/vl_settings.h"

namespace velmora::lsp {
namespace {

namespace fs = std::filesystem;

const fs::path kExample = fs::path(VELMORA_SOURCE_DIR) / "examples/KilnLog";
const fs::path kGolden = fs::path(VELMORA_SOURCE_DIR) / "tests/codegen/golden";

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

std::string ToLf(std::string text) {
  std::erase(text, '\r');
  return text;
}

json Req(const char* method, json params) {
  static int id = 0;
  return {{"jsonrpc", "2.0"}, {"id", ++id}, {"method", method}, {"params", std::move(params)}};
}

// A server on `root` with the messages handled one by one and every parse inline, the
// settings at their defaults (as the goldens have them).
struct Client {
  std::string written;
  TFrameWriter writer{[this](std::string_view bytes) {
    written.append(bytes);
    return true;
  }};
  TServerOptions options;
  TVLSettings settings;
  TLspServer server{options, writer};
  TCodeServer code{server, options,
                   TCodeServerOptions{.Driver = {}, .Inline = true, .Settings = &settings}};

  explicit Client(const fs::path& root) {
    Call(Req("initialize", {{"rootUri", UriFromPath(root.string())}, {"capabilities", {}}}));
    server.Dispatcher().HandleMessage(
        {{"jsonrpc", "2.0"}, {"method", "initialized"}, {"params", json::object()}});
  }
  json Call(const json& request, bool* failed = nullptr) {
    const std::optional<json> answer = server.Dispatcher().HandleMessage(request);
    if (!answer) return "<no answer>";
    const json message = json::parse(TDispatcher::Serialize(*answer));
    if (failed) *failed = message.contains("error");
    return message.contains("result") ? message["result"] : message["error"];
  }
  void Open(const fs::path& file) {
    server.Dispatcher().HandleMessage(
        {{"jsonrpc", "2.0"},
         {"method", "textDocument/didOpen"},
         {"params",
          {{"textDocument",
            {{"uri", UriFromPath(file.string())},
             {"languageId", file.extension() == ".pas" ? "pascal" : "cpp"},
             {"version", 1},
             {"text", ReadFile(file)}}}}}});
  }
  json Actions(const fs::path& file, int line, int character) {
    const json position = {{"line", line}, {"character", character}};
    return Call(
        Req("textDocument/codeAction", {{"textDocument", {{"uri", UriFromPath(file.string())}}},
                                        {"range", {{"start", position}, {"end", position}}},
                                        {"context", {{"diagnostics", json::array()}}}}));
  }
  // The requests the server sent to the client with `method`.
  std::vector<json> Sent(std::string_view method) {
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

// The edit's changes to `file` applied to `text`, from the last to the first so the
// earlier positions hold.
std::string Applied(std::string text, const json& edit, const fs::path& file) {
  const json& edits = edit.at("changes").at(UriFromPath(file.string()));
  for (auto it = edits.rbegin(); it != edits.rend(); ++it) {
    const json& range = (*it)["range"];
    const TLspPosition from{range["start"]["line"], range["start"]["character"]};
    const TLspPosition to{range["end"]["line"], range["end"]["character"]};
    text = ApplyEdit(text, from, to, (*it)["newText"].get<std::string>(), TPositionEncoding::Utf16);
  }
  return text;
}

std::string Titles(const json& actions) {
  std::string text;
  for (const json& action : actions) text += (text.empty() ? "" : ", ") + action.value("title", "");
  return text;
}

struct OfferCase {
  const char* name;
  const char* file;
  int line, character;
  const char* titles;
  const char* className;  // of the add-member actions' data, "" when none
};

TEST(CodeActions, OfferedInsideAClassOnly) {
  const OfferCase cases[] = {
      {.name = "C++ field line",
       .file = "MainForm.h",
       .line = 40,
       .character = 8,
       .titles = "Add field…, Add method…, Add property…, Insert code marker",
       .className = "TFormMain"},
      {.name = "C++ include",
       .file = "MainForm.h",
       .line = 12,
       .character = 3,
       .titles = "Insert code marker",
       .className = ""},
      {.name = "Pascal method line",
       .file = "GlazeForm.pas",
       .line = 27,
       .character = 6,
       .titles = "Add field…, Add method…, Add property…, Insert code marker",
       .className = "TRecipeCheck"},
      {.name = "Pascal method type",
       .file = "GlazeForm.pas",
       .line = 20,
       .character = 4,
       .titles = "Insert code marker",
       .className = ""},
  };
  Client client(kExample);
  for (const OfferCase& c : cases) {
    const json actions = client.Actions(kExample / c.file, c.line, c.character);
    EXPECT_EQ(Titles(actions), c.titles) << c.name;
    for (const json& action : actions) {
      EXPECT_FALSE(action.contains("edit")) << c.name << ": computed when resolved";
      const json& data = action["data"];
      if (data["command"] != kInsertMarkerCommand) {
        EXPECT_EQ(data["arguments"]["Class"], c.className) << c.name;
      } else {
        EXPECT_EQ(data["arguments"]["Line"], c.line) << c.name;
      }
    }
  }
}

// Each default action resolves to an edit that the generator accepts, and the edit only
// inserts (nothing of the original text goes).
TEST(CodeActions, DefaultsResolve) {
  Client client(kExample);
  for (const char* file : {"MainForm.h", "GlazeForm.pas"}) {
    const fs::path path = kExample / file;
    const int line = std::string(file) == "MainForm.h" ? 40 : 27;
    for (const json& action : client.Actions(path, line, 6)) {
      bool failed = false;
      const json resolved = client.Call(Req("codeAction/resolve", action), &failed);
      ASSERT_FALSE(failed) << file << " " << action["title"] << ": " << resolved.dump();
      const json& changes = resolved["edit"]["changes"];
      ASSERT_TRUE(changes.contains(UriFromPath(path.string())))
          << file << " " << action["title"] << ": " << resolved.dump();
      std::string inserted;
      for (const auto& [uri, edits] : changes.items())
        for (const json& edit : edits) {
          EXPECT_EQ(edit["range"]["start"], edit["range"]["end"]) << file << " " << uri;
          inserted += edit["newText"].get<std::string>();
        }
      // The property reads and writes its new field.
      if (action["title"] == "Add property…") {
        EXPECT_NE(inserted.find("FNewProperty"), std::string::npos) << file << inserted;
        EXPECT_NE(inserted.find(line == 40 ? "read = FNewProperty" : "read FNewProperty"),
                  std::string::npos)
            << file << inserted;
      }
    }
  }
}

struct GoldenCase {
  const char* folder;
  const char* unit;  // the golden's before/after in the server's working copy
  const char* ext;   // of before.* and after.*
  int line;          // a line of the class's declaration
  const char* title;
  json arguments;  // put over the action's own
};

TEST(CodeActions, ResolveWritesWhatTheGeneratorsGoldensHold) {
  const GoldenCase cases[] = {
      {.folder = "pas_procedure_plain",
       .unit = "Plain.pas",
       .ext = "pas",
       .line = 5,
       .title = "Add method…",
       .arguments = {{"MethodName", "Stop"}}},
      {.folder = "pas_field_new_section",
       .unit = "Counter.pas",
       .ext = "pas",
       .line = 5,
       .title = "Add field…",
       .arguments = {{"FieldName", "FLimit"}, {"Type", "Integer"}, {"Visibility", "private"}}},
      {.folder = "cpp_field_new_section",
       .unit = "Counter.h",
       .ext = "h",
       .line = 2,
       .title = "Add field…",
       .arguments = {{"FieldName", "FLimit"}, {"Type", "int"}, {"Visibility", "private"}}},
  };
  for (const GoldenCase& c : cases) {
    const fs::path root = fs::temp_directory_path() /
                          ("velmora-lsp-actions-" + std::to_string(::getpid()) + c.folder);
    fs::remove_all(root);
    fs::create_directories(root);
    const fs::path unit = root / c.unit;
    const fs::path before = kGolden / c.folder / (std::string("before.") + c.ext);
    fs::copy_file(before, unit);
    {
      Client client(root);
      client.Open(unit);
      json chosen;
      for (const json& action : client.Actions(unit, c.line, 4))
        if (action["title"] == c.title) chosen = action;
      ASSERT_FALSE(chosen.is_null()) << c.folder;
      chosen["data"]["arguments"].update(c.arguments);
      bool failed = false;
      const json resolved = client.Call(Req("codeAction/resolve", chosen), &failed);
      ASSERT_FALSE(failed) << c.folder << ": " << resolved.dump();
      std::string expected = ReadFile(kGolden / c.folder / (std::string("after.") + c.ext));
      expected.erase(expected.find("@^"), 2);
      EXPECT_EQ(ToLf(Applied(ReadFile(unit), resolved["edit"], unit)), ToLf(expected)) << c.folder;
      // A preview: neither the file nor the model got the member.
      EXPECT_EQ(ReadFile(unit), ReadFile(before)) << c.folder;
      bool again = false;
      client.Call(Req("codeAction/resolve", chosen), &again);
      EXPECT_FALSE(again) << c.folder << ": the model's class did not get the member";
    }
    fs::remove_all(root);
  }
}

// A C++ method goes to two files: the declaration into the header, the body into the
// implementation file named by its uri; the edit changes both as the golden has them.
TEST(CodeActions, ResolveWritesAMethodIntoHeaderAndImplementation) {
  const fs::path golden = kGolden / "cpp_explicit_impl_file";
  const fs::path root =
      fs::temp_directory_path() / ("velmora-lsp-actions-cpp-" + std::to_string(::getpid()));
  fs::remove_all(root);
  fs::create_directories(root);
  for (const char* name : {"before.h", "before.cc"}) fs::copy_file(golden / name, root / name);
  {
    Client client(root);
    const fs::path header = root / "before.h", source = root / "before.cc";
    client.Open(header);
    json chosen;
    for (const json& action : client.Actions(header, 2, 3))
      if (action["title"] == "Add method…") chosen = action;
    ASSERT_FALSE(chosen.is_null());
    chosen["data"]["arguments"].update({{"MethodName", "Reset"},
                                        {"Kind", "function"},
                                        {"ResultType", "bool"},
                                        {"Arguments", "int Level = 0"},
                                        {"ImplementationFile", UriFromPath(source.string())}});
    bool failed = false;
    const json resolved = client.Call(Req("codeAction/resolve", chosen), &failed);
    ASSERT_FALSE(failed) << resolved.dump();
    for (const char* ext : {"h", "cc"}) {
      const fs::path file = root / (std::string("before.") + ext);
      std::string expected = ReadFile(golden / (std::string("after.") + ext));
      if (const std::size_t cursor = expected.find("@^"); cursor != std::string::npos)
        expected.erase(cursor, 2);
      EXPECT_EQ(ToLf(Applied(ReadFile(file), resolved["edit"], file)), ToLf(expected)) << ext;
    }
  }
  fs::remove_all(root);
}

TEST(CodeActions, ExecuteCommandSendsApplyEdit) {
  Client client(kExample);
  const fs::path file = kExample / "GlazeForm.pas";
  const json arguments = {{"uri", UriFromPath(file.string())},
                          {"Class", "TRecipeCheck"},
                          {"MethodName", "Reset"},
                          {"Kind", "procedure"}};
  const json resolved =
      client.Call(Req("codeAction/resolve",
                      {{"title", "Add method…"},
                       {"data", {{"command", kAddMethodCommand}, {"arguments", arguments}}}}));
  bool failed = true;
  const json answer = client.Call(
      Req("workspace/executeCommand", {{"command", kAddMethodCommand}, {"arguments", {arguments}}}),
      &failed);
  EXPECT_FALSE(failed) << answer.dump();
  const std::vector<json> sent = client.Sent("workspace/applyEdit");
  ASSERT_EQ(sent.size(), 1u);
  EXPECT_EQ(sent[0]["edit"], resolved["edit"]);
  const std::string after = Applied(ReadFile(file), sent[0]["edit"], file);
  EXPECT_NE(after.find("procedure Reset;"), std::string::npos);
  EXPECT_NE(after.find("procedure TRecipeCheck.Reset;"), std::string::npos);
}

TEST(CodeActions, InsertMarkerPutsALineBeforeTheCursorsLine) {
  Client client(kExample);
  const fs::path file = kExample / "MainForm.cpp";
  client.Open(file);
  json marker;
  for (const json& action : client.Actions(file, 3, 0))
    if (action["title"] == "Insert code marker") marker = action;
  ASSERT_FALSE(marker.is_null());
  const json resolved = client.Call(Req("codeAction/resolve", marker));
  const json& edits = resolved["edit"]["changes"][UriFromPath(file.string())];
  ASSERT_EQ(edits.size(), 1u) << resolved.dump();
  EXPECT_EQ(edits[0]["range"]["start"], json({{"line", 3}, {"character", 0}}));
  EXPECT_EQ(ToLf(edits[0]["newText"]), "//Marker(Insert_End)\n");
}

struct RefusedCase {
  const char* name;
  std::string_view command;
  json arguments;
  const char* message;
};

TEST(CodeActions, RefusedRequestAnswersItsMessageAndSendsNothing) {
  const fs::path file = kExample / "GlazeForm.pas";
  const std::string uri = UriFromPath(file.string());
  const RefusedCase cases[] = {
      {.name = "field without a type",
       .command = kAddFieldCommand,
       .arguments = {{"uri", uri}, {"Class", "TRecipeCheck"}, {"FieldName", "FLimit"}},
       .message = "A field needs a name and a type."},
      {.name = "method that exists",
       .command = kAddMethodCommand,
       .arguments = {{"uri", uri}, {"Class", "TRecipeCheck"}, {"MethodName", "Check"}},
       .message = "A member with name \"Check\" already exists in class \"TRecipeCheck\"!"},
      {.name = "property without a name",
       .command = kAddPropertyCommand,
       .arguments = {{"uri", uri}, {"Class", "TRecipeCheck"}, {"Type", "Integer"}},
       .message = "A property needs a name."},
      {.name = "no such class",
       .command = kAddFieldCommand,
       .arguments = {{"uri", uri}, {"Class", "TNothing"}, {"FieldName", "F"}, {"Type", "T"}},
       .message = nullptr},
      {.name = "unknown visibility",
       .command = kAddFieldCommand,
       .arguments = {{"uri", uri},
                     {"Class", "TRecipeCheck"},
                     {"FieldName", "FLimit"},
                     {"Type", "Integer"},
                     {"Visibility", "secret"}},
       .message = "Visibility takes one of public, private, protected, published, automated"},
      {.name = "unknown command",
       .command = "velmora.addNothing",
       .arguments = {{"uri", uri}},
       .message = "unknown command velmora.addNothing"},
      {.name = "marker of no kind",
       .command = kInsertMarkerCommand,
       .arguments = {{"uri", uri}, {"Kind", 9}, {"Line", 0}},
       .message = nullptr},
  };
  Client client(kExample);
  for (const RefusedCase& c : cases) {
    bool failed = false;
    const json error = client.Call(
        Req("workspace/executeCommand", {{"command", c.command}, {"arguments", {c.arguments}}}),
        &failed);
    ASSERT_TRUE(failed) << c.name;
    EXPECT_EQ(error["code"], kInvalidParams) << c.name;
    if (c.message) {
      EXPECT_EQ(error["message"], c.message) << c.name;
    }
  }
  EXPECT_TRUE(client.Sent("workspace/applyEdit").empty());
}

TEST(CodeActions, Advertised) {
  std::string out;
  TFrameWriter writer([&](std::string_view bytes) {
    out.append(bytes);
    return true;
  });
  TServerOptions options;
  TLspServer server(options, writer);
  TVLSettings settings;
  TCodeServer code(server, options, {.Driver = {}, .Inline = true, .Settings = &settings});
  const json answer = *server.Dispatcher().HandleMessage(Req("initialize", {{"capabilities", {}}}));
  const json& capabilities = answer["result"]["capabilities"];
  EXPECT_EQ(capabilities["codeActionProvider"]["resolveProvider"], true);
  EXPECT_EQ(capabilities["executeCommandProvider"]["commands"],
            json({"velmora.addField", "velmora.addMethod", "velmora.addProperty",
                  "velmora.insertMarker"}));
}

}  // namespace
}  // namespace velmora::lsp
