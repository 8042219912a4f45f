// Language server requests on a warm model of real code: the workspace symbol search over
// every class and member of the LCL (and of the whole Lazarus tree), and the outline of the
// largest LCL unit opened as a document. The model is built before any timing, as the
// server has it once the project's background parse is over. Skipped without lazarus-src.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "common/corpus.h"
#include "hosts/lsp/code_model.h"
#include "hosts/lsp/code_requests.h"
#include "hosts/lsp/documents.h"
#include "hosts/lsp/source_texts.h"

namespace {

namespace fs = std::filesystem;
using namespace velmora::lsp;

struct TWarmModel {
  std::string name;
  TCodeModel model;
  std::vector<std::string> sources;  // none: a Pascal tree has no separate C++ sources
  std::size_t files = 0, symbols = 0;
};

std::unique_ptr<TWarmModel> BuildModel(const std::string& name,
                                       const velmora::bench::Corpus& corpus) {
  auto warm = std::make_unique<TWarmModel>();
  warm->name = name;
  uint64_t generation = 0;
  for (std::size_t i = 0; i < corpus.paths.size(); ++i)
    warm->model.Merge(ParseFileForModel(corpus.paths[i], corpus.texts[i], ++generation));
  for (const auto& [path, file] : warm->model.Files()) warm->symbols += file->Symbols.size();
  warm->files = warm->model.Files().size();
  return warm;
}

// Every Pascal source of the Lazarus tree (lcl, components, ide, packager, ...).
velmora::bench::Corpus LoadLazarusTree() {
  velmora::bench::Corpus c;
  std::error_code ec;
  for (fs::recursive_directory_iterator it("/usr/lib/lazarus", ec), end; !ec && it != end;
       it.increment(ec)) {
    if (!it->is_regular_file(ec)) continue;
    const std::string ext = FoldName(it->path().extension().string());
    if (ext != ".pas" && ext != ".pp" && ext != ".inc" && ext != ".lpr") continue;
    std::string text;
    if (std::optional<std::string> loaded = velmora::ReadSourceTextFromDisk(it->path().string()))
      text = std::move(*loaded);
    else
      continue;
    c.bytes += static_cast<int64_t>(text.size());
    c.paths.push_back(it->path().string());
    c.texts.push_back(std::move(text));
  }
  return c;
}

void WorkspaceSymbol(benchmark::State& state, const TWarmModel* warm, std::string query) {
  TDocumentStore documents;
  std::size_t found = 0;
  for (auto _ : state) {
    TSourceTexts texts(documents, TPositionEncoding::Utf16);
    const json answer = WorkspaceSymbols(TModelView{warm->model, texts, warm->sources}, query, 256);
    found = answer.size();
    benchmark::DoNotOptimize(answer);
  }
  state.counters["results"] = static_cast<double>(found);
  state.counters["symbols"] = static_cast<double>(warm->symbols);
}

void DocumentSymbol(benchmark::State& state, const TWarmModel* warm, std::string path,
                    std::string text) {
  TDocumentStore documents;
  documents.Open(UriFromPath(path), "pascal", 1, std::move(text));
  std::size_t top = 0;
  for (auto _ : state) {
    TSourceTexts texts(documents, TPositionEncoding::Utf16);
    const std::string answer =
        DocumentSymbols(TModelView{warm->model, texts, warm->sources}, path, true);
    top = answer.size();
    benchmark::DoNotOptimize(answer);
  }
  state.counters["answer-bytes"] = static_cast<double>(top);
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(documents.FindByPath(path)->Text.size()));
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const velmora::bench::Corpus lcl = velmora::bench::LoadLcl();
  if (lcl.texts.empty()) {
    std::printf("skipping: no LCL found (install lazarus-src)\n");
    return 0;
  }
  std::vector<std::unique_ptr<TWarmModel>> models;
  models.push_back(BuildModel("LCL", lcl));
  {
    const velmora::bench::Corpus tree = LoadLazarusTree();
    models.push_back(BuildModel("LazarusTree", tree));
    std::printf("Lazarus tree: %zu files, %.1f MB in buffer form\n", tree.paths.size(),
                static_cast<double>(tree.bytes) / 1e6);
  }
  for (const auto& warm : models) {
    std::printf("%s model: %zu files, %zu symbols\n", warm->name.c_str(), warm->files,
                warm->symbols);
    // A whole name, a prefix a user types first, letters in order, and a miss.
    for (const char* query : {"TCustomForm", "tcust", "gtitmcnt", "zzqqx"})
      benchmark::RegisterBenchmark(("WorkspaceSymbol/" + warm->name + "/" + query).c_str(),
                                   WorkspaceSymbol, warm.get(), std::string(query))
          ->Unit(benchmark::kMillisecond);
  }
  // The largest unit of the LCL itself (not an include file).
  std::size_t largest = lcl.texts.size();
  for (std::size_t i = 0; i < lcl.texts.size(); ++i) {
    const std::string ext = FoldName(fs::path(lcl.paths[i]).extension().string());
    if ((ext == ".pas" || ext == ".pp") &&
        (largest == lcl.texts.size() || lcl.texts[i].size() > lcl.texts[largest].size()))
      largest = i;
  }
  // It is a binding of thousands of routines; grids.pas, the largest unit of classes in
  // the LCL's own folder, shows a typical deep outline.
  std::vector<std::size_t> units;
  if (largest < lcl.texts.size()) units.push_back(largest);
  for (std::size_t i = 0; i < lcl.paths.size(); ++i)
    if (fs::path(lcl.paths[i]).filename() == "grids.pas" &&
        fs::path(lcl.paths[i]).parent_path().filename() == "lcl")
      units.push_back(i);
  for (std::size_t i : units) {
    std::printf("outline of %s (%zu bytes)\n", lcl.paths[i].c_str(), lcl.texts[i].size());
    benchmark::RegisterBenchmark(
        ("DocumentSymbol/" + fs::path(lcl.paths[i]).filename().string()).c_str(), DocumentSymbol,
        models.front().get(), lcl.paths[i], lcl.texts[i])
        ->Unit(benchmark::kMillisecond);
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
