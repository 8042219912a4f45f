// `velmora dump`: parse files and folders (or load a saved model) and print the model as a
// readable tree, as counts, as JSON or as JSON lines; optionally save it as a class
// information file. What would pass silently but surprise a user (an empty or binary
// input, an include that resolves nowhere, an include path nothing reads, a class name two
// units declare) is said on standard error.
#include <sys/stat.h>
#include <CLI/CLI.hpp>

#include <chrono>
#include <cstdio>
#include <iostream>

#include "command_line.h"
#include "commands.h"
#include "dump_inputs.h"
#include "model/class_info_file.h"
#include "model/class_list.h"
#include "model/files.h"
#include "model/model_json.h"
#include "model/model_text.h"
#include "parsing/project_parse.h"

namespace velmora::app {
namespace {

struct DumpOptions {
  bool json = false;
  bool jsonLines = false;
  bool stats = false;
  bool followIncludes = false;
  std::vector<std::string> includePath;
  std::vector<std::string> excludes;
  std::vector<std::string> files;
  std::string save;
  std::string load;
  int jobs = 0;  ///< parsing threads; 0 for one per core
};

int CountMembers(const TCommonClassList& list) {
  int n = 0;
  for (int i = 0; i < list.Count(); ++i) {
    const TClassDescription& c = *list.Items(i);
    n += c.Fields.Count() + c.Methods.Count();
    if (const TCommonClassList* nested = c.NestedClassesIfAny()) n += CountMembers(*nested);
  }
  return n;
}

void Say(const std::string& line) {
  std::cerr << "velmora: " << line << '\n';
}
void Warn(const std::string& line) {
  Say("warning: " + line);
}

/// The model files' messages keep their CR LF; a terminal line has none.
std::string OneLine(const std::string& text) {
  std::string out;
  for (char c : text) {
    if (c == '\r') continue;
    out += c == '\n' ? ' ' : c;
  }
  return out;
}

int RunDump(const DumpOptions& o) {
  TFilesList files;
  TClasslist classes;
  TProjectParseResult parsed;
  int status = 0;
  double loadSeconds = 0;
  long long loadBytes = 0;

  if (!o.load.empty()) {
    const auto start = std::chrono::steady_clock::now();
    const TModelFileOutcome loaded = LoadClassInfoFileReported(o.load, files, classes);
    loadSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (!loaded.Ok) {
      Say(OneLine(loaded.Message));
      return kExitFailed;
    }
    struct stat st;
    if (::stat(o.load.c_str(), &st) == 0) loadBytes = static_cast<long long>(st.st_size);
  } else {
    if (!o.includePath.empty() && !o.followIncludes)
      Warn("--include-path is not used without --follow-includes");
    const TDumpInputs inputs = ExpandDumpInputs(o.files, o.excludes);
    for (const std::string& warning : inputs.Warnings) Warn(warning);
    for (const std::string& file : inputs.Files)
      if (const std::string warning = InputWarning(file); !warning.empty()) Warn(warning);
    TProjectParseRequest request{inputs.Files, o.followIncludes, o.includePath, o.jobs};
    parsed = ParseProject(request, files, classes);
    for (const std::string& error : parsed.Errors) Say(error);
    if (!parsed.Errors.empty()) status = kExitFailed;
    if (o.followIncludes)
      for (const std::string& line : UnresolvedIncludes(files, classes, o.includePath)) Warn(line);
    std::vector<std::string> parsedFiles;
    for (int i = 0; i < files.Count(); ++i) parsedFiles.push_back(files.Items(i)->FullName());
    for (const std::string& line : DuplicateClassWarnings(parsedFiles)) Warn(line);
  }

  if (o.stats) {
    std::printf("files: %d\n", o.load.empty() ? parsed.Files : files.Count());
    if (o.load.empty()) std::printf("bytes: %lld\n", static_cast<long long>(parsed.Bytes));
    std::printf("classes: %d\nmembers: %d\nroutines: %d\n", classes.CountAll(),
                CountMembers(classes), classes.Routines.Count());
    if (o.load.empty())
      std::printf("parse time: %.3f ms\n", parsed.Seconds * 1000.0);
    else
      std::printf("class information: %lld bytes\nload time: %.3f ms\n", loadBytes,
                  loadSeconds * 1000.0);
  } else if (o.json) {
    std::fputs(WithPaths(ModelToJson(classes), files).c_str(), stdout);
  } else if (o.jsonLines) {
    std::fputs(JsonLines(ModelToJson(classes), files).c_str(), stdout);
  } else {
    std::fputs(DescribeModel(classes).c_str(), stdout);
  }

  if (!o.save.empty()) {
    // A model with files missing would be taken for the whole one by the next --load.
    if (status != 0) {
      Say("nothing saved to " + o.save + ": the run failed");
      return status;
    }
    const TModelFileOutcome saved = SaveClassInfoFileReported(o.save, files, classes);
    if (!saved.Ok) {
      Say(OneLine(saved.Message));
      return kExitFailed;
    }
  }
  return status;
}

}  // namespace

void AddDumpCommand(CLI::App& app) {
  auto options = std::make_shared<DumpOptions>();
  auto* cmd = app.add_subcommand("dump", "Parse source files and folders and print the code model");
  auto* json = cmd->add_flag("--json", options->json, "Print the model as JSON");
  auto* jsonLines = cmd->add_flag("--json-lines", options->jsonLines,
                                  "Print one JSON object a line: each class, then each routine")
                        ->excludes(json);
  cmd->add_flag("--stats", options->stats, "Print only counts and the parse (or load) time")
      ->excludes(json)
      ->excludes(jsonLines);
  cmd->add_flag("--follow-includes", options->followIncludes,
                "Also parse the files that #include \"...\" and {$I ...} name");
  cmd->add_option("--include-path", options->includePath,
                  "Folder searched for included files, after the including file's own")
      ->allow_extra_args(false);
  cmd->add_option("--exclude", options->excludes,
                  "In folders, leave out files and folders whose name or path matches GLOB")
      ->allow_extra_args(false);
  cmd->add_option("-j,--jobs", options->jobs,
                  "Threads that parse (default: one per core); the output is the same for any")
      ->check(CLI::NonNegativeNumber);
  cmd->add_option("--save", options->save,
                  "Also write the model as a class information file (not when the run failed)");
  auto* load = cmd->add_option("--load", options->load,
                               "Print a saved class information file instead of parsing");
  cmd->add_option("files", options->files,
                  "Source files (C++ by extension, else Object Pascal) and folders (walked for "
                  ".c .cc .cpp .cxx .h .hh .hpp .hxx .pas .pp .dpr .lpr .dpk)")
      ->excludes(load);
  cmd->callback([options] {
    if (options->files.empty() && options->load.empty())
      throw CLI::ValidationError("dump", "give source files or folders, or --load FILE");
    const int status = RunDump(*options);
    if (status != 0) throw CLI::RuntimeError(status);
  });
}

}  // namespace velmora::app
