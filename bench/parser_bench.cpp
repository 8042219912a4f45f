// Parse throughput on real code (see common/corpus.h for the corpora): tokenize and parse
// every file into one class list, one thread, files already in memory, against
// universal-ctags over the same files. Then the model of each corpus is saved as class
// information in memory and loaded again, to show what the saved model spares a start.
#include <benchmark/benchmark.h>

#include <memory>

#include "common/corpus.h"
#include "model/class_list.h"
#include "model/files.h"
#include "parsing/source_parser.h"
#include "support/stream.h"

namespace {

using velmora::bench::Corpus;

// `options` default to parsing all of every unit (what `velmora dump` does); the parser
// threads stop a Pascal unit at `implementation` unless the user's setting says otherwise.
void ParseCorpus(const Corpus& corpus, velmora::TClasslist& list,
                 const velmora::TParseOptions& options = {}) {
  const velmora::TLanguage language =
      corpus.pascal ? velmora::TLanguage::Pascal : velmora::TLanguage::Cpp;
  for (size_t i = 0; i < corpus.texts.size(); ++i) {
    // The stream owns its block; copying the text in is part of what a parser thread does
    // when it loads a file, and is small beside the parse.
    velmora::TMemoryStream stream(corpus.texts[i]);
    velmora::ParseSourceText(language, corpus.paths[i], stream, list, options, nullptr);
  }
}

// Both measures stop when the model is ready: freeing it is what a closing project pays,
// the same for a parsed and a loaded model, and is kept out of the timed part.
void Parse(benchmark::State& state, const Corpus& corpus, const velmora::TParseOptions& options) {
  int classes = 0;
  for (auto _ : state) {
    auto list = std::make_unique<velmora::TClasslist>();
    ParseCorpus(corpus, *list, options);
    classes = list->CountAll();
    state.PauseTiming();
    list.reset();
    state.ResumeTiming();
  }
  // Rated on the files as they are on disk, as ctags is: the line ends added in buffer form
  // are work of ours, not more source.
  state.SetBytesProcessed(state.iterations() * corpus.diskBytes);
  state.counters["classes"] = classes;
}

std::string SavedModel(const Corpus& corpus) {
  velmora::TClasslist list;
  ParseCorpus(corpus, list);
  velmora::TFilesList files;
  velmora::TMemoryStream out;
  files.SaveToStream(out);
  list.SaveToStream(out);
  return out.Data();
}

void LoadModel(benchmark::State& state, const Corpus& corpus, const std::string& saved) {
  for (auto _ : state) {
    // The saved file already in memory, as the sources are for Parse.
    state.PauseTiming();
    auto in = std::make_unique<velmora::TMemoryStream>(saved);
    state.ResumeTiming();
    auto files = std::make_unique<velmora::TFilesList>();
    auto list = std::make_unique<velmora::TClasslist>();
    files->LoadFromStream(*in);
    list->LoadFromStream(*in);
    state.PauseTiming();
    in.reset();
    files.reset();
    list.reset();
    state.ResumeTiming();
  }
  // Rated on the sources the model stands for, so the figure compares with Parse directly.
  state.SetBytesProcessed(state.iterations() * corpus.diskBytes);
  state.counters["saved MB"] = static_cast<double>(saved.size()) / 1e6;
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;

  const auto corpora = velmora::bench::LoadCorpora();
  std::vector<std::unique_ptr<std::string>> saved;
  for (const auto& c : corpora) {
    const Corpus& corpus = *c;
    benchmark::RegisterBenchmark(("Parse/" + corpus.name).c_str(),
                                 [&corpus](benchmark::State& s) { Parse(s, corpus, {}); })
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
    if (corpus.pascal) {
      // As the parser threads run with the settings a user starts with: units stop at
      // `implementation` (include files, which have none, are still read whole).
      velmora::TParseOptions interfaceOnly;
      interfaceOnly.ParseImplementation = false;
      benchmark::RegisterBenchmark(
          ("ParseInterfaces/" + corpus.name).c_str(),
          [&corpus, interfaceOnly](benchmark::State& s) { Parse(s, corpus, interfaceOnly); })
          ->UseRealTime()
          ->Unit(benchmark::kMillisecond);
    }
    velmora::bench::RegisterCtags(corpus);
    saved.push_back(std::make_unique<std::string>(SavedModel(corpus)));
    const std::string& model = *saved.back();
    benchmark::RegisterBenchmark(
        ("LoadModel/" + corpus.name).c_str(),
        [&corpus, &model](benchmark::State& s) { LoadModel(s, corpus, model); })
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
  }

  velmora::bench::SummaryReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  velmora::bench::RemoveCtagsLists();
  reporter.PrintComparison("Parse", corpora);
  reporter.PrintComparison("ParseInterfaces", corpora);
  std::printf("\n%-8s %16s\n", "corpus", "load vs parse");
  for (const auto& c : corpora) {
    const auto parse = reporter.bestRate.find("Parse/" + c->name);
    const auto load = reporter.bestRate.find("LoadModel/" + c->name);
    if (parse != reporter.bestRate.end() && load != reporter.bestRate.end() && parse->second > 0)
      std::printf("%-8s %15.1fx\n", c->name.c_str(), load->second / parse->second);
  }
  return 0;
}
