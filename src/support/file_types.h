// The three file types Velmora writes, made known to the desktop: a shared-mime-info
// package under the user's data folder names each type, its description, its file name
// pattern and its icon, and the icons are copied beside it. Registering again when
// nothing changed writes nothing.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velmora {

struct TFileTypeInfo {
  std::string_view Extension;
  std::string_view Identifier;   ///< the type's name on Windows; kept in the package as a note
  std::string_view Description;  ///< the comment the file manager shows
  int IconIndex;                 ///< 1: the domain icon, 2: the document icon
  std::string_view MimeType;
  std::string_view BaseType;  ///< the type it is a kind of, "" for none
};

/// In order of registration.
inline constexpr TFileTypeInfo kFileTypes[] = {
    {".cinfo", "Velmora.Classinfofile", "Velmora Class Information", 2,
     "application/x-velmora-classinfo", ""},
    {".domain", "Velmora.Domaininfofile", "Velmora Domain Information", 1,
     "application/x-velmora-domaininfo", ""},
    {".vlsettings", "Velmora.ProjectSettingsFile", "Velmora Project Settings", 2,
     "application/x-velmora-projectsettings", "text/plain"},  // ini-style text
};

/// The icon theme name of an icon index ("application-x-velmora-domain" for 1,
/// "application-x-velmora-document" for 2); its file is that name with ".svg".
std::string_view IconNameOf(int iconIndex);

/// The shared-mime-info package that describes the types.
std::string MimePackageText();

/// `xdgDataHome` when it is an absolute path, else `home` + "/.local/share"; "" when
/// neither is usable. Either may be null.
std::string UserDataHome(const char* xdgDataHome, const char* home);

struct TFileTypeRegistration {
  /// Receives mime/packages/velmora.xml and icons/hicolor/scalable/mimetypes/*.svg.
  std::string DataHome;
  /// The folder holding the icon files; "" or a folder without them: no icons copied.
  std::string IconSource;
  /// update-mime-database, run on DataHome/mime when the package changed or the database
  /// does not know the types yet; "" to skip it.
  std::string UpdateTool;
};

/// The user's data folder, the icons from `iconSource`, and update-mime-database when it
/// is on the PATH.
TFileTypeRegistration DefaultFileTypeRegistration(std::string iconSource);

struct TRegistrationOutcome {
  bool Ok = true;
  std::string Message;               ///< why not, when not Ok
  std::vector<std::string> Written;  ///< files created or replaced
  bool DatabaseUpdated = false;      ///< the update tool ran and succeeded
  int MissingIcons = 0;              ///< icon files not found in IconSource
};

/// Writes what differs from what is there, then updates the database. Never raises.
TRegistrationOutcome RegisterFileTypes(const TFileTypeRegistration& where);

}  // namespace velmora
