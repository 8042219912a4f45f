// The catalogue of bad input: every kind of damaged, hostile or odd input a user can give
// Velmora, each with the message or result it must get. None may crash, hang or change a
// file. Where the user meets the input through the velmora command (sources, saved class
// information, global settings) the command is run and its exit status, messages and
// output are checked; the domain and project settings files, which no command reads, go
// through the library functions the host calls.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <random>
#include <string>
#include <vector>

#include "catalogue/catalogue_support.h"
#include "model/class_info_error.h"
#include "model/class_info_file.h"
#include "model/class_info_format.h"
#include "model/class_list.h"
#include "model/domains.h"
#include "parsing/source_parser.h"
#include "settings/project_settings.h"
#include "support/stream.h"
#include "support/text_buffer.h"

namespace velmora::catalogue {
namespace {

namespace fs = std::filesystem;

constexpr size_t k10MB = 10 << 20;
constexpr size_t k100k = 100000;

std::string Repeat(std::string_view piece, size_t times) {
  std::string s;
  s.reserve(piece.size() * times);
  for (size_t i = 0; i < times; ++i) s += piece;
  return s;
}

// A message as the command prints it: one line in its style, the line breaks the message
// keeps for dialogs read as spaces.
std::string AsCommandLine(const std::string& message) {
  std::string line = "velmora: ";
  for (char c : message) {
    if (c == '\r') continue;
    line += c == '\n' ? ' ' : c;
  }
  return line + "\n";
}

std::string RandomBytes(size_t size, unsigned seed) {
  std::mt19937 random(seed);
  std::string s(size, '\0');
  for (char& c : s) c = static_cast<char>(random());
  return s;
}

std::string U32(uint32_t v) {
  std::string s(4, '\0');
  for (int i = 0; i < 4; ++i) s[i] = static_cast<char>(v >> (8 * i));
  return s;
}

std::string Str(std::string_view s) {
  return U32(static_cast<uint32_t>(s.size())) + std::string(s);
}

std::string Overwrite(std::string bytes, size_t at, const std::string& with) {
  bytes.replace(at, with.size(), with);
  return bytes;
}

// A crash under the sanitizers ends with exit status 1 like an ordinary error, so the
// report on stderr tells them apart.
bool Crashed(const TRunResult& r) {
  return r.Signal != 0 || r.Err.find("Sanitizer") != std::string::npos ||
         r.Err.find("runtime error:") != std::string::npos;
}

// Checks shared by every row that runs the command: it ended by itself, did not crash,
// and left the folder's files as they were.
void ExpectCleanRun(const TRunResult& r, const std::map<std::string, std::string>& before,
                    const fs::path& dir, const std::string& row) {
  EXPECT_FALSE(r.TimedOut) << row << ": hangs";
  EXPECT_FALSE(Crashed(r)) << row << ": crashes\n" << r.Err;
  EXPECT_TRUE(Snapshot(dir) == before) << row << ": a file was changed, added or removed";
}

// ---- Class information files: `velmora dump --load FILE --stats` ----

// The example project parsed and saved, with one domain, and where its parts start.
struct TSavedModel {
  std::string Bytes;
  size_t DomainMarkerAt = 0;  // end of the files list
  size_t ClassMarkerAt = 0;   // end of the domains
  size_t ClassCountAt = 0;    // after the list string
  int Classes = 0;
};

const TSavedModel& ExampleModel() {
  static const TSavedModel model = [] {
    TFilesList files;
    TClasslist classes;
    for (const auto& entry :
         fs::directory_iterator(fs::path(VELMORA_SOURCE_DIR) / "examples/KilnLog")) {
      const std::string name = entry.path().filename().string();
      if (entry.path().extension() != ".h" && entry.path().extension() != ".pas") continue;
      auto file = std::make_unique<TFileDescription>(LanguageOfFile(name));
      file->Name = name;
      files.Add(std::move(file));
      const TMemoryStream text(LoadSourceText(entry.path().string()));
      ParseSourceText(LanguageOfFile(name), name, text, classes, {}, nullptr);
    }
    classes.Domains.CreateDomain("Forms")->AddClass(classes.Items(0));
    TSavedModel m;
    TMemoryStream s;
    files.SaveToStream(s);
    m.DomainMarkerAt = s.Data().size();
    classes.Domains.SaveToStream(s, true);
    m.ClassMarkerAt = s.Data().size();
    m.ClassCountAt = m.ClassMarkerAt + 8 + classes.ListString.size();
    classes.SaveToStream(s);
    m.Bytes = s.Data().substr(0, m.DomainMarkerAt) + s.Data().substr(m.ClassMarkerAt);
    m.Classes = classes.CountAll();
    return m;
  }();
  return model;
}

// A file of one class nested `depth` deep, each level the only nested class of the one
// outside it.
std::string NestedClassFile(int depth) {
  TMemoryStream empty;
  TFilesList().SaveToStream(empty);
  TClasslist().SaveToStream(empty);
  // The empty model ends in the class, routine and include counts.
  std::string bytes = empty.Data().substr(0, empty.Data().size() - 12) + U32(1);
  const std::string classStart = Str("TNest") + '\1' + Repeat(U32(0), 4) + U32(0) + Str("Nest.h") +
                                 '\0' + Str("") + Str("") + U32(0) + U32(0);
  for (int i = 0; i < depth; ++i) bytes += '\1' + classStart + '\1' + U32(1);
  bytes += '\1' + classStart + '\0';
  return bytes + U32(0) + U32(0);
}

struct TClassInfoCase {
  const char* Name;
  std::function<std::string()> Bytes;  // the file; nullptr for none at all
  const char* Reason;                  // the load's error, null when it loads
  std::string Out = {};                // a line the listing holds when it loads
};

TEST(CatalogueTest, DamagedClassInformationFiles) {
  const TSavedModel& m = ExampleModel();
  const std::string classes = "classes: " + std::to_string(m.Classes) + "\n";
  const std::vector<TClassInfoCase> cases = {
      {.Name = "empty file", .Bytes = [] { return std::string(); }, .Reason = kInvalidVersion},
      {.Name = "cut inside the banner",
       .Bytes = [&] { return m.Bytes.substr(0, 60); },
       .Reason = kInvalidVersion},
      {.Name = "foreign banner",
       .Bytes = [&] { return Overwrite(m.Bytes, 0, "X"); },
       .Reason = kInvalidVersion},
      {.Name = "older version",
       .Bytes = [&] { return Overwrite(m.Bytes, 101, U32(0xF0F1F2F3)); },
       .Reason = kInvalidVersion},
      {.Name = "cut inside the files",
       .Bytes = [&] { return m.Bytes.substr(0, m.DomainMarkerAt - 3); },
       .Reason = kUnexpectedEndOfFile},
      {.Name = "file name of 4 GB",
       .Bytes = [&] { return Overwrite(m.Bytes, 109, U32(0xFFFFFFF0)); },
       .Reason = kUnexpectedEndOfFile},
      {.Name = "4 billion files",
       .Bytes = [&] { return Overwrite(m.Bytes, 105, U32(0xFFFFFFFF)); },
       .Reason = kUnexpectedEndOfFile},
      {.Name = "wrong domain marker",
       .Bytes = [&] { return Overwrite(m.Bytes, m.DomainMarkerAt, U32(0)); },
       .Reason = kFilesRestored},
      {.Name = "4 billion domains",
       .Bytes = [&] { return Overwrite(m.Bytes, m.DomainMarkerAt + 4, U32(0xFFFFFFFF)); },
       .Reason = kUnexpectedEndOfFile},
      {.Name = "wrong class marker",
       .Bytes = [&] { return Overwrite(m.Bytes, m.ClassMarkerAt, U32(0)); },
       .Reason = kFilesAndDomainsRestored},
      {.Name = "4 billion classes",
       .Bytes = [&] { return Overwrite(m.Bytes, m.ClassCountAt, U32(0xFFFFFFFF)); },
       .Reason = kUnexpectedEndOfFile},
      {.Name = "cut inside the classes",
       .Bytes = [&] { return m.Bytes.substr(0, m.Bytes.size() - 40); },
       .Reason = kUnexpectedEndOfFile},
      {.Name = "classes nested 100,000 deep",
       .Bytes = [] { return NestedClassFile(k100k); },
       .Reason = kNestedTooDeeply},
      {.Name = "random bytes after the banner",
       .Bytes = [&] { return m.Bytes.substr(0, 105) + RandomBytes(100000, 7); },
       .Reason = kUnexpectedEndOfFile},
      {.Name = "junk after a whole file",
       .Bytes = [&] { return m.Bytes + RandomBytes(1000, 8); },
       .Reason = nullptr,
       .Out = classes},
      {.Name = "intact file", .Bytes = [&] { return m.Bytes; }, .Reason = nullptr, .Out = classes},
  };
  for (const TClassInfoCase& c : cases) {
    TScratchDir dir;
    const std::string path = (dir.Path() / "Project.cinfo").string();
    WriteFile(path, c.Bytes());
    const auto before = Snapshot(dir.Path());
    const TRunResult r = RunVelmora({"dump", "--stats", "--load", path});
    ExpectCleanRun(r, before, dir.Path(), c.Name);
    if (c.Reason) {
      EXPECT_EQ(r.ExitCode, 1) << c.Name;
      EXPECT_EQ(r.Err, AsCommandLine(FormatMessage(kClassInfoLoadFailed, {path, c.Reason})))
          << c.Name;
    } else {
      EXPECT_EQ(r.ExitCode, 0) << c.Name << "\n" << r.Err;
      EXPECT_NE(r.Out.find(c.Out), std::string::npos) << c.Name << "\n" << r.Out;
    }
  }
}

TEST(CatalogueTest, MissingOrUnreadableClassInformationFile) {
  TScratchDir dir;
  fs::create_directory(dir.Path() / "Folder.cinfo");
  const auto before = Snapshot(dir.Path());
  for (const char* name : {"Missing.cinfo", "Folder.cinfo"}) {
    const std::string path = (dir.Path() / name).string();
    const TRunResult r = RunVelmora({"dump", "--load", path});
    ExpectCleanRun(r, before, dir.Path(), name);
    EXPECT_EQ(r.ExitCode, 1) << name;
    EXPECT_EQ(r.Err, AsCommandLine(FormatMessage(kClassInfoMissing, {path}))) << name;
  }
}

// ---- Domain information files: LoadDomainFileReported ----

std::string DomainFileBytes() {
  TScratchDir dir;
  TDomainList domains;
  domains.CreateDomain("Forms")->ClassNames.Add("TMainForm");
  domains.CreateDomain("Dialogs")->ClassNames.Add("TScheduleDlg");
  domains.SaveToFile((dir.Path() / "x.domain").string());
  return ReadFile(dir.Path() / "x.domain");
}

struct TDomainCase {
  const char* Name;
  std::function<std::string(const std::string& intact)> Bytes;
  int Domains;         // what the list holds afterwards
  const char* Reason;  // the error in the message; null when the load is no failure
};

TEST(CatalogueTest, DamagedDomainFiles) {
  // Header: magic, magic, banner length, banner string (count and text); then the count.
  const size_t countAt = 16 + kDomainFileBanner.size();
  const std::vector<TDomainCase> cases = {
      {.Name = "intact file", .Bytes = [](auto& b) { return b; }, .Domains = 2, .Reason = nullptr},
      {.Name = "empty file",
       .Bytes = [](auto&) { return std::string(); },
       .Domains = 0,
       .Reason = nullptr},
      {.Name = "wrong first magic",
       .Bytes = [](auto& b) { return Overwrite(b, 0, U32(10005)); },
       .Domains = 0,
       .Reason = nullptr},
      {.Name = "wrong second magic",
       .Bytes = [](auto& b) { return Overwrite(b, 4, U32(10007)); },
       .Domains = 0,
       .Reason = nullptr},
      {.Name = "banner length 80",
       .Bytes = [](auto& b) { return Overwrite(b, 8, U32(80)); },
       .Domains = 0,
       .Reason = nullptr},
      {.Name = "banner count 80",
       .Bytes = [](auto& b) { return Overwrite(b, 12, U32(80)); },
       .Domains = 0,
       .Reason = nullptr},
      {.Name = "banner text changed",
       .Bytes = [](auto& b) { return Overwrite(b, 20, "x"); },
       .Domains = 0,
       .Reason = nullptr},
      {.Name = "cut inside the header",
       .Bytes = [](auto& b) { return b.substr(0, 30); },
       .Domains = 0,
       .Reason = nullptr},
      {.Name = "cut inside the domains",
       .Bytes = [](auto& b) { return b.substr(0, b.size() - 5); },
       .Domains = 1,
       .Reason = kUnexpectedEndOfFile},
      {.Name = "4 billion domains",
       .Bytes = [=](auto& b) { return Overwrite(b, countAt, U32(0xFFFFFFFF)); },
       .Domains = 2,
       .Reason = kUnexpectedEndOfFile},
      {.Name = "domain name of 4 GB",
       .Bytes = [=](auto& b) { return Overwrite(b, countAt + 4, U32(0xFFFFFFF0)); },
       .Domains = 0,
       .Reason = kUnexpectedEndOfFile},
      {.Name = "random bytes after the header",
       .Bytes = [=](auto& b) { return b.substr(0, countAt) + RandomBytes(5000, 3); },
       .Domains = -1,
       .Reason = kUnexpectedEndOfFile},
  };
  const std::string intact = DomainFileBytes();
  for (const TDomainCase& c : cases) {
    TScratchDir dir;
    const std::string path = (dir.Path() / "Kiln.domain").string();
    WriteFile(path, c.Bytes(intact));
    const auto before = Snapshot(dir.Path());
    TDomainList domains;
    const TModelFileOutcome outcome = LoadDomainFileReported(path, "Kiln", domains);
    EXPECT_EQ(outcome.Ok, c.Reason == nullptr) << c.Name;
    EXPECT_EQ(outcome.Message,
              c.Reason ? FormatMessage(kDomainInfoLoadFailed, {"Kiln", c.Reason}) : "")
        << c.Name;
    if (c.Domains >= 0) {
      EXPECT_EQ(domains.Count(), c.Domains) << c.Name;
    }
    EXPECT_TRUE(Snapshot(dir.Path()) == before) << c.Name;
  }
}

TEST(CatalogueTest, MissingOrUnreadableDomainFile) {
  TScratchDir dir;
  fs::create_directory(dir.Path() / "Folder.domain");
  const struct {
    const char* Name;
    const char* Reason;
  } cases[] = {
      {.Name = "Missing.domain",
       .Reason = "Cannot open file \"{dir}/Missing.domain\": No such file or directory"},
      {.Name = "Folder.domain",
       .Reason = "Cannot read file \"{dir}/Folder.domain\": Is a directory"},
  };
  for (const auto& c : cases) {
    TDomainList domains;
    const TModelFileOutcome outcome =
        LoadDomainFileReported((dir.Path() / c.Name).string(), "Kiln", domains);
    EXPECT_FALSE(outcome.Ok) << c.Name;
    EXPECT_EQ(outcome.Message,
              FormatMessage(kDomainInfoLoadFailed, {"Kiln", Expand(c.Reason, dir.Path())}))
        << c.Name;
  }
}

// ---- Source files: `velmora dump --stats` ----

using TMaker = std::function<void(const fs::path& dir)>;

TMaker Files(std::vector<std::pair<std::string, std::string>> files) {
  return [files](const fs::path& dir) {
    for (const auto& [name, text] : files) WriteFile(dir / name, text);
  };
}

struct TSourceCase {
  const char* Name;
  TMaker Make;
  std::vector<std::string> Args;  // after "dump --stats"; "{dir}" is the case's folder
  int ExitCode = 0;
  std::string Err = {};               // the whole of stderr
  std::vector<std::string> Out = {};  // lines the counts must hold
};

const std::string kClassCpp = "class TBefore : public TObject { int FValue; };\r\n";
const std::string kClassPas =
    "unit Before;\r\ninterface\r\ntype\r\n  TBefore = class(TObject)\r\n    FValue: Integer;\r\n  "
    "end;\r\n";

std::vector<TSourceCase> SourceCases() {
  const std::string program = VELMORA_BINARY;
  return {
      // Binary files.
      {.Name = "random bytes as C++",
       .Make = Files({{"noise.cpp", RandomBytes(1 << 20, 1)}}),
       .Args = {"{dir}/noise.cpp"},
       .Err = "velmora: warning: {dir}/noise.cpp: looks binary (NUL bytes); parsed anyway\n",
       .Out = {"files: 1\n"}},
      {.Name = "random bytes as Pascal",
       .Make = Files({{"noise.pas", RandomBytes(1 << 20, 2)}}),
       .Args = {"{dir}/noise.pas"},
       .Err = "velmora: warning: {dir}/noise.pas: looks binary (NUL bytes); parsed anyway\n",
       .Out = {"files: 1\n"}},
      {.Name = "a program as C++",
       .Make = [=](auto& d) { fs::create_symlink(program, d / "program.h"); },
       .Args = {"{dir}/program.h"},
       .Err = "velmora: warning: {dir}/program.h: looks binary (NUL bytes); parsed anyway\n",
       .Out = {"files: 1\n"}},
      {.Name = "a program as Pascal",
       .Make = [=](auto& d) { fs::create_symlink(program, d / "program.pas"); },
       .Args = {"{dir}/program.pas"},
       .Err = "velmora: warning: {dir}/program.pas: looks binary (NUL bytes); parsed anyway\n",
       .Out = {"files: 1\n"}},
      // One line of 10 MB after a class.
      {.Name = "10 MB identifier",
       .Make = Files({{"long.h", kClassCpp + Repeat("a", k10MB)}}),
       .Args = {"{dir}/long.h"},
       .Out = {"classes: 1\n"}},
      {.Name = "10 MB expression",
       .Make = Files({{"long.h", kClassCpp + Repeat("a+", k10MB / 2)}}),
       .Args = {"{dir}/long.h"},
       .Out = {"classes: 1\n"}},
      {.Name = "10 MB open comment",
       .Make = Files({{"long.h", kClassCpp + "/*" + Repeat("x", k10MB)}}),
       .Args = {"{dir}/long.h"},
       .Out = {"classes: 1\n"}},
      {.Name = "10 MB open string",
       .Make = Files({{"long.h", kClassCpp + "\"" + Repeat("x", k10MB)}}),
       .Args = {"{dir}/long.h"},
       .Out = {"classes: 1\n"}},
      {.Name = "10 MB Pascal line",
       .Make = Files({{"Long.pas", kClassPas + Repeat("x,", k10MB / 2)}}),
       .Args = {"{dir}/Long.pas"},
       .Out = {"classes: 1\n"}},
      {.Name = "10 MB open brace comment",
       .Make = Files({{"Long.pas", kClassPas + "{" + Repeat("x", k10MB)}}),
       .Args = {"{dir}/Long.pas"},
       .Out = {"classes: 1\n"}},
      // 100,000 levels of nesting.
      {.Name = "C++ braces",
       .Make = Files({{"deep.h", Repeat("{", k100k)}}),
       .Args = {"{dir}/deep.h"},
       .Out = {"classes: 0\n"}},
      {.Name = "C++ parentheses in a declaration",
       .Make = Files({{"deep.h", kClassCpp + "void f" + Repeat("(", k100k)}}),
       .Args = {"{dir}/deep.h"},
       .Out = {"classes: 1\n"}},
      {.Name = "C++ template brackets",
       .Make = Files({{"deep.h", kClassCpp + "template " + Repeat("<", k100k)}}),
       .Args = {"{dir}/deep.h"},
       .Out = {"classes: 1\n"}},
      {.Name = "C++ classes, unclosed",
       .Make = Files({{"deep.h", Repeat("class A { ", k100k)}}),
       .Args = {"{dir}/deep.h"},
       .Out = {"files: 1\n"}},
      {.Name = "C++ classes, closed",
       .Make = Files({{"deep.h", Repeat("struct S { ", k100k) + Repeat("}; ", k100k) + kClassCpp}}),
       .Args = {"{dir}/deep.h"},
       .Out = {"files: 1\n"}},
      {.Name = "Pascal parentheses",
       .Make = Files({{"Deep.pas", kClassPas + Repeat("(", k100k)}}),
       .Args = {"{dir}/Deep.pas"},
       .Out = {"classes: 1\n"}},
      {.Name = "Pascal records",
       .Make = Files({{"Deep.pas", kClassPas + "  T = " + Repeat("record A: ", k100k)}}),
       .Args = {"{dir}/Deep.pas"},
       .Out = {"classes: 1\n"}},
      {.Name = "Pascal classes",
       .Make = Files({{"Deep.pas", kClassPas + Repeat("  T = class(TObject) ", k100k)}}),
       .Args = {"{dir}/Deep.pas"},
       .Out = {"files: 1\n"}},
      // The text ends at a NUL byte: what comes after it is not read.
      {.Name = "NUL inside C++",
       .Make = Files({{"nul.h", kClassCpp + std::string(1, '\0') + "class TAfter {};\r\n"}}),
       .Args = {"{dir}/nul.h"},
       .Err = "velmora: warning: {dir}/nul.h: looks binary (NUL bytes); parsed anyway\n",
       .Out = {"classes: 1\n"}},
      {.Name = "NUL inside Pascal",
       .Make = Files({{"Nul.pas", kClassPas + std::string(1, '\0') + "  TAfter = class end;\r\n"}}),
       .Args = {"{dir}/Nul.pas"},
       .Err = "velmora: warning: {dir}/Nul.pas: looks binary (NUL bytes); parsed anyway\n",
       .Out = {"classes: 1\n"}},
      // File names that are not ASCII.
      {.Name = "UTF-8 file name",
       .Make = Files({{"\xC3\x9C"
                       "bersicht.h",
                       kClassCpp}}),
       .Args = {"{dir}/\xC3\x9C"
                "bersicht.h"},
       .Out = {"classes: 1\n"}},
      {.Name = "Windows-1252 file name",
       .Make = Files({{"\xC4rger.pas", kClassPas}}),
       .Args = {"{dir}/\xC4rger.pas"},
       .Out = {"classes: 1\n"}},
      {.Name = "Windows-1252 folder and include",
       .Make = Files({{"\xE9t\xE9/main.h", "#include \"d\xE9j\xE0.h\"\r\n"},
                      {"\xE9t\xE9/d\xE9j\xE0.h", kClassCpp}}),
       .Args = {"--follow-includes", "{dir}/\xE9t\xE9/main.h"},
       .Out = {"files: 2\n", "classes: 1\n"}},
      // Includes that go round or lead nowhere.
      {.Name = "C++ include cycle",
       .Make =
           Files({{"a.h", "#include \"b.h\"\r\n" + kClassCpp}, {"b.h", "#include \"a.h\"\r\n"}}),
       .Args = {"--follow-includes", "{dir}/a.h"},
       .Out = {"files: 2\n", "classes: 1\n"}},
      {.Name = "C++ file including itself",
       .Make = Files({{"self.h", "#include \"SELF.H\"\r\n#include \"self.h\"\r\n" + kClassCpp}}),
       .Args = {"--follow-includes", "{dir}/self.h"},
       .Out = {"files: 1\n", "classes: 1\n"}},
      {.Name = "Pascal include cycle",
       .Make = Files({{"Unit1.pas", kClassPas + "{$I a.inc}\r\n"},
                      {"a.inc", "{$I b.inc}\r\n"},
                      {"b.inc", "{$I A.INC}\r\n"}}),
       .Args = {"--follow-includes", "{dir}/Unit1.pas"},
       .Out = {"files: 3\n", "classes: 1\n"}},
      {.Name = "missing includes",
       .Make =
           Files({{"main.h", "#include \"missing.h\"\r\n#include \"sub/none.h\"\r\n" + kClassCpp}}),
       .Args = {"--follow-includes", "{dir}/main.h"},
       .Err = "velmora: warning: {dir}/main.h: include \"missing.h\" not found\n"
              "velmora: warning: {dir}/main.h: include \"sub/none.h\" not found\n",
       .Out = {"files: 1\n", "classes: 1\n"}},
      {.Name = "missing Pascal include",
       .Make = Files({{"Unit1.pas", kClassPas + "{$I nothere.inc}\r\n"}}),
       .Args = {"--follow-includes", "{dir}/Unit1.pas"},
       .Err = "velmora: warning: {dir}/Unit1.pas: include \"nothere.inc\" not found\n",
       .Out = {"files: 1\n"}},
      {.Name = "include naming a folder",
       .Make =
           [](auto& d) {
             Files({{"main.h", "#include \"sub\"\r\n" + kClassCpp}})(d);
             fs::create_directory(d / "sub");
           },
       .Args = {"--follow-includes", "{dir}/main.h"},
       .Err = "velmora: warning: {dir}/main.h: include \"sub\" not found\n",
       .Out = {"files: 1\n"}},
      {.Name = "include naming a pipe",
       .Make =
           [](auto& d) {
             Files({{"main.h", "#include \"pipe.h\"\r\n" + kClassCpp}})(d);
             ::mkfifo((d / "pipe.h").c_str(), 0600);
           },
       .Args = {"--follow-includes", "{dir}/main.h"},
       .Err = "velmora: warning: {dir}/main.h: include \"pipe.h\" not found\n",
       .Out = {"files: 1\n"}},
      // Named files that cannot be read: a message, and the others are still parsed.
      {.Name = "missing file",
       .Make = Files({{"ok.h", kClassCpp}}),
       .Args = {"{dir}/missing.cpp", "{dir}/ok.h"},
       .ExitCode = 1,
       .Err = "velmora: Cannot open file \"{dir}/missing.cpp\": No such file or directory\n",
       .Out = {"classes: 1\n"}},
      // A folder is walked for sources, whatever its name.
      {.Name = "a folder",
       .Make = [](auto& d) { fs::create_directory(d / "folder.cpp"); },
       .Args = {"{dir}/folder.cpp"},
       .Err = "velmora: warning: {dir}/folder.cpp: no C++ or Pascal sources in the folder\n"},
      {.Name = "dangling link",
       .Make = [](auto& d) { fs::create_symlink(d / "gone.h", d / "link.h"); },
       .Args = {"{dir}/link.h"},
       .ExitCode = 1,
       .Err = "velmora: Cannot open file \"{dir}/link.h\": No such file or directory\n"},
      {.Name = "a pipe",
       .Make = [](auto& d) { ::mkfifo((d / "pipe.cpp").c_str(), 0600); },
       .Args = {"{dir}/pipe.cpp"},
       .ExitCode = 1,
       .Err = "velmora: Cannot read file \"{dir}/pipe.cpp\": not a regular file\n"},
      {.Name = "an endless device",
       .Make = Files({}),
       .Args = {"/dev/zero"},
       .ExitCode = 1,
       .Err = "velmora: Cannot read file \"/dev/zero\": not a regular file\n"},
  };
}

TEST(CatalogueTest, HostileSourceFiles) {
  for (const TSourceCase& c : SourceCases()) {
    TScratchDir dir;
    c.Make(dir.Path());
    const auto before = Snapshot(dir.Path());
    std::vector<std::string> args = {"dump", "--stats"};
    for (const std::string& a : c.Args) args.push_back(Expand(a, dir.Path()));
    const TRunResult r = RunVelmora(args);
    ExpectCleanRun(r, before, dir.Path(), c.Name);
    EXPECT_EQ(r.ExitCode, c.ExitCode) << c.Name << "\n" << r.Err;
    EXPECT_EQ(r.Err, Expand(c.Err, dir.Path())) << c.Name;
    for (const std::string& line : c.Out)
      EXPECT_NE(r.Out.find(line), std::string::npos) << c.Name << ": no " << line << r.Out;
  }
}

TEST(CatalogueTest, UnreadableSourceFile) {
  if (::geteuid() == 0) GTEST_SKIP() << "root reads a file whatever its permissions say";
  TScratchDir dir;
  WriteFile(dir.Path() / "locked.h", kClassCpp);
  fs::permissions(dir.Path() / "locked.h", fs::perms::none);
  const TRunResult r = RunVelmora({"dump", (dir.Path() / "locked.h").string()});
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_EQ(r.Err, Expand("velmora: Cannot open file \"{dir}/locked.h\": Permission denied\n",
                          dir.Path()));
}

TEST(CatalogueTest, SaveAndLoadUnderNonAsciiNames) {
  TScratchDir dir;
  WriteFile(dir.Path() / "\xC4rger.pas", kClassPas);
  const std::string saved = (dir.Path() / "Sicherung \xE4\xF6\xFC \xC3\xA4.cinfo").string();
  TRunResult r =
      RunVelmora({"dump", "--stats", "--save", saved, (dir.Path() / "\xC4rger.pas").string()});
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  r = RunVelmora({"dump", "--load", saved});
  EXPECT_EQ(r.ExitCode, 0) << r.Err;
  EXPECT_NE(r.Out.find("\xC4rger.pas"), std::string::npos) << r.Out;
}

// ---- Global settings: `velmora settings` on a damaged store file ----

struct TSettingsCase {
  const char* Name;
  std::string Text;     // the store file
  std::string Differs;  // the one listing line that is not the default; empty for none
};

TEST(CatalogueTest, DamagedGlobalSettings) {
  const std::string general = "[Software\\Quarnby\\Velmora Pro\\C++ Builder 3.0\\General]\r\n";
  const std::vector<TSettingsCase> cases = {
      {.Name = "random bytes", .Text = RandomBytes(20000, 5), .Differs = ""},
      // A NUL is a control character like any other: trimmed at the edges of a value.
      {.Name = "NUL bytes",
       .Text = general + "ParsePriority=" + std::string(1, '\0') + "2\r\nShowWarnings=1" +
               std::string(1, '\0') + "1\r\n",
       .Differs = "ParsePriority=2"},
      {.Name = "wrong value forms",
       .Text = general +
               "ParsePriority=high\r\nShowWarnings=perhaps\r\nEditorJumpOffSet=99999999999\r\n",
       .Differs = ""},
      {.Name = "lone CRs and LFs",
       .Text = "\r\r\n\n" + general + "ParsePriority=2\r",
       .Differs = "ParsePriority=2"},
      {.Name = "10 MB line",
       .Text = Repeat("x", k10MB) + "\r\n" + general + "ParsePriority=2\r\n",
       .Differs = "ParsePriority=2"},
      {.Name = "junk around a good value",
       .Text =
           RandomBytes(3000, 6) + "\r\n" + general + "ParsePriority=2\r\n" + RandomBytes(3000, 9),
       .Differs = "ParsePriority=2"},
  };
  TScratchDir home;
  const TRunResult defaults = RunVelmora({"settings"}, {"XDG_CONFIG_HOME=" + home.Path().string()});
  ASSERT_EQ(defaults.ExitCode, 0) << defaults.Err;
  for (const TSettingsCase& c : cases) {
    TScratchDir dir;
    WriteFile(dir.Path() / "velmora/registry.ini", c.Text);
    const auto before = Snapshot(dir.Path());
    const TRunResult r = RunVelmora({"settings"}, {"XDG_CONFIG_HOME=" + dir.Path().string()});
    ExpectCleanRun(r, before, dir.Path(), c.Name);
    EXPECT_EQ(r.ExitCode, 0) << c.Name << "\n" << r.Err;
    if (c.Differs.empty()) {
      EXPECT_EQ(r.Out, defaults.Out) << c.Name;
    } else {
      EXPECT_NE(r.Out, defaults.Out) << c.Name;
      EXPECT_NE(r.Out.find("\n" + c.Differs + "\n"), std::string::npos) << c.Name << "\n" << r.Out;
    }
  }
}

TEST(CatalogueTest, UnreadableGlobalSettings) {
  TScratchDir dir;
  fs::create_directories(dir.Path() / "velmora/registry.ini");
  const auto before = Snapshot(dir.Path());
  const TRunResult r = RunVelmora({"settings"}, {"XDG_CONFIG_HOME=" + dir.Path().string()});
  ExpectCleanRun(r, before, dir.Path(), "store file is a folder");
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_EQ(
      r.Err,
      Expand("velmora settings: Cannot read file \"{dir}/velmora/registry.ini\": Is a directory\n",
             dir.Path()));
}

// ---- Project settings: TCurrentProjectSettings::Load ----

struct TProjectSettingsCase {
  const char* Name;
  std::function<void(const fs::path& file)> Make;
  bool Ok;
  std::function<void(TCurrentProjectSettings&)> Expected;  // changes from the defaults
  const char* Reason = nullptr;                            // the error in the message when not Ok
};

TEST(CatalogueTest, DamagedProjectSettings) {
  auto text = [](std::string s) { return [s](const fs::path& f) { WriteFile(f, s); }; };
  auto none = [](TCurrentProjectSettings&) {};
  const std::vector<TProjectSettingsCase> cases = {
      {.Name = "random bytes", .Make = text(RandomBytes(20000, 4)), .Ok = true, .Expected = none},
      {.Name = "wrong value forms",
       .Make =
           text("[General]\r\nSynchronizeContextBarSpeed=fast\r\nUseProjectExternals=maybe\r\n"),
       .Ok = true,
       .Expected = none},
      {.Name = "count beyond the entries",
       .Make = text("[Exclude From Parsing]\r\nCount=2000000000\r\nFile0=a.cpp\r\n"),
       .Ok = true,
       .Expected = [](auto& s) { s.ExcludedFiles = {"a.cpp"}; }},
      {.Name = "negative count",
       .Make = text("[Browse History]\r\nCount=-5\r\nEntry0=x\r\n"),
       .Ok = true,
       .Expected = none},
      {.Name = "NUL in values",
       .Make = text("[General]\r\nClassViewActivePage=" + std::string(1, '\0') +
                    "3\r\nClassHierarchyTreeWidth=1" + std::string(1, '\0') + "1\r\n"),
       .Ok = true,
       .Expected = [](auto& s) { s.ClassViewActivePage = 3; }},
      {.Name = "10 MB line",
       .Make = text(Repeat("y", k10MB) + "\r\n[General]\r\nClassViewActivePage=3\r\n"),
       .Ok = true,
       .Expected = [](auto& s) { s.ClassViewActivePage = 3; }},
      {.Name = "a folder",
       .Make = [](const fs::path& f) { fs::create_directory(f); },
       .Ok = false,
       .Expected = none,
       .Reason = "Cannot read file \"{dir}/Kiln.vlsettings\": Is a directory"},
      {.Name = "a pipe",
       .Make = [](const fs::path& f) { ::mkfifo(f.c_str(), 0600); },
       .Ok = true,
       .Expected = none},
  };
  for (const TProjectSettingsCase& c : cases) {
    TScratchDir dir;
    const std::string project = (dir.Path() / "Kiln.bpr").string();
    c.Make(TCurrentProjectSettings::SettingsFileName(project));
    const auto before = Snapshot(dir.Path());
    TCurrentProjectSettings settings;
    std::string message;
    EXPECT_EQ(settings.Load(project, &message), c.Ok) << c.Name;
    TCurrentProjectSettings expected;
    c.Expected(expected);
    EXPECT_TRUE(settings == expected) << c.Name;
    EXPECT_EQ(message, c.Reason ? FormatMessage(kProjectSettingsLoadError,
                                                {project, Expand(c.Reason, dir.Path())})
                                : "")
        << c.Name;
    EXPECT_TRUE(Snapshot(dir.Path()) == before) << c.Name;
  }
}

}  // namespace
}  // namespace velmora::catalogue
