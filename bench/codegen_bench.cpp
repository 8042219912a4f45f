// One add-method generation, as the Add Method dialog's OK runs it, on a file already in
// memory (the editor buffer): re-parse the module, place the declaration and the
// implementation, write both, and parse the changed text again for the model. Two files: a
// generated C++ source of 50,000 lines that declares its class at the top (5,000 methods)
// and implements them below, and the largest unit of the LCL (package lazarus-src), whose
// first class with methods gets the new one; and, as a unit of the common kind (classes
// declared above, implemented below), the LCL's grids.pas. Each run starts from the
// original text.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "codegen/add_member_requests.h"
#include "codegen/code_generator.h"
#include "codegen/code_text_buffers.h"
#include "model/class_list.h"
#include "parsing/source_parser.h"
#include "settings/vl_settings.h"
#include "support/stream.h"
#include "support/text_buffer.h"

namespace {

namespace fs = std::filesystem;
using namespace velmora;

constexpr int kMethods = 5000;

// The class with one declaration line per method, then 9 lines per implementation.
std::string GenerateCppSource() {
  std::string text = "#include <vcl.h>\r\n\r\nclass TBig : public TObject\r\n{\r\npublic:\r\n";
  for (int i = 0; i < kMethods; ++i)
    text += "    void __fastcall Method" + std::to_string(i) + "(int a, char* b);\r\n";
  text += "};\r\n\r\n";
  for (int i = 0; i < kMethods; ++i) {
    const std::string n = std::to_string(i);
    text += "void __fastcall TBig::Method" + n + "(int a, char* b)\r\n";
    text += "{\r\n";
    text += "    int x = a + " + n + ";\r\n";
    text += "    if (x > 10) {\r\n";
    text += "        Log(\"TBig::Method" + n + "\", b);\r\n";
    text += "    }\r\n";
    text += "    Other(x, b);\r\n";
    text += "}\r\n";
    text += "\r\n";
  }
  return text;
}

// The largest *.pas or *.pp of the LCL, or "" when lazarus-src is not installed.
std::string LargestLclUnit() {
  std::string best;
  uintmax_t bestSize = 0;
  std::error_code ec;
  for (fs::directory_iterator it("/usr/lib/lazarus", ec), end; !ec && it != end; it.increment(ec)) {
    const fs::path lcl = it->path() / "lcl";
    for (fs::recursive_directory_iterator f(lcl, ec), fend; !ec && f != fend; f.increment(ec)) {
      const std::string ext = f->path().extension().string();
      if (!f->is_regular_file(ec) || (ext != ".pas" && ext != ".pp")) continue;
      const uintmax_t size = f->file_size(ec);
      if (!ec && size > bestSize) {
        bestSize = size;
        best = f->path().string();
      }
    }
  }
  return best;
}

void AddMethod(benchmark::State& state, const std::string& file, const std::string& text) {
  const TLanguage language = LanguageOfFile(file);
  TClasslist model;
  ParseSourceText(language, file, TMemoryStream(text), model, {}, nullptr);
  TClassDescription* cls = nullptr;
  // The first class with methods, else the first class (the largest LCL unit is a
  // binding whose classes are empty handles).
  for (int i = 0; i < model.Count() && !cls; ++i)
    if (model.Items(i)->Methods.Count() > 0) cls = model.Items(i);
  if (!cls && model.Count() > 0) cls = model.Items(0);
  if (!cls) {
    state.SkipWithError("no class in the file");
    return;
  }
  TVLSettings settings;
  TAddMethodRequest request;
  request.MethodName = "GeneratedByBenchmark";
  request.Arguments = language == TLanguage::Cpp ? "int a, char* b" : "A: Integer; const B: string";
  request.FastCall = language == TLanguage::Cpp;
  const std::unique_ptr<TMethodDescription> method = request.BuildMethod(*cls);
  int32_t focus = -1;
  for (auto _ : state) {
    state.PauseTiming();
    TMemoryCodeBuffers buffers;
    buffers.Set(file, text);
    auto generator = TAbstractCodeGenerator::Create(buffers, settings, *cls, file);
    state.ResumeTiming();
    generator->AddMethod(*method, "", "");
    focus = generator->Generate();
    if (!generator->Succeeded()) {
      state.SkipWithError(generator->Error().c_str());
      return;
    }
  }
  state.SetLabel(fs::path(file).filename().string() + " " + cls->Name);
  state.counters["focus"] = focus;
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  static const std::string cppText = GenerateCppSource();
  benchmark::RegisterBenchmark("AddMethod/Cpp50kLines", AddMethod, std::string("/mem/big.cpp"),
                               cppText)
      ->Unit(benchmark::kMillisecond);
  const std::string unit = LargestLclUnit();
  static std::string unitText;
  if (unit.empty()) {
    std::printf("skipping AddMethod/LargestLclUnit: no LCL found (install lazarus-src)\n");
  } else {
    unitText = LoadSourceText(unit);
    benchmark::RegisterBenchmark("AddMethod/LargestLclUnit", AddMethod, unit, unitText)
        ->Unit(benchmark::kMillisecond);
  }
  static std::string gridsText;
  std::error_code ec;
  for (fs::directory_iterator it("/usr/lib/lazarus", ec), end; !ec && it != end; it.increment(ec)) {
    const fs::path grids = it->path() / "lcl" / "grids.pas";
    if (!fs::exists(grids, ec)) continue;
    gridsText = LoadSourceText(grids.string());
    benchmark::RegisterBenchmark("AddMethod/LclGrids", AddMethod, grids.string(), gridsText)
        ->Unit(benchmark::kMillisecond);
    break;
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
