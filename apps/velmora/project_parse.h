// Parsing a set of files named on the command line into one model, optionally following
// the files they include.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace velmora {
class TClasslist;
class TFilesList;
}  // namespace velmora

namespace velmora::app {

struct TProjectParseRequest {
  std::vector<std::string> Files;
  bool FollowIncludes = false;
  /// Folders searched, in order, after the including file's own folder.
  std::vector<std::string> IncludePath;
};

struct TProjectParseResult {
  int Files = 0;       ///< files parsed, included ones counted
  int64_t Bytes = 0;   ///< their size in buffer form
  double Seconds = 0;  ///< time spent parsing, loading excluded
  /// One message per named file that could not be read. Included files that cannot be
  /// found or read are passed over silently, as a class browser does.
  std::vector<std::string> Errors;
};

TProjectParseResult ParseProject(const TProjectParseRequest& request, TFilesList& files,
                                 TClasslist& classes);

}  // namespace velmora::app
