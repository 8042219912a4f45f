// Opening files into one model on several threads: the model, its JSON, its saved form
// and the files list are the same whatever the number of threads. Suite names hold
// "Threads" so that the thread sanitizer runs them.
#include "parsing/project_parse.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "model/class_list.h"
#include "model/model_json.h"
#include "model/model_text.h"
#include "support/stream.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> FilesUnder(const fs::path& dir) {
  std::vector<std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(dir))
    if (entry.is_regular_file() && entry.path().extension() != ".txt" &&
        entry.path().extension() != ".md")
      files.push_back(entry.path().string());
  std::sort(files.begin(), files.end());
  return files;
}

// Everything `velmora dump` can print or save of one parse.
std::string Everything(const TProjectParseRequest& request) {
  TFilesList files;
  TClasslist classes;
  const TProjectParseResult result = ParseProject(request, files, classes);
  TMemoryStream saved;
  files.SaveToStream(saved);
  classes.SaveToStream(saved);
  std::string out = DescribeModel(classes) + ModelToJson(classes) + saved.Data();
  out += "files " + std::to_string(result.Files) + " bytes " + std::to_string(result.Bytes);
  for (const std::string& error : result.Errors) out += "\nerror " + error;
  return out;
}

TEST(ProjectParseThreadsTest, TheModelIsTheSameForAnyNumberOfThreads) {
  const fs::path examples = fs::path(VELMORA_SOURCE_DIR) / "examples";
  const fs::path golden = fs::path(VELMORA_TEST_DATA) / "parsing" / "golden";
  std::vector<std::string> all = FilesUnder(examples);
  for (const std::string& f : FilesUnder(golden)) all.push_back(f);
  all.push_back((examples / "missing.pas").string());  // an error message too
  const struct {
    const char* what = "";
    std::vector<std::string> files = {};
    bool follow = false;
    std::vector<std::string> includePath = {};
  } cases[] = {
      {.what = "examples and golden inputs", .files = all, .follow = false},
      {.what = "following includes", .files = all, .follow = true},
      {.what = "with an include path",
       .files = FilesUnder(examples),
       .follow = true,
       .includePath = {(examples / "common").string()}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const std::string one = Everything({c.files, c.follow, c.includePath, 1});
    EXPECT_NE(one.find("class"), std::string::npos);
    for (int threads : {2, 4, 7}) {
      EXPECT_EQ(Everything({c.files, c.follow, c.includePath, threads}), one)
          << threads << " threads";
    }
  }
}

}  // namespace
}  // namespace velmora
