// `velmora register-types [--icons DIR]`: makes Velmora's three file types known to the
// desktop for the current user (mime package, icons, MIME database). Running it again
// changes nothing unless a file differs.
#include <CLI/CLI.hpp>

#include <unistd.h>

#include <climits>
#include <iostream>
#include <memory>
#include <string>

#include "commands.h"
#include "support/file_types.h"
#include "support/paths.h"

namespace velmora::app {
namespace {

std::string ExecutableDir() {
  char buffer[PATH_MAX];
  const ssize_t n = ::readlink("/proc/self/exe", buffer, sizeof buffer - 1);
  if (n <= 0) return {};
  return std::string(ExtractFilePath(std::string_view(buffer, static_cast<size_t>(n))));
}

// The icons an installation put under its prefix, or else those of the source tree this
// program was built from, so that a build that was never installed registers them too.
std::string DefaultIconSource() {
  const std::string probe = std::string(IconNameOf(kFileTypes[0].IconIndex)) + ".svg";
  if (const std::string exe = ExecutableDir(); !exe.empty()) {
    const std::string installed = JoinPath(exe, "../share/icons/hicolor/scalable/mimetypes");
    if (FileExists(JoinPath(installed, probe))) return installed;
  }
  return VELMORA_DATA_DIR "/icons";
}

int RunRegisterTypes(const std::string& icons) {
  const TFileTypeRegistration where =
      DefaultFileTypeRegistration(icons.empty() ? DefaultIconSource() : icons);
  const TRegistrationOutcome outcome = RegisterFileTypes(where);
  for (const std::string& file : outcome.Written) std::cout << "wrote " << file << '\n';
  if (outcome.DatabaseUpdated)
    std::cout << "updated the MIME database in " << where.DataHome << "/mime\n";
  if (outcome.MissingIcons > 0)
    std::cerr << "velmora: icons not found in " << where.IconSource
              << "; types registered without them\n";
  if (where.UpdateTool.empty())
    std::cerr << "velmora: update-mime-database not found; the types take effect once it has run\n";
  if (!outcome.Ok) {
    std::cerr << "velmora: " << outcome.Message << '\n';
    return 1;
  }
  if (outcome.Written.empty() && !outcome.DatabaseUpdated)
    std::cout << "file types already registered in " << where.DataHome << '\n';
  return 0;
}

}  // namespace

void AddRegisterTypesCommand(CLI::App& app) {
  auto icons = std::make_shared<std::string>();
  auto* cmd = app.add_subcommand(
      "register-types",
      "Register the .cinfo, .domain and .vlsettings file types for the current user");
  cmd->add_option("--icons", *icons, "Folder holding the file type icons (SVG)");
  cmd->callback([icons] {
    const int status = RunRegisterTypes(*icons);
    if (status != 0) throw CLI::RuntimeError(status);
  });
}

}  // namespace velmora::app
