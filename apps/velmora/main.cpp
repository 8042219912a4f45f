#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>

#include "commands.h"

int main(int argc, char** argv) {
  CLI::App app{"Velmora: class browser and code assistant for C++Builder and Delphi sources"};
  app.require_subcommand(1);
  velmora::app::AddTokensCommand(app);
  velmora::app::AddDumpCommand(app);
  velmora::app::AddSettingsCommand(app);
  velmora::app::AddRegisterTypesCommand(app);
  velmora::app::AddLspCommand(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    return app.exit(e);
  } catch (const std::exception& e) {
    std::cerr << "velmora: " << e.what() << '\n';
    return 1;
  }
  return 0;
}
