// The velmora command as a user meets it: the class view of the example project against
// golden texts, the other browsing commands, a warm start that parses only what changed,
// JSON that tools can read, watch, and the errors with their messages and exit codes.
// Every case runs on a fresh copy of examples/ in a folder of its own.
// VELMORA_UPDATE_GOLDEN=1 rewrites the golden files.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <unistd.h>

#include <fstream>
#include <functional>
#include <sstream>

#include "catalogue/catalogue_support.h"
#include "cli/cli_support.h"

namespace velmora::cli {
namespace {

namespace fs = std::filesystem;
using catalogue::ReadFile;
using catalogue::Snapshot;
using catalogue::TScratchDir;
using catalogue::WriteFile;
using namespace std::chrono_literals;

const std::string kProject = "KilnLog/KilnLog.bpr";

/// The folder a case runs in, inside a scratch folder that also takes the command's
/// settings and captured output, so all of it goes at the end.
class TWorkDir {
 public:
  TWorkDir() { fs::create_directories(Path()); }
  fs::path Path() const { return scratch_.Path() / "work"; }

 private:
  TScratchDir scratch_;
};

/// The value of "KEY: value" in `--stats` output, "" when missing.
std::string StatOf(const std::string& stats, const std::string& key) {
  const std::string prefix = key + ": ";
  const size_t at = stats.find(prefix);
  if (at == std::string::npos) return {};
  const size_t start = at + prefix.size();
  return stats.substr(start, stats.find('\n', start) - start);
}

int Lines(const std::string& text) {
  return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

struct TGoldenCase {
  const char* name;
  std::vector<std::string> args;
};

TEST(VelmoraCommand, GoldenOutputOfTheExampleProject) {
  const std::vector<TGoldenCase> cases = {
      {.name = "tree", .args = {kProject}},
      {.name = "tree_named", .args = {"tree", kProject}},
      {.name = "tree_private_fields", .args = {kProject, "--fields", "--private"}},
      {.name = "tree_filter_form_methods",
       .args = {kProject, "--filter", "Form", "--methods", "--protected"}},
      {.name = "tree_nothing_shown", .args = {kProject, "--filter", "TCostModel", "--properties"}},
      {.name = "hierarchy", .args = {"hierarchy", kProject}},
      {.name = "hierarchy_class", .args = {"hierarchy", "TElectricCost", kProject}},
      {.name = "hierarchy_library_class", .args = {"hierarchy", kProject, "TForm"}},
      {.name = "find", .args = {"find", "firing", kProject}},
      {.name = "find_whole_word_case",
       .args = {"find", "--whole-word", "--match-case", "Cost", kProject}},
      {.name = "files", .args = {"files", kProject}},
      {.name = "folder_project", .args = {"KilnLog"}},
  };
  const fs::path goldenDir = fs::path(VELMORA_TEST_DATA) / "cli" / "golden";
  const char* update = std::getenv("VELMORA_UPDATE_GOLDEN");
  for (const TGoldenCase& c : cases) {
    TWorkDir dir;
    CopyExamples(dir.Path());
    const TCliRun run = RunIn(dir.Path(), c.args);
    EXPECT_EQ(run.ExitCode, 0) << c.name << "\n" << run.Err;
    const fs::path golden = goldenDir / (std::string(c.name) + ".txt");
    if (update && std::string(update) == "1") {
      std::ofstream(golden, std::ios::binary) << run.Out;
      continue;
    }
    ASSERT_TRUE(fs::exists(golden)) << c.name;
    EXPECT_EQ(run.Out, ReadFile(golden)) << c.name;
  }
}

TEST(VelmoraCommand, BareCommandRunsTheMainJobOnTheBundledExample) {
  // An installed layout: the executable in bin/, the example under share/velmora/, so the
  // run writes its class information there and not into the source tree.
  TWorkDir dir;
  const fs::path prefix = dir.Path() / "prefix";
  fs::create_directories(prefix / "bin");
  fs::create_directories(prefix / "share/velmora/examples");
  fs::copy_file(VELMORA_BINARY, prefix / "bin/velmora");
  CopyExamples(prefix / "share/velmora/examples");
  CopyExamples(dir.Path());
  const std::string expected = RunIn(dir.Path(), {kProject}).Out;
  // Run from inside the installed examples, so the paths read as in the golden text.
  const TCliRun run =
      RunProgramIn((prefix / "bin/velmora").string(), prefix / "share/velmora/examples", {});
  EXPECT_EQ(run.ExitCode, 0) << run.Err;
  EXPECT_EQ(run.Out, expected);
  EXPECT_TRUE(fs::exists(prefix / "share/velmora/examples/KilnLog/KilnLog.cinfo"));
}

TEST(VelmoraCommand, ReadableTreeLeavesOutWhatANodeLacks) {
  TWorkDir dir;
  CopyExamples(dir.Path());
  const TCliRun run = RunIn(dir.Path(), {kProject});
  ASSERT_EQ(run.ExitCode, 0) << run.Err;
  EXPECT_EQ(run.Out.find("[]"), std::string::npos);
  EXPECT_EQ(run.Out.find(":-1"), std::string::npos);
  EXPECT_EQ(run.Out.find("  \n"), std::string::npos);
  EXPECT_NE(run.Out.find("[virtual abstract const]"), std::string::npos);
  EXPECT_NE(run.Out.find("  KilnLog/MainForm.h:15\n"), std::string::npos);
  EXPECT_NE(run.Out.find("  common/StudioDefs.h:"), std::string::npos);
  // Standard error is a file here, not a terminal: no progress bar, no escape codes.
  EXPECT_EQ(run.Err.find('\033'), std::string::npos) << run.Err;
  EXPECT_EQ(run.Err.find('\r'), std::string::npos) << run.Err;
}

TEST(VelmoraCommand, WarmStartParsesOnlyWhatChanged) {
  TWorkDir dir;
  CopyExamples(dir.Path());
  const TCliRun cold = RunIn(dir.Path(), {kProject, "--stats"});
  ASSERT_EQ(cold.ExitCode, 0) << cold.Err;
  EXPECT_EQ(StatOf(cold.Out, "open"), "cold");
  EXPECT_EQ(StatOf(cold.Out, "units parsed"), "6");  // every unit of the project
  ASSERT_TRUE(fs::exists(dir.Path() / "KilnLog/KilnLog.cinfo"));
  const std::string coldTree = RunIn(dir.Path(), {kProject}).Out;

  struct TStep {
    const char* name;
    std::function<void()> change;
    std::string parsed;
  };
  // One unit is parsed again when it, or a header it reaches, changed.
  const std::vector<TStep> steps = {
      {.name = "nothing changed", .change = [] {}, .parsed = "0"},
      {.name = "a Pascal unit saved later",
       .change = [&] { TouchLater(dir.Path() / "KilnLog/GlazeForm.pas", 10); },
       .parsed = "1"},
      {.name = "a C++ unit saved later",
       .change = [&] { TouchLater(dir.Path() / "KilnLog/ScheduleDlg.cpp", 20); },
       .parsed = "1"},
      {.name = "a header saved later",
       .change = [&] { TouchLater(dir.Path() / "KilnLog/MainForm.h", 30); },
       .parsed = "1"},
  };
  for (const TStep& step : steps) {
    step.change();
    const TCliRun warm = RunIn(dir.Path(), {kProject, "--stats"});
    EXPECT_EQ(warm.ExitCode, 0) << step.name << "\n" << warm.Err;
    EXPECT_EQ(StatOf(warm.Out, "open"), "warm") << step.name;
    EXPECT_EQ(StatOf(warm.Out, "units parsed"), step.parsed) << step.name << "\n" << warm.Out;
    EXPECT_EQ(StatOf(warm.Out, "files"), StatOf(cold.Out, "files")) << step.name;
    EXPECT_NE(StatOf(warm.Out, "load time"), "") << step.name;
    EXPECT_NE(warm.Err.find("loaded the saved class information"), std::string::npos) << step.name;
  }
  // The model a warm start shows is the one a cold start made.
  EXPECT_EQ(RunIn(dir.Path(), {kProject}).Out, coldTree);
}

TEST(VelmoraCommand, WarmStartSeesAClassAddedAndAFileGone) {
  TWorkDir dir;
  CopyExamples(dir.Path());
  ASSERT_EQ(RunIn(dir.Path(), {kProject}).ExitCode, 0);
  const fs::path header = dir.Path() / "KilnLog/ScheduleDlg.h";
  WriteFile(header, ReadFile(header) + "\r\nclass TAddedLater { int FValue; };\r\n");
  TouchLater(header, 10);
  const TCliRun added = RunIn(dir.Path(), {kProject});
  EXPECT_NE(added.Out.find("class TAddedLater  KilnLog/ScheduleDlg.h:"), std::string::npos);
  fs::remove(dir.Path() / "KilnLog/ExportUnit.pas");
  const TCliRun gone = RunIn(dir.Path(), {kProject});
  EXPECT_EQ(gone.ExitCode, 0) << gone.Err;
  EXPECT_EQ(gone.Out.find("ExportUnit.pas"), std::string::npos);
  EXPECT_NE(gone.Out.find("TAddedLater"), std::string::npos);
}

TEST(VelmoraCommand, DamagedClassInformationIsReportedAndTheProjectParsedAgain) {
  TWorkDir dir;
  CopyExamples(dir.Path());
  const std::string expected = RunIn(dir.Path(), {kProject}).Out;
  const fs::path cinfo = dir.Path() / "KilnLog/KilnLog.cinfo";
  const std::string saved = ReadFile(cinfo);
  struct TDamage {
    const char* name;
    std::string bytes;
  };
  const std::vector<TDamage> damages = {
      {.name = "empty", .bytes = ""},
      {.name = "cut in the middle", .bytes = saved.substr(0, saved.size() / 2)},
      {.name = "not class information", .bytes = "hello, world\n"},
  };
  for (const TDamage& d : damages) {
    WriteFile(cinfo, d.bytes);
    const TCliRun run = RunIn(dir.Path(), {kProject});
    EXPECT_EQ(run.ExitCode, 0) << d.name << "\n" << run.Err;
    EXPECT_NE(run.Err.find("The class information file"), std::string::npos) << d.name << run.Err;
    EXPECT_EQ(run.Out, expected) << d.name;
    // Parsed again and saved: the next start is warm.
    const TCliRun next = RunIn(dir.Path(), {kProject, "--stats"});
    EXPECT_EQ(StatOf(next.Out, "open"), "warm") << d.name;
  }
}

TEST(VelmoraCommand, UnreadableSourceIsReportedAndSkipped) {
  // Permissions are the way a user meets an unreadable unit; root reads it anyway.
  if (::geteuid() == 0) GTEST_SKIP() << "root reads files without read permission";
  TWorkDir dir;
  CopyExamples(dir.Path());
  const fs::path unit = dir.Path() / "KilnLog/GlazeForm.pas";
  fs::permissions(unit, fs::perms::none);
  const TCliRun run = RunIn(dir.Path(), {kProject});
  fs::permissions(unit, fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(run.ExitCode, 0) << run.Err;
  EXPECT_NE(run.Err.find(unit.string()), std::string::npos) << run.Err;
  EXPECT_NE(run.Err.find("(skipped)\n"), std::string::npos) << run.Err;
  EXPECT_EQ(run.Out.find("TGlazeRecipeForm"), std::string::npos);
  EXPECT_NE(run.Out.find("class TFormMain : TForm"), std::string::npos);
}

void ExpectPaths(const nlohmann::json& node, const std::string& where) {
  const std::string kind = node.value("kind", "");
  if (kind == "class" || kind == "routine" || kind == "method") {
    ASSERT_TRUE(node.contains("path")) << where << node.dump();
    EXPECT_TRUE(fs::path(node["path"].get<std::string>()).is_absolute()) << where;
    EXPECT_TRUE(fs::exists(node["path"].get<std::string>())) << where;
  }
  if (node.contains("children"))
    for (const auto& child : node["children"])
      ExpectPaths(child, where + "/" + node.value("name", ""));
}

TEST(VelmoraCommand, JsonCarriesItsVersionAndEveryPath) {
  TWorkDir dir;
  CopyExamples(dir.Path());
  const TCliRun run = RunIn(dir.Path(), {kProject, "--json"});
  ASSERT_EQ(run.ExitCode, 0) << run.Err;
  const nlohmann::json j = nlohmann::json::parse(run.Out);
  EXPECT_EQ(j["format"], "velmora-class-view");
  EXPECT_EQ(j["version"], 1);
  EXPECT_EQ(j["project"]["name"], "KilnLog");
  ASSERT_EQ(j["roots"].size(), 2u);
  EXPECT_EQ(j["roots"][0]["name"], "KilnLog - Classes");
  EXPECT_EQ(j["roots"][1]["name"], "External Classes");
  EXPECT_EQ(j["roots"][0]["classes"].size(), 15u);  // and one nested class
  EXPECT_EQ(j["roots"][0]["routines"].size(), 8u);
  for (const auto& cls : j["roots"][0]["classes"]) ExpectPaths(cls, "classes");
  for (const auto& routine : j["roots"][0]["routines"]) ExpectPaths(routine, "routines");
}

TEST(VelmoraCommand, VersionAndHelp) {
  TWorkDir dir;
  const TCliRun version = RunIn(dir.Path(), {"--version"});
  EXPECT_EQ(version.ExitCode, 0);
  EXPECT_EQ(version.Out, "velmora " VELMORA_VERSION "\n");
  const TCliRun help = RunIn(dir.Path(), {"tree", "--help"});
  EXPECT_EQ(help.ExitCode, 0);
  EXPECT_NE(help.Out.find("class TFormMain : TForm  examples/KilnLog/MainForm.h:15"),
            std::string::npos);
}

// Each error: one line on standard error in the one style, nothing on standard output,
// the exit code of its kind, and no file written.
TEST(VelmoraCommand, ErrorsAsUsersMeetThem) {
  struct TErrorCase {
    const char* name;
    std::vector<std::string> args;
    int exitCode;
    std::string message;  ///< part of the one line after "velmora: "
  };
  const std::vector<TErrorCase> cases = {
      {.name = "missing project",
       .args = {"Nowhere/Missing.bpr"},
       .exitCode = 1,
       .message = "Missing.bpr"},
      {.name = "missing project, tree",
       .args = {"tree", "missing.dproj"},
       .exitCode = 1,
       .message = "missing.dproj"},
      {.name = "missing project, find",
       .args = {"find", "x", "missing.lpi"},
       .exitCode = 1,
       .message = "missing.lpi"},
      {.name = "damaged project file",
       .args = {"Broken.cbproj"},
       .exitCode = 1,
       .message = "Broken.cbproj"},
      {.name = "project file of no known kind",
       .args = {"notes.txt"},
       .exitCode = 1,
       .message = "notes.txt"},
      {.name = "unknown command",
       .args = {"tre"},
       .exitCode = 2,
       .message = "unknown command 'tre'; did you mean 'tree'?"},
      {.name = "unknown command near find",
       .args = {"fnd", "x"},
       .exitCode = 2,
       .message = "did you mean 'find'?"},
      {.name = "unknown command near watch",
       .args = {"wacth"},
       .exitCode = 2,
       .message = "did you mean 'watch'?"},
      {.name = "unknown option",
       .args = {kProject, "--colour"},
       .exitCode = 2,
       .message = "--colour"},
      {.name = "json and stats",
       .args = {kProject, "--json", "--stats"},
       .exitCode = 2,
       .message = "--json"},
      {.name = "find without text", .args = {"find"}, .exitCode = 2, .message = "TEXT is required"},
      {.name = "filter without name",
       .args = {kProject, "--filter"},
       .exitCode = 2,
       .message = "--filter"},
      {.name = "unknown class",
       .args = {"hierarchy", "TNoSuchClass", kProject},
       .exitCode = 1,
       .message = "TNoSuchClass"},
  };
  for (const TErrorCase& c : cases) {
    TWorkDir dir;
    CopyExamples(dir.Path());
    WriteFile(dir.Path() / "Broken.cbproj", "<Project><PropertyGroup><Unclosed");
    WriteFile(dir.Path() / "notes.txt", "not a project\n");
    if (c.name == std::string("unknown class")) {
      ASSERT_EQ(RunIn(dir.Path(), {kProject}).ExitCode, 0);
    }
    const auto before = Snapshot(dir.Path());
    const TCliRun run = RunIn(dir.Path(), c.args);
    EXPECT_EQ(run.ExitCode, c.exitCode) << c.name << "\n" << run.Err;
    EXPECT_TRUE(run.Out.empty()) << c.name << "\n" << run.Out;
    // The last line is the error; a run that opened the project said so first.
    const std::string last = run.Err.substr(run.Err.rfind('\n', run.Err.size() - 2) + 1);
    EXPECT_TRUE(last.starts_with("velmora: ")) << c.name << "\n" << run.Err;
    EXPECT_NE(last.find(c.message), std::string::npos) << c.name << "\n" << run.Err;
    if (c.exitCode == 2 || c.name == std::string("missing project")) {
      EXPECT_EQ(Lines(run.Err), 1) << c.name << "\n" << run.Err;
    }
    EXPECT_TRUE(Snapshot(dir.Path()) == before) << c.name;
  }
}

TEST(VelmoraCommand, WatchReportsClassesAsFilesChangeAndSavesOnInterrupt) {
  TWorkDir dir;
  CopyExamples(dir.Path());
  TBackgroundRun watch(dir.Path(), {"watch", kProject});
  ASSERT_TRUE(watch.WaitForErr("watching", 30s)) << watch.Err();
  const fs::path cinfo = dir.Path() / "KilnLog/KilnLog.cinfo";
  const auto savedAtStart = fs::last_write_time(cinfo);

  const fs::path header = dir.Path() / "KilnLog/ScheduleDlg.h";
  const std::string original = ReadFile(header);
  // Written whole to a temporary file and renamed, as editors save.
  WriteFile(dir.Path() / "KilnLog/.save.tmp", original + "\r\nclass TWatched { int FValue; };\r\n");
  fs::rename(dir.Path() / "KilnLog/.save.tmp", header);
  EXPECT_TRUE(watch.WaitForOut("added class TWatched  KilnLog/ScheduleDlg.h:", 10s)) << watch.Out();

  std::string changed = original;
  changed.replace(changed.find("FillGrid();"), 8, "RefillGrid");
  WriteFile(header, changed);
  EXPECT_TRUE(watch.WaitForOut("removed class TWatched", 10s)) << watch.Out();
  EXPECT_TRUE(watch.WaitForOut("changed class TScheduleDialog", 10s)) << watch.Out();
  EXPECT_EQ(watch.Out().find("TRampTable"), std::string::npos) << watch.Out();

  EXPECT_EQ(watch.Interrupt(), 0) << watch.Err();
  EXPECT_NE(fs::last_write_time(cinfo), savedAtStart);
  const TCliRun after = RunIn(dir.Path(), {kProject, "--stats"});
  EXPECT_EQ(StatOf(after.Out, "units parsed"), "0") << after.Out;
}

TEST(VelmoraCommand, WatchTakesANewSourceIntoAFolderProject) {
  TWorkDir dir;
  CopyExamples(dir.Path());
  TBackgroundRun watch(dir.Path(), {"watch", "KilnLog"});
  ASSERT_TRUE(watch.WaitForErr("watching", 30s)) << watch.Err();
  WriteFile(dir.Path() / "KilnLog/Later.h", "class TLater { int FValue; };\r\n");
  EXPECT_TRUE(watch.WaitForOut("added class TLater  KilnLog/Later.h:1", 10s)) << watch.Out();
  fs::remove(dir.Path() / "KilnLog/Later.h");
  EXPECT_TRUE(watch.WaitForOut("removed class TLater", 10s)) << watch.Out();
  EXPECT_EQ(watch.Interrupt(), 0) << watch.Err();
}

}  // namespace
}  // namespace velmora::cli

namespace velmora::cli {
namespace {

TEST(VelmoraDump, FoldersWarningsAndStreamingOutput) {
  struct TDumpCase {
    const char* name;
    std::vector<std::string> args;
    int exitCode = 0;
    std::vector<std::string> out = {};     ///< each must be in standard output
    std::vector<std::string> err = {};     ///< each must be in standard error
    std::vector<std::string> notErr = {};  ///< none may be
  };
  const std::vector<TDumpCase> cases = {
      {.name = "a folder, walked by extension",
       .args = {"dump", "--stats", "KilnLog"},
       .out = {"files: 9\n", "classes: 15\n"},
       .notErr = {"warning"}},
      {.name = "folders with --exclude by name and by path",
       .args = {"dump", "--stats", "--exclude", "Main*", "--exclude", "*/Glaze*", "."},
       .out = {"files: 11\n"}},  // 14 sources here, MainForm.cpp, MainForm.h, GlazeForm.pas out
      {.name = "an excluded folder is not entered",
       .args = {"dump", "--stats", "--exclude", "KilnLog", "."},
       .out = {"files: 5\n"}},  // the nine of KilnLog/ left out
      {.name = "--include-path without --follow-includes",
       .args = {"dump", "--stats", "--include-path", "common", "KilnLog/FiringTypes.h"},
       .err = {"velmora: warning: --include-path is not used without --follow-includes\n"}},
      {.name = "includes that resolve nowhere",
       .args = {"dump", "--stats", "--follow-includes", "--include-path", "common",
                "KilnLog/MainForm.cpp"},
       .err = {"MainForm.cpp: include \"GlazeForm.hpp\" not found\n"},
       .notErr = {"StudioDefs.h\" not found"}},
      {.name = "empty and binary inputs",
       .args = {"dump", "--stats", "empty.pas", "binary.h"},
       .err = {"velmora: warning: empty.pas: empty file\n",
               "velmora: warning: binary.h: looks binary"}},
      {.name = "a class name two units declare",
       .args = {"dump", "--stats", "one/Dup.h", "two/Dup.h"},
       .out = {"classes: 1\n"},
       .err = {"class TTwice is declared by ", "one/Dup.h and ", "two/Dup.h; the model keeps"}},
      {.name = "--save after a failed run writes nothing",
       .args = {"dump", "--stats", "--save", "out.cinfo", "KilnLog/Missing.cpp",
                "KilnLog/MainForm.h"},
       .exitCode = 1,
       .err = {"Missing.cpp", "velmora: nothing saved to out.cinfo: the run failed\n"}},
      {.name = "a folder with no sources",
       .args = {"dump", "--stats", "nothing"},
       .err = {"velmora: warning: nothing: no C++ or Pascal sources in the folder\n"}},
  };
  for (const TDumpCase& c : cases) {
    TWorkDir dir;
    CopyExamples(dir.Path());
    WriteFile(dir.Path() / "empty.pas", "");
    WriteFile(dir.Path() / "binary.h", std::string("\x7F"
                                                   "ELF\0\0\0",
                                                   7));
    fs::create_directories(dir.Path() / "one");
    fs::create_directories(dir.Path() / "two");
    fs::create_directories(dir.Path() / "nothing");
    WriteFile(dir.Path() / "one/Dup.h", "class TTwice { int A; };\r\n");
    WriteFile(dir.Path() / "two/Dup.h", "class TTwice { int B; };\r\n");
    const TCliRun run = RunIn(dir.Path(), c.args);
    EXPECT_EQ(run.ExitCode, c.exitCode) << c.name << "\n" << run.Err;
    for (const std::string& text : c.out)
      EXPECT_NE(run.Out.find(text), std::string::npos) << c.name << "\n" << run.Out;
    for (const std::string& text : c.err)
      EXPECT_NE(run.Err.find(text), std::string::npos) << c.name << "\n" << run.Err;
    for (const std::string& text : c.notErr)
      EXPECT_EQ(run.Err.find(text), std::string::npos) << c.name << "\n" << run.Err;
    EXPECT_FALSE(fs::exists(dir.Path() / "out.cinfo")) << c.name;
  }
}

TEST(VelmoraDump, JsonCarriesPathsAndJsonLinesOneObjectALine) {
  TWorkDir dir;
  CopyExamples(dir.Path());
  const TCliRun json = RunIn(dir.Path(), {"dump", "--json", "KilnLog"});
  ASSERT_EQ(json.ExitCode, 0) << json.Err;
  const nlohmann::json model = nlohmann::json::parse(json.Out);
  for (const auto& cls : model["classes"])
    EXPECT_TRUE(fs::exists(cls["path"].get<std::string>())) << cls.dump();
  for (const auto& routine : model["routines"])
    EXPECT_TRUE(fs::exists(routine["path"].get<std::string>())) << routine.dump();

  const TCliRun lines = RunIn(dir.Path(), {"dump", "--json-lines", "KilnLog"});
  ASSERT_EQ(lines.ExitCode, 0) << lines.Err;
  size_t classes = 0, routines = 0;
  std::istringstream in(lines.Out);
  for (std::string line; std::getline(in, line);) {
    const nlohmann::json item = nlohmann::json::parse(line);
    EXPECT_TRUE(fs::exists(item["path"].get<std::string>())) << line;
    if (item["entry"] == "class") ++classes;
    if (item["entry"] == "routine") ++routines;
  }
  EXPECT_EQ(classes, model["classes"].size());
  EXPECT_EQ(routines, model["routines"].size());
  EXPECT_EQ(classes + routines, static_cast<size_t>(Lines(lines.Out)));
}

TEST(VelmoraDump, StatsAfterLoadGiveTheLoadTimeAndTheFileSize) {
  TWorkDir dir;
  CopyExamples(dir.Path());
  ASSERT_EQ(RunIn(dir.Path(), {"dump", "--stats", "--save", "model.cinfo", "KilnLog"}).ExitCode, 0);
  const TCliRun run = RunIn(dir.Path(), {"dump", "--stats", "--load", "model.cinfo"});
  ASSERT_EQ(run.ExitCode, 0) << run.Err;
  EXPECT_EQ(StatOf(run.Out, "class information"),
            std::to_string(fs::file_size(dir.Path() / "model.cinfo")) + " bytes");
  EXPECT_TRUE(StatOf(run.Out, "load time").ends_with(" ms")) << run.Out;
  EXPECT_EQ(StatOf(run.Out, "classes"), "15");
}

}  // namespace
}  // namespace velmora::cli
