#include "hosts/lsp/dispatcher.h"

#include "hosts/lsp/source_texts.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velmora::lsp {
namespace {

// A dispatcher with a few bound methods, as the server binds its own.
class LspDispatcher : public ::testing::Test {
 protected:
  void SetUp() override {
    d.OnRequest("echo", [](const json& params) { return params; });
    d.OnRequest("needsUri", [](const json& params) {
      return json(params.at("textDocument").at("uri").get<std::string>());
    });
    d.OnRequest("refuses", [](const json&) -> json {
      throw TLspError(kRequestFailed, "The name is not a valid identifier.");
    });
    d.OnRequest("breaks", [](const json&) -> json { throw std::runtime_error("boom"); });
    d.OnNotification("note", [this](const json& params) { notes.push_back(params.dump()); });
    d.OnNotification("throwingNote", [](const json&) { throw std::runtime_error("x"); });
    d.OnResponse([this](const json& id, const json* result, const json* error) {
      responses.push_back(id.dump() + (result ? " result " + result->dump() : "") +
                          (error ? " error " + error->dump() : ""));
    });
  }

  // The answer's error code, 0 for a result, -1 for no answer at all.
  int Code(std::string_view body) {
    const std::optional<json> answer = d.Handle(body);
    if (!answer) return -1;
    if (answer->contains("error")) return answer->at("error").at("code").get<int>();
    return 0;
  }

  TDispatcher d;
  std::vector<std::string> notes;
  std::vector<std::string> responses;
};

struct AnswerCase {
  const char* body;
  int code;  // 0 result, -1 no answer
};

TEST_F(LspDispatcher, AnswersEveryRequestOnceAndNoNotification) {
  const AnswerCase cases[] = {
      {.body = R"({"jsonrpc":"2.0","id":1,"method":"echo","params":{"a":1}})", .code = 0},
      {.body = R"({"jsonrpc":"2.0","id":"s-1","method":"echo"})", .code = 0},
      {.body = R"({"jsonrpc":"2.0","id":2,"method":"nope"})", .code = kMethodNotFound},
      {.body = R"({"jsonrpc":"2.0","method":"nope"})", .code = -1},
      {.body = R"({"jsonrpc":"2.0","method":"$/setTrace","params":{}})", .code = -1},
      {.body = R"({"jsonrpc":"2.0","id":3,"method":"needsUri","params":{}})",
       .code = kInvalidParams},
      {.body =
           R"({"jsonrpc":"2.0","id":4,"method":"needsUri","params":{"textDocument":{"uri":5}}})",
       .code = kInvalidParams},
      {.body = R"({"jsonrpc":"2.0","id":5,"method":"refuses"})", .code = kRequestFailed},
      {.body = R"({"jsonrpc":"2.0","id":6,"method":"breaks"})", .code = kInternalError},
      {.body = R"({"jsonrpc":"2.0","method":"throwingNote"})", .code = -1},
      {.body = "{not json", .code = kParseError},
      {.body = "", .code = kParseError},
      {.body = "[1,2]", .code = kInvalidRequest},
      {.body = "42", .code = kInvalidRequest},
      {.body = R"({"jsonrpc":"2.0","id":7,"method":12})", .code = kInvalidRequest},
      {.body = R"({"jsonrpc":"2.0","id":{"x":1},"method":"echo"})", .code = kInvalidRequest},
      {.body = R"({"jsonrpc":"2.0","id":1.5,"method":"echo"})", .code = kInvalidRequest},
      {.body = R"({"jsonrpc":"2.0","id":8})", .code = kInvalidRequest},
  };
  for (const AnswerCase& c : cases) EXPECT_EQ(Code(c.body), c.code) << c.body;
}

TEST_F(LspDispatcher, ResultCarriesTheRequestIdAndRefusalsTheirMessage) {
  const auto answer = d.Handle(R"({"jsonrpc":"2.0","id":"abc","method":"echo","params":[1]})");
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->dump(), R"({"id":"abc","jsonrpc":"2.0","result":[1]})");
  const auto refused = d.Handle(R"({"jsonrpc":"2.0","id":9,"method":"refuses"})");
  ASSERT_TRUE(refused);
  EXPECT_EQ(refused->at("error").at("message"), "The name is not a valid identifier.");
  EXPECT_EQ(refused->at("id"), 9);
}

TEST_F(LspDispatcher, NotificationsAndResponsesReachTheirHandlers) {
  EXPECT_EQ(Code(R"({"jsonrpc":"2.0","method":"note","params":{"n":1}})"), -1);
  EXPECT_EQ(Code(R"({"jsonrpc":"2.0","method":"note"})"), -1);
  EXPECT_EQ(notes, (std::vector<std::string>{R"({"n":1})", "{}"}));
  EXPECT_EQ(Code(R"({"jsonrpc":"2.0","id":3,"result":null})"), -1);
  EXPECT_EQ(Code(R"({"jsonrpc":"2.0","id":"w","error":{"code":1,"message":"m"}})"), -1);
  EXPECT_EQ(responses,
            (std::vector<std::string>{"3 result null", R"("w" error {"code":1,"message":"m"})"}));
}

TEST_F(LspDispatcher, CancelledRequestAnswersCancelledOnce) {
  d.Cancel(json(11));
  d.Cancel(json("t"));
  d.Cancel(json::object());  // not an id: ignored
  EXPECT_EQ(Code(R"({"jsonrpc":"2.0","id":11,"method":"echo"})"), kRequestCancelled);
  EXPECT_EQ(Code(R"({"jsonrpc":"2.0","id":11,"method":"echo"})"), 0);
  EXPECT_EQ(Code(R"({"jsonrpc":"2.0","id":"t","method":"echo"})"), kRequestCancelled);
  // 12 and "12" are different ids.
  d.Cancel(json("12"));
  EXPECT_EQ(Code(R"({"jsonrpc":"2.0","id":12,"method":"echo"})"), 0);
}

TEST_F(LspDispatcher, GateHoldsBackAllButTheNamedMethods) {
  d.OnRequest("initialize", [](const json&) { return json::object(); });
  d.SetGate(false, {"initialize", "exit"});
  EXPECT_EQ(Code(R"({"jsonrpc":"2.0","id":1,"method":"echo"})"), kServerNotInitialized);
  EXPECT_EQ(Code(R"({"jsonrpc":"2.0","method":"note"})"), -1);
  EXPECT_TRUE(notes.empty());
  EXPECT_EQ(Code(R"({"jsonrpc":"2.0","id":2,"method":"initialize"})"), 0);
  d.SetGate(true, {});
  EXPECT_EQ(Code(R"({"jsonrpc":"2.0","id":3,"method":"echo"})"), 0);
}

TEST_F(LspDispatcher, RawResultsAreSplicedAsTheyAre) {
  d.OnRequest("raw", [](const json&) { return TDispatcher::RawResult(R"([{"a":1}])"); });
  const std::optional<json> answer = d.Handle(R"({"jsonrpc":"2.0","id":"r7","method":"raw"})");
  ASSERT_TRUE(answer);
  EXPECT_EQ(TDispatcher::Serialize(*answer), R"({"id":"r7","jsonrpc":"2.0","result":[{"a":1}]})");
  // Anything else serializes as the library writes it.
  EXPECT_EQ(TDispatcher::Serialize(json{{"id", 1}, {"result", {1, 2}}}),
            R"({"id":1,"result":[1,2]})");
}

struct StringCase {
  std::string text;
  const char* written;
};

TEST(LspJsonText, StringsAreEscapedAndNonUtf8Replaced) {
  const StringCase cases[] = {
      {.text = "TForm1", .written = R"("TForm1")"},
      {.text = R"(say "hi" \ there)", .written = R"("say \"hi\" \\ there")"},
      {.text = "tab\there", .written = R"("tab\there")"},
      {.text = "caf\xc3\xa9", .written = "\"caf\xc3\xa9\""},
      {.text = "Windows-1252 \xe9", .written = "\"Windows-1252 \xef\xbf\xbd\""},
  };
  for (const StringCase& c : cases) {
    std::string out;
    AppendJsonString(out, c.text);
    EXPECT_EQ(out, c.written) << c.text;
  }
}

}  // namespace
}  // namespace velmora::lsp
