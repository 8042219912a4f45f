// What the browsing commands (tree, hierarchy, find, files, watch) need from whatever
// opens a project and keeps its model: open it (warm from the saved class information or
// cold), hand out the class lists, re-parse one file, save. The commands never ask how
// the model was made, so the driver behind this can change without touching them.
//
// Threads: one session is used from the thread that made it; callbacks come on that
// thread too.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "projects/project.h"

namespace velmora {
class TClasslist;
class TFilesList;
}  // namespace velmora

namespace velmora::app {

/// How the open went; what `--stats` prints.
struct TOpenStats {
  bool Warm = false;           ///< the saved class information was loaded
  int FilesTotal = 0;          ///< files in the model after the open, includes counted
  int UnitsParsed = 0;         ///< project units parsed in this run
  int IncludesParsed = 0;      ///< parses of files reached through the units' includes
  double LoadSeconds = 0;      ///< reading the class information file
  double ParseSeconds = 0;     ///< parsing, from the first file to the last
  double TotalSeconds = 0;     ///< the whole open, project file to merged model
  std::string ClassInfoFile;   ///< where the model is saved, beside the project
  int64_t ClassInfoBytes = 0;  ///< its size when it was loaded, else 0
};

struct TSessionCallbacks {
  /// A file is about to be parsed: `done` of `total` parsed so far.
  std::function<void(int done, int total, const std::string& file)> Progress;
  /// One line for the user (a load message, a file that cannot be read).
  std::function<void(const std::string& line)> Message;
};

class TBrowseSession {
 public:
  virtual ~TBrowseSession() = default;

  /// Reads the project file (EProjectError when it is missing or unreadable; nothing is
  /// written then), loads the saved class information when there is one and re-parses
  /// what changed since, or parses everything.
  virtual void Open(const std::string& projectPath, const TSessionCallbacks& callbacks) = 0;
  virtual const TProject& Project() const = 0;
  virtual const TOpenStats& Stats() const = 0;
  virtual TClasslist& Classes() = 0;
  virtual TFilesList& Files() = 0;
  /// The external files' model; may be empty.
  virtual TClasslist& ExternalClasses() = 0;
  virtual TFilesList& ExternalFiles() = 0;
  /// Parses the file again (or, when it is gone, removes its objects and entry). Only
  /// files of the model or units of the project are taken; false for others.
  virtual bool Reparse(const std::string& fileName) = 0;
  /// Every file the model holds, absolute: what `watch` watches.
  virtual std::vector<std::string> WatchedFiles() const = 0;
  /// Writes the class information beside the project now (the session also saves it after
  /// the open's parse and when it ends); false (the reason through the Message callback)
  /// when it cannot.
  virtual bool Save() = 0;
};

/// The session of this build's driver.
std::unique_ptr<TBrowseSession> CreateBrowseSession();

}  // namespace velmora::app
