// `velmora lsp` as a client meets it: a child process spoken to over pipes. The project is
// opened in the background, so the client waits for the progress to end (or polls) before
// it counts on the whole model.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <thread>

#include <nlohmann/json.hpp>

#include "hosts/lsp/positions.h"
#include "hosts/lsp/transport.h"

namespace velmora::lsp {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

const fs::path kRoot = fs::path(VELMORA_SOURCE_DIR) / "examples/KilnLog";

class ServerProcess {
 public:
  ServerProcess() {
    int toChild[2], fromChild[2];
    if (::pipe(toChild) != 0 || ::pipe(fromChild) != 0) return;
    pid_ = ::fork();
    if (pid_ == 0) {
      ::dup2(toChild[0], STDIN_FILENO);
      ::dup2(fromChild[1], STDOUT_FILENO);
      const int null = ::open("/dev/null", O_WRONLY);
      ::dup2(null, STDERR_FILENO);
      for (int fd : {toChild[0], toChild[1], fromChild[0], fromChild[1], null}) ::close(fd);
      ::execl(VELMORA_BINARY, VELMORA_BINARY, "lsp", static_cast<char*>(nullptr));
      ::_exit(127);
    }
    ::close(toChild[0]);
    ::close(fromChild[1]);
    in_ = toChild[1];
    out_ = fromChild[0];
    ::signal(SIGPIPE, SIG_IGN);
    reader_ = std::make_unique<TFrameReader>([this](char* buffer, std::size_t size) -> std::size_t {
      pollfd p{out_, POLLIN, 0};
      if (::poll(&p, 1, 20000) <= 0) return 0;  // a silent server counts as gone
      const ssize_t n = ::read(out_, buffer, size);
      return n > 0 ? static_cast<std::size_t>(n) : 0;
    });
  }
  ~ServerProcess() {
    if (in_ >= 0) ::close(in_);
    if (out_ >= 0) ::close(out_);
    if (pid_ > 0 && !waited_) {
      ::kill(pid_, SIGKILL);
      ::waitpid(pid_, nullptr, 0);
    }
  }
  bool Started() const { return pid_ > 0; }

  void SendRaw(const std::string& bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
      const ssize_t n = ::write(in_, bytes.data() + done, bytes.size() - done);
      if (n <= 0) return;
      done += static_cast<std::size_t>(n);
    }
  }
  void Send(const json& message) { SendRaw(Frame(message.dump())); }
  void Notify(const char* method, json params) {
    Send({{"jsonrpc", "2.0"}, {"method", method}, {"params", std::move(params)}});
  }
  /// Reads until `done` says a message is the one waited for; answers the server's own
  /// requests (progress tokens) on the way. Null when the server goes silent or away.
  json ReadUntil(const std::function<bool(const json&)>& done) {
    std::string body, error;
    while (reader_->Next(body, error) != TFrameStatus::End) {
      json m = json::parse(body, nullptr, false);
      if (m.is_discarded()) continue;
      seen_.push_back(m);
      if (m.contains("method") && m.contains("id"))
        Send({{"jsonrpc", "2.0"}, {"id", m["id"]}, {"result", nullptr}});
      if (done(m)) return m;
    }
    return nullptr;
  }
  /// Sends a request and returns its answer (the whole response object).
  json Call(const char* method, json params) {
    const int id = ++nextId_;
    Send({{"jsonrpc", "2.0"}, {"id", id}, {"method", method}, {"params", std::move(params)}});
    return ReadUntil(
        [id](const json& m) { return m.value("id", json()) == id && !m.contains("method"); });
  }
  /// The exit code, once the server has ended.
  int Wait() {
    int status = 0;
    ::close(in_);
    in_ = -1;
    ::waitpid(pid_, &status, 0);
    waited_ = true;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  const std::vector<json>& Seen() const { return seen_; }

 private:
  pid_t pid_ = -1;
  int in_ = -1, out_ = -1;
  bool waited_ = false;
  int nextId_ = 0;
  std::unique_ptr<TFrameReader> reader_;
  std::vector<json> seen_;
};

json At(const fs::path& file, int line, int character) {
  return {{"textDocument", {{"uri", UriFromPath(file.string())}}},
          {"position", {{"line", line}, {"character", character}}}};
}

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

std::string Where(const json& location) {
  return fs::path(location["uri"].get<std::string>()).filename().string() + ":" +
         std::to_string(location["range"]["start"]["line"].get<int>());
}

TEST(LspProcess, ASessionOverPipes) {
  ServerProcess server;
  ASSERT_TRUE(server.Started());
  const json init = server.Call(
      "initialize",
      {{"processId", ::getpid()},
       {"rootUri", UriFromPath(kRoot.string())},
       {"capabilities",
        {{"window", {{"workDoneProgress", true}}},
         {"textDocument", {{"documentSymbol", {{"hierarchicalDocumentSymbolSupport", true}}}}}}}});
  ASSERT_TRUE(init.contains("result")) << init.dump();
  EXPECT_EQ(init["result"]["capabilities"]["definitionProvider"], true);
  server.Notify("initialized", json::object());
  // The project parses in the background and reports its progress to the end.
  const json end = server.ReadUntil([](const json& m) {
    return m.value("method", "") == "$/progress" && m["params"]["value"]["kind"] == "end";
  });
  ASSERT_FALSE(end.is_null()) << "no end of progress";
  EXPECT_EQ(end["params"]["value"]["message"], "9/9 files");
  bool begun = false, reported = false;
  for (const json& m : server.Seen()) {
    if (m.value("method", "") != "$/progress") continue;
    begun |= m["params"]["value"]["kind"] == "begin";
    reported |= m["params"]["value"].contains("percentage");
  }
  EXPECT_TRUE(begun && reported);

  const fs::path header = kRoot / "MainForm.h";
  std::string text = ReadFile(header);
  server.Notify("textDocument/didOpen", {{"textDocument",
                                          {{"uri", UriFromPath(header.string())},
                                           {"languageId", "cpp"},
                                           {"version", 1},
                                           {"text", text}}}});
  const json symbols = server.Call("textDocument/documentSymbol",
                                   {{"textDocument", {{"uri", UriFromPath(header.string())}}}});
  ASSERT_EQ(symbols["result"].size(), 1u) << symbols.dump();
  EXPECT_EQ(symbols["result"][0]["name"], "TFormMain");

  const json definition = server.Call("textDocument/definition", At(header, 29, 25));
  ASSERT_EQ(definition["result"].size(), 1u) << definition.dump();
  EXPECT_EQ(Where(definition["result"][0]), "MainForm.cpp:38");
  const json implementation =
      server.Call("textDocument/implementation", At(kRoot / "FiringTypes.h", 116, 24));
  ASSERT_EQ(implementation["result"].size(), 1u) << implementation.dump();
  EXPECT_EQ(Where(implementation["result"][0]), "FiringTypes.cpp:94");
  const json hover = server.Call("textDocument/hover", At(header, 45, 35));
  EXPECT_NE(hover["result"]["contents"]["value"].get<std::string>().find("GetFiring(int Index)"),
            std::string::npos)
      << hover.dump();

  // An edit is re-parsed in the background, a moment later.
  const std::size_t at = text.find("private:");
  text.insert(at, "public:\n    void __fastcall AddedInTheEditor();\n");
  server.Notify("textDocument/didChange",
                {{"textDocument", {{"uri", UriFromPath(header.string())}, {"version", 2}}},
                 {"contentChanges", json::array({{{"text", text}}})}});
  bool followed = false;
  for (int attempt = 0; attempt < 100 && !followed; ++attempt) {
    const json found = server.Call("workspace/symbol", {{"query", "AddedInTheEditor"}});
    followed = found["result"].size() == 1;
    if (!followed) std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  EXPECT_TRUE(followed);

  // Bad input: the server answers and keeps going.
  EXPECT_EQ(server.Call("textDocument/definition", At(kRoot / "Never.pas", 3, 3))["result"],
            json::array());
  EXPECT_EQ(server.Call("textDocument/documentSymbol",
                        {{"textDocument", {{"uri", "untitled:Untitled-1"}}}})["result"],
            json::array());
  EXPECT_EQ(server.Call("textDocument/definition", At(header, 100000, 100000))["result"],
            json::array());
  EXPECT_EQ(server.Call("textDocument/hover", {{"textDocument", 5}})["error"]["code"], -32602);
  server.SendRaw(Frame("{not json"));
  const json shutdown = server.Call("shutdown", nullptr);
  EXPECT_TRUE(shutdown.contains("result")) << shutdown.dump();
  server.Notify("exit", nullptr);
  EXPECT_EQ(server.Wait(), 0);
}

TEST(LspProcess, AClientThatGoesAwayEndsTheServer) {
  ServerProcess server;
  ASSERT_TRUE(server.Started());
  server.Call("initialize",
              {{"rootUri", UriFromPath(kRoot.string())}, {"capabilities", json::object()}});
  server.Notify("initialized", json::object());
  // No shutdown: stdin closes while the project may still be parsing.
  EXPECT_EQ(server.Wait(), 1);
}

}  // namespace
}  // namespace velmora::lsp
