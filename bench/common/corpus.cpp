#include "common/corpus.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "support/text_buffer.h"

namespace velmora::bench {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> g_lists;  // temporary ctags file lists, removed at the end

bool HasExtension(const fs::path& path, std::initializer_list<const char*> extensions) {
  const std::string ext = path.extension().string();
  return std::any_of(extensions.begin(), extensions.end(), [&](const char* e) { return ext == e; });
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
    std::string text = ToBufferForm(disk);
    corpus.diskBytes += static_cast<int64_t>(disk.size());
    corpus.bytes += static_cast<int64_t>(text.size());
    corpus.texts.push_back(std::move(text));
  }
}

std::string WriteList(const Corpus& corpus) {
  char name[] = "/tmp/velmora-bench-list-XXXXXX";
  const int fd = ::mkstemp(name);
  if (fd < 0) return {};
  ::close(fd);
  std::ofstream out(name);
  for (const std::string& path : corpus.paths) out << path << '\n';
  return name;
}

void Ctags(benchmark::State& state, const Corpus& corpus, const std::string& listFile) {
  const std::string command = std::string("ctags --options=NONE --language-force=") +
                              (corpus.pascal ? "Pascal" : "C++") + " -f - -L " + listFile +
                              " >/dev/null 2>&1";
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

}  // namespace

Corpus LoadLcl() {
  Corpus c;
  c.name = "LCL";
  c.pascal = true;
  std::error_code ec;
  for (fs::directory_iterator it("/usr/lib/lazarus", ec), end; !ec && it != end; it.increment(ec))
    AddFiles(c, it->path() / "lcl", [](const fs::path& p) {
      return HasExtension(p, {".pas", ".pp", ".inc"});
    });
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

std::vector<std::unique_ptr<Corpus>> LoadCorpora() {
  std::vector<std::unique_ptr<Corpus>> corpora;
  for (Corpus (*load)() : {LoadLcl, LoadQt}) {
    auto c = std::make_unique<Corpus>(load());
    if (c->texts.empty()) {
      std::printf("skipping %s: no files found (%s)\n", c->name.c_str(),
                  c->pascal ? "install lazarus-src" : "install qt6-base-dev");
      continue;
    }
    std::printf("%s: %zu files, %.1f MB on disk, %.1f MB in buffer form\n", c->name.c_str(),
                c->texts.size(), static_cast<double>(c->diskBytes) / 1e6,
                static_cast<double>(c->bytes) / 1e6);
    corpora.push_back(std::move(c));
  }
  return corpora;
}

void RegisterCtags(const Corpus& corpus) {
  const std::string list = WriteList(corpus);
  if (list.empty()) return;
  g_lists.push_back(list);
  benchmark::RegisterBenchmark(("Ctags/" + corpus.name).c_str(),
                               [&corpus, list](benchmark::State& s) { Ctags(s, corpus, list); })
      ->UseManualTime()
      ->Iterations(3)
      ->Unit(benchmark::kMillisecond);
}

void RemoveCtagsLists() {
  for (const std::string& list : g_lists) std::remove(list.c_str());
  g_lists.clear();
}

// Colours only on a terminal, as the library's own console reporter does by default.
SummaryReporter::SummaryReporter()
    : ConsoleReporter(::isatty(STDOUT_FILENO) ? OO_Defaults : OO_Tabular) {}

void SummaryReporter::ReportRuns(const std::vector<Run>& runs) {
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

void SummaryReporter::PrintComparison(const std::string& ours,
                                      const std::vector<std::unique_ptr<Corpus>>& corpora) const {
  // Rates in MB/s of 10^6 bytes, wall clock for both (the table above shows MiB/s).
  std::printf("\n%-8s %14s %12s %8s\n", "corpus", (ours + " MB/s").c_str(), "ctags MB/s", "ratio");
  for (const auto& c : corpora) {
    const auto mine = bestRate.find(ours + "/" + c->name);
    if (mine == bestRate.end()) continue;
    const auto theirs = bestRate.find("Ctags/" + c->name);
    if (theirs == bestRate.end() || theirs->second <= 0) {
      std::printf("%-8s %14.0f %12s %8s\n", c->name.c_str(), mine->second / 1e6, "-", "-");
      continue;
    }
    std::printf("%-8s %14.0f %12.1f %7.1fx\n", c->name.c_str(), mine->second / 1e6,
                theirs->second / 1e6, mine->second / theirs->second);
  }
}

}  // namespace velmora::bench
