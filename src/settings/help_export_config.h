// The help export configuration: what the help generator writes and how it compiles the
// result, kept in a ".hec" file of its own (an ini text with one section, "Help
// Generator"), so that a help project can be configured once and exported again later.
#pragma once

#include <string>
#include <string_view>

#include "support/exception.h"

namespace velmora {

/// Raised when a help export configuration file cannot be read or written.
class EExportCFGError : public Exception {
 public:
  using Exception::Exception;
};

inline constexpr char kHelpExportLoadError[] =
    "The help export configuration file %s could not be loaded because of the following "
    "error:\r\n%s";
inline constexpr char kHelpExportSaveError[] =
    "The help export configuration file %s could not be saved because of the following "
    "error:\r\n%s";

class THelpExportConfiguration {
 public:
  std::string HelpTitle;
  std::string Configfile;
  std::string Outputfile;
  std::string ExtraTexts;
  bool UseExtraTexts = false;
  std::string HelpCompiler;
  std::string HelpProject;
  bool DontCompress = false;
  bool UseProject = false;
  bool Compile = false;
  bool StartHelp = false;

  /// Back to the values of a new configuration.
  void Clear() { *this = THelpExportConfiguration(); }

  /// The file's text: the comment header, "[Help Generator]" and one line per key.
  std::string Text() const;
  /// Takes every key the text holds; missing keys and values of the wrong form keep
  /// their current values. Any text is accepted.
  void LoadFromText(std::string_view text);

  /// A new configuration with what the file holds. Raises EExportCFGError
  /// (kHelpExportLoadError), changing nothing, when the file cannot be read; a damaged
  /// file loads what it can.
  void LoadFromFile(const std::string& fileName);
  /// Replaces the file in one step; on failure raises EExportCFGError
  /// (kHelpExportSaveError) and the old file stays as it was.
  void SaveToFile(const std::string& fileName) const;

  bool operator==(const THelpExportConfiguration&) const = default;
};

}  // namespace velmora
