#include "hosts/lsp/positions.h"

#include <gtest/gtest.h>

namespace velmora::lsp {
namespace {

constexpr auto U16 = TPositionEncoding::Utf16;
constexpr auto U8 = TPositionEncoding::Utf8;
constexpr auto U32 = TPositionEncoding::Utf32;

struct CountCase {
  const char* name;
  std::string bytes;
  int utf16, utf8, utf32;
};

TEST(LspPositions, CharactersCountedInEachEncoding) {
  const CountCase cases[] = {
      {.name = "ascii", .bytes = "TForm1", .utf16 = 6, .utf8 = 6, .utf32 = 6},
      {.name = "two-byte", .bytes = "TW\xC3\xA4rme", .utf16 = 6, .utf8 = 7, .utf32 = 6},
      {.name = "three-byte", .bytes = "\xE2\x82\xAC", .utf16 = 1, .utf8 = 3, .utf32 = 1},
      {.name = "four-byte (surrogate pair)",
       .bytes = "a\xF0\x9F\x98\x80"
                "b",
       .utf16 = 4,
       .utf8 = 6,
       .utf32 = 3},
      {.name = "Windows-1252 byte", .bytes = "TW\xE4rme", .utf16 = 6, .utf8 = 6, .utf32 = 6},
      {.name = "cut sequence at the end", .bytes = "x\xE2\x82", .utf16 = 3, .utf8 = 3, .utf32 = 3},
      {.name = "overlong", .bytes = "\xC0\xAF", .utf16 = 2, .utf8 = 2, .utf32 = 2},
      {.name = "encoded surrogate", .bytes = "\xED\xA0\x80", .utf16 = 3, .utf8 = 3, .utf32 = 3},
  };
  for (const CountCase& c : cases) {
    EXPECT_EQ(CountUnits(c.bytes, U16), c.utf16) << c.name;
    EXPECT_EQ(CountUnits(c.bytes, U8), c.utf8) << c.name;
    EXPECT_EQ(CountUnits(c.bytes, U32), c.utf32) << c.name;
    // Every count maps back to the whole text.
    EXPECT_EQ(BytesForUnits(c.bytes, c.utf16, U16), c.bytes.size()) << c.name;
  }
  // A position inside a surrogate pair stops before the pair.
  EXPECT_EQ(BytesForUnits("a\xF0\x9F\x98\x80"
                          "b",
                          2, U16),
            1u);
  EXPECT_EQ(BytesForUnits("a\xF0\x9F\x98\x80"
                          "b",
                          3, U16),
            5u);
}

struct OffsetCase {
  int64_t offset;
  TLspPosition utf16;
};

TEST(LspPositions, BufferOffsetsAndClientPositionsRoundTrip) {
  // Buffer form (CR LF), a non-ASCII name on line 1, an empty line, no line end at the end.
  const std::string text = "unit A;\r\ntype TW\xC3\xA4rme = class;\r\n\r\nend.";
  const TLineIndex index(text);
  EXPECT_EQ(index.LineCount(), 4);
  const OffsetCase cases[] = {
      {.offset = 0, .utf16 = {0, 0}},   {.offset = 7, .utf16 = {0, 7}},
      {.offset = 8, .utf16 = {0, 7}},  // between CR and LF: the line's end
      {.offset = 9, .utf16 = {1, 0}},   {.offset = 16, .utf16 = {1, 7}},
      {.offset = 18, .utf16 = {1, 8}},  // after the two-byte letter
      {.offset = 34, .utf16 = {3, 0}},  {.offset = 38, .utf16 = {3, 4}},
      {.offset = 999, .utf16 = {3, 4}}, {.offset = -4, .utf16 = {0, 0}},
  };
  for (const OffsetCase& c : cases) {
    EXPECT_EQ(index.ToLsp(c.offset, U16), c.utf16) << c.offset;
  }
  EXPECT_EQ(index.FromLsp({1, 8}, U16), 18);
  EXPECT_EQ(index.FromLsp({1, 9}, U8), 18);
  EXPECT_EQ(index.FromLsp({1, 500}, U16), 9 + 21);  // end of line 1
  EXPECT_EQ(index.FromLsp({9, 0}, U16), static_cast<int64_t>(text.size()));
  EXPECT_EQ(index.FromLsp({-1, 3}, U16), 0);
  // LF-only and lone-CR texts have the same lines.
  EXPECT_EQ(TLineIndex("a\nb\rc").LineText(2), "c");
  EXPECT_EQ(TLineIndex("a\nb\rc").LineCount(), 3);
}

struct EditCase {
  const char* name;
  std::string text;
  TLspPosition from, to;
  std::string with, result;
};

TEST(LspPositions, IncrementalEditsApplyAsClientsMeanThem) {
  const EditCase cases[] = {
      {.name = "insert",
       .text = "ab\ncd",
       .from = {1, 1},
       .to = {1, 1},
       .with = "X",
       .result = "ab\ncXd"},
      {.name = "delete across lines",
       .text = "ab\ncd",
       .from = {0, 1},
       .to = {1, 1},
       .with = "",
       .result = "ad"},
      {.name = "replace after a pair",
       .text = "\xF0\x9F\x98\x80z",
       .from = {0, 2},
       .to = {0, 3},
       .with = "y",
       .result = "\xF0\x9F\x98\x80y"},
      {.name = "past the end appends",
       .text = "ab",
       .from = {5, 0},
       .to = {6, 0},
       .with = "!",
       .result = "ab!"},
      {.name = "reversed range",
       .text = "abcd",
       .from = {0, 3},
       .to = {0, 1},
       .with = "-",
       .result = "a-d"},
      {.name = "CR LF kept",
       .text = "a\r\nb",
       .from = {1, 0},
       .to = {1, 0},
       .with = "x\r\n",
       .result = "a\r\nx\r\nb"},
  };
  for (const EditCase& c : cases)
    EXPECT_EQ(ApplyEdit(c.text, c.from, c.to, c.with, U16), c.result) << c.name;
}

struct UriCase {
  const char* uri;
  const char* path;
};

TEST(LspPositions, FileUrisAndPaths) {
  const UriCase cases[] = {
      {.uri = "file:///home/u/Kiln%20Log/Main.cpp", .path = "/home/u/Kiln Log/Main.cpp"},
      {.uri = "file://localhost/tmp/a.pas", .path = "/tmp/a.pas"},
      {.uri = "FILE:///tmp/b.h", .path = "/tmp/b.h"},
      {.uri = "file:///tmp/W%C3%A4rme.pas", .path = "/tmp/W\xC3\xA4rme.pas"},
      {.uri = "file:///tmp/x.h#frag", .path = "/tmp/x.h"},
      {.uri = "file:///tmp/100%", .path = "/tmp/100%"},
      {.uri = "file://server/share/a.h", .path = ""},
      {.uri = "untitled:Untitled-1", .path = ""},
      {.uri = "file:///tmp/%00x", .path = ""},
      {.uri = "", .path = ""},
  };
  for (const UriCase& c : cases) EXPECT_EQ(PathFromUri(c.uri), c.path) << c.uri;
  for (const char* path : {"/home/u/Kiln Log/Main.cpp", "/tmp/W\xC3\xA4rme.pas", "/a/b#c%d?.h"})
    EXPECT_EQ(PathFromUri(UriFromPath(path)), path) << path;
  EXPECT_EQ(UriFromPath("/a b/c.h"), "file:///a%20b/c.h");
}

}  // namespace
}  // namespace velmora::lsp
