#include "settings/settings_paths.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string_view>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/paths.h"

namespace velmora {
namespace {

std::string HomeDir() {
  if (const char* home = std::getenv("HOME"); home && *home) return home;
  if (const passwd* pw = ::getpwuid(::getuid()); pw && pw->pw_dir) return pw->pw_dir;
  return "/";
}

// The XDG rules ignore a relative path in these variables.
std::string XdgDir(const char* variable, const char* fallback) {
  if (const char* dir = std::getenv(variable); dir && dir[0] == '/') return dir;
  return JoinPath(HomeDir(), fallback);
}

}  // namespace

std::string ConfigHome() {
  return XdgDir("XDG_CONFIG_HOME", ".config");
}

std::string DataHome() {
  return XdgDir("XDG_DATA_HOME", ".local/share");
}

std::string VelmoraDataDir() {
  return JoinPath(DataHome(), "velmora");
}

bool MakeDirectories(const std::string& dir, std::string* reason) {
  if (dir.empty() || DirectoryExists(dir)) return true;
  size_t from = 1;
  while (true) {
    const size_t slash = dir.find('/', from);
    const std::string part = dir.substr(0, slash);
    if (!part.empty() && ::mkdir(part.c_str(), 0777) != 0 && errno != EEXIST) {
      if (reason) *reason = std::string(std::strerror(errno)) + ": " + part;
      return false;
    }
    if (slash == std::string::npos) break;
    from = slash + 1;
  }
  if (DirectoryExists(dir)) return true;
  if (reason) *reason = std::string(std::strerror(ENOTDIR)) + ": " + dir;
  return false;
}

std::string FormatText(std::string_view format, std::initializer_list<std::string_view> args) {
  std::string out;
  auto arg = args.begin();
  size_t pos = 0;
  while (pos < format.size()) {
    const size_t at = format.find("%s", pos);
    if (at == std::string_view::npos || arg == args.end()) {
      out += format.substr(pos);
      break;
    }
    out += format.substr(pos, at - pos);
    out += *arg++;
    pos = at + 2;
  }
  return out;
}

}  // namespace velmora
