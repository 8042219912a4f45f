// The ini document: what any text parses to, what the writer makes of it, and values
// that must come back unchanged whatever bytes they hold.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "settings/ini_file.h"

namespace velmora {
namespace {

using namespace std::string_literals;

// "[section]key=value|key=value" for each section, values as they are.
std::string Dump(const TIniFile& ini) {
  std::string out;
  for (int i = 0; i < ini.SectionCount(); ++i) {
    const TIniFile::Section& s = ini.Sections(i);
    out += "[" + s.Name + "]";
    for (size_t e = 0; e < s.Entries.size(); ++e)
      out += (e ? "|" : "") + s.Entries[e].Key + "=" + s.Entries[e].Value;
  }
  return out;
}

TEST(IniFileTest, ParsesWhateverTheTextHolds) {
  const struct {
    const char* name;
    std::string text;
    std::string dump;
  } cases[] = {
      {.name = "CR LF", .text = "[A]\r\nk=v\r\nj=w\r\n", .dump = "[A]k=v|j=w"},
      {.name = "LF", .text = "[A]\nk=v\nj=w", .dump = "[A]k=v|j=w"},
      {.name = "lone CR", .text = "[A]\rk=v\rj=w\r", .dump = "[A]k=v|j=w"},
      {.name = "keys before any section", .text = "k=v\n[A]\nj=w", .dump = "[]k=v[A]j=w"},
      {.name = "first of a repeated key", .text = "[A]\nk=1\nK=2", .dump = "[A]k=1"},
      {.name = "repeated section joins the first",
       .text = "[A]\nk=1\n[B]\nx=1\n[a]\nj=2",
       .dump = "[A]k=1|j=2[B]x=1"},
      {.name = "comments, junk and empty keys skipped",
       .text = "; c\n[A]\n;k=1\njunk\n=novalue\n  k  =  v  \n",
       .dump = "[A]k=v"},
      {.name = "unclosed header", .text = "[A\nk=v", .dump = "[A]k=v"},
      {.name = "last bracket closes",
       .text = "[ Filter\\a]b ] tail\nk=v",
       .dump = "[Filter\\a]b]k=v"},
      {.name = "value keeps its equals signs", .text = "[A]\nk=a=b=", .dump = "[A]k=a=b="},
      {.name = "quoted value",
       .text = "[A]\nk=\"  x\\r\\n\\\"\\x41\\q\"",
       .dump = "[A]k=  x\r\n\"A\\q"},
      {.name = "lone quote stays", .text = "[A]\nk=\"\nj=\"x", .dump = "[A]k=\"|j=\"x"},
      {.name = "NULs inside a value", .text = "[A]\nk=a\0b\0\n"s, .dump = "[A]k=a\0b"s},
      {.name = "binary",
       .text = "\x01\xff[\x80]\x00=\x02\n\xfe=\xfd"s,
       .dump = "[]\xff[\x80]=|\xfe=\xfd"},
      {.name = "empty", .text = "", .dump = ""},
  };
  for (const auto& c : cases) EXPECT_EQ(Dump(TIniFile::Parse(c.text)), c.dump) << c.name;
}

TEST(IniFileTest, NamesCompareWithoutCase) {
  TIniFile ini = TIniFile::Parse("[Software\\Kiln]\nShowWarnings=1\n");
  EXPECT_EQ(ini.ReadString("software\\KILN", "showwarnings", "x"), "1");
  EXPECT_EQ(ini.ReadString("software\\KILN", "missing", "x"), "x");
  EXPECT_TRUE(ini.WriteString("SOFTWARE\\kiln", "SHOWWARNINGS", "0"));
  EXPECT_FALSE(ini.WriteString("SOFTWARE\\kiln", "SHOWWARNINGS", "0"));  // no change
  EXPECT_EQ(Dump(ini), "[Software\\Kiln]ShowWarnings=0");
}

TEST(IniFileTest, EditsKeepTheOrder) {
  TIniFile ini = TIniFile::Parse("[A]\na=1\nb=2\nc=3\n[B]\nx=1\n[C]\n");
  EXPECT_TRUE(ini.DeleteKey("a", "B"));
  EXPECT_FALSE(ini.DeleteKey("a", "B"));
  ini.WriteString("A", "d", "4");
  EXPECT_EQ(ini.ReadString("A", "c", ""), "3");  // the index follows the removal
  EXPECT_TRUE(ini.EraseSection("b"));
  EXPECT_FALSE(ini.EraseSection("b"));
  ini.WriteString("B", "y", "2");
  EXPECT_EQ(Dump(ini), "[A]a=1|c=3|d=4[C][B]y=2");
}

TEST(IniFileTest, WritesHeaderCommentsAndQuotedValues) {
  TIniFile ini;
  ini.Header = {"; top"};
  ini.AddSection("A").Leading = {"; about A"};
  ini.WriteString("A", "plain", "C:\\Kiln\\x.pas");
  ini.WriteString("A", "edges", " two words ");
  ini.WriteString("B", "lines", "a\r\nb\t\"c\"\x01");
  EXPECT_EQ(ini.Text("\n"),
            "; top\n\n; about A\n[A]\nplain=C:\\Kiln\\x.pas\nedges=\" two words \"\n\n[B]\n"
            "lines=\"a\\r\\nb\\t\\\"c\\\"\\x01\"\n");
  ini.BlankLineBetweenSections = false;
  EXPECT_EQ(ini.Text("\r\n").substr(0, 18), "; top\r\n; about A\r\n");
}

TEST(IniFileTest, AnyValueSurvivesWriteAndRead) {
  std::vector<std::string> values = {
      "",     " ",         "lead",  " lead", "trail ", "\"",           "\"q\"", "x\"", "a\r\nb",
      "\r\n", "C:\\dir\\", "\\x41", "\\",    "tab\t",  "\x01\x7f\xe9", "a\0b"s, "\0"s, "= ;["};
  std::mt19937 random(7);
  for (int i = 0; i < 2000; ++i) {
    std::string v(random() % 12, '\0');
    for (char& c : v) c = static_cast<char>(random() % 256);
    values.push_back(v);
  }
  for (const std::string& v : values) {
    TIniFile ini;
    ini.WriteString("S", "k", v);
    const TIniFile back = TIniFile::Parse(ini.Text());
    EXPECT_EQ(back.ReadString("S", "k", "<missing>"), v) << '"' << v << '"';
    EXPECT_EQ(DecodeIniValue(EncodeIniValue(v)), v) << '"' << v << '"';
  }
}

TEST(IniFileTest, RandomTextReachesAFixedPointAfterOneWrite) {
  // Whatever a damaged file held, what is written after reading it reads back the same.
  std::mt19937 random(11);
  const std::string alphabet = "[]=;\"\\\r\n \tkKx\0\x80"s;
  for (int i = 0; i < 500; ++i) {
    std::string text(random() % 200, '\0');
    for (char& c : text) c = alphabet[random() % alphabet.size()];
    const std::string once = TIniFile::Parse(text).Text();
    EXPECT_EQ(TIniFile::Parse(once).Text(), once) << testing::PrintToString(text);
  }
}

TEST(IniFileTest, HugeLinesAndManySections) {
  std::string text = "[A]\nk=" + std::string(4 << 20, 'x') + "\n";
  for (int i = 0; i < 100000; ++i) text += "[S" + std::to_string(i) + "]\nk=v\n";
  const TIniFile ini = TIniFile::Parse(text);
  EXPECT_EQ(ini.ReadString("A", "k", "").size(), size_t{4 << 20});
  EXPECT_EQ(ini.SectionCount(), 100001);
  EXPECT_EQ(ini.ReadString("s99999", "K", ""), "v");
}

}  // namespace
}  // namespace velmora
