// Damaged and hostile project files: each either opens (with what could be read) or gives
// one line of error naming the file; none crashes, hangs or raises anything else. The
// fixed rows say which of the two; the cut and flipped copies of every test project only
// require that it is one of them.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "projects/project.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;

class DamagedProjectTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/velmora-projects-XXXXXX";
    root_ = ::mkdtemp(pattern);
  }
  void TearDown() override { fs::remove_all(root_); }

  std::string Write(const std::string& name, const std::string& bytes) {
    const std::string path = root_ + "/" + name;
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }

  std::string root_;
};

// Opens `path` and says what happened: "ok" or "error: <message>". Any other outcome
// fails the test.
std::string Outcome(const std::string& path) {
  try {
    OpenProject(path);
    return "ok";
  } catch (const EProjectError& e) {
    const std::string message = e.what();
    EXPECT_FALSE(message.empty()) << path;
    EXPECT_EQ(message.find('\n'), std::string::npos) << path << ": " << message;
    return "error: " + message;
  } catch (const std::exception& e) {
    ADD_FAILURE() << path << ": unexpected exception " << e.what();
    return "other";
  }
}

std::string Nested(int depth) {
  std::string s;
  for (int i = 0; i < depth; ++i) s += "<a>";
  return s;
}

TEST_F(DamagedProjectTest, FixedRows) {
  const std::string bomb =
      "<?xml version=\"1.0\"?>\n<!DOCTYPE CONFIG [\n<!ENTITY a \"aaaaaaaaaa\">\n"
      "<!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\">\n<!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;\">\n"
      "]>\n<CONFIG><ProjectOptions><Units><Unit><Filename Value=\"&c;.pas\"/>"
      "<IsPartOfProject Value=\"True\"/></Unit></Units></ProjectOptions></CONFIG>\n";
  std::string doubling = "<Project><PropertyGroup>";
  for (int i = 0; i < 80; ++i) doubling += "<A>$(A)$(A)x</A>";
  doubling += "<IncludePath>$(A)</IncludePath></PropertyGroup></Project>";
  std::string makeDoubling = "A = x\n";
  for (char c = 'B'; c <= 'Z'; ++c)
    makeDoubling +=
        std::string(1, c) + " = $(" + std::string(1, c - 1) + ")$(" + std::string(1, c - 1) + ")\n";
  makeDoubling += "INCLUDEPATH = $(Z)\n";
  const struct {
    std::string_view name;
    std::string file;
    std::string bytes;
    bool opens;
  } rows[] = {
      {.name = "empty make-file", .file = "a.bpr", .bytes = "", .opens = false},
      {.name = "binary make-file",
       .file = "a.mak",
       .bytes = std::string("\0\1\2\xff=\n", 6),
       .opens = false},
      {.name = "make-file of continuations only",
       .file = "a.bpr",
       .bytes = std::string(10000, '\\'),
       .opens = false},
      {.name = "make-file cut in a continuation",
       .file = "a.bpr",
       .bytes = "OBJFILES = a.obj \\",
       .opens = true},
      {.name = "IDEOPTIONS never closed",
       .file = "a.bpr",
       .bytes = "PROJECT = a.exe\n!ifdef IDEOPTIONS\n[HistoryLists\\hlIncludePath]\nItem0=x\n",
       .opens = true},
      {.name = "make macro defined by itself",
       .file = "a.bpr",
       .bytes = "INCLUDEPATH = $(INCLUDEPATH);x\n",
       .opens = true},
      {.name = "make macros that double", .file = "a.bpr", .bytes = makeDoubling, .opens = true},
      {.name = "unclosed $( in a path",
       .file = "a.bpr",
       .bytes = "INCLUDEPATH = $(BCB\n",
       .opens = true},
      {.name = "XML .bpr cut short",
       .file = "a.bpr",
       .bytes = "<?xml version='1.0'?>\n<PROJECT><MACROS><OBJFILES value=\"a.obj",
       .opens = false},
      {.name = "XML .bpr with another root", .file = "a.bpr", .bytes = "<CONFIG/>", .opens = false},
      {.name = "unclosed tags",
       .file = "a.cbproj",
       .bytes = "<Project><ItemGroup><CppCompile>",
       .opens = false},
      {.name = "empty .cbproj", .file = "a.cbproj", .bytes = "", .opens = false},
      {.name = ".cbproj of text", .file = "a.cbproj", .bytes = "hello", .opens = false},
      {.name = "property that doubles itself",
       .file = "a.cbproj",
       .bytes = doubling,
       .opens = true},
      {.name = "condition of 10000 parentheses",
       .file = "a.dproj",
       .bytes = "<Project><PropertyGroup Condition=\"" + std::string(10000, '(') +
                "\"><DCC_Define>X</DCC_Define></PropertyGroup></Project>",
       .opens = true},
      {.name = "conditions cut in a string",
       .file = "a.dproj",
       .bytes = "<Project><PropertyGroup Condition=\"'$(Base\"/></Project>",
       .opens = true},
      {.name = "elements nested 100000 deep",
       .file = "a.dproj",
       .bytes = "<Project>" + Nested(100000),
       .opens = false},
      {.name = "entities declared in a document type",
       .file = "a.lpi",
       .bytes = bomb,
       .opens = true},
      {.name = ".lpi without project options",
       .file = "a.lpi",
       .bytes = "<CONFIG/>",
       .opens = false},
      {.name = ".lpk without a package",
       .file = "a.lpk",
       .bytes = "<CONFIG><Files/></CONFIG>",
       .opens = false},
      {.name = "units that name the project",
       .file = "a.lpi",
       .bytes = "<CONFIG><ProjectOptions><Units><Unit><Filename Value=\"a.lpi\"/>"
                "<IsPartOfProject Value=\"True\"/></Unit></Units></ProjectOptions></CONFIG>",
       .opens = true},
      {.name = "paths far outside the project",
       .file = "a.lpi",
       .bytes = "<CONFIG><ProjectOptions><Units><Unit><Filename Value=\"" +
                [] {
                  std::string s;
                  for (int i = 0; i < 200; ++i) s += "..\\";
                  return s;
                }() +
                "etc\\passwd.pas\"/><IsPartOfProject Value=\"True\"/></Unit></Units>"
                "</ProjectOptions></CONFIG>",
       .opens = true},
      {.name = "empty .dpr", .file = "a.dpr", .bytes = "", .opens = false},
      {.name = ".dpr of a unit",
       .file = "a.dpr",
       .bytes = "unit a; interface end.",
       .opens = false},
      {.name = ".dpr cut in its uses clause",
       .file = "a.dpr",
       .bytes = "program a; uses b in 'b.pas",
       .opens = true},
      {.name = ".dpr with an unclosed comment",
       .file = "a.dpr",
       .bytes = "program a; uses { b in 'b.pas';",
       .opens = true},
      {.name = ".dpr that uses itself",
       .file = "a.dpr",
       .bytes = "program a; uses a in 'a.dpr', A in 'A.DPR'; begin end.",
       .opens = true},
      {.name = ".dpr with a byte-order mark",
       .file = "a.dpr",
       .bytes = "\xEF\xBB\xBFprogram a; begin end.",
       .opens = true},
      {.name = "make-file with a byte-order mark",
       .file = "a.mak",
       .bytes = "\xEF\xBB\xBFPROJECT = a.exe\r\n",
       .opens = true},
      {.name = "unknown extension", .file = "a.txt", .bytes = "x", .opens = false},
      {.name = "no extension", .file = "project", .bytes = "x", .opens = false},
  };
  for (const auto& row : rows) {
    const std::string outcome = Outcome(Write(row.file, row.bytes));
    EXPECT_EQ(outcome == "ok", row.opens) << row.name << ": " << outcome;
  }
}

TEST_F(DamagedProjectTest, UnitsThatNameTheProjectAreKeptOnce) {
  const TProject p = OpenProject(Write("a.dpr", "program a; uses a in 'a.dpr', A in 'A.DPR';"));
  ASSERT_EQ(p.Units.size(), 1u);
  EXPECT_EQ(p.Units[0].FileName, root_ + "/a.dpr");
  EXPECT_TRUE(p.Warnings.empty());
}

TEST_F(DamagedProjectTest, MissingPathsAndFoldersGiveOneLine) {
  const struct {
    std::string_view name;
    std::string path;
    std::string_view expected;
  } rows[] = {
      {.name = "missing file", .path = root_ + "/none.bpr", .expected = "project not found: \""},
      {.name = "empty path", .path = "", .expected = "no project given"},
      {.name = "unreadable",
       .path = Write("locked.lpi", "<CONFIG/>"),
       .expected = "cannot open project file"},
  };
  ::chmod((root_ + "/locked.lpi").c_str(), 0);
  const bool root = ::geteuid() == 0;  // root reads whatever the mode says
  for (const auto& row : rows) {
    if (root && row.name == "unreadable") continue;
    const std::string outcome = Outcome(row.path);
    EXPECT_EQ(outcome.rfind("error: " + std::string(row.expected), 0), 0u)
        << row.name << ": " << outcome;
  }
}

TEST_F(DamagedProjectTest, FolderWithALinkToItselfEnds) {
  fs::create_directories(root_ + "/tree/sub");
  Write("tree/sub/a.pas", "unit a;");
  fs::create_directory_symlink(root_ + "/tree", root_ + "/tree/sub/loop");
  fs::create_symlink(root_ + "/tree/sub/a.pas", root_ + "/tree/b.pas");
  const TProject p = OpenProject(root_ + "/tree/");
  ASSERT_EQ(p.Units.size(), 2u);  // the linked file counts, the linked folder is not entered
  EXPECT_EQ(p.Units[0].FileName, root_ + "/tree/b.pas");
  EXPECT_EQ(p.Units[1].FileName, root_ + "/tree/sub/a.pas");
  EXPECT_EQ(p.Name, "tree");
}

// Every test project cut at many lengths and with bytes flipped: each copy opens or gives
// a one-line error.
TEST_F(DamagedProjectTest, CutAndFlippedCopiesOfEveryTestProject) {
  const std::string data = std::string(VELMORA_TEST_DATA) + "/projects/data/";
  const char* projects[] = {"makefile4/Demo.bpr",  "xmlbpr/Viewer.bpr",  "cbproj/Shop.cbproj",
                            "dpr/Tool.dpr",        "dproj/Ledger.dproj", "lazarus/paint.lpi",
                            "lazarus/drawkit.lpk", "xmlbpr/Viewer5.bpr"};
  for (const char* project : projects) {
    std::ifstream in(data + project, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    const std::string text = s.str();
    ASSERT_FALSE(text.empty()) << project;
    const std::string name(fs::path(project).filename());
    for (size_t step = 0; step <= 40; ++step) {
      const size_t cut = text.size() * step / 40;
      Outcome(Write(name, text.substr(0, cut)));
      std::string flipped = text;
      for (size_t i = step; i < flipped.size(); i += 41 + step)
        flipped[i] = static_cast<char>(flipped[i] ^ (0x5a + step));
      Outcome(Write(name, flipped));
    }
  }
}

}  // namespace
}  // namespace velmora
