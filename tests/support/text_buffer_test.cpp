#include "support/text_buffer.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

TEST(TextBufferTest, ConvertsEveryLineEndToCrLf) {
  struct Case {
    std::string_view in, out;
    TLineEndStyle style;
  } cases[] = {
      {"", "", TLineEndStyle::CrLf},
      {"a\r\nb\r\n", "a\r\nb\r\n", TLineEndStyle::CrLf},
      {"a\nb\n", "a\r\nb\r\n", TLineEndStyle::Lf},
      {"a\rb\r", "a\r\nb\r\n", TLineEndStyle::Cr},
      {"a\n\nb", "a\r\n\r\nb", TLineEndStyle::Lf},
      {"a\r\rb", "a\r\n\r\nb", TLineEndStyle::Cr},
      // LF CR is two line ends, as the line counter sees it.
      {"a\n\rb", "a\r\n\r\nb", TLineEndStyle::Lf},
      {"mixed\r\nlf\ncr\r", "mixed\r\nlf\r\ncr\r\n", TLineEndStyle::CrLf},
      {"no line end", "no line end", TLineEndStyle::CrLf},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ToBufferForm(c.in), c.out) << c.in;
    EXPECT_EQ(DetectLineEndStyle(c.in), c.style) << c.in;
  }
}

// The cases where a text that looks CR LF at first is not, or a line end sits at either
// end of the text or beside a NUL.
TEST(TextBufferTest, ConvertsAlmostCleanTexts) {
  using namespace std::string_view_literals;
  struct Case {
    std::string_view in, out;
  } cases[] = {
      {"\r\r\n"sv, "\r\n\r\n"sv},
      {"\na"sv, "\r\na"sv},
      {"a\r"sv, "a\r\n"sv},
      {"a\r\nb\r"sv, "a\r\nb\r\n"sv},
      {"\r\n\n"sv, "\r\n\r\n"sv},
      {"x\0\ny\r\n"sv, "x\0\r\ny\r\n"sv},
      {"x\0\r\ny\r\n"sv, "x\0\r\ny\r\n"sv},
      {"\r"sv, "\r\n"sv},
  };
  for (const auto& c : cases) EXPECT_EQ(ToBufferForm(c.in), c.out) << c.in;
}

TEST(TextBufferTest, WritesBackInTheFileStyle) {
  const std::string buffer = "a\r\nb\r\n";
  EXPECT_EQ(FromBufferForm(buffer, TLineEndStyle::Lf), "a\nb\n");
  EXPECT_EQ(FromBufferForm(buffer, TLineEndStyle::Cr), "a\rb\r");
  EXPECT_EQ(FromBufferForm(buffer, TLineEndStyle::CrLf), buffer);
  EXPECT_EQ(FromBufferForm(ToBufferForm("x\ny\n"), TLineEndStyle::Lf), "x\ny\n");
}

}  // namespace
}  // namespace velmora
