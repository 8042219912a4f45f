#include "support/file_types.h"

#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>

#include "support/exception.h"
#include "support/paths.h"
#include "support/stream.h"

extern char** environ;

namespace velmora {
namespace {

constexpr std::string_view kPackagePath = "mime/packages/velmora.xml";
constexpr std::string_view kIconFolder = "icons/hicolor/scalable/mimetypes";

std::string FindProgram(std::string_view name) {
  const char* path = std::getenv("PATH");
  std::string_view rest = path ? path : "/usr/local/bin:/usr/bin:/bin";
  while (true) {
    const size_t colon = rest.find(':');
    const std::string_view dir = rest.substr(0, colon);
    const std::string candidate = JoinPath(dir.empty() ? "." : dir, name);
    if (FileExists(candidate) && ::access(candidate.c_str(), X_OK) == 0) return candidate;
    if (colon == std::string_view::npos) return {};
    rest.remove_prefix(colon + 1);
  }
}

// Runs `program` with `args` and no shell in between; its exit status, or -1.
int RunProgram(const std::string& program, const std::vector<std::string>& args) {
  std::vector<char*> argv;
  argv.push_back(const_cast<char*>(program.c_str()));
  for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
  argv.push_back(nullptr);
  pid_t pid;
  if (::posix_spawn(&pid, program.c_str(), nullptr, nullptr, argv.data(), environ) != 0) return -1;
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0)
    if (errno != EINTR) return -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Writes `content` unless the file holds exactly that already. Raises EStreamError.
void WriteIfDifferent(const std::string& path, std::string_view content,
                      TRegistrationOutcome& outcome) {
  try {
    if (ReadWholeFile(path) == content) return;
  } catch (const EStreamError&) {
    // missing or unreadable: write it
  }
  std::error_code ec;
  std::filesystem::create_directories(std::string(ExtractFilePath(path)), ec);
  WriteFileAtomically(path, content);
  outcome.Written.push_back(path);
}

bool DatabaseKnowsTheTypes(const std::string& mimeDir) {
  for (const TFileTypeInfo& type : kFileTypes)
    if (!FileExists(JoinPath(mimeDir, std::string(type.MimeType) + ".xml"))) return false;
  return true;
}

}  // namespace

std::string_view IconNameOf(int iconIndex) {
  return iconIndex == 1 ? "application-x-velmora-domain" : "application-x-velmora-document";
}

std::string MimePackageText() {
  std::string xml =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<!-- Velmora's file types, written by `velmora register-types`. -->\n"
      "<mime-info xmlns=\"http://www.freedesktop.org/standards/shared-mime-info\">\n";
  for (const TFileTypeInfo& type : kFileTypes) {
    xml += "  <mime-type type=\"" + std::string(type.MimeType) + "\">\n";
    xml += "    <!-- " + std::string(type.Identifier) + " -->\n";
    xml += "    <comment>" + std::string(type.Description) + "</comment>\n";
    if (!type.BaseType.empty())
      xml += "    <sub-class-of type=\"" + std::string(type.BaseType) + "\"/>\n";
    xml += "    <icon name=\"" + std::string(IconNameOf(type.IconIndex)) + "\"/>\n";
    xml += "    <glob pattern=\"*" + std::string(type.Extension) + "\"/>\n";
    xml += "  </mime-type>\n";
  }
  xml += "</mime-info>\n";
  return xml;
}

std::string UserDataHome(const char* xdgDataHome, const char* home) {
  // Relative values are invalid by the base directory rules and are ignored.
  if (xdgDataHome && xdgDataHome[0] == '/') return xdgDataHome;
  if (home && home[0] == '/') return JoinPath(home, ".local/share");
  return {};
}

TFileTypeRegistration DefaultFileTypeRegistration(std::string iconSource) {
  return {UserDataHome(std::getenv("XDG_DATA_HOME"), std::getenv("HOME")), std::move(iconSource),
          FindProgram("update-mime-database")};
}

TRegistrationOutcome RegisterFileTypes(const TFileTypeRegistration& where) {
  TRegistrationOutcome outcome;
  if (where.DataHome.empty()) {
    outcome.Ok = false;
    outcome.Message = "No folder for user data: set XDG_DATA_HOME or HOME.";
    return outcome;
  }
  try {
    WriteIfDifferent(JoinPath(where.DataHome, kPackagePath), MimePackageText(), outcome);
    const bool packageChanged = !outcome.Written.empty();
    for (int index : {1, 2}) {
      const std::string file = std::string(IconNameOf(index)) + ".svg";
      std::string svg;
      if (where.IconSource.empty()) {
        ++outcome.MissingIcons;
        continue;
      }
      try {
        svg = ReadWholeFile(JoinPath(where.IconSource, file));
      } catch (const EStreamError&) {
        ++outcome.MissingIcons;
        continue;
      }
      WriteIfDifferent(JoinPath(JoinPath(where.DataHome, kIconFolder), file), svg, outcome);
    }

    const std::string mimeDir = JoinPath(where.DataHome, "mime");
    if (where.UpdateTool.empty() || (!packageChanged && DatabaseKnowsTheTypes(mimeDir)))
      return outcome;
    const int status = RunProgram(where.UpdateTool, {mimeDir});
    outcome.DatabaseUpdated = status == 0;
    if (status != 0) {
      outcome.Ok = false;
      outcome.Message = where.UpdateTool + " " + mimeDir + " failed (exit status " +
                        std::to_string(status) + ").";
    }
  } catch (const EStreamError& e) {
    outcome.Ok = false;
    outcome.Message = e.Message();
  }
  return outcome;
}

}  // namespace velmora
