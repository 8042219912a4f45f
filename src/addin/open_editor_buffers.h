// The editor buffers the IDE has open, as the manager's parses see them. A parse runs on
// a worker thread and must not touch the IDE, so before a job's parses go out the main
// thread copies the text of every open buffer (unsaved changes included) into the parse
// queue's source provider; a file whose editor closed is read from disk again.
//
// Main thread only. The sources it fills guard themselves (TEditorBufferSources).
#pragma once

#include <string>
#include <vector>

namespace velmora {

class TEditorBufferSources;
class TIToolServices;

class TOpenEditorBuffers {
 public:
  /// Both must outlive this object.
  TOpenEditorBuffers(TIToolServices& ide, TEditorBufferSources& sources)
      : ide_(ide), sources_(sources) {}

  /// The IDE opened `fileName`; its buffer is copied at the next Snapshot.
  void Opened(const std::string& fileName);
  /// The file's editor closes: its text is dropped now.
  void Closing(const std::string& fileName);
  /// Copies the text of every open buffer into the sources; a file the IDE no longer has
  /// open (or whose editor cannot be read) is dropped and read from disk again.
  void Snapshot();

  /// Whether parses read `fileName` from an editor (it may hold unsaved text).
  bool Holds(const std::string& fileName) const;
  /// The files followed, in the order they were opened.
  const std::vector<std::string>& Files() const { return files_; }

 private:
  /// The buffer's whole text, or false when the IDE gives no reader for it.
  bool ReadBuffer(const std::string& fileName, std::string& text);
  void Forget(size_t index);

  TIToolServices& ide_;
  TEditorBufferSources& sources_;
  /// Posix-separated names, each once (compared exactly: the names parses ask for).
  std::vector<std::string> files_;
};

}  // namespace velmora
