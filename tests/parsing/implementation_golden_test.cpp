// Every method and routine the parsers find in the example project, looked up in the
// project's source files as "Go to Implementation" does, compared whole with
// golden/implementations/examples.txt ("Class::Method(params) file:line", or "-" when no
// file has it). VELMORA_UPDATE_GOLDEN=1 rewrites the expected file.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "model/class_list.h"
#include "parsing/implementation_locator.h"
#include "parsing/source_parser.h"
#include "support/stream.h"
#include "support/text_buffer.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;

std::string Relative(const std::string& path) {
  return fs::path(path).lexically_relative(VELMORA_SOURCE_DIR "/examples").generic_string();
}

std::string Locate(const std::vector<std::string>& sources, const TClassDescription* cls,
                   const TMethodDescription& m) {
  std::string out =
      (cls ? cls->Name + "::" : std::string()) + m.Name + "(" + m.Parameters.GetText() + ") ";
  std::string file;
  int32_t line = -1;
  if (LocateImplementationInFiles(file, sources, false, line, m, cls)) {
    out += Relative(file) + ":" + std::to_string(line);
  } else {
    out += "-";
  }
  return out + "\n";
}

TEST(ImplementationGoldenTest, ExampleProject) {
  std::vector<std::string> parsed, sources;
  for (const auto& entry : fs::recursive_directory_iterator(VELMORA_SOURCE_DIR "/examples")) {
    const std::string ext = entry.path().extension().string();
    if (ext == ".h" || ext == ".cpp" || ext == ".pas") parsed.push_back(entry.path().string());
    if (ext == ".cpp" || ext == ".pas") sources.push_back(entry.path().string());
  }
  std::sort(parsed.begin(), parsed.end());
  std::sort(sources.begin(), sources.end());
  ASSERT_FALSE(sources.empty());

  TClasslist list;
  for (const std::string& path : parsed) {
    TMemoryStream text(LoadSourceText(path));
    ParseSourceText(LanguageOfFile(path), path, text, list, TParseOptions{}, nullptr);
  }
  std::string actual;
  for (int c = 0; c < list.Count(); ++c) {
    const TClassDescription* cls = list.Items(c);
    for (int i = 0; i < cls->Methods.Count(); ++i)
      actual += Locate(sources, cls, *cls->Methods.Items(i));
  }
  for (int i = 0; i < list.Routines.Count(); ++i) {
    actual += Locate(sources, nullptr, *list.Routines.Items(i));
  }

  const fs::path expected = VELMORA_TEST_DATA "/parsing/golden/implementations/examples.txt";
  const char* update = std::getenv("VELMORA_UPDATE_GOLDEN");
  if (update && std::string(update) == "1") {
    fs::create_directories(expected.parent_path());
    std::ofstream(expected, std::ios::binary) << actual;
    return;
  }
  std::ifstream in(expected, std::ios::binary);
  std::stringstream want;
  want << in.rdbuf();
  EXPECT_EQ(actual, want.str());
}

}  // namespace
}  // namespace velmora
