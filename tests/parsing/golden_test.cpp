// Golden files for both parsers: each case folder under golden/cpp and golden/pascal holds
// `input.<ext>` and `expected.txt`, the model text of what the parser records; every file of
// the example project has its own expected text under golden/examples. A folder without an
// expected file only checks that the parse ends. VELMORA_UPDATE_GOLDEN=1 rewrites the
// expected files after a deliberate change; review the diff before committing it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "model/class_list.h"
#include "model/model_text.h"
#include "parsing/source_parser.h"
#include "support/stream.h"
#include "support/text_buffer.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;

struct GoldenCase {
  std::string name;  // shown in the test name
  fs::path input;
  fs::path expected;
};

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
                           file.path(), dir.path() / "expected.txt"});
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
  TMemoryStream text(LoadSourceText(input.string()));
  TClasslist list;
  TStringList includes(true, TDuplicates::Ignore, false);
  ParseSourceText(LanguageOfFile(name), name, text, list, TParseOptions{}, &includes);
  std::string out = DescribeModel(list);
  if (includes.Count() > 0) {
    out += "includes:";
    for (int i = 0; i < includes.Count(); ++i) out += " " + includes.Strings(i);
    out += '\n';
  }
  return out;
}

class GoldenTest : public ::testing::TestWithParam<GoldenCase> {};

TEST_P(GoldenTest, ParserOutputMatches) {
  const GoldenCase& c = GetParam();
  const std::string actual = ParseToText(c.input);
  const char* update = std::getenv("VELMORA_UPDATE_GOLDEN");
  if (update && std::string(update) == "1") {
    fs::create_directories(c.expected.parent_path());
    std::ofstream(c.expected, std::ios::binary) << actual;
    return;
  }
  if (!fs::exists(c.expected)) return;  // a crash-only case
  EXPECT_EQ(actual, ReadText(c.expected)) << "input: " << c.input << "\nexpected: " << c.expected;
}

INSTANTIATE_TEST_SUITE_P(Parsers, GoldenTest, ::testing::ValuesIn(CollectCases()),
                         [](const auto& instance) { return instance.param.name; });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(GoldenTest);

}  // namespace
}  // namespace velmora
