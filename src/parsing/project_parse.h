// Opening a set of files into one model: the files named (a project's units, or files on
// a command line), optionally with the files they include, parsed on every core and
// merged in one fixed order, so the model is the same whatever the number of threads.
//
// Threads: ParseProject runs on the caller's thread, which alone changes `classes` and
// `files`; its own worker threads only make parses.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace velmora {

class TClasslist;
class TFilesList;

struct TProjectParseRequest {
  std::vector<std::string> Files;
  bool FollowIncludes = false;
  /// Folders searched, in order, after the including file's own folder.
  std::vector<std::string> IncludePath;
  /// Threads that parse; 0 for one per core.
  int Threads = 0;
};

struct TProjectParseResult {
  int Files = 0;       ///< files parsed, included ones counted
  int64_t Bytes = 0;   ///< their size in buffer form
  double Seconds = 0;  ///< time spent parsing, loading excluded, summed over the threads
  /// One message per named file that could not be read. Included files that cannot be
  /// found or read are passed over silently, as a class browser does.
  std::vector<std::string> Errors;
};

/// Parses the request's files into `classes` and lists them in `files`. Without
/// FollowIncludes each named file is parsed by the parser its name calls for; with it,
/// each named file no earlier one reached is the root of a parse job (its includes read
/// by the root's parser). The files list and the include entries (one per file, by unit
/// name, with the names as written) follow a breadth-first walk from the named files.
TProjectParseResult ParseProject(const TProjectParseRequest& request, TFilesList& files,
                                 TClasslist& classes);

}  // namespace velmora
