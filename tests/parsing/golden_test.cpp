// Golden files for both parsers: each case folder under golden/cpp and golden/pascal holds
// `input.<ext>` and `expected.txt`, the model text of what the parser records; every file of
// the example project has its own expected text under golden/examples. A case folder
// without an expected file is a fault (a forgotten file would pass unseen) unless it holds
// a file named `crash-only`: then the case only checks that the parse ends.
//
// VELMORA_UPDATE_GOLDEN=1 rewrites the expected files that differ after a deliberate
// change, names each one it rewrote, and reports every case as skipped, so an update run
// is never taken for a passing one; review the diff before committing it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "model/class_list.h"
#include "parse_snippet.h"
#include "parsing/source_parser.h"
#include "support/text_buffer.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;

struct GoldenCase {
  std::string name;  // shown in the test name
  fs::path input;
  fs::path expected;
  bool crashOnly = false;  // the folder holds a `crash-only` marker: no expected text
};

// The input's path in test listings, not the struct's bytes.
void PrintTo(const GoldenCase& c, std::ostream* os) {
  *os << c.input.string();
}

std::string ReadText(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

bool IsSourceFile(const fs::path& p) {
  const std::string ext = p.extension().string();
  return ext == ".h" || ext == ".cpp" || ext == ".pas";
}

std::string TestName(std::string s) {
  for (char& c : s)
    if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
  return s;
}

std::vector<GoldenCase> CollectCases() {
  std::vector<GoldenCase> cases;
  const fs::path golden = fs::path(VELMORA_TEST_DATA) / "parsing" / "golden";
  for (const char* lang : {"cpp", "pascal"}) {
    std::error_code ec;
    for (const auto& dir : fs::directory_iterator(golden / lang, ec)) {
      if (!dir.is_directory()) continue;
      for (const auto& file : fs::directory_iterator(dir.path())) {
        if (file.path().stem() == "input")
          cases.push_back({TestName(std::string(lang) + "_" + dir.path().filename().string()),
                           file.path(), dir.path() / "expected.txt",
                           fs::exists(dir.path() / "crash-only")});
      }
    }
  }
  const fs::path examples = fs::path(VELMORA_SOURCE_DIR) / "examples";
  std::error_code ec;
  for (const auto& file : fs::recursive_directory_iterator(examples, ec)) {
    if (!file.is_regular_file() || !IsSourceFile(file.path())) continue;
    const std::string rel = fs::relative(file.path(), examples).string();
    cases.push_back(
        {TestName("example_" + rel), file.path(), golden / "examples" / (TestName(rel) + ".txt")});
  }
  std::sort(cases.begin(), cases.end(),
            [](const GoldenCase& a, const GoldenCase& b) { return a.name < b.name; });
  return cases;
}

std::string ParseToText(const fs::path& input) {
  const std::string name = input.filename().string();
  TClasslist list;
  const TParsedSnippet parsed =
      ParseSnippetInto(list, LanguageOfFile(name), LoadSourceText(input.string()), {.Unit = name});
  return DescribeParse(list, parsed.Includes);
}

bool UpdateMode() {
  const char* update = std::getenv("VELMORA_UPDATE_GOLDEN");
  return update && std::string(update) == "1";
}

class GoldenTest : public ::testing::TestWithParam<GoldenCase> {};

TEST_P(GoldenTest, ParserOutputMatches) {
  const GoldenCase& c = GetParam();
  const std::string actual = ParseToText(c.input);
  if (c.crashOnly) {
    EXPECT_FALSE(fs::exists(c.expected))
        << c.expected << " is never compared: its folder holds a crash-only marker";
    return;
  }
  if (UpdateMode()) {
    if (fs::exists(c.expected) && ReadText(c.expected) == actual) GTEST_SKIP() << "unchanged";
    fs::create_directories(c.expected.parent_path());
    std::ofstream(c.expected, std::ios::binary) << actual;
    GTEST_SKIP() << "rewrote " << c.expected.string();
  }
  ASSERT_TRUE(fs::exists(c.expected))
      << "no expected file " << c.expected
      << ": make it with VELMORA_UPDATE_GOLDEN=1, or put a file named crash-only beside " << c.input
      << " when the case only checks that the parse ends";
  EXPECT_EQ(actual, ReadText(c.expected)) << "input: " << c.input << "\nexpected: " << c.expected;
}

INSTANTIATE_TEST_SUITE_P(Parsers, GoldenTest, ::testing::ValuesIn(CollectCases()),
                         [](const auto& instance) { return instance.param.name; });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(GoldenTest);

}  // namespace
}  // namespace velmora
