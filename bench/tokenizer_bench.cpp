// Tokenizer throughput on real code, against universal-ctags over the same files.
//
// Corpora, read into memory before any timing:
//   LCL   every *.pas, *.pp and *.inc under /usr/lib/lazarus/*/lcl (package lazarus-src)
//   Qt6   every regular file under /usr/include/x86_64-linux-gnu/qt6 (package qt6-base-dev)
// Files are held in buffer form (CR LF line ends, converted while loading), as the parser
// threads hold them: in an LF file a `//` comment would run to the end of the file and the
// figures would measure a search for CR instead of tokenizing. A missing corpus is skipped
// with a message. Each tokenizer benchmark tokenizes the whole corpus once per iteration
// on one thread, a fresh tokenizer per file as the parser threads do. The ctags
// benchmarks run `ctags` over the same files as they are on disk, tags written to
// /dev/null, timed by the wall clock (ctags' own start-up included, once per corpus). A summary with both rates and their ratio
// follows the benchmark table.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <unistd.h>

#include "parsing/cpp_tokenizer.h"
#include "parsing/pascal_tokenizer.h"
#include "support/text_buffer.h"

namespace {

namespace fs = std::filesystem;

struct Corpus {
  std::string name;
  bool pascal = false;
  std::vector<std::string> paths;
  std::vector<std::string> texts;  // std::string keeps a NUL after the last character
  int64_t bytes = 0;               // of the texts in buffer form
  int64_t diskBytes = 0;           // of the files as ctags reads them
};

bool HasExtension(const fs::path& path, std::initializer_list<const char*> extensions) {
  const std::string ext = path.extension().string();
  return std::any_of(extensions.begin(), extensions.end(),
                     [&](const char* e) { return ext == e; });
}

void AddFiles(Corpus& corpus, const fs::path& root, bool (*wanted)(const fs::path&)) {
  std::error_code ec;
  if (!fs::is_directory(root, ec)) return;
  for (fs::recursive_directory_iterator it(root, ec), end; !ec && it != end; it.increment(ec)) {
    if (it->is_symlink(ec) || !it->is_regular_file(ec) || !wanted(it->path())) continue;
    corpus.paths.push_back(it->path().string());
  }
}

void Load(Corpus& corpus) {
  std::sort(corpus.paths.begin(), corpus.paths.end());
  for (const std::string& path : corpus.paths) {
    std::ifstream in(path, std::ios::binary);
    const std::string disk((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::string text = velmora::ToBufferForm(disk);
    corpus.diskBytes += static_cast<int64_t>(disk.size());
    corpus.bytes += static_cast<int64_t>(text.size());
    corpus.texts.push_back(std::move(text));
  }
}

Corpus LoadLcl() {
  Corpus c;
  c.name = "LCL";
  c.pascal = true;
  std::error_code ec;
  for (fs::directory_iterator it("/usr/lib/lazarus", ec), end; !ec && it != end; it.increment(ec))
    AddFiles(c, it->path() / "lcl",
             [](const fs::path& p) { return HasExtension(p, {".pas", ".pp", ".inc"}); });
  Load(c);
  return c;
}

Corpus LoadQt() {
  Corpus c;
  c.name = "Qt6";
  AddFiles(c, "/usr/include/x86_64-linux-gnu/qt6", [](const fs::path&) { return true; });
  Load(c);
  return c;
}

template <typename Tokenizer>
void Tokenize(benchmark::State& state, const Corpus& corpus) {
  int64_t tokens = 0;
  for (auto _ : state) {
    tokens = 0;
    for (const std::string& text : corpus.texts) {
      Tokenizer t;
      t.SetText(text.c_str(), static_cast<int32_t>(text.size()));
      tokens += t.LastIndex();
      benchmark::DoNotOptimize(t.Kinds().Items());
    }
  }
  state.SetBytesProcessed(state.iterations() * corpus.bytes);
  state.counters["files"] = static_cast<double>(corpus.texts.size());
  state.counters["MB"] = static_cast<double>(corpus.bytes) / 1e6;
  state.counters["tokens"] = static_cast<double>(tokens);
  state.counters["tokens/byte"] = static_cast<double>(tokens) / static_cast<double>(corpus.bytes);
}

void Ctags(benchmark::State& state, const Corpus& corpus, const std::string& listFile) {
  const std::string command = std::string("ctags --options=NONE --language-force=") +
                              (corpus.pascal ? "Pascal" : "C++") + " -f - -L " +
                              listFile + " >/dev/null 2>&1";
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    const int status = std::system(command.c_str());
    const auto stop = std::chrono::steady_clock::now();
    if (status != 0) {
      state.SkipWithError("ctags failed or is not installed");
      break;
    }
    state.SetIterationTime(std::chrono::duration<double>(stop - start).count());
  }
  state.SetBytesProcessed(state.iterations() * corpus.diskBytes);
}

// Keeps the best rate of each benchmark (over repetitions, if any) for the summary.
class SummaryReporter : public benchmark::ConsoleReporter {
 public:
  // Colours only on a terminal, as the library's own console reporter does by default.
  SummaryReporter() : ConsoleReporter(::isatty(STDOUT_FILENO) ? OO_Defaults : OO_Tabular) {}

  std::map<std::string, double> bestRate;  // benchmark name -> bytes per second

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.error_occurred || run.run_type != Run::RT_Iteration) continue;
      const auto it = run.counters.find("bytes_per_second");
      if (it == run.counters.end()) continue;
      // The family name leaves out the "/iterations:3/manual_time" decorations.
      double& best = bestRate[run.run_name.function_name];
      best = std::max(best, it->second.value);
    }
  }
};

std::string WriteList(const Corpus& corpus) {
  char name[] = "/tmp/velmora-bench-list-XXXXXX";
  const int fd = ::mkstemp(name);
  if (fd < 0) return {};
  ::close(fd);
  std::ofstream out(name);
  for (const std::string& path : corpus.paths) out << path << '\n';
  return name;
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;

  // The corpora live until the end of main; the benchmarks hold references to them.
  std::vector<std::unique_ptr<Corpus>> corpora;
  corpora.push_back(std::make_unique<Corpus>(LoadLcl()));
  corpora.push_back(std::make_unique<Corpus>(LoadQt()));
  std::vector<std::string> lists;
  for (const auto& c : corpora) {
    if (c->texts.empty()) {
      std::printf("skipping %s: no files found (%s)\n", c->name.c_str(),
                  c->pascal ? "install lazarus-src" : "install qt6-base-dev");
      continue;
    }
    std::printf("%s: %zu files, %.1f MB in buffer form\n", c->name.c_str(), c->texts.size(),
                static_cast<double>(c->bytes) / 1e6);
    const Corpus& corpus = *c;
    if (corpus.pascal)
      benchmark::RegisterBenchmark(("Tokenize/" + corpus.name).c_str(),
                                   [&corpus](benchmark::State& s) {
                                     Tokenize<velmora::TPascalTokenizer>(s, corpus);
                                   })
          ->UseRealTime()
          ->Unit(benchmark::kMillisecond);
    else
      benchmark::RegisterBenchmark(("Tokenize/" + corpus.name).c_str(),
                                   [&corpus](benchmark::State& s) {
                                     Tokenize<velmora::TCPPTokenizer>(s, corpus);
                                   })
          ->UseRealTime()
          ->Unit(benchmark::kMillisecond);
    lists.push_back(WriteList(corpus));
    if (lists.back().empty()) continue;
    const std::string list = lists.back();
    benchmark::RegisterBenchmark(("Ctags/" + corpus.name).c_str(),
                                 [&corpus, list](benchmark::State& s) { Ctags(s, corpus, list); })
        ->UseManualTime()
        ->Iterations(3)
        ->Unit(benchmark::kMillisecond);
  }

  SummaryReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  for (const std::string& list : lists)
    if (!list.empty()) std::remove(list.c_str());

  // Rates in MB/s of 10^6 bytes, wall clock for both (the table above shows MiB/s).
  std::printf("\n%-8s %14s %12s %8s\n", "corpus", "velmora MB/s", "ctags MB/s", "ratio");
  for (const auto& c : corpora) {
    const auto ours = reporter.bestRate.find("Tokenize/" + c->name);
    if (ours == reporter.bestRate.end()) continue;
    const auto theirs = reporter.bestRate.find("Ctags/" + c->name);
    if (theirs == reporter.bestRate.end() || theirs->second <= 0) {
      std::printf("%-8s %14.0f %12s %8s\n", c->name.c_str(), ours->second / 1e6, "-", "-");
      continue;
    }
    std::printf("%-8s %14.0f %12.1f %7.0fx\n", c->name.c_str(), ours->second / 1e6,
                theirs->second / 1e6, ours->second / theirs->second);
  }
  return 0;
}
