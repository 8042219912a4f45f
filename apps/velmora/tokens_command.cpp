#include <CLI/CLI.hpp>

#include "commands.h"

namespace velmora::app {

void AddTokensCommand(CLI::App& app) {
  auto* cmd = app.add_subcommand("tokens", "Print the tokens of source files");
  (void)cmd;
}

}  // namespace velmora::app
