// A save of the class information file killed at random moments (SIGKILL, as a crash or
// the user ending the IDE would) must leave the old file or the new one, byte for byte,
// and whichever it is must load. A killed save leaves its temporary file behind; those
// are counted, not treated as a failure.
#include <dirent.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <thread>

#include "model/class_info_file.h"
#include "model/class_list.h"
#include "support/stream.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;

struct TModel {
  TFilesList files;
  TClasslist classes;
};

// A model of `classCount` classes whose fields have long types: megabytes on disk from
// few records, so that writing the file, not building its bytes, takes most of a save
// and the kills land inside the file's write as often as around it.
std::unique_ptr<TModel> LargeModel(int classCount, const std::string& prefix) {
  auto m = std::make_unique<TModel>();
  auto file = std::make_unique<TFileDescription>(TLanguage::Cpp);
  file->Name = prefix + ".h";
  file->Directory = "/projects/kiln/";
  m->files.Add(std::move(file));
  const std::string longType = "std::map<AnsiString, " + std::string(700, 'T') + ">";
  for (int c = 0; c < classCount; ++c) {
    TClassDescription* cls = m->classes.FindOrAdd(prefix + std::to_string(c), TLanguage::Cpp);
    cls->UnitName = prefix + ".h";
    cls->Ancestors.Add(TVisibility::Public, "TComponent");
    cls->SetStart(c * 20 + 1, c * 900);
    for (int i = 0; i < 8; ++i)
      cls->Fields.FindOrAdd("FValue" + std::to_string(i), longType, TVisibility::Private);
    TParameterList params(TLanguage::Cpp);
    params.Parse("TObject* Sender, int Index = " + std::to_string(c));
    cls->Methods.FindOrAdd("Handle", std::move(params), "void", TVisibility::Public,
                           TMethodKind::Procedure);
  }
  return m;
}

std::string Saved(const TModel& m) {
  TMemoryStream s;
  m.files.SaveToStream(s);
  m.classes.SaveToStream(s);
  return std::move(s.Data());
}

// Temporary files of the saves into `dir`: the target's name followed by a suffix.
int LeftoverTemps(const fs::path& dir, const std::string& target) {
  int n = 0;
  for (const auto& entry : fs::directory_iterator(dir)) {
    const std::string name = entry.path().filename().string();
    if (name.size() > target.size() && name.compare(0, target.size() + 1, target + ".") == 0) ++n;
  }
  return n;
}

// Forks a child that saves `m` over `path` and exits; returns once the child has begun.
pid_t StartSave(const std::string& path, const TModel& m) {
  int started[2];
  if (::pipe(started) != 0) std::abort();
  const pid_t child = ::fork();
  if (child < 0) std::abort();
  if (child == 0) {
    ::close(started[0]);
    (void)!::write(started[1], "s", 1);
    try {
      SaveClassInfoFile(path, m.files, m.classes);
    } catch (...) {
      ::_exit(1);
    }
    ::_exit(0);
  }
  ::close(started[1]);
  char signal;
  (void)!::read(started[0], &signal, 1);
  ::close(started[0]);
  return child;
}

// Watches `dir` until a temporary file beyond the `known` ones appears (true) or the child
// has ended (false); the child is left to be reaped.
bool WaitForTemp(const fs::path& dir, pid_t child, int known) {
  for (;;) {
    if (LeftoverTemps(dir, "project.cinfo") > known) return true;
    siginfo_t info{};
    if (::waitid(P_PID, child, &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid == child)
      return false;
    std::this_thread::sleep_for(std::chrono::microseconds(50));
  }
}

TEST(ClassInfoSaveCrashTest, KilledSaveLeavesTheOldOrTheNewFile) {
  const fs::path dir =
      fs::temp_directory_path() / ("velmora-save-crash-" + std::to_string(::getpid()));
  fs::create_directories(dir);
  const std::string path = (dir / "project.cinfo").string();
  constexpr int kClasses = 300;  // about 1.8 MB on disk
  const std::unique_ptr<TModel> models[2] = {LargeModel(kClasses, "TOld"),
                                             LargeModel(kClasses, "TNew")};
  const std::string bytes[2] = {Saved(*models[0]), Saved(*models[1])};
  ASSERT_NE(bytes[0], bytes[1]);

  // A save that is not atomic would show while its temporary file exists, so every other
  // kill is aimed there: after the parent sees the file appear, within a little more than
  // the time it lived in a watched save. The rest land anywhere from the child's start to
  // a little after a whole save's time. Timed on a child because a forked process saves
  // more slowly than its parent (its first writes copy pages).
  SaveClassInfoFile(path, models[0]->files, models[0]->classes);
  using Clock = std::chrono::steady_clock;
  auto micros = [](Clock::duration d) {
    return std::chrono::duration_cast<std::chrono::microseconds>(d).count();
  };
  int status = 0;
  const auto start = Clock::now();
  const pid_t watched = StartSave(path, *models[1]);
  const bool seen = WaitForTemp(dir, watched, 0);
  const auto appeared = Clock::now();
  ASSERT_EQ(::waitpid(watched, &status, 0), watched);
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the save itself failed";
  const int64_t saveTime = micros(Clock::now() - start);
  const int64_t tempTime = seen ? micros(Clock::now() - appeared) : saveTime;

  std::mt19937_64 random(std::random_device{}());
  auto upTo = [&](int64_t limit) {
    return static_cast<int64_t>(random() % static_cast<uint64_t>(std::max<int64_t>(limit, 1)));
  };
  int onDisk = 1;  // which model the file holds
  int interrupted = 0;
  for (int round = 0; round < 100; ++round) {
    const int next = 1 - onDisk;
    const int tempsBefore = LeftoverTemps(dir, "project.cinfo");
    const pid_t child = StartSave(path, *models[next]);
    const bool aimed = round % 2 == 1 && WaitForTemp(dir, child, tempsBefore);
    const int64_t delay = aimed ? upTo(tempTime * 6 / 5) : upTo(saveTime * 6 / 5);
    std::this_thread::sleep_for(std::chrono::microseconds(delay));
    ::kill(child, SIGKILL);
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_FALSE(WIFEXITED(status) && WEXITSTATUS(status) != 0) << "the save itself failed";

    const std::string now = ReadWholeFile(path);
    const std::string where = "round " + std::to_string(round) + ", killed " +
                              std::to_string(delay) + " us after " +
                              (aimed ? "its temporary file appeared" : "it started");
    ASSERT_TRUE(now == bytes[onDisk] || now == bytes[next])
        << where << ": the file is neither the old nor the new one (" << now.size() << " bytes)";
    if (now == bytes[next]) onDisk = next;
    if (LeftoverTemps(dir, "project.cinfo") > tempsBefore) ++interrupted;

    TModel loaded;
    EXPECT_NO_THROW(LoadClassInfoFile(path, loaded.files, loaded.classes)) << where;
    EXPECT_EQ(loaded.classes.Count(), kClasses) << where;
  }
  const int leftovers = LeftoverTemps(dir, "project.cinfo");
  RecordProperty("interrupted_saves", interrupted);
  RecordProperty("leftover_temporary_files", leftovers);
  std::printf("%d of 100 saves were killed midway; %d temporary files left behind\n", interrupted,
              leftovers);
  // Kills that all land before or after the save would test nothing.
  EXPECT_GE(interrupted, 5) << "the kills did not land inside the saves";
  fs::remove_all(dir);
}

}  // namespace
}  // namespace velmora
