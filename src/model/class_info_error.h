// The failure of reading class information, the messages a user sees about the model's
// files, and the checked reads every record loader goes through: any short read raises
// EClassInfoFileError (nothing usable) with kUnexpectedEndOfFile.
#pragma once

#include <cstdint>
#include <string>

#include "support/exception.h"

namespace velmora {

class TStream;

/// How far a load got before it failed, which says what of the file is usable. The
/// numbers are those the messages and the user's choices have always been keyed to.
enum class TClassInfoErrorKind : uint8_t {
  NothingUsable = 0,    ///< nothing usable beyond what was read
  FilesRestored = 1,    ///< the files list is complete
  DomainsRestored = 2,  ///< the files and the domains are complete
};

class EClassInfoFileError : public Exception {
 public:
  EClassInfoFileError(std::string message, TClassInfoErrorKind errorKind)
      : Exception(std::move(message)), ErrorKind(errorKind) {}
  TClassInfoErrorKind ErrorKind;
};

inline constexpr char kUnexpectedEndOfFile[] =
    "The class information is invalid and cannot be read! Unexpected end of file.";
inline constexpr char kInvalidVersion[] =
    "The class information is not a valid version and cannot be read!\r\n\r\nNote: This error "
    "occurs when Velmora tries to read a class information file saved with a previous version "
    "of Velmora.";
inline constexpr char kFilesRestored[] =
    "The class information is not a valid version and cannot be read!\r\n\r\nVelmora could "
    "restore the file information from this file, you can recreate the class information by "
    "updating (reparsing) the files.";
inline constexpr char kFilesAndDomainsRestored[] =
    "The class information is not a valid version and cannot be read!\r\n\r\nVelmora could "
    "restore the file and domain information from this file, you can recreate the class "
    "information by updating (reparsing) the files.";
/// Not one of the quoted messages: a damaged file whose classes nest deeper than any
/// source could is refused before the reader's recursion can exhaust the stack.
inline constexpr char kNestedTooDeeply[] =
    "The class information is invalid and cannot be read! Classes are nested too deeply.";

// printf-style (one or two %s) messages of the manager.
inline constexpr char kClassInfoLoadFailed[] =
    "The class information file \"%s\" could not be loaded because of the following error: %s";
inline constexpr char kClassInfoSaveFailed[] =
    "The class information file \"%s\" could not be saved because of the following error: %s";
inline constexpr char kDomainInfoLoadFailed[] =
    "The domain information file for project %s could not be loaded because of the following "
    "error:\r\n%s";
inline constexpr char kDomainInfoSaveFailed[] =
    "The domain information file for project %s could not be saved because of the following "
    "error:\r\n%s";
inline constexpr char kProjectSettingsLoadFailed[] =
    "The project settings file for project %s could not be loaded because of the following "
    "error:\r\n%s";
inline constexpr char kProjectSettingsSaveFailed[] =
    "The project settings file for project %s could not be saved because of the following "
    "error:\r\n%s";
inline constexpr char kClassInfoMissing[] =
    "Cannot load the class information file \"%s\" because file doesn't exists!";

/// Checked reads for the record loaders.
uint8_t LoadU8(TStream& stream);
uint16_t LoadU16(TStream& stream);
uint32_t LoadU32(TStream& stream);
int32_t LoadI32(TStream& stream);
bool LoadBool(TStream& stream);
std::string LoadString(TStream& stream);
/// Raises EClassInfoFileError (nothing usable) with kUnexpectedEndOfFile.
[[noreturn]] void ThrowUnexpectedEnd();

}  // namespace velmora
