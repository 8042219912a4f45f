// A whole corpus opened into one model through the parse queue and the merge, with one
// worker and with two: every file is a job (includes not followed, so each file is parsed
// once), read from editor buffers so that the disk stays out of the figure, and each
// result merged on this thread as it arrives, as a host's main thread does. The time runs
// from the first post to the last merge.
#include <benchmark/benchmark.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <memory>
#include <mutex>

#include "common/corpus.h"
#include "model/class_list.h"
#include "parsing/parse_merge.h"
#include "parsing/parse_queue.h"
#include "parsing/source_provider.h"

namespace {

using velmora::bench::Corpus;

// The corpus as open editor buffers: the queue's jobs read them instead of the files.
std::unique_ptr<velmora::TEditorBufferSources> BuffersOf(const Corpus& corpus) {
  auto buffers = std::make_unique<velmora::TEditorBufferSources>();
  for (size_t i = 0; i < corpus.paths.size(); ++i)
    buffers->SetBuffer(corpus.paths[i], corpus.texts[i]);
  return buffers;
}

// Results handed from the workers to this thread, as a host's main-thread queue would.
class TMainThreadQueue {
 public:
  void Push(velmora::TParseResult result) {
    {
      std::lock_guard lock(mutex_);
      results_.push_back(std::move(result));
    }
    ready_.notify_one();
  }
  velmora::TParseResult Pop() {
    std::unique_lock lock(mutex_);
    ready_.wait(lock, [this] { return !results_.empty(); });
    velmora::TParseResult result = std::move(results_.front());
    results_.pop_front();
    return result;
  }

 private:
  std::mutex mutex_;
  std::condition_variable ready_;
  std::deque<velmora::TParseResult> results_;
};

void OpenThroughQueue(benchmark::State& state, const Corpus& corpus,
                      const velmora::TSourceProvider& sources, int threads) {
  int classes = 0;
  double parseSeconds = 0, mergeSeconds = 0;
  for (auto _ : state) {
    auto model = std::make_unique<velmora::TClasslist>();
    velmora::TParseMerger merger(*model);
    TMainThreadQueue main;
    {
      velmora::TParseQueue queue([&main](velmora::TParseResult r) { main.Push(std::move(r)); },
                                 {.Threads = threads, .Sources = &sources});
      for (const std::string& path : corpus.paths) {
        velmora::TParseRequest request;
        request.RootFile = path;
        request.FollowIncludes = false;
        request.Language = corpus.pascal ? velmora::TLanguage::Pascal : velmora::TLanguage::Cpp;
        request.Options.PascalOption = true;  // all of every unit, as `velmora dump` reads it
        request.Options.RetryBudget = 0;
        queue.Post(std::move(request));
      }
      for (size_t i = 0; i < corpus.paths.size(); ++i) {
        velmora::TParseResult result = main.Pop();
        for (const velmora::TFileParse& file : result.Files) parseSeconds += file.Seconds;
        const auto start = std::chrono::steady_clock::now();
        merger.Merge(std::move(result));
        mergeSeconds +=
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
      }
    }
    classes = model->CountAll();
    state.PauseTiming();
    model.reset();
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * corpus.diskBytes);
  state.counters["classes"] = classes;
  // Per run: the parsers' time (spread over the workers) and the merge's (on this thread
  // alone). The merge bounds what more workers can give.
  const double runs = static_cast<double>(state.iterations());
  state.counters["parse ms"] = parseSeconds * 1000 / runs;
  state.counters["merge ms"] = mergeSeconds * 1000 / runs;
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;

  const auto corpora = velmora::bench::LoadCorpora();
  std::vector<std::unique_ptr<velmora::TEditorBufferSources>> buffers;
  for (const auto& c : corpora) {
    const Corpus& corpus = *c;
    buffers.push_back(BuffersOf(corpus));
    const velmora::TSourceProvider& sources = *buffers.back();
    for (int threads : {1, 2})
      benchmark::RegisterBenchmark(
          ("OpenThroughQueue" + std::to_string(threads) + "/" + corpus.name).c_str(),
          [&corpus, &sources, threads](benchmark::State& s) {
            OpenThroughQueue(s, corpus, sources, threads);
          })
          ->UseRealTime()
          ->Unit(benchmark::kMillisecond);
  }

  velmora::bench::SummaryReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  std::printf("\n%-8s %12s %12s %10s\n", "corpus", "1 thread", "2 threads", "speed-up");
  for (const auto& c : corpora) {
    const auto one = reporter.bestRate.find("OpenThroughQueue1/" + c->name);
    const auto two = reporter.bestRate.find("OpenThroughQueue2/" + c->name);
    if (one == reporter.bestRate.end() || two == reporter.bestRate.end() || one->second <= 0)
      continue;
    std::printf("%-8s %9.1f MB/s %9.1f MB/s %9.2fx\n", c->name.c_str(), one->second / 1e6,
                two->second / 1e6, two->second / one->second);
  }
  return 0;
}
