// The list invariants the parsers rely on, over every file of the example project (as it
// is on disk and in buffer form) and over random bytes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>

#include "parsing/cpp_tokenizer.h"
#include "parsing/pascal_tokenizer.h"
#include "support/text_buffer.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;

bool IsCppName(const fs::path& path) {
  std::string ext = path.extension().string();
  std::transform(ext.begin(), ext.end(), ext.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return ext == ".c" || ext == ".cpp" || ext == ".cxx" || ext == ".cc" || ext == ".h" ||
         ext == ".hpp" || ext == ".hxx";
}

void CheckInvariants(const std::string& name, const std::string& text, bool cpp) {
  std::unique_ptr<TTokenizer> t;
  if (cpp)
    t = std::make_unique<TCPPTokenizer>();
  else
    t = std::make_unique<TPascalTokenizer>();
  t->SetText(text.c_str(), static_cast<int32_t>(text.size()));
  const int32_t last = t->LastIndex();
  const int32_t nul = static_cast<int32_t>(std::strlen(text.c_str()));
  ASSERT_GE(last, 0) << name;
  ASSERT_EQ(t->Offsets().Count(), t->Kinds().Count()) << name;
  EXPECT_EQ(t->TokenOffset(0), 0) << name;
  EXPECT_EQ(t->TokenOffset(last), nul) << name;
  EXPECT_EQ(t->Kinds().Get(last), tkEndOfText) << name;

  int32_t line = 1;  // counted here independently: LF, or CR not followed by LF
  int32_t counted = 0;
  for (int32_t i = 0; i <= last; ++i) {
    const int32_t offset = t->TokenOffset(i);
    for (; counted < offset; ++counted)
      if (text[counted] == '\n' || (text[counted] == '\r' && text[counted + 1] != '\n')) ++line;
    ASSERT_EQ(t->LineOfToken(i), line) << name << " token " << i;
    if (i == last) break;
    ASSERT_LT(offset, t->TokenOffset(i + 1)) << name << " token " << i;
    const int kind = t->Kinds().Get(i);
    const std::string_view kindName = cpp ? CppTokenKindName(kind) : PascalTokenKindName(kind);
    ASSERT_NE(kind, 0) << name << " token " << i;
    ASSERT_NE(kindName, "unused") << name << " token " << i << " kind " << kind;
    ASSERT_EQ(t->IndexOfOffset(offset), i) << name;
  }
  // Out of order, so the line count starts over from the text's start.
  for (int32_t i = last; i >= 0; i -= 97)
    EXPECT_EQ(t->LineOfToken(i), t->LineOfOffset(t->TokenOffset(i))) << name;
}

TEST(TokenInvariantsTest, ListsCoverEveryExampleFileExactly) {
  const fs::path root = fs::path(VELMORA_SOURCE_DIR) / "examples";
  std::error_code ec;
  int files = 0;
  // A missing or empty folder simply has no files to check.
  for (fs::recursive_directory_iterator it(root, ec), end; !ec && it != end; it.increment(ec)) {
    if (!it->is_regular_file(ec)) continue;
    std::ifstream in(it->path(), std::ios::binary);
    const std::string disk((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const std::string name = it->path().string();
    const bool cpp = IsCppName(it->path());
    CheckInvariants(name, disk, cpp);
    CheckInvariants(name + " (buffer form)", ToBufferForm(disk), cpp);
    ++files;
  }
  RecordProperty("files", files);
}

TEST(TokenInvariantsTest, RandomBytesNeverBreakTheLists) {
  // Drawn mostly from the characters that start or end multi-character tokens, so that
  // unclosed comments, strings and digraphs meet the end of the text often.
  const std::string alphabet = "/*(){}[]'\"#$.:<>-=!?|&^%+~@`\\_aZ09 \t\r\n\x01\x7f\xe9";
  std::mt19937 random(20240607);
  for (int round = 0; round < 400; ++round) {
    std::string text(random() % 64, ' ');
    for (char& c : text) c = alphabet[random() % alphabet.size()];
    CheckInvariants("random round " + std::to_string(round), text, round % 2 == 0);
  }
}

}  // namespace
}  // namespace velmora
