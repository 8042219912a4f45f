// Both parsers on damaged versions of the example files: every truncation point and many
// random byte changes. The parsers must end, without a crash, on whatever they are given;
// the ASan build turns any read past the text into a failure.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "model/class_list.h"
#include "parsing/source_parser.h"
#include "support/stream.h"
#include "support/text_buffer.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> ExampleSources() {
  std::vector<fs::path> files;
  std::error_code ec;
  for (const auto& f :
       fs::recursive_directory_iterator(fs::path(VELMORA_SOURCE_DIR) / "examples", ec)) {
    const std::string ext = f.path().extension().string();
    if (f.is_regular_file() && (ext == ".h" || ext == ".cpp" || ext == ".pas" || ext == ".inc"))
      files.push_back(f.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

void ParseOnce(TLanguage language, std::string text) {
  TMemoryStream stream(std::move(text));
  TClasslist list;
  TStringList includes(true, TDuplicates::Ignore, false);
  ParseSourceText(language, "damaged", stream, list, TParseOptions{.WantPositions = true},
                  &includes);
}

TEST(ParserRobustnessTest, ExampleFilesCutAtEveryPointInBothLanguages) {
  const auto files = ExampleSources();
  ASSERT_FALSE(files.empty());
  for (const fs::path& file : files) {
    const std::string text = LoadSourceText(file.string());
    // Every cut for the first two kilobytes, then every 7th: the structure near the start
    // (heads, sections) is where a cut hurts most.
    for (size_t cut = 0; cut <= text.size(); cut += cut < 2048 ? 1 : 7) {
      SCOPED_TRACE(file.string() + " cut at " + std::to_string(cut));
      ParseOnce(TLanguage::Cpp, text.substr(0, cut));
      ParseOnce(TLanguage::Pascal, text.substr(0, cut));
    }
  }
}

TEST(ParserRobustnessTest, RandomByteChangesInBothLanguages) {
  std::mt19937 random(20261121);  // fixed seed: a failure is repeatable
  // Bytes that steer the parsers most, mixed with anything at all.
  static const char kInteresting[] = "{}()[]<>;:,=*&~#\"'/\\\r\n\0$.-";
  const std::string interesting(kInteresting, sizeof kInteresting - 1);
  for (const fs::path& file : ExampleSources()) {
    const std::string original = LoadSourceText(file.string());
    for (int round = 0; round < 200; ++round) {
      std::string text = original;
      const int changes = 1 + static_cast<int>(random() % 16);
      for (int k = 0; k < changes && !text.empty(); ++k) {
        const size_t at = random() % text.size();
        const unsigned pick = random() % 4;
        if (pick == 0)
          text[at] = static_cast<char>(random() % 256);
        else if (pick == 1)
          text[at] = interesting[random() % interesting.size()];
        else if (pick == 2)
          text.erase(at, 1 + random() % 32);
        else
          text.insert(at, text.substr(random() % text.size(), 1 + random() % 64));
      }
      SCOPED_TRACE(file.string() + " round " + std::to_string(round));
      ParseOnce(TLanguage::Cpp, text);
      ParseOnce(TLanguage::Pascal, text);
    }
  }
}

}  // namespace
}  // namespace velmora
