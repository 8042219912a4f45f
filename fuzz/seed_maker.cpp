// Writes the starting corpora of the fuzz targets into OUTDIR, one folder per kind of
// input: `seed_maker SOURCEDIR OUTDIR`.
//  cpp, pascal   the example project's sources and the parser golden inputs, as they are;
//  class_info    the examples parsed and saved, whole and one file at a time, the empty
//                model, and the model's golden files;
//  domain        domain files over the class names the domain target provides, and over
//                the examples' classes;
//  parameters    every parameter text of the parsed examples, a language byte first;
//  ini           the settings golden files (settings and project settings texts).
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "model/class_list.h"
#include "model/domains.h"
#include "model/files.h"
#include "model/members.h"
#include "parsing/source_parser.h"
#include "support/exception.h"
#include "support/stream.h"
#include "support/stringlist.h"
#include "support/text_buffer.h"

namespace fs = std::filesystem;
using namespace velmora;

namespace {

struct TModel {
  TFilesList files;
  TClasslist classes;
};

std::vector<fs::path> FilesUnder(const fs::path& dir) {
  std::vector<fs::path> found;
  std::error_code ec;
  for (fs::recursive_directory_iterator it(dir, ec), end; !ec && it != end; it.increment(ec))
    if (it->is_regular_file()) found.push_back(it->path());
  std::sort(found.begin(), found.end());
  return found;
}

bool IsSource(const fs::path& path) {
  const std::string ext = path.extension().string();
  for (const char* known : {".h", ".hpp", ".cpp", ".c", ".pas", ".inc", ".dpr"})
    if (ext == known) return true;
  return false;
}

void Write(const fs::path& path, const std::string& bytes) {
  fs::create_directories(path.parent_path());
  TMemoryStream(bytes).SaveToFile(path.string());
}

// One source file into `model` the way the dump command reads it: the file recorded,
// its text parsed, its include names kept.
void ParseInto(TModel& model, const fs::path& path) {
  const std::string unit = path.filename().string();
  const TLanguage language = LanguageOfFile(unit);
  auto file = std::make_unique<TFileDescription>(language);
  file->Name = unit;
  file->Directory = path.parent_path().string() + "/";
  file->FileDate = 0x5F000000;
  model.files.Add(std::move(file));
  TStringList includes(false, TDuplicates::Ignore, false);
  const TMemoryStream text(LoadSourceText(path.string()));
  ParseSourceText(language, unit, text, model.classes, TParseOptions{.WantPositions = true},
                  &includes);
  if (includes.Count() == 0) return;
  TIncludeUnit* entry = model.classes.Includes.FindOrAdd(unit);
  for (int i = 0; i < includes.Count(); ++i) entry->IncludedNames.Add(includes.Strings(i));
}

std::string DomainFile(const TDomainList& domains, const fs::path& scratch) {
  domains.SaveToFile(scratch.string());
  std::string bytes = ReadWholeFile(scratch.string());
  fs::remove(scratch);
  return bytes;
}

void CollectParameters(const TCommonClassList& list, std::set<std::string>& texts) {
  for (int i = 0; i < list.Count(); ++i) {
    const TClassDescription& cls = *list.Items(i);
    for (int m = 0; m < cls.Methods.Count(); ++m) {
      const TParameterList& params = cls.Methods.Items(m)->Parameters;
      if (params.Empty()) continue;
      const char language = params.Language == TLanguage::Cpp ? 1 : 0;
      texts.insert(language + params.GetText());
    }
    if (const TCommonClassList* nested = cls.NestedClassesIfAny())
      CollectParameters(*nested, texts);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: seed_maker SOURCEDIR OUTDIR\n");
    return 2;
  }
  const fs::path source = argv[1];
  const fs::path out = argv[2];
  try {
    std::vector<fs::path> sources;
    for (const fs::path& p : FilesUnder(source / "examples"))
      if (IsSource(p)) sources.push_back(p);
    for (const fs::path& p : FilesUnder(source / "tests/parsing/golden"))
      if (p.stem() == "input" && IsSource(p)) sources.push_back(p);

    TModel all;
    int n = 0;
    for (const fs::path& p : sources) {
      const std::string name = std::to_string(n++) + "-" + p.filename().string();
      const bool cpp = LanguageOfFile(p.filename().string()) == TLanguage::Cpp;
      Write(out / (cpp ? "cpp" : "pascal") / name, ReadWholeFile(p.string()));
      if (p.string().find("/golden/") != std::string::npos) continue;
      TModel one;
      ParseInto(one, p);
      Write(out / "class_info" / (name + ".cinfo"), fuzz::SavedModel(one.files, one.classes));
      ParseInto(all, p);
    }

    TDomain* examples = all.classes.Domains.CreateDomain("Examples");
    for (int i = 0; i < all.classes.Count(); i += 2) examples->AddClass(all.classes.Items(i));
    all.classes.Domains.CreateDomain("Empty");
    Write(out / "class_info/examples.cinfo", fuzz::SavedModel(all.files, all.classes));
    Write(out / "class_info/empty.cinfo", fuzz::SavedModel(TFilesList(), TClasslist()));
    for (const fs::path& p : FilesUnder(source / "tests/model/golden"))
      if (p.extension() == ".cinfo")
        Write(out / "class_info" / p.filename(), ReadWholeFile(p.string()));

    Write(out / "domain/examples.domain", DomainFile(all.classes.Domains, out / "scratch"));
    Write(out / "domain/empty.domain", DomainFile(TDomainList(), out / "scratch"));
    TDomainList named;
    named.CreateDomain("Forms");
    named.CreateDomain("Data");
    named.CreateDomain("Empty");
    named.FindByName("Forms")->ClassNames.Add("TClass0");
    named.FindByName("Forms")->ClassNames.Add("TClass1");
    named.FindByName("Forms")->ClassNames.Add("TMissing");
    named.FindByName("Data")->ClassNames.Add("TClass2");
    named.FindByName("Data")->ClassNames.Add("tclass0");
    Write(out / "domain/named.domain", DomainFile(named, out / "scratch"));

    using namespace std::string_literals;
    std::set<std::string> parameters = {
        "\1int a = 5, char *b[]"s, "\1void (*cb)(int), ..."s, "\1std::map<int, int> m, const T& t"s,
        "\0var A, B: Integer; const S: string = 'x'"s, "\0out X; constref Y: array of Byte"s};
    CollectParameters(all.classes, parameters);
    n = 0;
    for (const std::string& text : parameters)
      Write(out / "parameters" / std::to_string(n++), text);

    for (const fs::path& p : FilesUnder(source / "tests/settings/golden"))
      Write(out / "ini" / p.filename(), ReadWholeFile(p.string()));

    // A client's opening messages, framed as it frames them.
    const char* const lsp[] = {
        R"({"jsonrpc":"2.0","id":1,"method":"echo","params":{"capabilities":{}}})",
        R"({"jsonrpc":"2.0","method":"$/cancelRequest","params":{"id":2}})",
        R"({"jsonrpc":"2.0","id":2,"method":"uri","params":{"textDocument":{"uri":"file:///a.pas"}}})",
        R"({"jsonrpc":"2.0","id":"x","result":null})",
    };
    std::string session;
    n = 0;
    for (const char* body : lsp) {
      const std::string framed =
          "Content-Length: " + std::to_string(std::strlen(body)) + "\r\n\r\n" + body;
      Write(out / "lsp" / std::to_string(n++), framed);
      session += framed;
    }
    Write(out / "lsp" / "session", session);
  } catch (const Exception& e) {
    std::fprintf(stderr, "seed_maker: %s\n", e.Message().c_str());
    return 1;
  }
  return 0;
}
