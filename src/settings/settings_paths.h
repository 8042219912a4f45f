// Where the settings live on this platform: the user's configuration and data folders of
// the XDG base directory rules, and a helper that makes a folder with its parents.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace velmora {

/// $XDG_CONFIG_HOME when it is an absolute path, else $HOME/.config.
std::string ConfigHome();
/// $XDG_DATA_HOME when it is an absolute path, else $HOME/.local/share.
std::string DataHome();
/// The folder of Velmora's writable data: DataHome() + "/velmora".
std::string VelmoraDataDir();

/// Creates `dir` and any missing parents. On failure returns false and, when `reason` is
/// given, the system's reason.
bool MakeDirectories(const std::string& dir, std::string* reason = nullptr);

/// `format` with each "%s" replaced by the next argument, in order; a "%s" without an
/// argument left is kept as it is.
std::string FormatText(std::string_view format, std::initializer_list<std::string_view> args);

}  // namespace velmora
