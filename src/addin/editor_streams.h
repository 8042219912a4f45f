// Source text that may be open in the IDE with unsaved changes is read and changed
// through the IDE's editor buffers, never on disk: these two streams wrap the module,
// editor, reader and writer of one file. A stream whose file cannot be reached holds no
// interfaces; reading it gives 0 characters and writing it fails.
//
// Main thread only, like the IDE's editor interfaces themselves.
#pragma once

#include <cstdint>
#include <string>

#include "ide/interface.h"

namespace velmora {

class TIModule;
class TIEditor;
class TIEditReader;
class TIEditWriter;

/// The editor that holds `fileName` within `module`. The IDE keeps a header in its
/// source file's editor, so a file that is not a ".CPP" and has a ".CPP" partner on disk
/// is looked for with the module's select-a-file's-editor operation first; everything
/// else uses the module's own editor. A new reference, or nullptr.
TIEditor* EditorOfFile(TIModule& module, const std::string& fileName);

/// Makes sure the IDE has the file open: true at once for an open file other than a
/// header; a ".H" or ".HPP" is always passed to the open operation, since the IDE shows
/// it only inside its ".CPP" partner's editor.
bool EnsureOpen(const std::string& fileName);

class TEditorReadStream {
 public:
  /// With `openIfNeeded`, opens a file the IDE does not have open yet.
  TEditorReadStream(const std::string& fileName, bool openIfNeeded);
  ~TEditorReadStream();
  TEditorReadStream(const TEditorReadStream&) = delete;
  TEditorReadStream& operator=(const TEditorReadStream&) = delete;

  /// Sizes `buffer` to `count` and fills it from the current position; returns how many
  /// characters were read and moves on by as many. 0 or less: the end of the buffer (or
  /// no buffer at all). Characters past the number read are left as they were.
  int Read(std::string& buffer, int count);
  int32_t Position() const { return position_; }
  void SetPosition(int32_t position) { position_ = position; }
  /// Whether a reader was obtained.
  bool Valid() const { return static_cast<bool>(reader_); }

 private:
  int32_t position_ = 0;
  // Obtained in this order and released in the reverse one (members are destroyed
  // last to first).
  TIRef<TIModule> module_;
  TIRef<TIEditor> editor_;
  TIRef<TIEditReader> reader_;
};

class TEditorWriteStream {
 public:
  TEditorWriteStream(const std::string& fileName, bool openIfNeeded);
  /// Releasing the writer puts the changes into the buffer.
  ~TEditorWriteStream();
  TEditorWriteStream(const TEditorWriteStream&) = delete;
  TEditorWriteStream& operator=(const TEditorWriteStream&) = delete;

  /// Keeps the text up to `position`; false without a writer or when the writer refuses.
  bool CopyTo(int32_t position);
  /// Inserts `text` at the writer's place.
  bool Insert(const std::string& text);
  /// The writer's place in the original text; -1 without a writer.
  int32_t Position();
  bool Valid() const { return static_cast<bool>(writer_); }

 private:
  TIRef<TIModule> module_;
  TIRef<TIEditor> editor_;
  TIRef<TIEditWriter> writer_;
};

}  // namespace velmora
