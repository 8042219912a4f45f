// `velmora dump`: parse files (or load a saved model) and print the model as a readable
// tree, as counts, or as JSON; optionally save it as a class information file.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <iostream>

#include "commands.h"
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
  bool stats = false;
  bool followIncludes = false;
  std::vector<std::string> includePath;
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

int RunDump(const DumpOptions& o) {
  TFilesList files;
  TClasslist classes;
  TProjectParseResult parsed;
  int status = 0;

  if (!o.load.empty()) {
    const TModelFileOutcome loaded = LoadClassInfoFileReported(o.load, files, classes);
    if (!loaded.Ok) {
      std::cerr << loaded.Message << '\n';
      return 1;
    }
  } else {
    TProjectParseRequest request{o.files, o.followIncludes, o.includePath, o.jobs};
    parsed = ParseProject(request, files, classes);
    for (const std::string& error : parsed.Errors) std::cerr << "velmora: " << error << '\n';
    if (!parsed.Errors.empty()) status = 1;
  }

  if (o.stats) {
    std::printf(
        "files: %d\nbytes: %lld\nclasses: %d\nmembers: %d\nroutines: %d\nparse time: %.3f ms\n",
        o.load.empty() ? parsed.Files : files.Count(), static_cast<long long>(parsed.Bytes),
        classes.CountAll(), CountMembers(classes), classes.Routines.Count(),
        parsed.Seconds * 1000.0);
  } else if (o.json) {
    std::fputs(ModelToJson(classes).c_str(), stdout);
  } else {
    std::fputs(DescribeModel(classes).c_str(), stdout);
  }

  if (!o.save.empty()) {
    const TModelFileOutcome saved = SaveClassInfoFileReported(o.save, files, classes);
    if (!saved.Ok) {
      std::cerr << saved.Message << '\n';
      return 1;
    }
  }
  return status;
}

}  // namespace

void AddDumpCommand(CLI::App& app) {
  auto options = std::make_shared<DumpOptions>();
  auto* cmd = app.add_subcommand("dump", "Parse source files and print the code model");
  auto* json = cmd->add_flag("--json", options->json, "Print the model as JSON");
  cmd->add_flag("--stats", options->stats, "Print only counts and the parse time")->excludes(json);
  cmd->add_flag("--follow-includes", options->followIncludes,
                "Also parse the files that #include \"...\" and {$I ...} name");
  cmd->add_option("--include-path", options->includePath,
                  "Folder searched for included files, after the including file's own")
      ->allow_extra_args(false);
  cmd->add_option("-j,--jobs", options->jobs,
                  "Threads that parse (default: one per core); the output is the same for any")
      ->check(CLI::NonNegativeNumber);
  cmd->add_option("--save", options->save, "Also write the model as a class information file");
  auto* load = cmd->add_option("--load", options->load,
                               "Print a saved class information file instead of parsing");
  cmd->add_option("files", options->files, "Source files (C++ by extension, else Object Pascal)")
      ->excludes(load);
  cmd->callback([options] {
    if (options->files.empty() && options->load.empty())
      throw CLI::ValidationError("dump", "give source files, or --load FILE");
    const int status = RunDump(*options);
    if (status != 0) throw CLI::RuntimeError(status);
  });
}

}  // namespace velmora::app
