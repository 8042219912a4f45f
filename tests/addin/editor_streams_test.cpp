// Reading and writing editor buffers through the streams, the cursor snapshot and the
// word at the cursor.
#include <gtest/gtest.h>

#include "addin/editor_file_info.h"
#include "addin/editor_streams.h"
#include "addin_fixture.h"
#include "hosts/headless/headless_module.h"

namespace velmora {
namespace {

using test::TAddInHost;

std::string ReadAll(TEditorReadStream& stream, int block) {
  std::string all, part;
  for (int n; (n = stream.Read(part, block)) > 0;) all.append(part, 0, static_cast<size_t>(n));
  return all;
}

TEST(EditorStreamsTest, AReadStreamReadsTheUnsavedBufferInBlocks) {
  TAddInHost host;
  const std::string file = host.dir.Write("a.cpp", "on disk\n");
  ASSERT_TRUE(host.ide.OpenFile(file));
  host.ide.SetBufferText(file, "changed\nnot saved\n");
  TEditorReadStream stream(file, false);
  ASSERT_TRUE(stream.Valid());
  EXPECT_EQ(ReadAll(stream, 4), "changed\r\nnot saved\r\n");
  EXPECT_EQ(stream.Position(), 20);
  std::string part;
  EXPECT_EQ(stream.Read(part, 4), 0);
  EXPECT_EQ(part.size(), 4u) << "sized to the count even at the end";
}

TEST(EditorStreamsTest, OpenIfNeededDecidesWhetherAClosedFileIsReached) {
  TAddInHost host;
  const std::string file = host.dir.Write("a.cpp", "text\n");
  {
    TEditorReadStream stream(file, false);
    EXPECT_FALSE(stream.Valid());
    std::string part;
    EXPECT_EQ(stream.Read(part, 10), 0);
    EXPECT_FALSE(host.ide.IsFileOpen(file));
  }
  TEditorReadStream stream(file, true);
  EXPECT_TRUE(host.ide.IsFileOpen(file));
  EXPECT_EQ(ReadAll(stream, 100), "text\r\n");
}

TEST(EditorStreamsTest, AWriteStreamChangesTheBufferWhenItEndsAndNotTheFile) {
  TAddInHost host;
  const std::string file = host.dir.Write("a.cpp", "class A {\n};\n");
  {
    TEditorWriteStream stream(file, true);
    ASSERT_TRUE(stream.Valid());
    EXPECT_TRUE(stream.CopyTo(11));
    EXPECT_TRUE(stream.Insert("  int x;\r\n"));
    EXPECT_EQ(stream.Position(), 11);
    TEditorWriteStream second(file, true);
    EXPECT_FALSE(second.Valid()) << "one writer per buffer";
    EXPECT_FALSE(second.CopyTo(1));
    EXPECT_EQ(second.Position(), -1);
  }
  EXPECT_EQ(host.ide.Buffer(file)->Text, "class A {\r\n  int x;\r\n};\r\n");
  EXPECT_EQ(ReadWholeFile(file), "class A {\n};\n");
  ASSERT_TRUE(host.ide.SaveFile(file));
  EXPECT_EQ(ReadWholeFile(file), "class A {\n  int x;\n};\n");
}

TEST(EditorStreamsTest, AHeaderIsLookedForInItsSourcePartnersEditorWhenThatExists) {
  const struct {
    const char* name;
    const char* header;
    const char* partner;  // written too when not null
    int selectCalls;
  } cases[] = {
      {.name = "header with partner", .header = "a.h", .partner = "a.cpp", .selectCalls = 1},
      {.name = "partner in another case", .header = "b.hpp", .partner = "B.CPP", .selectCalls = 1},
      {.name = "header alone", .header = "c.h", .partner = nullptr, .selectCalls = 0},
      {.name = "a source file itself", .header = "d.cpp", .partner = nullptr, .selectCalls = 0},
  };
  for (const auto& c : cases) {
    TAddInHost host;
    const std::string header = host.dir.Write(c.header, "int h;\n");
    if (c.partner) host.dir.Write(c.partner, "int s;\n");
    TEditorReadStream stream(header, true);
    EXPECT_EQ(ReadAll(stream, 64), "int h;\r\n") << c.name;
    TIRef<TIModule> module(host.ide.GetModule(header));
    ASSERT_TRUE(module) << c.name;
    EXPECT_EQ(static_cast<THeadlessModule*>(module.Get())->EditorOfFileCalls, c.selectCalls)
        << c.name;
  }
}

TEST(EditorStreamsTest, IdentifierAtTheCursor) {
  const struct {
    const char* line;
    int charIndex;
    const char* word;
  } cases[] = {
      {.line = "  TFoo* foo;", .charIndex = 2, .word = "TFoo"},
      {.line = "  TFoo* foo;", .charIndex = 4, .word = "TFoo"},
      {.line = "  TFoo* foo;", .charIndex = 6, .word = "TFoo"},  // just after it
      {.line = "  TFoo* foo;", .charIndex = 7, .word = ""},      // on the blank after '*'
      {.line = "  TFoo* foo;", .charIndex = 8, .word = "foo"},
      {.line = "  TFoo* foo;", .charIndex = 11, .word = "foo"},  // on the ';'
      {.line = "  TFoo* foo;", .charIndex = 12, .word = ""},     // past the end
      {.line = "a.b_2+c", .charIndex = 2, .word = "b_2"},
      {.line = "9lives", .charIndex = 2, .word = "lives"},  // a digit starts none
      {.line = "", .charIndex = 0, .word = ""},
      {.line = "x", .charIndex = 1, .word = "x"},
      {.line = "x", .charIndex = 3, .word = ""},
  };
  for (const auto& c : cases)
    EXPECT_EQ(IdentifierAt(c.line, c.charIndex), c.word) << c.line << " @" << c.charIndex;
}

TEST(EditorStreamsTest, TheCursorSnapshotAndTheWordAtTheCursor) {
  TAddInHost host;
  const std::string file = host.dir.Write("a.cpp", "class TBase {};\nclass TDerived : TBase {};\n");
  ASSERT_TRUE(host.ide.OpenFile(file));
  host.ide.Buffer(file)->Cursor = {.Col = 20, .Line = 2};
  host.ide.Buffer(file)->TopLeft = {.Col = 1, .Line = 1};
  TEditorFileInfo info;
  ASSERT_TRUE(info.Fill());
  EXPECT_EQ(info.FileName, file);
  EXPECT_EQ(info.CursorLine, 2);
  EXPECT_EQ(info.CursorCol, 20);
  EXPECT_EQ(info.TopLine, 1);
  EXPECT_EQ(info.CursorCharPos, (TCharPos{.CharIndex = 19, .Line = 2}));
  EXPECT_EQ(info.Offset, 17 + 19);
  EXPECT_EQ(WordAtCursor(), "TBase");
  std::string line;
  EXPECT_TRUE(CurrentEditorLineText(2, line));
  EXPECT_EQ(line, "class TDerived : TBase {};");
  EXPECT_TRUE(CurrentEditorLineText(3, line)) << "the empty last line";
  EXPECT_EQ(line, "");
  EXPECT_FALSE(CurrentEditorLineText(4, line));
  host.ide.CloseFile(file);
  EXPECT_FALSE(info.Fill()) << "no current editor";
  EXPECT_EQ(WordAtCursor(), "");
}

}  // namespace
}  // namespace velmora

namespace velmora {
namespace {

TEST(EditorStreamsTest, EnsureOpenAlwaysOpensAHeaderAndLeavesAnOpenSourceAsItIs) {
  test::TAddInHost host;
  const std::string source = host.dir.Write("a.cpp", "");
  const std::string header = host.dir.Write("a.h", "");
  const std::string closed = host.dir.Write("b.cpp", "");
  ASSERT_TRUE(host.ide.OpenFile(header));
  ASSERT_TRUE(host.ide.OpenFile(source));
  // Opening makes a file the current one, so the current file tells who was opened.
  EXPECT_TRUE(EnsureOpen(header));
  EXPECT_EQ(host.ide.CurrentFile(), header);
  EXPECT_TRUE(EnsureOpen(source));
  EXPECT_EQ(host.ide.CurrentFile(), header) << "an open source file is not opened again";
  EXPECT_TRUE(EnsureOpen(closed));
  EXPECT_TRUE(host.ide.IsFileOpen(closed));
  EXPECT_FALSE(EnsureOpen(host.dir / "missing.cpp"));
}

}  // namespace
}  // namespace velmora
