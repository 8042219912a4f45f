// The subcommands of the command-line host. Each lives in a file of its own and hooks
// itself into the application here; main() only dispatches.
#pragma once

namespace CLI {
class App;
}

namespace velmora::app {

/// `velmora tokens FILE...`
void AddTokensCommand(CLI::App& app);
/// `velmora dump [--json | --stats] [--follow-includes] [--include-path DIR]... FILE...`
void AddDumpCommand(CLI::App& app);
/// `velmora settings [SECTION [KEY [VALUE]]]`
void AddSettingsCommand(CLI::App& app);
/// `velmora register-types [--icons DIR]`
void AddRegisterTypesCommand(CLI::App& app);
/// `velmora lsp [--project FILE]`
void AddLspCommand(CLI::App& app);

}  // namespace velmora::app
