// What the add-in knows of each file the IDE has open: the date and size the file on
// disk had when the editor last matched it (opened, saved or reloaded). A file changed
// on disk behind the IDE's back (a version-control checkout, another program) leaves an
// editor that still shows the old text; before the add-in reads such an editor it asks
// the IDE to reload it, which the IDE does only when the editor holds no changes of its
// own, so a user's unsaved edits are never lost.
//
// Main thread only.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace velmora {

class TIToolServices;

class TEditorFileInfoList {
 public:
  /// The editor of `fileName` matches the file on disk now.
  void Record(const std::string& fileName);
  /// The editor is gone.
  void Forget(const std::string& fileName);
  /// False when the file on disk changed since its editor last matched it; true when it
  /// did not, or nothing is known of the file.
  bool Check(const std::string& fileName) const;
  /// When the check fails, asks the IDE to reload the editor and records the file when
  /// it did. True when the editor matches the disk afterwards as far as is known.
  bool ReloadIfStale(TIToolServices& ide, const std::string& fileName);
  int Count() const { return static_cast<int>(files_.size()); }

 private:
  struct TStamp {
    int64_t Seconds = -1;
    int64_t Nanoseconds = 0;
    int64_t Size = -1;
    bool operator==(const TStamp&) const = default;
  };
  static TStamp StampOf(const std::string& fileName);
  /// By posix-separated name.
  std::map<std::string, TStamp> files_;
};

/// The list the expert keeps while it runs; nullptr before and after.
extern TEditorFileInfoList* EditorFileInfos;

}  // namespace velmora
