// A save of the class information file killed at random moments (SIGKILL, as a crash or
// the user ending the IDE would) must leave the old file or the new one, byte for byte,
// and whichever it is must load. A killed save leaves its temporary file behind; those
// are counted, not treated as a failure.
#include <dirent.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

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

// A model of `classCount` classes with a dozen members each: some megabytes on disk, so a
// save takes long enough for the kills to land inside it.
std::unique_ptr<TModel> LargeModel(int classCount, const std::string& prefix) {
  auto m = std::make_unique<TModel>();
  auto file = std::make_unique<TFileDescription>(TLanguage::Cpp);
  file->Name = prefix + ".h";
  file->Directory = "/projects/kiln/";
  m->files.Add(std::move(file));
  for (int c = 0; c < classCount; ++c) {
    TClassDescription* cls = m->classes.FindOrAdd(prefix + std::to_string(c), TLanguage::Cpp);
    cls->UnitName = prefix + ".h";
    cls->Ancestors.Add(TVisibility::Public, "TComponent");
    cls->SetStart(c * 20 + 1, c * 900);
    for (int i = 0; i < 8; ++i)
      cls->Fields.FindOrAdd("FValue" + std::to_string(i), "AnsiString", TVisibility::Private);
    for (int i = 0; i < 4; ++i) {
      TParameterList params(TLanguage::Cpp);
      params.Parse("TObject* Sender, int Index = " + std::to_string(i));
      cls->Methods.FindOrAdd("Handle" + std::to_string(i), std::move(params), "void",
                             TVisibility::Public, TMethodKind::Procedure);
    }
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

TEST(ClassInfoSaveCrashTest, KilledSaveLeavesTheOldOrTheNewFile) {
  const fs::path dir = fs::temp_directory_path() / ("velmora-save-crash-" + std::to_string(::getpid()));
  fs::create_directories(dir);
  const std::string path = (dir / "project.cinfo").string();
  constexpr int kClasses = 2000;  // about 1.7 MB on disk
  const std::unique_ptr<TModel> models[2] = {LargeModel(kClasses, "TOld"),
                                             LargeModel(kClasses, "TNew")};
  const std::string bytes[2] = {Saved(*models[0]), Saved(*models[1])};
  ASSERT_NE(bytes[0], bytes[1]);

  // One save timed here sets the range the kills are spread over: from the moment the
  // child starts its save to a little after the save would have ended.
  SaveClassInfoFile(path, models[0]->files, models[0]->classes);
  const auto start = std::chrono::steady_clock::now();
  SaveClassInfoFile(path, models[0]->files, models[0]->classes);
  const auto saveTime = std::chrono::steady_clock::now() - start;
  const int64_t rangeMicros =
      std::chrono::duration_cast<std::chrono::microseconds>(saveTime).count() * 6 / 5 + 100;

  std::mt19937_64 random(std::random_device{}());
  int onDisk = 0;  // which model the file holds
  int interrupted = 0;
  for (int round = 0; round < 100; ++round) {
    const int next = 1 - onDisk;
    const int64_t delay = static_cast<int64_t>(random() % static_cast<uint64_t>(rangeMicros));
    const int tempsBefore = LeftoverTemps(dir, "project.cinfo");
    int started[2];
    ASSERT_EQ(::pipe(started), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      ::close(started[0]);
      (void)!::write(started[1], "s", 1);
      try {
        SaveClassInfoFile(path, models[next]->files, models[next]->classes);
      } catch (...) {
        ::_exit(1);
      }
      ::_exit(0);
    }
    ::close(started[1]);
    char signal;
    ASSERT_EQ(::read(started[0], &signal, 1), 1);
    ::close(started[0]);
    std::this_thread::sleep_for(std::chrono::microseconds(delay));
    ::kill(child, SIGKILL);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_FALSE(WIFEXITED(status) && WEXITSTATUS(status) != 0) << "the save itself failed";

    const std::string now = ReadWholeFile(path);
    const std::string where = "round " + std::to_string(round) + ", killed after " +
                              std::to_string(delay) + " us";
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
  std::printf("%d of 100 saves were killed midway; %d temporary files left behind\n",
              interrupted, leftovers);
  // Kills that all land before or after the save would test nothing.
  EXPECT_GE(interrupted, 10) << "the kills did not land inside the saves";
  fs::remove_all(dir);
}

}  // namespace
}  // namespace velmora
