// Saving and loading the class information of a large model in memory: bytes per second
// and classes per second both ways. The synthetic model has the shape of a big VCL-style
// project (20,000 classes of 20 members: fields, methods with parameters, properties);
// RegisterClassInfoBenchmarks takes any model, so a parsed one can be measured the same
// way.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "model/class_list.h"
#include "model/files.h"
#include "support/stream.h"

namespace {

using namespace velmora;

struct Model {
  TFilesList files;
  TClasslist classes;
};

std::string Saved(const Model& m) {
  TMemoryStream s;
  m.files.SaveToStream(s);
  m.classes.SaveToStream(s);
  return std::move(s.Data());
}

// Per class: 8 fields, 8 methods (0 to 3 parameters, some overloaded, some with result
// types and directives) and 4 properties with read and write specifiers.
std::shared_ptr<Model> SyntheticModel(int classCount, int unitCount) {
  auto m = std::make_shared<Model>();
  for (int u = 0; u < unitCount; ++u) {
    auto f = std::make_unique<TFileDescription>(TLanguage::Cpp);
    f->Name = "Unit" + std::to_string(u) + ".h";
    f->Directory = "C:\\Projects\\Kiln\\Source\\";
    f->FileDate = 0x2A4B0000 + u;
    m->files.Add(std::move(f));
    m->classes.Includes.FindOrAdd("Unit" + std::to_string(u) + ".cpp")
        ->IncludedNames.Add(m->files.Items(m->files.Count() - 1)->Name);
  }
  static const char* const kParamTypes[] = {"int", "TObject* Sender", "const AnsiString& Text",
                                            "bool Enabled = true"};
  for (int c = 0; c < classCount; ++c) {
    const std::string name = "TKilnComponent" + std::to_string(c);
    TClassDescription* cls = m->classes.FindOrAdd(name, TLanguage::Cpp);
    cls->UnitName = "Unit" + std::to_string(c % unitCount) + ".h";
    cls->Ancestors.Add(TVisibility::Public, c % 10 ? "TKilnComponent" + std::to_string(c - 1)
                                                   : std::string("TComponent"));
    cls->SetStart(c * 40 + 1, c * 1500);
    cls->SetEnd(c * 40 + 39, c * 1500 + 1400);
    for (int i = 0; i < 8; ++i) {
      TFieldDescription* f = cls->Fields.FindOrAdd(
          "FValue" + std::to_string(i), i % 2 ? "int" : "AnsiString", TVisibility::Private);
      f->SetStart(c * 40 + 2 + i, c * 1500 + 30 * i);
      f->SetEnd(c * 40 + 2 + i, c * 1500 + 30 * i + 20);
    }
    for (int i = 0; i < 8; ++i) {
      TParameterList params(TLanguage::Cpp);
      std::string text;
      for (int p = 0; p < i % 4; ++p) text += (p ? ", " : "") + std::string(kParamTypes[p]);
      params.Parse(text);
      TMethodDescription* meth = cls->Methods.FindOrAdd(
          i < 6 ? "Method" + std::to_string(i) : std::string("Overloaded"), std::move(params),
          i % 3 ? "void" : "int", i % 2 ? TVisibility::Public : TVisibility::Protected,
          i % 3 ? TMethodKind::Procedure : TMethodKind::Function);
      meth->SetDirective(TDirective::FastCall);
      if (i % 4 == 0) meth->SetDirective(TDirective::Virtual);
      meth->SetStart(c * 40 + 10 + i, c * 1500 + 300 + 60 * i);
      meth->SetEnd(c * 40 + 10 + i, c * 1500 + 350 + 60 * i);
    }
    for (int i = 0; i < 4; ++i) {
      TFieldDescription* p = cls->Fields.FindOrAdd(
          "Value" + std::to_string(i), i % 2 ? "int" : "AnsiString", TVisibility::Published);
      p->SetIsProperty(true);
      p->Property->ReadSpec = "FValue" + std::to_string(i);
      p->Property->WriteSpec = "SetValue" + std::to_string(i);
      if (i == 3) p->Property->DefaultSpec = "0";
    }
  }
  return m;
}

void Save(benchmark::State& state, const Model& m) {
  int64_t bytes = 0;
  for (auto _ : state) {
    TMemoryStream s;
    m.files.SaveToStream(s);
    m.classes.SaveToStream(s);
    bytes = s.Size();
    benchmark::DoNotOptimize(s.Memory());
  }
  state.SetBytesProcessed(state.iterations() * bytes);
  state.counters["MB"] = static_cast<double>(bytes) / 1e6;
  state.counters["classes/s"] = benchmark::Counter(static_cast<double>(m.classes.CountAll()),
                                                   benchmark::Counter::kIsIterationInvariantRate);
}

void Load(benchmark::State& state, const std::string& bytes) {
  int classes = 0;
  for (auto _ : state) {
    auto m = std::make_unique<Model>();
    TMemoryStream s(bytes);
    m->files.LoadFromStream(s);
    m->classes.LoadFromStream(s);
    classes = m->classes.CountAll();
    // Freeing the model is not part of loading it.
    state.PauseTiming();
    m.reset();
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes.size()));
  state.counters["MB"] = static_cast<double>(bytes.size()) / 1e6;
  state.counters["classes/s"] = benchmark::Counter(static_cast<double>(classes),
                                                   benchmark::Counter::kIsIterationInvariantRate);
}

/// Registers "<label>/Save" and "<label>/Load" for a model, which the benchmarks keep
/// alive; a parsed model goes through here as well as the synthetic one.
void RegisterClassInfoBenchmarks(const std::string& label, std::shared_ptr<const Model> model) {
  auto bytes = std::make_shared<const std::string>(Saved(*model));
  benchmark::RegisterBenchmark((label + "/Save").c_str(),
                               [model](benchmark::State& s) { Save(s, *model); })
      ->Unit(benchmark::kMillisecond)
      ->UseRealTime();
  benchmark::RegisterBenchmark((label + "/Load").c_str(),
                               [bytes](benchmark::State& s) { Load(s, *bytes); })
      ->Unit(benchmark::kMillisecond)
      ->UseRealTime();
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  RegisterClassInfoBenchmarks("ClassInfo/Synthetic20000x20", SyntheticModel(20000, 400));
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
