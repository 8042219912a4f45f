#include "dump_inputs.h"

#include <fnmatch.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <thread>

#include "model/class_list.h"
#include "model/files.h"
#include "parsing/source_parser.h"
#include "support/ansi.h"
#include "support/exception.h"
#include "support/paths.h"
#include "support/stream.h"
#include "support/text_buffer.h"

namespace velmora::app {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

bool IsSourceExtension(const std::string& fileName) {
  static const std::set<std::string> kExtensions = {".C",   ".CC",  ".CPP", ".CXX", ".H",
                                                    ".HH",  ".HPP", ".HXX", ".PAS", ".PP",
                                                    ".DPR", ".LPR", ".DPK"};
  return kExtensions.count(AnsiUpperCase(fs::path(fileName).extension().string())) > 0;
}

bool IsExcluded(const std::string& path, const std::vector<std::string>& excludes) {
  const std::string name = fs::path(path).filename().string();
  for (const std::string& pattern : excludes) {
    if (::fnmatch(pattern.c_str(), name.c_str(), 0) == 0) return true;
    if (::fnmatch(pattern.c_str(), path.c_str(), 0) == 0) return true;
  }
  return false;
}

TDumpInputs ExpandDumpInputs(const std::vector<std::string>& args,
                             const std::vector<std::string>& excludes) {
  TDumpInputs inputs;
  for (const std::string& arg : args) {
    std::error_code ec;
    if (!fs::is_directory(arg, ec)) {
      inputs.Files.push_back(arg);
      continue;
    }
    // Entries in name order, so the model and its output do not depend on the folder's
    // own order; a folder that cannot be read is a warning, its siblings still walked.
    std::vector<std::string> found;
    auto options = fs::directory_options::skip_permission_denied;
    fs::recursive_directory_iterator it(arg, options, ec), end;
    if (ec) {
      inputs.Warnings.push_back(arg + ": cannot read the folder: " + ec.message());
      continue;
    }
    for (; it != end; it.increment(ec)) {
      if (ec) {
        inputs.Warnings.push_back(it->path().string() + ": " + ec.message());
        break;
      }
      const std::string path = it->path().string();
      if (IsExcluded(path, excludes)) {
        if (it->is_directory(ec)) it.disable_recursion_pending();
        continue;
      }
      if (it->is_regular_file(ec) && IsSourceExtension(path)) found.push_back(path);
    }
    std::sort(found.begin(), found.end());
    if (found.empty()) inputs.Warnings.push_back(arg + ": no C++ or Pascal sources in the folder");
    inputs.Files.insert(inputs.Files.end(), found.begin(), found.end());
  }
  return inputs;
}

std::string InputWarning(const std::string& path) {
  struct stat st;
  if (::stat(path.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) return {};
  if (st.st_size == 0) return path + ": empty file";
  std::ifstream in(path, std::ios::binary);
  char head[4096];
  in.read(head, sizeof head);
  if (std::find(head, head + in.gcount(), '\0') != head + in.gcount())
    return path + ": looks binary (NUL bytes); parsed anyway";
  return {};
}

std::vector<std::string> UnresolvedIncludes(const TFilesList& files, const TClasslist& classes,
                                            const std::vector<std::string>& includePath) {
  std::vector<std::string> lines;
  for (int i = 0; i < files.Count(); ++i) {
    const TFileDescription& file = *files.Items(i);
    const TIncludeUnit* unit = classes.Includes.Find(file.Name);
    if (!unit) continue;
    for (int n = 0; n < unit->IncludedNames.Count(); ++n) {
      const std::string& name = unit->IncludedNames.Strings(n);
      if (ResolveIncludeFile(name, file.Directory, includePath).empty())
        lines.push_back(file.FullName() + ": include \"" + name + "\" not found");
    }
  }
  return lines;
}

namespace {

/// The top-level class names of one file parsed on its own; none when it cannot be read.
std::vector<std::string> ClassNamesOf(const std::string& path) {
  std::vector<std::string> names;
  try {
    TMemoryStream stream(LoadSourceText(path));
    const std::string unitName(ExtractFileName(path));
    TClasslist list;
    ParseSourceText(LanguageOfFile(unitName), unitName, stream, list, TParseOptions{}, nullptr);
    for (int i = 0; i < list.Count(); ++i) names.push_back(list.Items(i)->Name);
  } catch (const Exception&) {
    // The parse proper reports files that cannot be read.
  }
  return names;
}

}  // namespace

std::vector<std::string> DuplicateClassWarnings(const std::vector<std::string>& files) {
  // Each file alone, on every core: the merged model cannot tell which unit lost a name.
  std::vector<std::vector<std::string>> namesOf(files.size());
  const size_t threads =
      std::max<size_t>(1, std::min<size_t>(std::thread::hardware_concurrency(), files.size()));
  std::vector<std::thread> workers;
  for (size_t t = 0; t < threads; ++t)
    workers.emplace_back([&, t] {
      for (size_t i = t; i < files.size(); i += threads) namesOf[i] = ClassNamesOf(files[i]);
    });
  for (std::thread& worker : workers) worker.join();

  std::map<std::string, std::vector<std::string>> declaredBy;
  std::vector<std::string> order;
  for (size_t i = 0; i < files.size(); ++i) {
    for (const std::string& name : namesOf[i]) {
      std::vector<std::string>& where = declaredBy[name];
      if (where.empty()) order.push_back(name);
      if (std::find(where.begin(), where.end(), files[i]) == where.end()) where.push_back(files[i]);
    }
  }
  std::vector<std::string> lines;
  for (const std::string& name : order) {
    const std::vector<std::string>& where = declaredBy[name];
    if (where.size() < 2) continue;
    std::string line = "class " + name + " is declared by " + where[0];
    for (size_t i = 1; i < where.size(); ++i)
      line += (i + 1 == where.size() ? " and " : ", ") + where[i];
    lines.push_back(line + "; the model keeps the one in " + where[0]);
  }
  return lines;
}

namespace {

std::string PathOf(const TFilesList& files, const Json& unit) {
  if (!unit.is_string()) return {};
  const TFileDescription* file = files.Find(unit.get<std::string>());
  if (!file) return {};
  // Absolute, so a tool reading the output need not know where the command ran.
  std::error_code ec;
  const fs::path full = fs::absolute(file->FullName(), ec);
  return ec ? file->FullName() : full.lexically_normal().string();
}

Json ParsedWithPaths(const std::string& modelJson, const TFilesList& files) {
  Json j = Json::parse(modelJson);
  for (Json& cls : j["classes"]) cls["path"] = PathOf(files, cls["unit"]);
  for (Json& routine : j["routines"]) routine["path"] = PathOf(files, routine["file"]);
  return j;
}

std::string Dump(const Json& j, int indent) {
  return j.dump(indent, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

std::string WithPaths(const std::string& modelJson, const TFilesList& files) {
  return Dump(ParsedWithPaths(modelJson, files), 2) + "\n";
}

std::string JsonLines(const std::string& modelJson, const TFilesList& files) {
  const Json j = ParsedWithPaths(modelJson, files);
  std::string out;
  for (const char* kind : {"class", "routine"}) {
    for (const Json& item : j[std::string(kind) + (kind[0] == 'c' ? "es" : "s")]) {
      // "kind" is taken (a class's kind, a routine's method kind): the line says what it
      // is under a key of its own, first, so a reader can dispatch before reading on.
      Json line = Json::object();
      line["entry"] = kind;
      line.update(item);
      out += Dump(line, -1) + "\n";
    }
  }
  return out;
}

}  // namespace velmora::app
