// The three position functions over editor buffers: the line-start search's single
// 1025-character block, and the counting functions that take only carriage returns.
#include <gtest/gtest.h>

#include "addin/editor_positions.h"
#include "addin/tool_services.h"
#include "addin_fixture.h"

namespace velmora {
namespace {

using test::TAddInHost;

TEST(EditorPositionsTest, LineStartOfPosition) {
  const std::string longLine(1100, 'x');
  const struct {
    const char* name;
    std::string text;
    int32_t position;
    int32_t start;
  } cases[] = {
      {.name = "position 0", .text = "ab\r\ncd", .position = 0, .start = -1},
      {.name = "first line", .text = "ab\r\ncd", .position = 1, .start = -1},
      {.name = "on the CR ending the first line", .text = "ab\r\ncd", .position = 2, .start = -1},
      {.name = "on its LF", .text = "ab\r\ncd", .position = 3, .start = -1},
      {.name = "first character of line 2", .text = "ab\r\ncd", .position = 4, .start = 4},
      {.name = "inside line 2", .text = "ab\r\ncd", .position = 5, .start = 4},
      {.name = "end of the buffer", .text = "ab\r\ncd", .position = 6, .start = 4},
      {.name = "an empty line", .text = "a\r\n\r\nb", .position = 3, .start = 3},
      {.name = "a lone LF breaks", .text = "ab\ncd", .position = 4, .start = 3},
      {.name = "a lone CR breaks", .text = "ab\rcd", .position = 4, .start = 3},
      {.name = "line began 1024 before",
       .text = "a\r\n" + longLine,
       .position = 3 + 1024,
       .start = 3},
      {.name = "line began 1025 before: outside the block",
       .text = "a\r\n" + longLine,
       .position = 3 + 1025,
       .start = -1},
      {.name = "line began far before", .text = "a\r\n" + longLine, .position = 1090, .start = -1},
  };
  for (const auto& c : cases) {
    TAddInHost host;
    const std::string file = host.OpenWithBuffer("a.cpp", c.text);
    EXPECT_EQ(LineStartOfPosition(file, c.position), c.start) << c.name;
  }
}

TEST(EditorPositionsTest, LineOfPositionCountsOnlyCarriageReturns) {
  const struct {
    const char* name;
    std::string text;
    int32_t position;
    int32_t line;
  } cases[] = {
      {.name = "position 0", .text = "ab\r\ncd", .position = 0, .line = 1},
      {.name = "on the CR", .text = "ab\r\ncd", .position = 2, .line = 1},
      {.name = "on the LF after it", .text = "ab\r\ncd", .position = 3, .line = 2},
      {.name = "line 2", .text = "ab\r\ncd", .position = 5, .line = 2},
      {.name = "the end itself", .text = "ab\r\ncd", .position = 6, .line = 2},
      {.name = "past the end", .text = "ab\r\ncd", .position = 7, .line = -1},
      {.name = "a lone LF is no line end", .text = "a\nb\nc", .position = 4, .line = 1},
      {.name = "a lone CR is one", .text = "a\rb\rc", .position = 4, .line = 3},
      {.name = "mixed", .text = "a\rb\nc\r\nd", .position = 7, .line = 3},
  };
  for (const auto& c : cases) {
    TAddInHost host;
    const std::string file = host.OpenWithBuffer("a.cpp", c.text);
    EXPECT_EQ(LineOfPosition(file, c.position), c.line) << c.name;
  }
}

TEST(EditorPositionsTest, PositionOfLineCountsOnlyCarriageReturns) {
  const struct {
    const char* name;
    std::string text;
    int32_t line;
    int32_t position;
  } cases[] = {
      {.name = "line 1", .text = "ab\r\ncd\r\nef", .line = 1, .position = 0},
      {.name = "line 2: just past the CR", .text = "ab\r\ncd\r\nef", .line = 2, .position = 3},
      {.name = "line 3", .text = "ab\r\ncd\r\nef", .line = 3, .position = 7},
      {.name = "past the end", .text = "ab\r\ncd\r\nef", .line = 4, .position = -1},
      {.name = "a buffer ending in CR has a last empty line",
       .text = "ab\r",
       .line = 2,
       .position = 3},
      {.name = "a lone LF is no line end", .text = "a\nb\nc", .line = 2, .position = -1},
      {.name = "a lone CR is one", .text = "a\nb\rc", .line = 2, .position = 4},
  };
  for (const auto& c : cases) {
    TAddInHost host;
    const std::string file = host.OpenWithBuffer("a.cpp", c.text);
    EXPECT_EQ(PositionOfLine(file, c.line), c.position) << c.name;
  }
}

TEST(EditorPositionsTest, CountingRunsAcrossBlocksAndBothDirectionsAgree) {
  TAddInHost host;
  std::string text;
  for (int i = 0; i < 20000; ++i) text += "x\r\n";  // 60000 characters: four blocks
  const std::string file = host.OpenWithBuffer("a.cpp", text);
  for (int32_t line : {1, 2, 5461, 5462, 5463, 10000, 20000, 20001}) {
    const int32_t position = PositionOfLine(file, line);
    EXPECT_EQ(position, line == 1 ? 0 : 3 * line - 4) << line;
    EXPECT_EQ(LineOfPosition(file, position), line) << line;
  }
  EXPECT_EQ(PositionOfLine(file, 20002), -1);
}

TEST(EditorPositionsTest, TheFunctionsOpenAFileThatIsNotOpenAndSeeUnsavedText) {
  TAddInHost host;
  const std::string closed = host.dir.Write("b.cpp", "a\nbb\ncc\n");
  EXPECT_EQ(LineOfPosition(closed, 5), 2);
  EXPECT_TRUE(host.ide.IsFileOpen(closed));
  host.ide.SetBufferText(closed, "a\n\n\nbb\n");
  EXPECT_EQ(LineOfPosition(closed, 5), 3) << "the buffer, not the file";
  EXPECT_EQ(PositionOfLine(closed, 4), 6);
}

TEST(EditorPositionsTest, NoIDEOrNoFileGivesMinusOne) {
  {
    TAddInHost host;
    EXPECT_EQ(LineOfPosition(host.dir / "missing.cpp", 0), -1);
    EXPECT_EQ(PositionOfLine(host.dir / "missing.cpp", 1), -1);
    EXPECT_EQ(LineStartOfPosition(host.dir / "missing.cpp", 5), -1);
  }
  ASSERT_EQ(ToolServices, nullptr);
  EXPECT_EQ(LineOfPosition("a.cpp", 0), -1);
}

}  // namespace
}  // namespace velmora
