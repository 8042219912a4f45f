// The parse queue on small trees of files: results through the callback, merged on the
// test's thread as a host merges on its main thread; editor buffers read before the disk;
// retries paced by an injected clock; cancelling by generation and by stop token. Suite
// names hold "Threads" so that the thread sanitizer runs them.
#include "parsing/parse_queue.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <future>
#include <map>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "parsing/parse_merge.h"
#include "parsing/source_provider.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

class ParseQueueThreadsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/velmora-queue-XXXXXX";
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
  TParseRequest Request(const std::string& root, uint64_t generation = 0) const {
    TParseRequest request;
    request.RootFile = Path(root);
    request.Generation = generation;
    return request;
  }

  // Results as the host's main-thread queue would receive them.
  std::mutex mutex_;
  std::vector<TParseResult> results_;
  TParseQueue::TResultHandler Collect() {
    return [this](TParseResult result) {
      std::lock_guard lock(mutex_);
      results_.push_back(std::move(result));
    };
  }
  std::string root_;
};

TEST_F(ParseQueueThreadsTest, JobsOnEveryWorkerEndUpInOneModel) {
  std::map<std::string, std::string> files;
  for (int i = 0; i < 8; ++i) {
    const std::string n = std::to_string(i);
    files["r" + n + ".cpp"] = "#include \"h" + n + ".h\"\nclass TRoot" + n + " {};\n";
    files["h" + n + ".h"] = "class THeader" + n + " { int X; };\n";
  }
  Write(files);
  TParseQueue queue(Collect(), {.Threads = 3});
  EXPECT_EQ(queue.ThreadCount(), 3);
  for (int i = 0; i < 8; ++i) queue.Post(Request("r" + std::to_string(i) + ".cpp", 1));
  queue.WaitUntilIdle();

  ASSERT_EQ(results_.size(), 8U);
  TClasslist model;
  TParseMerger merger(model);
  for (TParseResult& result : results_) EXPECT_TRUE(merger.Merge(std::move(result)));
  EXPECT_EQ(model.Count(), 16);
  for (int i = 0; i < 8; ++i) {
    const std::string n = std::to_string(i);
    EXPECT_NE(model.Find("TRoot" + n), nullptr) << n;
    EXPECT_NE(model.Find("THeader" + n), nullptr) << n;
    const TIncludeUnit* entry = model.Includes.Find(Path("r" + n + ".cpp"));
    ASSERT_NE(entry, nullptr) << n;
    EXPECT_EQ(entry->IncludedNames.Strings(0), Path("h" + n + ".h"));
  }
}

TEST_F(ParseQueueThreadsTest, AnOpenEditorBufferIsReadBeforeTheFile) {
  Write({{"r.cpp", "#include \"a.h\"\n"}, {"a.h", "class TSaved {};\n"}});
  TEditorBufferSources sources;
  sources.SetBuffer(Path("a.h"), "class TUnsaved {};\r\n");
  sources.SetBuffer(Path("new.h"), "class TNeverSaved {};\r\n");
  TParseQueue queue(Collect(), {.Threads = 1, .Sources = &sources});
  queue.Post(Request("r.cpp"));
  queue.Post(Request("new.h"));
  queue.WaitUntilIdle();
  sources.CloseBuffer(Path("a.h"));
  queue.Post(Request("r.cpp"));
  queue.WaitUntilIdle();

  const struct {
    size_t result;
    std::string present, absent;
  } cases[] = {{.result = 0, .present = "TUnsaved", .absent = "TSaved"},
               {.result = 1, .present = "TNeverSaved", .absent = ""},
               {.result = 2, .present = "TSaved", .absent = "TUnsaved"}};
  ASSERT_EQ(results_.size(), 3U);
  for (const auto& c : cases) {
    TClasslist model;
    MergeParseResult(model, results_[c.result]);
    EXPECT_NE(model.Find(c.present), nullptr) << c.present;
    if (!c.absent.empty()) {
      EXPECT_EQ(model.Find(c.absent), nullptr) << c.absent;
    }
  }
}

// Fails the first reads of one file, as a file being saved by someone else does.
class TFlakySources : public TSourceProvider {
 public:
  TFlakySources(std::string flaky, int failures) : flaky_(std::move(flaky)), left_(failures) {}
  bool Exists(const std::string& path) const override { return DiskSources().Exists(path); }
  std::string Read(const std::string& path) const override {
    if (path == flaky_ && left_.fetch_sub(1) > 0) throw std::runtime_error("locked");
    return DiskSources().Read(path);
  }

 private:
  std::string flaky_;
  mutable std::atomic<int> left_;
};

TEST_F(ParseQueueThreadsTest, RetriesArePacedByTheInjectedClock) {
  Write({{"r.cpp", "#include \"busy.h\"\n"}, {"busy.h", "class TBusy {};\n"}});
  const struct {
    int failures, budget;
    bool parsed;
    std::vector<milliseconds> pauses;
  } cases[] = {
      {.failures = 2,
       .budget = 2,
       .parsed = true,
       .pauses = {milliseconds(100), milliseconds(100)}},
      {.failures = 2, .budget = 1, .parsed = false, .pauses = {milliseconds(100)}},
      {.failures = 0, .budget = 0, .parsed = true, .pauses = {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.failures) + " failures, budget " + std::to_string(c.budget));
    TFlakySources sources(Path("busy.h"), c.failures);
    std::vector<milliseconds> pauses;  // only the one worker writes it
    results_.clear();
    {
      TParseQueue queue(Collect(), {.Threads = 1,
                                    .Sources = &sources,
                                    .Pause = [&pauses](milliseconds ms) { pauses.push_back(ms); }});
      TParseRequest request = Request("r.cpp");
      request.Options.RetryBudget = c.budget;
      queue.Post(std::move(request));
      queue.WaitUntilIdle();
    }
    EXPECT_EQ(pauses, c.pauses);
    ASSERT_EQ(results_.size(), 1U);
    TClasslist model;
    MergeParseResult(model, results_[0]);
    EXPECT_EQ(model.Find("TBusy") != nullptr, c.parsed);
    EXPECT_EQ(results_[0].Reached.size(), 1U) << "reached whether parsed or not";
  }
}

// Holds the first reading of one file until the test lets it go.
class TGatedSources : public TSourceProvider {
 public:
  TGatedSources(std::string gated, std::shared_future<void> open)
      : gated_(std::move(gated)), open_(std::move(open)) {}
  bool Exists(const std::string& path) const override { return DiskSources().Exists(path); }
  std::string Read(const std::string& path) const override {
    if (path == gated_ && !held_.exchange(true)) {
      reached_.set_value();
      open_.wait();
    }
    return DiskSources().Read(path);
  }
  std::future<void> Reached() const { return reached_.get_future(); }

 private:
  std::string gated_;
  std::shared_future<void> open_;
  mutable std::atomic<bool> held_ = false;
  mutable std::promise<void> reached_;
};

TEST_F(ParseQueueThreadsTest, CancellingByGenerationStopsOlderJobsBetweenFiles) {
  Write({{"r.cpp", "#include \"a.h\"\nclass TRoot {};\n"}, {"a.h", "class TA {};\n"}});
  std::promise<void> open;
  const TGatedSources sources(Path("r.cpp"), open.get_future().share());
  std::future<void> reached = sources.Reached();
  TParseQueue queue(Collect(), {.Threads = 1, .Sources = &sources});
  queue.Post(Request("r.cpp", 1));  // runs, held in its first file
  reached.wait();
  queue.Post(Request("a.h", 2));  // waits
  queue.Post(Request("a.h", 3));  // waits
  queue.CancelBefore(3);
  open.set_value();
  queue.WaitUntilIdle();

  ASSERT_EQ(results_.size(), 3U);
  const struct {
    uint64_t generation;
    bool cancelled;
    size_t files;
  } expected[] = {{.generation = 1, .cancelled = true, .files = 1},
                  {.generation = 2, .cancelled = true, .files = 0},
                  {.generation = 3, .cancelled = false, .files = 1}};
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(results_[i].Generation, expected[i].generation) << i;
    EXPECT_EQ(results_[i].Cancelled, expected[i].cancelled) << i;
    EXPECT_EQ(results_[i].Files.size(), expected[i].files) << "generation " << i + 1;
  }
}

TEST_F(ParseQueueThreadsTest, TheCallersStopTokenCancelsItsJob) {
  Write({{"r.cpp", "class TRoot {};\n"}});
  TParseQueue queue(Collect(), {.Threads = 2});
  std::stop_source stop;
  stop.request_stop();
  TParseRequest stopped = Request("r.cpp", 1);
  stopped.Stop = stop.get_token();
  queue.Post(std::move(stopped));
  queue.Post(Request("r.cpp", 2));
  queue.WaitUntilIdle();
  ASSERT_EQ(results_.size(), 2U);
  for (const TParseResult& result : results_)
    EXPECT_EQ(result.Cancelled, result.Generation == 1) << result.Generation;
}

TEST_F(ParseQueueThreadsTest, EveryPostedJobHearsBackEvenWhenTheQueueCloses) {
  Write({{"r.cpp", "class TRoot {};\n"}});
  std::atomic<int> heard = 0;
  {
    TParseQueue queue([&heard](TParseResult) { ++heard; }, {.Threads = 1});
    for (int i = 0; i < 20; ++i) queue.Post(Request("r.cpp", i));
  }
  EXPECT_EQ(heard, 20);
}

TEST_F(ParseQueueThreadsTest, DefaultIsOneWorkerPerCore) {
  TParseQueue queue(Collect());
  EXPECT_EQ(queue.ThreadCount(),
            static_cast<int>(std::max(1U, std::thread::hardware_concurrency())));
}

}  // namespace
}  // namespace velmora
