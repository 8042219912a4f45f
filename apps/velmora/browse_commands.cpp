// `velmora [tree] [PROJECT]` (the main job), `hierarchy`, `find` and `files`: open the
// project, print one view of its model, save the class information for the next start.
#include <sys/stat.h>
#include <CLI/CLI.hpp>

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <memory>

#include "browse_common.h"
#include "class_view_output.h"
#include "command_line.h"
#include "commands.h"
#include "model/class_list.h"
#include "model/filters.h"
#include "progress_bar.h"
#include "settings/vl_settings.h"
#include "views/class_view.h"

namespace velmora::app {

void PrintMessage(const std::string& line) {
  std::cerr << "velmora: " << line << '\n';
}

std::string RelativeToCurrent(const std::string& path) {
  std::error_code ec;
  const std::filesystem::path cwd = std::filesystem::current_path(ec);
  if (ec) return path;
  const std::string relative = std::filesystem::path(path).lexically_relative(cwd).string();
  return relative.empty() ? path : relative;
}

std::unique_ptr<TBrowseSession> OpenBrowseSession(const std::string& projectArg) {
  std::string project = projectArg;
  if (project.empty()) {
    project = DefaultProjectPath();
    if (project.empty())
      throw TCommandError("no project named and the bundled example is not installed");
  }
  auto session = CreateBrowseSession();
  // The session keeps its callbacks for later parses (watch, code generation), so the bar
  // lives as long as they do rather than as long as this call.
  auto bar = std::make_shared<TProgressBar>(true);
  TSessionCallbacks callbacks;
  callbacks.Progress = [bar](int done, int total, const std::string& file) {
    bar->Update(done, total, file);
  };
  callbacks.Message = [bar](const std::string& line) {
    bar->Finish();
    PrintMessage(line);
  };
  try {
    session->Open(project, callbacks);
  } catch (const EProjectError& e) {
    throw TCommandError(e.Message());
  }
  bar->Finish();
  const TOpenStats& stats = session->Stats();
  if (stats.Warm)
    PrintMessage("loaded the saved class information " + RelativeToCurrent(stats.ClassInfoFile) +
                 "; parsed again what changed since: " + std::to_string(stats.UnitsParsed) +
                 " of " + std::to_string(session->Project().Units.size()) + " units");
  else
    PrintMessage("no saved class information yet: parsed " + std::to_string(stats.UnitsParsed) +
                 " units, " + std::to_string(stats.FilesTotal) + " files with their includes");
  return session;
}

bool SaveWhenChanged(TBrowseSession& session) {
  const TOpenStats& stats = session.Stats();
  if (stats.Warm && stats.UnitsParsed == 0 && stats.IncludesParsed == 0) return true;
  return session.Save();
}

namespace {

struct TTreeOptions {
  std::string Project;
  bool Json = false;
  bool Stats = false;
  std::string Filter;
  bool Fields = false, Methods = false, Properties = false;
  bool Public = false, Private = false, Protected = false;
};

/// The member filter the switches ask for: no category switch means every category, no
/// visibility switch every visibility; published and automated go with public.
void ApplyMemberFilter(const TTreeOptions& o, TClassMemberFilter& filter) {
  const bool anyCategory = o.Fields || o.Methods || o.Properties;
  const bool anyVisibility = o.Public || o.Private || o.Protected;
  const bool categories[] = {o.Fields, o.Methods, o.Properties};
  for (int c = 0; c < TClassMemberFilter::kCategories; ++c) {
    const bool category = !anyCategory || categories[c];
    filter.SetShown(c, TVisibility::Public, category && (!anyVisibility || o.Public));
    filter.SetShown(c, TVisibility::Private, category && (!anyVisibility || o.Private));
    filter.SetShown(c, TVisibility::Protected, category && (!anyVisibility || o.Protected));
  }
}

int CountMembers(const TCommonClassList& list) {
  int n = 0;
  for (int i = 0; i < list.Count(); ++i) {
    const TClassDescription& c = *list.Items(i);
    n += c.Fields.Count() + c.Methods.Count();
    if (const TCommonClassList* nested = c.NestedClassesIfAny()) n += CountMembers(*nested);
  }
  return n;
}

std::string StatsText(TBrowseSession& session) {
  const TOpenStats& s = session.Stats();
  char buffer[256];
  std::string out =
      "project: " + session.Project().Name + " (" + ProjectKindName(session.Project().Kind) + ")\n";
  out += std::string("open: ") + (s.Warm ? "warm" : "cold") + "\n";
  out += "files: " + std::to_string(s.FilesTotal) + "\n";
  out += "units parsed: " + std::to_string(s.UnitsParsed) + "\n";
  out += "includes parsed: " + std::to_string(s.IncludesParsed) + "\n";
  out += "classes: " + std::to_string(session.Classes().CountAll()) + "\n";
  out += "members: " + std::to_string(CountMembers(session.Classes())) + "\n";
  out += "routines: " + std::to_string(session.Classes().Routines.Count()) + "\n";
  if (s.Warm) {
    std::snprintf(buffer, sizeof buffer, "load time: %.3f ms\nclass information: %lld bytes\n",
                  s.LoadSeconds * 1000.0, static_cast<long long>(s.ClassInfoBytes));
    out += buffer;
  }
  std::snprintf(buffer, sizeof buffer, "parse time: %.3f ms\ntotal time: %.3f ms\n",
                s.ParseSeconds * 1000.0, s.TotalSeconds * 1000.0);
  return out + buffer;
}

void RunTree(const TTreeOptions& o) {
  auto session = OpenBrowseSession(o.Project);
  if (o.Stats) {
    std::fputs(StatsText(*session).c_str(), stdout);
    return;
  }
  TVLSettings settings;
  ApplyMemberFilter(o, settings.MemberFilter());
  TClassView view(settings);
  view.SetSources({.ProjectName = session->Project().Name,
                   .ProjectClasses = &session->Classes(),
                   .ExternalClasses = &session->ExternalClasses(),
                   .ProjectFiles = &session->Files(),
                   .ExternalFiles = &session->ExternalFiles()});
  TFilterDescription classFilter;
  if (!o.Filter.empty()) {
    classFilter.Add(TFilter::ftClassName, o.Filter, TFilter::mkContains);
    view.SetClassFilter(&classFilter);
  }
  view.ExpandAll();
  const TPathNamer paths(*session);
  const std::string text =
      o.Json ? RenderTreeJson(view, paths, *session) : RenderTreeText(view, paths);
  view.SetClassFilter(nullptr);
  std::fputs(text.c_str(), stdout);
}

bool IsExistingPath(const std::string& path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0;
}

}  // namespace

const char kTreeFormatHelp[] = R"(The class view, one node a line, two spaces a level:
  KilnLog - Classes
    class TFormMain : TForm  examples/KilnLog/MainForm.h:15
      field published TMainMenu * MainMenu  examples/KilnLog/MainForm.h:18
      property public bool Modified  examples/KilnLog/MainForm.h:63
      method protected void CreateParams(TCreateParams & Params) [virtual __fastcall]  examples/KilnLog/MainForm.h:53
    Global Routines
      routine int ConeToCelsius(int Cone) [__fastcall]  examples/KilnLog/FiringTypes.h:134
  External Classes
Each class shows its nested classes, fields and properties, then methods; domains and
free routines follow the classes. Paths are relative to the current folder; directives
are named in brackets; what a node lacks is left out.)";

void AddTreeCommand(CLI::App& app) {
  auto o = std::make_shared<TTreeOptions>();
  auto* cmd = app.add_subcommand(
      "tree", "Open a project (default: the bundled example), parse it and print its class view");
  cmd->footer(kTreeFormatHelp);
  cmd->add_option("PROJECT", o->Project,
                  "Project file or folder (.bpr .mak .cbproj .dpr .dproj .lpi .lpk)");
  auto* json =
      cmd->add_flag("--json", o->Json, "Print the class view as JSON (with a format version)");
  cmd->add_flag("--stats", o->Stats, "Print only counts, cold or warm open, files parsed and times")
      ->excludes(json);
  cmd->add_option("--filter", o->Filter, "Show only classes whose name contains NAME")
      ->type_name("NAME");
  cmd->add_flag("--fields", o->Fields, "Members: show fields");
  cmd->add_flag("--methods", o->Methods, "Members: show methods");
  cmd->add_flag("--properties", o->Properties, "Members: show properties");
  cmd->add_flag("--public", o->Public, "Members: show public (and published) ones");
  cmd->add_flag("--private", o->Private, "Members: show private ones");
  cmd->add_flag("--protected", o->Protected, "Members: show protected ones");
  cmd->callback([o] { RunTree(*o); });
}

void AddHierarchyCommand(CLI::App& app) {
  auto args = std::make_shared<std::vector<std::string>>();
  auto* cmd = app.add_subcommand(
      "hierarchy",
      "Print the classes under their ancestors; with CLASS its ancestors and descendants");
  cmd->add_option("CLASS_AND_PROJECT", *args, "[CLASS] [PROJECT], in either order")->expected(0, 2);
  cmd->callback([args] {
    std::string project, className;
    for (const std::string& arg : *args) {
      if (project.empty() && (IsExistingPath(arg) || arg.find('/') != std::string::npos))
        project = arg;
      else if (className.empty())
        className = arg;
      else
        throw TCommandError("give one CLASS and one PROJECT", kExitUsage);
    }
    auto session = OpenBrowseSession(project);
    std::string out;
    if (!RenderHierarchy(*session, TPathNamer(*session), className, out))
      throw TCommandError("no class named '" + className + "' in " + session->Project().Name);
    std::fputs(out.c_str(), stdout);
  });
}

void AddFindCommand(CLI::App& app) {
  struct TFindArgs {
    std::string Text, Project;
    TFindOptions Options;
  };
  auto a = std::make_shared<TFindArgs>();
  auto* cmd = app.add_subcommand(
      "find",
      "Print the classes, fields, properties, methods and routines whose name contains TEXT");
  cmd->add_option("TEXT", a->Text, "What to look for")->required();
  cmd->add_option("PROJECT", a->Project, "Project file or folder");
  cmd->add_flag("--match-case", a->Options.MatchCase, "Letter case must match");
  cmd->add_flag("--whole-word", a->Options.WholeWord, "The whole name must match");
  cmd->callback([a] {
    auto session = OpenBrowseSession(a->Project);
    std::string out;
    const int found = RenderFind(*session, TPathNamer(*session), a->Text, a->Options, out);
    std::fputs(out.c_str(), stdout);
    if (found == 0) PrintMessage("nothing matches '" + a->Text + "'");
  });
}

void AddFilesCommand(CLI::App& app) {
  auto project = std::make_shared<std::string>();
  auto* cmd = app.add_subcommand("files", "Print the files of the project's model, one a line");
  cmd->add_option("PROJECT", *project, "Project file or folder");
  cmd->callback([project] {
    auto session = OpenBrowseSession(*project);
    const TPathNamer paths(*session);
    std::string out;
    for (const std::string& file : session->WatchedFiles()) {
      out += RelativeToCurrent(file) + "\n";
    }
    std::fputs(out.c_str(), stdout);
  });
}

}  // namespace velmora::app
