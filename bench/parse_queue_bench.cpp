// A whole corpus opened into one model through the parse queue and the merge, with one
// worker and with two: every file is a job (includes not followed, so each file is parsed
// once), read from editor buffers so that the disk stays out of the figure, and each
// result merged on this thread as it arrives, as a host's main thread does. The time runs
// from the first post to the last merge. universal-ctags runs over the same files in the
// same run, so that the figures of one run compare whatever else the machine is doing.
#include <benchmark/benchmark.h>

#include <time.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "common/corpus.h"
#include "model/class_list.h"
#include "parsing/parse_merge.h"
#include "parsing/parse_queue.h"
#include "parsing/source_provider.h"

namespace {

using velmora::bench::Corpus;

double CpuSeconds(clockid_t clock) {
  timespec t{};
  ::clock_gettime(clock, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9;
}

// The CPU counters of the one-worker run of each corpus, for the projection.
std::map<std::string, std::pair<double, double>> g_cpu;  // corpus -> worker ms, main ms

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
  double parseSeconds = 0, mergeSeconds = 0, processCpu = 0, mainCpu = 0;
  for (auto _ : state) {
    const double processStart = CpuSeconds(CLOCK_PROCESS_CPUTIME_ID);
    const double mainStart = CpuSeconds(CLOCK_THREAD_CPUTIME_ID);
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
    processCpu += CpuSeconds(CLOCK_PROCESS_CPUTIME_ID) - processStart;
    mainCpu += CpuSeconds(CLOCK_THREAD_CPUTIME_ID) - mainStart;
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
  // CPU time, which the machine's other work does not inflate: the workers' (the process'
  // less this thread's) and this thread's (merging and freeing the results).
  state.counters["worker cpu ms"] = (processCpu - mainCpu) * 1000 / runs;
  state.counters["main cpu ms"] = mainCpu * 1000 / runs;
}

// What two workers would gain over one on two otherwise idle cores, from the CPU times of
// the one-worker run: one worker runs beside the main thread, so it takes as long as the
// longer of the two; two workers and the main thread share both cores.
double ProjectedSpeedUp(double workerCpu, double mainCpu) {
  const double one = std::max(workerCpu, mainCpu);
  const double two = std::max((workerCpu + mainCpu) / 2, mainCpu);
  return two > 0 ? one / two : 0;
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
            if (threads != 1) return;
            // The least of the repetitions, as for the rates.
            const std::pair<double, double> cpu{s.counters["worker cpu ms"],
                                                s.counters["main cpu ms"]};
            auto [it, added] = g_cpu.try_emplace(corpus.name, cpu);
            if (!added && cpu.first + cpu.second < it->second.first + it->second.second)
              it->second = cpu;
          })
          ->UseRealTime()
          ->Unit(benchmark::kMillisecond);
    velmora::bench::RegisterCtags(corpus);
  }

  velmora::bench::SummaryReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  velmora::bench::RemoveCtagsLists();
  reporter.PrintComparison("OpenThroughQueue1", corpora);
  reporter.PrintComparison("OpenThroughQueue2", corpora);
  std::printf("\n%-8s %12s %12s %10s\n", "corpus", "1 thread", "2 threads", "speed-up");
  for (const auto& c : corpora) {
    const auto one = reporter.bestRate.find("OpenThroughQueue1/" + c->name);
    const auto two = reporter.bestRate.find("OpenThroughQueue2/" + c->name);
    if (one == reporter.bestRate.end() || two == reporter.bestRate.end() || one->second <= 0)
      continue;
    std::printf("%-8s %9.1f MB/s %9.1f MB/s %9.2fx\n", c->name.c_str(), one->second / 1e6,
                two->second / 1e6, two->second / one->second);
  }
  // Wall-clock figures mean little on a loaded machine; CPU times hold.
  std::printf("\n%-8s %14s %14s %22s\n", "corpus", "worker CPU ms", "main CPU ms",
              "2 workers, idle cores");
  for (const auto& [name, cpu] : g_cpu)
    std::printf("%-8s %14.1f %14.1f %21.2fx\n", name.c_str(), cpu.first, cpu.second,
                ProjectedSpeedUp(cpu.first, cpu.second));
  return 0;
}
