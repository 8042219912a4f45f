// Parser threads on small trees of files in a temporary folder: include resolution, the
// order and number of parses, the root's include entry, retries, and two jobs at once.
// Every suite name holds "Threads" so that `ctest -R Threads` runs them all under the
// thread sanitizer.
#include "parsing/parser_thread.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <thread>
#include <vector>

#include "model/class_list.h"
#include "parsing/parse_merge.h"
#include "parsing/source_provider.h"
#include "support/sync.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

Names ListOf(const TStringList& list) {
  Names names;
  for (int i = 0; i < list.Count(); ++i) names.push_back(list.Strings(i));
  return names;
}

class ParserThreadsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/velmora-threads-XXXXXX";
    root_ = ::mkdtemp(pattern);
  }
  void TearDown() override { fs::remove_all(root_); }

  void Write(const std::map<std::string, std::string>& files) {
    for (const auto& [name, text] : files) {
      const fs::path path = fs::path(root_) / name;
      fs::create_directories(path.parent_path());
      std::ofstream(path, std::ios::binary) << text;
    }
  }
  std::string Path(const std::string& name) const { return root_ + "/" + name; }
  // Full names back to names below the temporary folder, for readable expectations.
  Names Relative(const Names& names) const {
    Names out;
    for (const std::string& n : names)
      out.push_back(n.rfind(root_ + "/", 0) == 0 ? n.substr(root_.size() + 1) : n);
    return out;
  }

  std::string root_;
};

struct JobCase {
  const char* what = "";
  std::map<std::string, std::string> files = {};
  std::string root = {};
  Names includePath = {};  // below the temporary folder, as all names here
  Names known = {};
  Names parses = {};   // every parse, in order
  Names reached = {};  // the caller's parsed names, and the root's include entry if any
};

TEST_F(ParserThreadsTest, FollowsIncludesAndRewritesTheRootEntry) {
  const JobCase cases[] = {
      {.what = "a file beside the includer wins over one in the include path",
       .files = {{"src/main.cpp", "#include \"a.h\"\n"}, {"src/a.h", ""}, {"inc/a.h", ""}},
       .root = "src/main.cpp",
       .includePath = {"inc"},
       .parses = {"src/main.cpp", "src/a.h"},
       .reached = {"src/a.h"}},
      {.what = "the include path is tried in the order given",
       .files = {{"main.cpp", "#include \"a.h\"\n"}, {"z/a.h", ""}, {"b/a.h", ""}},
       .root = "main.cpp",
       .includePath = {"z", "b"},
       .parses = {"main.cpp", "z/a.h"},
       .reached = {"z/a.h"}},
      {.what = "a name starting with a backslash is rooted on the includer's drive",
       .files = {{"src/main.cpp", "#include \"\\inc\\b.h\"\n"}, {"inc/b.h", ""}},
       .root = "src/main.cpp",
       .parses = {"src/main.cpp", "inc/b.h"},
       .reached = {"inc/b.h"}},
      {.what = "a name not found as written is found ignoring case",
       .files = {{"main.cpp", "#include \"SUB\\Shared.h\"\n"}, {"sub/shared.H", ""}},
       .root = "main.cpp",
       .parses = {"main.cpp", "sub/shared.H"},
       .reached = {"sub/shared.H"}},
      {.what = "A includes B includes A: A is parsed again, B once",
       .files = {{"a.cpp", "#include \"b.h\"\n"}, {"b.h", "#include \"a.cpp\"\n"}},
       .root = "a.cpp",
       .parses = {"a.cpp", "b.h", "a.cpp"},
       .reached = {"b.h"}},
      {.what = "includes are taken alphabetically, each once",
       .files = {{"r.cpp", "#include \"c.h\"\n#include \"b.h\"\n"},
                 {"b.h", "#include \"c.h\"\n#include \"d.h\"\n"},
                 {"c.h", "#include \"b.h\"\n"},
                 {"d.h", "#include \"c.h\"\n"}},
       .root = "r.cpp",
       .parses = {"r.cpp", "b.h", "c.h", "d.h"},
       .reached = {"b.h", "c.h", "d.h"}},
      {.what = "a root that includes itself is parsed once",
       .files = {{"self.cpp", "#include \"self.cpp\"\n#include \".\\self.cpp\"\n"}},
       .root = "self.cpp",
       .parses = {"self.cpp"}},
      {.what = "other spellings of one header are one file",
       .files = {{"r.cpp", "#include \"x.h\"\n"},
                 {"x.h", "#include \"./x.h\"\n#include \"sub/../x.h\"\n#include \"./r.cpp\"\n"},
                 {"sub/.keep", ""}},
       .root = "r.cpp",
       .parses = {"r.cpp", "x.h", "r.cpp"},
       .reached = {"x.h"}},
      {.what = "includes that do not resolve are dropped and the entry removed",
       .files = {{"lone.cpp", "#include \"missing.h\"\n#include \"\\nowhere\\x.h\"\n"}},
       .root = "lone.cpp",
       .parses = {"lone.cpp"}},
      {.what = "a known file is neither parsed nor followed, but listed",
       .files = {{"r.cpp", "#include \"k.h\"\n"}, {"k.h", "#include \"n.h\"\n"}, {"n.h", ""}},
       .root = "r.cpp",
       .known = {"k.h"},
       .parses = {"r.cpp"},
       .reached = {"k.h"}},
      {.what = "a Pascal unit and its include file",
       .files = {{"u.pas", "unit u;\ninterface\n{$I common.inc}\nimplementation\nend.\n"},
                 {"Common.inc", "const X = 1;\n"}},
       .root = "u.pas",
       .parses = {"u.pas", "Common.inc"},
       .reached = {"Common.inc"}},
      {.what = "a root that does not exist", .root = "gone.cpp"},
  };
  for (const JobCase& c : cases) {
    SCOPED_TRACE(c.what);
    TearDown();
    SetUp();
    Write(c.files);
    TStringList includePath(false, TDuplicates::Accept, true),
        known(true, TDuplicates::Ignore, true);
    for (const std::string& dir : c.includePath) includePath.Add(Path(dir));
    for (const std::string& file : c.known) known.Add(Path(file));
    TClasslist target;
    target.Includes.FindOrAdd(Path(c.root))->IncludedNames.Add("stale");
    TStringList parsedNames(false, TDuplicates::Accept, true);
    StartParse(target, nullptr, Path(c.root), &includePath, &known, &parsedNames, {});
    // The job alone, to see every parse it made.
    const TParseRequest request = MakeParseRequest(Path(c.root), &includePath, &known, {});
    const TParseResult job = RunParseJob(request, MakeParseJobHooks(request, DiskSources()));
    Names parses;
    for (const TFileParse& file : job.Files) parses.push_back(file.Path);

    EXPECT_EQ(Relative(parses), c.parses);
    EXPECT_EQ(Relative(ListOf(parsedNames)), c.reached);
    const TIncludeUnit* entry = target.Includes.Find(Path(c.root));
    EXPECT_EQ(Relative(entry ? ListOf(entry->IncludedNames) : Names{}), c.reached);
    EXPECT_EQ(entry != nullptr, !c.reached.empty()) << "an entry only while something was reached";
  }
}

TEST_F(ParserThreadsTest, ClassesLandInTheTargetUnderTheirUnitNames) {
  Write({{"app/Main.cpp", "#include \"Shapes.h\"\nclass TMain : public TShape {};\n"},
         {"app/Shapes.h", "class TShape { int Sides; };\n"}});
  TClasslist target;
  StartParse(target, nullptr, Path("app/Main.cpp"), nullptr, nullptr, nullptr, {});
  ASSERT_EQ(target.Count(), 2);
  EXPECT_EQ(target.Find("TMain")->UnitName, "Main.cpp");
  EXPECT_EQ(target.Find("TShape")->UnitName, "Shapes.h");
  EXPECT_EQ(target.Find("TShape")->Fields.Count(), 1);
}

TEST_F(ParserThreadsTest, PascalOptionDecidesWhetherTheImplementationIsRead) {
  Write({{"u.pas",
          "unit u;\ninterface\ntype TPublic = class end;\n"
          "implementation\ntype THidden = class end;\nend.\n"}});
  for (bool option : {false, true}) {
    TClasslist target;
    StartParse(target, nullptr, Path("u.pas"), nullptr, nullptr, nullptr, {.PascalOption = option});
    EXPECT_NE(target.Find("TPublic"), nullptr) << option;
    EXPECT_EQ(target.Find("THidden") != nullptr, option) << option;
  }
}

// Loads slowly, or fails for one file name; its pauses between attempts are recorded
// instead of slept. The thread frees itself: what it records goes to the test's vectors.
class TScriptedLoadThread : public TCPPParserThread {
 public:
  TScriptedLoadThread(const std::string& fileName, TStringList* parsedNames,
                      const TParserThreadOptions& options, TClasslist* target)
      : TCPPParserThread(fileName, nullptr, nullptr, parsedNames, options, target) {
    Pause = [this](std::chrono::milliseconds pause) {
      if (pauses) pauses->push_back(pause);
    };
  }
  std::string failing;
  int* failedAttempts = nullptr;
  std::vector<std::chrono::milliseconds>* pauses = nullptr;
  std::chrono::milliseconds delay{0};

 protected:
  std::string LoadFile(const std::string& name) override {
    std::this_thread::sleep_for(delay);
    if (name != failing) return TCPPParserThread::LoadFile(name);
    ++*failedAttempts;
    throw std::runtime_error("being written by someone else");
  }
};

TEST_F(ParserThreadsTest, UnreadableFileIsTriedAgainThenPassedOver) {
  Write({{"r.cpp", "#include \"bad.h\"\n#include \"good.h\"\n"},
         {"bad.h", "class TBad {};\n"},
         {"good.h", "class TGood {};\n"}});
  using std::chrono::milliseconds;
  const struct {
    int budget, attempts;
    std::vector<milliseconds> pauses;
  } cases[] = {{.budget = 0, .attempts = 1, .pauses = {}},
               {.budget = 2, .attempts = 3, .pauses = {milliseconds(100), milliseconds(100)}}};
  for (const auto& c : cases) {
    TClasslist target;
    TStringList parsedNames(false, TDuplicates::Accept, true);
    auto* thread =
        new TScriptedLoadThread(Path("r.cpp"), &parsedNames, {.RetryBudget = c.budget}, &target);
    int attempts = 0;
    std::vector<milliseconds> pauses;
    thread->failing = Path("bad.h");
    thread->failedAttempts = &attempts;
    thread->pauses = &pauses;
    ResumeParserThread(thread);

    EXPECT_EQ(attempts, c.attempts) << "budget " << c.budget;
    EXPECT_EQ(pauses, c.pauses) << "budget " << c.budget;
    EXPECT_EQ(target.Find("TBad"), nullptr);
    EXPECT_NE(target.Find("TGood"), nullptr) << "the job goes on after giving a file up";
    EXPECT_EQ(Relative(ListOf(parsedNames)), (Names{"bad.h", "good.h"}));
  }
}

TEST_F(ParserThreadsTest, AJobThatFailsOutsideItsFilesEndsCancelled) {
  Write({{"r.cpp", "#include \"a.h\"\nclass TRoot {};\n"}, {"a.h", ""}});
  const TParseRequest request = MakeParseRequest(Path("r.cpp"), nullptr, nullptr, {});
  TParseJobHooks hooks = MakeParseJobHooks(request, DiskSources());
  hooks.Exists = [](const std::string&) -> bool { throw std::runtime_error("broken"); };
  const TParseResult result = RunParseJob(request, hooks);  // returns
  EXPECT_TRUE(result.Cancelled);
  TClasslist target;
  target.FindOrAdd("TKept", TLanguage::Cpp)->UnitName = "r.cpp";
  MergeParseResult(target, result);
  EXPECT_NE(target.Find("TKept"), nullptr) << "a cancelled result changes nothing";
}

TEST_F(ParserThreadsTest, ReleaseByAnotherJobDoesNotEndTheWait) {
  Write({{"r.cpp", "class TSlow {};\n"}});
  TSemaphore otherJob(ParseSemaphoreName());
  otherJob.Release();  // as if another job's thread had just finished
  TClasslist target;
  auto* slow = new TScriptedLoadThread(Path("r.cpp"), nullptr, {}, &target);
  slow->delay = std::chrono::milliseconds(100);
  ResumeParserThread(slow);
  EXPECT_NE(target.Find("TSlow"), nullptr);
}

TEST_F(ParserThreadsTest, TwoJobsAtOnceEachFillTheirOwnList) {
  Write({{"one/a.cpp", "#include \"a.h\"\nclass TOne {};\n"},
         {"one/a.h", "class TOneHeader { int X; };\n"},
         {"two/b.pas",
          "unit b;\ninterface\n{$I b.inc}\ntype TTwo = class end;\nimplementation\nend.\n"},
         {"two/b.inc", "type TTwoInc = class end;\n"}});
  const struct {
    std::string root;
    Names classes;
  } jobs[] = {{Path("one/a.cpp"), {"TOne", "TOneHeader"}},
              {Path("two/b.pas"), {"TTwo", "TTwoInc"}}};
  constexpr int kRounds = 25;
  std::vector<std::string> failures[2];
  std::vector<std::thread> callers;
  for (int j = 0; j < 2; ++j) {
    callers.emplace_back([&, j] {
      for (int round = 0; round < kRounds; ++round) {
        TClasslist target;
        TStringList parsedNames(false, TDuplicates::Accept, true);
        StartParse(target, nullptr, jobs[j].root, nullptr, nullptr, &parsedNames, {});
        // Read at once: StartParse returned, so this job's thread is done with the list.
        Names found;
        for (int i = 0; i < target.Count(); ++i) found.push_back(target.Items(i)->Name);
        if (found != jobs[j].classes || parsedNames.Count() != 1)
          failures[j].push_back("round " + std::to_string(round));
      }
    });
  }
  for (std::thread& t : callers) t.join();
  EXPECT_EQ(failures[0], Names{});
  EXPECT_EQ(failures[1], Names{});
}

}  // namespace
}  // namespace velmora
