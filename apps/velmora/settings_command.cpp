// `velmora settings [SECTION [KEY [VALUE]]]`: the user's global options in the store
// file ($XDG_CONFIG_HOME/velmora/registry.ini). With no argument every value is listed,
// section by section in the order the add-in reads them; a section lists that section; a
// key prints its whole value; a value sets the key after checking its form and saves.
// Code templates are listed by their first line, followed by " ..." when they have more.
#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "settings/registry_ini_store.h"
#include "settings/settings_text.h"

namespace velmora::app {

void AddSettingsCommand(CLI::App& app) {
  auto args = std::make_shared<std::vector<std::string>>();
  auto* cmd = app.add_subcommand(
      "settings", "List, show or set the global options (SECTION KEY VALUE sets one)");
  cmd->add_option("args", *args, "SECTION, KEY and VALUE, each optional from the right")
      ->expected(0, 3);
  cmd->callback([args] {
    const int status =
        RunSettingsCommand(TRegistryIniStore::DefaultFileName(), *args, std::cout, std::cerr);
    if (status != 0) throw CLI::RuntimeError(status);
  });
}

}  // namespace velmora::app
