// The subcommands of the command-line host. Each lives in a file of its own and hooks
// itself into the application here; main() only dispatches.
#pragma once

namespace CLI {
class App;
}

namespace velmora::app {

/// `velmora [tree] [PROJECT] [--json | --stats] [--filter NAME] [member switches]`: the main job
void AddTreeCommand(CLI::App& app);
/// `velmora hierarchy [CLASS] [PROJECT]`
void AddHierarchyCommand(CLI::App& app);
/// `velmora find TEXT [PROJECT] [--match-case] [--whole-word]`
void AddFindCommand(CLI::App& app);
/// `velmora files [PROJECT]`
void AddFilesCommand(CLI::App& app);
/// `velmora watch [PROJECT]`
void AddWatchCommand(CLI::App& app);
/// `velmora tokens FILE...`
void AddTokensCommand(CLI::App& app);
/// `velmora dump [--json | --stats] [--follow-includes] [--include-path DIR]... FILE...`
void AddDumpCommand(CLI::App& app);
/// `velmora settings [SECTION [KEY [VALUE]]]`
void AddSettingsCommand(CLI::App& app);
/// `velmora register-types [--icons DIR]`
void AddRegisterTypesCommand(CLI::App& app);
/// `velmora goto [PROJECT] CLASS[::MEMBER] [--impl|--decl] [--params TEXT] [--json]`
void AddGotoCommand(CLI::App& app);
/// `velmora add-field|add-method|add-property [PROJECT] --class C ...`
void AddMemberCommands(CLI::App& app);
/// `velmora marker insert KIND FILE:LINE [ARG] [--dry-run]`
void AddMarkerCommand(CLI::App& app);
/// `velmora lsp [--project FILE]`
void AddLspCommand(CLI::App& app);

}  // namespace velmora::app
