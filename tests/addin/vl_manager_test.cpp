// The manager end to end: the add-in loaded into the headless IDE through its entry
// point, the IDE's notifications reaching the manager, jobs parsing through the parse
// queue on two workers, their results merged on the main thread.
#include <gtest/gtest.h>

#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <set>

#include "addin/vl_thread_list.h"
#include "hosts/headless/headless_project.h"
#include "manager_fixture.h"
#include "model/class_description.h"
#include "model/files.h"
#include "parsing/source_provider.h"
#include "support/paths.h"

namespace velmora {
namespace {

using test::TManagedAddIn;

std::string ReadText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

/// Names of the project's classes, sorted.
std::set<std::string> ClassNames(TVLManager& manager) {
  std::set<std::string> names;
  std::lock_guard lock(manager.ProjectClasses().Lock);
  for (int i = 0; i < manager.ProjectClasses().Index.Count(); ++i)
    names.insert(manager.ProjectClasses().Index.Strings(i));
  return names;
}

TEST(ManagerThreads, ColdOpenParsesEveryUnitAndSavesTheClassInformation) {
  TManagedAddIn f;
  ASSERT_TRUE(f.loaded);
  ASSERT_NE(f.manager(), nullptr);
  std::vector<TVLProgress> progress;
  f.manager()->SetProgressHandler([&](const TVLProgress& p) { progress.push_back(p); });
  f.OpenKiln();
  const TVLManagerStats& stats = f.manager()->Stats();
  EXPECT_EQ(stats.OpenKind, TVLOpenKind::Cold);
  EXPECT_EQ(stats.FilesQueued, 6);
  EXPECT_EQ(stats.FilesParsed, 6);
  EXPECT_GT(stats.IncludesParsed, 0);
  EXPECT_TRUE(stats.ClassInfoSaved);
  EXPECT_TRUE(FileExists(f.KilnLog("KilnLog.cinfo")));
  EXPECT_NE(f.FindClass("TFormMain"), nullptr);
  ASSERT_EQ(progress.size(), 6u);
  EXPECT_EQ(progress.back().FilesParsed, 6);
  EXPECT_EQ(progress.back().FilesTotal, 6);
  EXPECT_FALSE(progress.back().CurrentFile.empty());
  EXPECT_TRUE(f.manager()->Idle());
  EXPECT_TRUE(f.ide.Reports().empty());
}

TEST(ManagerThreads, FileNotificationsBecomeJobs) {
  TManagedAddIn f;
  f.OpenKiln();
  const std::string added = f.Write("KilnLog/Kiln.h", "class TKilnAdded { int FHeat; };\r\n");
  const std::string renamed = f.dir / "KilnLog/KilnRenamed.h";
  struct TCase {
    const char* name;
    std::function<bool(test::TManagedAddIn&)> act;
    bool jobQueued;
    bool present;
    bool underOldName;
  };
  const TCase cases[] = {
      {.name = "added to the project",
       .act = [&](TManagedAddIn& m) { return m.ide.AddToProject(added); },
       .jobQueued = true,
       .present = true,
       .underOldName = true},
      {.name = "removed from the project",
       .act = [&](TManagedAddIn& m) { return m.ide.RemoveFromProject(added); },
       .jobQueued = false,
       .present = false,
       .underOldName = false},
      {.name = "added again",
       .act = [&](TManagedAddIn& m) { return m.ide.AddToProject(added); },
       .jobQueued = true,
       .present = true,
       .underOldName = true},
      {.name = "saved under another name",
       .act =
           [&](TManagedAddIn& m) {
             return m.ide.OpenFile(added) && m.ide.SaveFileAs(added, renamed);
           },
       .jobQueued = true,
       .present = true,
       .underOldName = false},
  };
  for (const TCase& c : cases) {
    ASSERT_TRUE(c.act(f)) << c.name;
    EXPECT_EQ(!f.manager()->Idle(), c.jobQueued) << c.name;
    f.manager()->WaitUntilIdle();
    EXPECT_EQ(f.FindClass("TKilnAdded") != nullptr, c.present) << c.name;
    EXPECT_EQ(f.manager()->ProjectFiles().Find("Kiln.h") != nullptr, c.underOldName) << c.name;
  }
  EXPECT_NE(f.manager()->ProjectFiles().Find("KilnRenamed.h"), nullptr);
}

TEST(ManagerThreads, TwoProjectChangesInQuickSuccessionLeaveOnlyTheSecond) {
  TManagedAddIn f;
  const std::string a = f.Write("a/Alpha.cpp", "class TAlpha { int F; };\r\n");
  const std::string b = f.Write("b/Beta.cpp", "class TBeta { int F; };\r\n");
  f.Write("a/A.bpr", "");
  f.Write("b/B.bpr", "");
  // Nothing runs the main thread between the two opens: the first project's results
  // are still on their way when the second opens.
  f.ide.OpenProject(f.dir / "a/A.bpr", {a});
  f.ide.OpenProject(f.dir / "b/B.bpr", {b});
  f.manager()->WaitUntilIdle();
  EXPECT_EQ(ClassNames(*f.manager()), std::set<std::string>{"TBeta"});
  EXPECT_EQ(f.manager()->ProjectFiles().Find("Alpha.cpp"), nullptr);
  EXPECT_EQ(f.manager()->Stats().FilesParsed, 1);
}

/// The disk, except that one file's read waits until the test lets it go.
class TGatedSources : public TSourceProvider {
 public:
  explicit TGatedSources(std::string gated) : gated_(std::move(gated)) {}
  bool Exists(const std::string& path) const override { return DiskSources().Exists(path); }
  std::string Read(const std::string& path) const override {
    if (ExtractFileName(path) == gated_) {
      std::unique_lock lock(mutex_);
      entered_ = true;
      changed_.notify_all();
      changed_.wait(lock, [&] { return open_; });
    }
    std::lock_guard lock(mutex_);
    read_.insert(std::string(ExtractFileName(path)));
    return DiskSources().Read(path);
  }
  void WaitUntilEntered() const {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return entered_; });
  }
  void Open() {
    std::lock_guard lock(mutex_);
    open_ = true;
    changed_.notify_all();
  }
  std::set<std::string> ReadFiles() const {
    std::lock_guard lock(mutex_);
    return read_;
  }

 private:
  std::string gated_;
  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  mutable bool entered_ = false;        ///< guarded by mutex_
  bool open_ = false;                   ///< guarded by mutex_
  mutable std::set<std::string> read_;  ///< guarded by mutex_
};

TEST(ManagerThreads, CancellingAllJobsWhileOneRunsMergesNothingAndSavesNothing) {
  TGatedSources sources("Slow.cpp");
  TManagedAddIn f({.Threads = 1, .Sources = &sources});
  const std::string slow = f.Write("p/Slow.cpp", "class TSlow { int F; };\r\n");
  const std::string next = f.Write("p/Next.cpp", "class TNext { int F; };\r\n");
  f.Write("p/P.bpr", "");
  f.ide.OpenProject(f.dir / "p/P.bpr", {slow, next});
  sources.WaitUntilEntered();  // the one worker is inside the first job's first file
  ASSERT_FALSE(f.manager()->Idle());
  f.manager()->CancelAllJobs();
  EXPECT_EQ(f.manager()->Jobs().Running(), nullptr);
  sources.Open();
  f.manager()->WaitUntilIdle();
  EXPECT_TRUE(ClassNames(*f.manager()).empty());
  EXPECT_EQ(f.manager()->Stats().FilesParsed, 0);
  EXPECT_FALSE(f.manager()->Stats().ClassInfoSaved);
  EXPECT_FALSE(FileExists(f.dir / "p/P.cinfo"));
  // The request still waiting was never started.
  EXPECT_EQ(sources.ReadFiles().count("Next.cpp"), 0u);
}

TEST(ManagerThreads, SavedFileIsParsedAgainAndItsRemovedMembersSwept) {
  TManagedAddIn f;
  f.OpenKiln();
  f.ShowClassView();
  TClassDescription* before = f.FindClass("TFormMain");
  ASSERT_NE(before, nullptr);
  const std::string header = f.KilnLog("MainForm.h");
  std::string text = ReadText(header);
  const std::string removed = "    void __fastcall GlazeButtonClick(TObject *Sender);";
  const size_t at = text.find(removed);
  ASSERT_NE(at, std::string::npos);
  text.erase(at, removed.size());
  text.insert(at, "    void __fastcall KilnCoolDown(int Minutes);");
  ASSERT_TRUE(f.ViewText().find("GlazeButtonClick") != std::string::npos);

  ASSERT_TRUE(f.ide.OpenFile(header));
  ASSERT_TRUE(f.ide.SetBufferText(header, text));
  ASSERT_TRUE(f.ide.SaveFile(header));
  f.manager()->WaitUntilIdle();

  EXPECT_EQ(f.FindClass("TFormMain"), before) << "the class is updated in place";
  const std::string view = f.ViewText();
  EXPECT_EQ(view.find("GlazeButtonClick"), std::string::npos) << view;
  EXPECT_NE(view.find("KilnCoolDown"), std::string::npos) << view;
  EXPECT_NE(view.find("ScheduleButtonClick"), std::string::npos) << view;
}

TEST(ManagerThreads, ClassInformationSavedAndLoadedGivesTheSameClassView) {
  TManagedAddIn f;
  f.OpenKiln();
  f.ShowClassView();
  const std::string cold = f.ViewText();
  f.ide.CloseProject();
  EXPECT_TRUE(ClassNames(*f.manager()).empty());
  f.OpenKiln();
  EXPECT_EQ(f.manager()->Stats().OpenKind, TVLOpenKind::Warm);
  EXPECT_EQ(f.manager()->Stats().FilesParsed, 0);
  EXPECT_EQ(f.ViewText(), cold);
}

TEST(ManagerThreads, WarmStartAfterOneFileChangedParsesThatFileOnly) {
  TManagedAddIn f;
  f.OpenKiln();
  f.ide.CloseProject();
  const std::string changed = f.KilnLog("GlazeForm.pas");
  std::filesystem::last_write_time(
      changed, std::filesystem::last_write_time(changed) + std::chrono::seconds(5));
  std::vector<std::string> parsed;
  f.manager()->SetProgressHandler(
      [&](const TVLProgress& p) { parsed.push_back(std::string(ExtractFileName(p.CurrentFile))); });
  f.OpenKiln();
  EXPECT_EQ(f.manager()->Stats().OpenKind, TVLOpenKind::Warm);
  EXPECT_EQ(f.manager()->Stats().FilesQueued, 1);
  EXPECT_EQ(parsed, std::vector<std::string>{"GlazeForm.pas"});
}

TEST(ManagerThreads, WarmStartDropsAUnitTheProjectNoLongerHas) {
  TManagedAddIn f;
  f.OpenKiln();
  ASSERT_NE(f.FindClass("TRecipeCheck"), nullptr);
  f.ide.CloseProject();
  std::vector<std::string> units;
  for (const std::string& unit : test::kKilnLogUnits)
    if (unit != "GlazeForm.pas") units.push_back(f.KilnLog(unit));
  f.ide.OpenProject(f.ProjectFile(), units);
  f.manager()->WaitUntilIdle();
  EXPECT_EQ(f.manager()->Stats().OpenKind, TVLOpenKind::Warm);
  EXPECT_EQ(f.manager()->Stats().FilesQueued, 0);
  EXPECT_EQ(f.FindClass("TRecipeCheck"), nullptr);
  EXPECT_EQ(f.manager()->ProjectFiles().Find("GlazeForm.pas"), nullptr);
  EXPECT_NE(f.manager()->ProjectFiles().Find("StudioDefs.h"), nullptr) << "still reached";
  EXPECT_NE(f.FindClass("TFormMain"), nullptr);
}

TEST(ManagerThreads, ARenamedProjectKeepsItsModelUnderTheNewName) {
  TManagedAddIn f;
  f.OpenKiln();
  const std::string renamed = f.KilnLog("Kiln2.bpr");
  std::filesystem::copy_file(f.ProjectFile(), renamed);
  ASSERT_TRUE(f.ide.RenameProject(renamed));
  f.manager()->WaitUntilIdle();
  EXPECT_EQ(f.manager()->ClassInfoFile(), f.KilnLog("Kiln2.cinfo"));
  EXPECT_TRUE(FileExists(f.KilnLog("Kiln2.cinfo")));
  EXPECT_EQ(f.manager()->Stats().OpenKind, TVLOpenKind::Warm);
  EXPECT_EQ(f.manager()->Stats().FilesQueued, 0);
  EXPECT_NE(f.FindClass("TFormMain"), nullptr);
}

TEST(ManagerThreads, DamagedClassInformationIsReportedAndTheProjectParsedAgain) {
  TManagedAddIn f;
  f.Write("KilnLog/KilnLog.cinfo", "not class information at all");
  f.OpenKiln();
  EXPECT_EQ(f.manager()->Stats().OpenKind, TVLOpenKind::Cold);
  EXPECT_EQ(f.manager()->Stats().FilesParsed, 6);
  const std::string& message = f.manager()->Stats().LoadMessage;
  EXPECT_EQ(message.rfind("The class information file \"", 0), 0u) << message;
  ASSERT_FALSE(f.ide.Reports().empty());
  EXPECT_EQ(f.ide.Reports().front(), message);
  EXPECT_NE(f.FindClass("TFormMain"), nullptr);
}

TEST(ManagerThreads, DiscardedResultsNeverReachTheModel) {
  TManagedAddIn f;
  f.manager()->SetDiscardResults(true);
  f.OpenKiln();
  EXPECT_TRUE(ClassNames(*f.manager()).empty());
  f.manager()->SetDiscardResults(false);
  f.ide.AddToProject(f.Write("KilnLog/Late.h", "class TLate { int F; };\r\n"));
  f.manager()->WaitUntilIdle();
  EXPECT_EQ(ClassNames(*f.manager()), std::set<std::string>{"TLate"});
}

TEST(ManagerThreads, TheIncludePathOfTheBprReachesTheJobs) {
  struct TCase {
    const char* name;
    std::string item0;
    bool studioDefsParsed;
  };
  const TCase cases[] = {
      {.name = "two dots from the project's folder",
       .item0 = "$(BCB)\\include;..\\common",
       .studioDefsParsed = true},
      {.name = "under the IDE's folder", .item0 = "$(BCB)\\Common", .studioDefsParsed = true},
      {.name = "not on the path", .item0 = "$(BCB)\\include", .studioDefsParsed = false},
  };
  for (const TCase& c : cases) {
    TManagedAddIn f;
    test::TEnvVar bcb("BCB", f.dir.path);
    std::string bpr = ReadText(f.ProjectFile());
    const size_t at = bpr.find("Item0=$(BCB)\\include;$(BCB)\\include\\vcl;..\\common");
    ASSERT_NE(at, std::string::npos);
    bpr.replace(at, bpr.find('\r', at) - at, "Item0=" + c.item0);
    f.Write("KilnLog/KilnLog.bpr", bpr);
    f.OpenKiln();
    const std::vector<std::string> path = f.manager()->IncludePath();
    EXPECT_EQ(std::count(path.begin(), path.end(), f.dir / "common"), c.studioDefsParsed ? 1 : 0)
        << c.name;
    EXPECT_EQ(f.manager()->ProjectFiles().Find("StudioDefs.h") != nullptr, c.studioDefsParsed)
        << c.name;
  }
}

TEST(ManagerThreads, AProjectReadersIncludePathFollowsTheBprs) {
  TManagedAddIn f;
  const std::string extra = f.dir / "extra";
  std::filesystem::create_directories(extra);
  f.manager()->SetProjectIncludePath(f.ProjectFile(), {extra, f.dir / "common"});
  f.OpenKiln();
  const std::vector<std::string> path = f.manager()->IncludePath();
  ASSERT_FALSE(path.empty());
  EXPECT_EQ(path.back(), extra) << "after the .bpr's folders, each folder once";
  EXPECT_EQ(std::count(path.begin(), path.end(), f.dir / "common"), 1);
}

TEST(ManagerThreads, AProjectOpenedThroughTheReadersIsParsed) {
  TManagedAddIn f;
  const TProject project = OpenProjectFile(f.ide, f.ProjectFile(), [&](const TProject& p) {
    f.manager()->SetProjectIncludePath(p.FileName, p.IncludePath);
  });
  f.manager()->WaitUntilIdle();
  EXPECT_EQ(f.manager()->ProjectFile(), project.FileName);
  EXPECT_EQ(f.manager()->Stats().FilesParsed, static_cast<int>(project.Units.size()));
  EXPECT_NE(f.FindClass("TFormMain"), nullptr);
  EXPECT_NE(f.manager()->ProjectFiles().Find("StudioDefs.h"), nullptr);
}

}  // namespace
}  // namespace velmora
