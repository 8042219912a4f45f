// Finding an implementation as "Go to Implementation" does, through the locating routines,
// over a file already in memory (the editor buffer). Warm: the same text as the lookup
// before, whose tokens the routines keep, so only the raw-text search and its token checks
// run. Cold: a text other than the last (two texts taken in turn), so the whole file is
// copied and tokenized first, as on the first jump into a file or after every edit. Two files: a
// generated C++ source of 50,000 lines (one class, 5,000 method implementations, each name also in
// a comment and a string before it), and the largest unit of the LCL (package lazarus-src), looked
// up for the last implementation in it. The member sought is the file's last one, so the search
// runs through the whole text.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "model/class_list.h"
#include "parsing/implementation_locator.h"
#include "parsing/pascal_tokenizer.h"
#include "support/text_buffer.h"

namespace {

namespace fs = std::filesystem;
using namespace velmora;

constexpr int kMethods = 5000;

// 10 lines per method: a comment naming it, the heading, a body with a string naming it.
std::string GenerateCppSource() {
  std::string text = "#include \"big.h\"\r\n";
  for (int i = 0; i < kMethods; ++i) {
    const std::string n = std::to_string(i);
    text += "// TBig::Method" + n + " handles case " + n + "\r\n";
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

TParameterList CppParams(std::string_view text) {
  TParameterList list(TLanguage::Cpp);
  list.Parse(text);
  return list;
}

// The text and a twin that differs in its last character: looking in them in turn makes
// every lookup a cold one.
struct TTexts {
  std::string text;
  std::string twin;
  explicit TTexts(std::string t) : text(std::move(t)), twin(text) { twin.back() = ' '; }
  const std::string& For(int64_t iteration, bool cold) const {
    return cold && (iteration & 1) ? twin : text;
  }
};

void CppMethodLookup(benchmark::State& state, bool overloaded, bool cold) {
  const TTexts texts(GenerateCppSource());
  const std::string& text = texts.text;
  TClasslist classes;
  TClassDescription* big = classes.FindOrAdd("TBig", TLanguage::Cpp);
  const std::string name = "Method" + std::to_string(kMethods - 1);
  TMethodDescription* member = big->Methods.FindOrAdd(name, CppParams("int a, char* b"), "void",
                                                      TVisibility::Public, TMethodKind::Procedure);
  if (overloaded) {
    // A twin makes the parameter lists of the hits parsed and compared.
    big->Methods.FindOrAdd(name, CppParams("double"), "void", TVisibility::Public,
                           TMethodKind::Procedure);
  }
  int32_t line = -1;
  int64_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        LocateImplementationLine(texts.For(i++, cold), false, big, line, *member));
  }
  if (line != 10 * (kMethods - 1) + 3) state.SkipWithError("the method was not found");
  state.counters["line"] = line;
  state.counters["lines"] = 10 * kMethods + 1;
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
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

// The last `procedure|function|constructor|destructor Name[.Name]` after the implementation
// keyword: the class name (empty for a routine) and the member's name.
bool LastImplementation(const std::string& text, std::string& cls, std::string& name) {
  TPascalTokenizer t;
  t.SetText(text.c_str(), static_cast<int32_t>(text.size()));
  bool inImplementation = false;
  bool found = false;
  for (int kind = t.Kind(); kind != ptEndOfText; kind = t.NextSignificant()) {
    if (kind == ptImplementation) inImplementation = true;
    if (!inImplementation) continue;
    if (kind != ptProcedure && kind != ptFunction && kind != ptConstructor &&
        kind != ptDestructor) {
      continue;
    }
    if (t.NextSignificant() != ptIdentifier) continue;
    std::string first = t.Text();
    if (t.NextSignificant() == ptDot && t.NextSignificant() == ptIdentifier) {
      cls = first;
      name = t.Text();
    } else {
      cls.clear();
      name = first;
    }
    found = true;
  }
  return found;
}

void PascalLookup(benchmark::State& state, const std::string& path, bool cold) {
  const TTexts texts(LoadSourceText(path));
  const std::string& text = texts.text;
  std::string clsName, name;
  if (!LastImplementation(text, clsName, name)) {
    state.SkipWithError("no implementation in the unit");
    return;
  }
  TClasslist classes;
  TClassDescription* cls = nullptr;
  const TMethodDescription* member = nullptr;
  if (!clsName.empty()) {
    cls = classes.FindOrAdd(clsName, TLanguage::Pascal);
    member = cls->Methods.FindOrAdd(name, TParameterList(TLanguage::Pascal), "",
                                    TVisibility::Public, TMethodKind::Procedure);
  } else {
    member =
        classes.Routines.FindOrAdd(name, path, TLanguage::Pascal, TParameterList(TLanguage::Pascal),
                                   "", TVisibility::Public, TMethodKind::Procedure);
  }
  int32_t line = -1;
  int64_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        LocateImplementationLine(texts.For(i++, cold), false, cls, line, *member));
  }
  if (line < 0) state.SkipWithError("the implementation was not found");
  state.SetLabel(fs::path(path).filename().string() + " " + (clsName.empty() ? "" : clsName + ".") +
                 name);
  state.counters["line"] = line;
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const std::string unit = LargestLclUnit();
  if (unit.empty()) {
    std::printf("skipping GotoImpl/LargestLclUnit: no LCL found (install lazarus-src)\n");
  }
  for (const bool cold : {false, true}) {
    const std::string temperature = cold ? "/Cold" : "/Warm";
    benchmark::RegisterBenchmark(("GotoImpl/Cpp50kLines" + temperature).c_str(), CppMethodLookup,
                                 false, cold)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("GotoImpl/Cpp50kLines/Overloaded" + temperature).c_str(),
                                 CppMethodLookup, true, cold)
        ->Unit(benchmark::kMillisecond);
    if (!unit.empty()) {
      benchmark::RegisterBenchmark(("GotoImpl/LargestLclUnit" + temperature).c_str(), PascalLookup,
                                   unit, cold)
          ->Unit(benchmark::kMillisecond);
    }
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
