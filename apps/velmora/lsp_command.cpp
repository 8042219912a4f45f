// `velmora lsp`: the language server on standard input and output.
#include <CLI/CLI.hpp>

#include <unistd.h>

#include <csignal>

#include "commands.h"
#include "hosts/lsp/code_server.h"
#include "hosts/lsp/server.h"
#include "hosts/lsp/transport.h"

namespace velmora::app {

void AddLspCommand(CLI::App& app) {
  auto options = std::make_shared<lsp::TServerOptions>();
  CLI::App* cmd =
      app.add_subcommand("lsp", "Run the language server (LSP 3.17) on standard input and output");
  cmd->add_option("--project", options->Project,
                  "Project file to open (default: the one project file in the workspace root, "
                  "or the root as a folder)");
  cmd->callback([options] {
    // A client that goes away must end the server through its input, not kill it through
    // a write to a closed pipe.
    std::signal(SIGPIPE, SIG_IGN);
    lsp::TFrameWriter writer(lsp::WriteToFd(STDOUT_FILENO));
    auto reader = std::make_shared<lsp::TFrameReader>(lsp::ReadFromFd(STDIN_FILENO));
    lsp::TLspServer server(*options, writer);
    lsp::TCodeServer codeServer(server, *options);
    if (const int code = server.Run(reader); code != 0) throw CLI::RuntimeError(code);
  });
}

}  // namespace velmora::app
