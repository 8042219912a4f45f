#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>

#include "command_line.h"
#include "commands.h"

namespace {

const char kOverview[] =
    R"(With no command, velmora runs `tree`: it opens the project (the bundled example
when none is named), parses it, saves its class information beside it (the next start
loads that and parses only changed files) and prints the class view. See `velmora tree
--help` for the format. Exit codes: 0 done, 1 failed, 2 usage error.)";

}  // namespace

int main(int argc, char** argv) {
  using namespace velmora::app;
  CLI::App app{"Velmora: class browser and code assistant for C++Builder and Delphi sources",
               "velmora"};
  app.set_version_flag("--version", "velmora " VELMORA_VERSION);
  app.footer(kOverview);
  app.require_subcommand(1);
  AddTreeCommand(app);
  AddHierarchyCommand(app);
  AddFindCommand(app);
  AddFilesCommand(app);
  AddWatchCommand(app);
  AddTokensCommand(app);
  AddDumpCommand(app);
  AddSettingsCommand(app);
  AddRegisterTypesCommand(app);
  AddLspCommand(app);
  AddGotoCommand(app);
  AddMemberCommands(app);
  AddMarkerCommand(app);

  std::vector<std::string> commands;
  for (const CLI::App* sub : app.get_subcommands({})) commands.push_back(sub->get_name());
  try {
    std::vector<std::string> args = WithMainJob({argv + 1, argv + argc}, commands);
    // CLI11 takes the arguments last first.
    std::reverse(args.begin(), args.end());
    app.parse(args);
  } catch (const CLI::Success& e) {
    return app.exit(e);  // --help, --version
  } catch (const CLI::RuntimeError& e) {
    return e.get_exit_code();  // the command printed its messages
  } catch (const CLI::ParseError& e) {
    std::cerr << "velmora: " << e.what() << " (see velmora --help)\n";
    return kExitUsage;
  } catch (const TCommandError& e) {
    if (*e.what()) std::cerr << "velmora: " << e.what() << '\n';
    return e.Code();
  } catch (const std::exception& e) {
    std::cerr << "velmora: " << e.what() << '\n';
    return kExitFailed;
  }
  return kExitDone;
}
