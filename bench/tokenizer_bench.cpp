// Tokenizer throughput on real code (see support/corpus.h for the corpora), against
// universal-ctags over the same files. Each benchmark tokenizes the whole corpus once per
// iteration on one thread, a fresh tokenizer per file as the parser threads do. A summary
// with both rates and their ratio follows the benchmark table.
#include <benchmark/benchmark.h>

#include "common/corpus.h"
#include "parsing/cpp_tokenizer.h"
#include "parsing/pascal_tokenizer.h"

namespace {

using velmora::bench::Corpus;

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
  // On disk bytes, as the parse and ctags are rated.
  state.SetBytesProcessed(state.iterations() * corpus.diskBytes);
  state.counters["files"] = static_cast<double>(corpus.texts.size());
  state.counters["MB"] = static_cast<double>(corpus.bytes) / 1e6;
  state.counters["tokens"] = static_cast<double>(tokens);
  state.counters["tokens/byte"] = static_cast<double>(tokens) / static_cast<double>(corpus.bytes);
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;

  // The corpora live until the end of main; the benchmarks hold references to them.
  const auto corpora = velmora::bench::LoadCorpora();
  for (const auto& c : corpora) {
    const Corpus& corpus = *c;
    auto run =
        corpus.pascal ? &Tokenize<velmora::TPascalTokenizer> : &Tokenize<velmora::TCPPTokenizer>;
    benchmark::RegisterBenchmark(("Tokenize/" + corpus.name).c_str(),
                                 [&corpus, run](benchmark::State& s) { run(s, corpus); })
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
    velmora::bench::RegisterCtags(corpus);
  }

  velmora::bench::SummaryReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  velmora::bench::RemoveCtagsLists();
  reporter.PrintComparison("Tokenize", corpora);
  return 0;
}
