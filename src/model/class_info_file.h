// Whole model files on disk: the class information file (files list, then class list, in
// one stream) and the domain information file, with the messages a user sees when one
// cannot be read or written.
//
// Threads: the caller holds the class list's lock for the whole save or load.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace velmora {

class TClasslist;
class TDomainList;
class TFilesList;
enum class TClassInfoErrorKind : uint8_t;

/// Writes files then classes into one block and puts it in place of `path` in one step
/// (temporary file beside it, flushed, renamed over it). Raises EStreamError, leaving the
/// old file as it was, when any step fails.
void SaveClassInfoFile(const std::string& path, const TFilesList& files, const TClasslist& classes);
/// Reads the whole file, then the files list and the class list from it. Raises
/// EStreamError when the file cannot be read and EClassInfoFileError (see its ErrorKind)
/// when its contents are wrong; what was read before the failure stays in the lists.
void LoadClassInfoFile(const std::string& path, TFilesList& files, TClasslist& classes);

/// `pattern` with each "%s" replaced by the next argument in turn; a "%s" without an
/// argument left becomes empty.
std::string FormatMessage(std::string_view pattern, std::initializer_list<std::string_view> args);

/// What a save or load came to, put the way the user is told.
struct TModelFileOutcome {
  bool Ok = true;
  /// The EClassInfoFileError kind of a failed load (what of the file is usable); empty
  /// when Ok, and when the file itself could not be read or written.
  std::optional<TClassInfoErrorKind> ErrorKind;
  /// The message for the user; empty when Ok.
  std::string Message;
};

/// LoadClassInfoFile with every failure turned into its message: a missing file gets the
/// doesn't-exist message, anything else the could-not-be-loaded one with the reason.
TModelFileOutcome LoadClassInfoFileReported(const std::string& path, TFilesList& files,
                                            TClasslist& classes);
TModelFileOutcome SaveClassInfoFileReported(const std::string& path, const TFilesList& files,
                                            const TClasslist& classes);
/// The domain file of project `projectName`; a file whose header does not match loads
/// nothing and is no failure.
TModelFileOutcome LoadDomainFileReported(const std::string& path, std::string_view projectName,
                                         TDomainList& domains);
TModelFileOutcome SaveDomainFileReported(const std::string& path, std::string_view projectName,
                                         const TDomainList& domains);

}  // namespace velmora
