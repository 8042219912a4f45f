// `velmora lsp` driven by a real client: Neovim's built-in LSP client, headless, through
// nvim/client.lua. Skipped where Neovim is not installed.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <nlohmann/json.hpp>

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

bool HaveNvim() {
  return std::system("command -v nvim >/dev/null 2>&1") == 0;
}

std::string Quote(const std::string& s) {
  std::string q = "'";
  for (char c : s) q += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return q + "'";
}

// Runs the client script on `file` with the requests given and returns what it wrote.
json RunClient(const fs::path& root, const fs::path& file, const json& requests) {
  const fs::path out =
      fs::temp_directory_path() / ("velmora-nvim-" + std::to_string(::getpid()) + ".json");
  fs::remove(out);
  const std::string command =
      "VELMORA=" + Quote(VELMORA_BINARY) + " ROOT=" + Quote(root.string()) +
      " FILE=" + Quote(file.string()) + " OUT=" + Quote(out.string()) +
      " REQUESTS=" + Quote(requests.dump()) + " timeout 120 nvim --headless --clean -n -c " +
      Quote("luafile " + std::string(VELMORA_TEST_DATA) + "/hosts/lsp/nvim/client.lua") +
      " >/dev/null 2>&1";
  std::system(command.c_str());
  std::ifstream in(out);
  std::stringstream text;
  text << in.rdbuf();
  fs::remove(out);
  return json::parse(text.str(), nullptr, false);
}

TEST(LspNeovim, ClientStartsTheServerAndAgreesOnTheSession) {
  if (!HaveNvim()) GTEST_SKIP() << "nvim is not installed";
  const fs::path root = fs::path(VELMORA_SOURCE_DIR) / "examples/KilnLog";
  const json result = RunClient(root, root / "MainForm.h", json::array());
  ASSERT_FALSE(result.is_discarded()) << "the client wrote no result";
  EXPECT_EQ(result["errors"], json::array()) << result.dump();
  EXPECT_EQ(result["capabilities"]["positionEncoding"], "utf-16");
  EXPECT_EQ(result["capabilities"]["textDocumentSync"]["change"], 2);
}

// Neovim asks for the outline and the jumps of an open header: the answers as its own
// client received them.
TEST(LspNeovim, OutlineAndJumpsReachTheClient) {
  if (!HaveNvim()) GTEST_SKIP() << "nvim is not installed";
  const fs::path root = fs::path(VELMORA_SOURCE_DIR) / "examples/KilnLog";
  const json requests = json::array({
      {{"method", "textDocument/documentSymbol"}},
      {{"method", "textDocument/definition"}, {"line", 29}, {"character", 25}},
      {{"method", "textDocument/implementation"}, {"line", 52}, {"character", 30}},
      {{"method", "textDocument/hover"}, {"line", 45}, {"character", 35}},
  });
  const json result = RunClient(root, root / "MainForm.h", requests);
  ASSERT_FALSE(result.is_discarded()) << "the client wrote no result";
  EXPECT_EQ(result["errors"], json::array()) << result.dump();
  const json& answers = result["answers"];
  ASSERT_EQ(answers.size(), 4u) << result.dump();
  // Neovim announces hierarchical symbols: one class with its members inside.
  const json& outline = answers[0]["result"];
  ASSERT_EQ(outline.size(), 1u) << outline.dump();
  EXPECT_EQ(outline[0]["name"], "TFormMain");
  EXPECT_EQ(outline[0]["children"].size(), 43u);
  const auto where = [](const json& locations) {
    if (!locations.is_array() || locations.empty()) return std::string("none");
    return fs::path(locations[0]["uri"].get<std::string>()).filename().string() + ":" +
           std::to_string(locations[0]["range"]["start"]["line"].get<int>());
  };
  EXPECT_EQ(where(answers[1]["result"]), "MainForm.cpp:38") << answers[1].dump();
  EXPECT_EQ(where(answers[2]["result"]), "MainForm.cpp:32") << answers[2].dump();
  EXPECT_NE(answers[3]["result"]["contents"]["value"].get<std::string>().find("GetFiring"),
            std::string::npos)
      << answers[3].dump();
}

}  // namespace
