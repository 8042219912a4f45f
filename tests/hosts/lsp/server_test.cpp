#include "hosts/lsp/server.h"

#include <gtest/gtest.h>

#include <future>
#include <string>
#include <vector>

namespace velmora::lsp {
namespace {

// One session: the client's messages framed into one input, the server run over it, and
// every message the server wrote parsed back. `allRead` is ready once the reader has taken
// the whole input, so that a handler can wait until every later message is queued. The
// input is owned by the read function: a reader left in a read after "exit" may still
// call it once the session is gone.
struct Session {
  std::vector<json> in;
  int exitCode = -1;
  std::shared_future<void> allRead;

  void Run(TLspServer& server, TFrameWriter&, const std::string& extra = "") {
    struct TInput {
      std::string Bytes;
      std::size_t Pos = 0;
      std::promise<void> AllRead;
      bool Told = false;
    };
    auto input = std::make_shared<TInput>();
    for (const json& m : in) input->Bytes += Frame(m.dump());
    input->Bytes += extra;
    allRead = input->AllRead.get_future().share();
    auto reader = std::make_shared<TFrameReader>([input](char* buffer, std::size_t size) {
      const std::size_t n = std::min(size, input->Bytes.size() - input->Pos);
      input->Bytes.copy(buffer, n, input->Pos);
      input->Pos += n;
      if (n == 0 && !input->Told) {
        input->Told = true;
        input->AllRead.set_value();
      }
      return n;
    });
    exitCode = server.Run(reader);
  }
};

struct Harness {
  std::string written;
  TFrameWriter writer{[this](std::string_view bytes) {
    written.append(bytes);
    return true;
  }};
  TLspServer server{TServerOptions{}, writer};

  std::vector<json> Messages() {
    std::vector<json> messages;
    std::size_t pos = 0;
    TFrameReader reader([&](char* buffer, std::size_t size) {
      const std::size_t n = std::min(size, written.size() - pos);
      written.copy(buffer, n, pos);
      pos += n;
      return n;
    });
    std::string body, error;
    while (reader.Next(body, error) == TFrameStatus::Message) messages.push_back(json::parse(body));
    return messages;
  }
  // The answer to request `id`, or null.
  json AnswerTo(const json& id) {
    for (const json& m : Messages())
      if (m.contains("id") && m["id"] == id && !m.contains("method")) return m;
    return nullptr;
  }
};

json Req(int id, const char* method, json params = json::object()) {
  return {{"jsonrpc", "2.0"}, {"id", id}, {"method", method}, {"params", std::move(params)}};
}
json Note(const char* method, json params = json::object()) {
  return {{"jsonrpc", "2.0"}, {"method", method}, {"params", std::move(params)}};
}

struct EncodingCase {
  json offered;
  const char* chosen;
};

TEST(LspServer, PositionEncodingIsNegotiated) {
  const EncodingCase cases[] = {
      {.offered = nullptr, .chosen = "utf-16"},
      {.offered = json::array({"utf-16"}), .chosen = "utf-16"},
      {.offered = json::array({"utf-32", "utf-8", "utf-16"}), .chosen = "utf-8"},
      {.offered = "utf-8", .chosen = "utf-16"},  // not a list: ignored
  };
  for (const EncodingCase& c : cases) {
    Harness h;
    Session s;
    json caps = json::object();
    if (!c.offered.is_null()) caps["general"]["positionEncodings"] = c.offered;
    s.in = {Req(1, "initialize", {{"capabilities", caps}})};
    s.Run(h.server, h.writer);
    const json answer = h.AnswerTo(1);
    ASSERT_TRUE(answer.contains("result")) << answer.dump();
    EXPECT_EQ(answer["result"]["capabilities"]["positionEncoding"], c.chosen) << c.offered.dump();
    EXPECT_EQ(answer["result"]["serverInfo"]["name"], "velmora");
  }
}

struct LifecycleCase {
  const char* name;
  std::vector<json> in;
  int exitCode;
  std::vector<std::pair<int, int>> answers;  // request id -> error code (0: a result)
};

TEST(LspServer, LifecycleRules) {
  const LifecycleCase cases[] = {
      {.name = "before initialize",
       .in = {Req(1, "shutdown"), Req(2, "initialize"), Req(3, "shutdown"), Note("exit")},
       .exitCode = 0,
       .answers = {{1, kServerNotInitialized}, {2, 0}, {3, 0}}},
      {.name = "exit without shutdown",
       .in = {Req(1, "initialize"), Note("exit")},
       .exitCode = 1,
       .answers = {{1, 0}}},
      {.name = "input ends without exit",
       .in = {Req(1, "initialize")},
       .exitCode = 1,
       .answers = {{1, 0}}},
      {.name = "second initialize",
       .in = {Req(1, "initialize"), Req(2, "initialize"), Req(3, "nope"), Req(4, "shutdown"),
              Req(5, "shutdown"), Note("exit")},
       .exitCode = 0,
       .answers = {{1, 0},
                   {2, kInvalidRequest},
                   {3, kMethodNotFound},
                   {4, 0},
                   {5, kServerNotInitialized}}},
  };
  for (const LifecycleCase& c : cases) {
    Harness h;
    Session s;
    s.in = c.in;
    s.Run(h.server, h.writer);
    EXPECT_EQ(s.exitCode, c.exitCode) << c.name;
    for (const auto& [id, code] : c.answers) {
      const json answer = h.AnswerTo(id);
      ASSERT_FALSE(answer.is_null()) << c.name << " id " << id;
      EXPECT_EQ(answer.contains("error") ? answer["error"]["code"].get<int>() : 0, code)
          << c.name << " id " << id;
    }
  }
}

TEST(LspServerThreads, DocumentsFollowOpenChangeAndClose) {
  Harness h;
  std::vector<std::string> changed;
  h.server.OnDocumentChanged = [&](const std::string& path) { changed.push_back(path); };
  std::string textAtEnd;
  h.server.Dispatcher().OnRequest("test/text", [&](const json&) {
    const TDocument* doc = h.server.Documents().FindByPath("/p/Unit1.pas");
    return json(doc ? doc->Text : "<closed>");
  });
  Session s;
  const json range = {{"start", {{"line", 1}, {"character", 5}}},
                      {"end", {{"line", 1}, {"character", 7}}}};
  s.in = {Req(1, "initialize"),
          Note("initialized"),
          Note("textDocument/didOpen", {{"textDocument",
                                         {{"uri", "file:///p/Unit1.pas"},
                                          {"languageId", "pascal"},
                                          {"version", 1},
                                          {"text", "unit Unit1;\ntype TA = class end;\n"}}}}),
          Note("textDocument/didChange",
               {{"textDocument", {{"uri", "file:///p/Unit1.pas"}, {"version", 2}}},
                {"contentChanges", json::array({{{"range", range}, {"text", "TB"}}})}}),
          Req(2, "test/text"),
          Note("textDocument/didChange",
               {{"textDocument", {{"uri", "file:///p/Missing.pas"}, {"version", 2}}},
                {"contentChanges", json::array({{{"text", "x"}}})}}),
          Note("textDocument/didClose", {{"textDocument", {{"uri", "file:///p/Unit1.pas"}}}}),
          Req(3, "test/text"),
          Req(4, "shutdown"),
          Note("exit")};
  s.Run(h.server, h.writer);
  EXPECT_EQ(h.AnswerTo(2)["result"], "unit Unit1;\ntype TB = class end;\n");
  EXPECT_EQ(h.AnswerTo(3)["result"], "<closed>");
  EXPECT_EQ(changed, (std::vector<std::string>{"/p/Unit1.pas", "/p/Unit1.pas", "/p/Unit1.pas"}));
  bool loggedMissing = false;
  for (const json& m : h.Messages())
    if (m.value("method", "") == "window/logMessage" &&
        m["params"]["message"].get<std::string>().find("Missing.pas") != std::string::npos)
      loggedMissing = true;
  EXPECT_TRUE(loggedMissing);
}

TEST(LspServerThreads, CancelOvertakesAQueuedRequestAndDamageIsLogged) {
  Harness h;
  Session s;
  // The first request holds the main thread until the reader has queued everything, so
  // the cancel certainly finds request 3 still waiting.
  h.server.Dispatcher().OnRequest("test/hold", [&](const json&) {
    s.allRead.wait();
    return json(true);
  });
  h.server.Dispatcher().OnRequest("test/echo", [](const json& p) { return p; });
  s.in = {Req(1, "initialize"), Req(2, "test/hold"), Req(3, "test/echo"),
          Note("$/cancelRequest", {{"id", 3}}), Req(4, "test/echo")};
  s.Run(h.server, h.writer, "Content-Type: x\r\n\r\n" + Frame("{broken"));
  EXPECT_EQ(h.AnswerTo(3)["error"]["code"], kRequestCancelled);
  EXPECT_TRUE(h.AnswerTo(4).contains("result"));
  int parseErrors = 0, damageLogs = 0;
  for (const json& m : h.Messages()) {
    if (m.contains("error") && m["error"]["code"] == kParseError) ++parseErrors;
    if (m.value("method", "") == "window/logMessage") ++damageLogs;
  }
  EXPECT_EQ(parseErrors, 1);
  EXPECT_EQ(damageLogs, 1);
}

}  // namespace
}  // namespace velmora::lsp
