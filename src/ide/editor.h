// An editor buffer as the add-in reads and changes it: the editor of a module, readers
// and writers over its text, and the views that show it.
//
// Buffer text is in buffer form (CR LF line ends) and offsets are 0-based character
// offsets into it, whatever line ends the file on disk has. Lines are 1-based.
#pragma once

#include <cstdint>
#include <string>

#include "ide/interface.h"

namespace velmora {

/// A place as a view shows it: column (1-based, tabs expanded) and line (1-based).
struct TEditPos {
  int16_t Col = 0;
  int32_t Line = 0;
  bool operator==(const TEditPos&) const = default;
};

/// A place as the buffer holds it: the character's index within its line (0-based)
/// and its line (1-based).
struct TCharPos {
  int16_t CharIndex = 0;
  int32_t Line = 0;
  bool operator==(const TCharPos&) const = default;
};

/// Reads the buffer as it stands, unsaved changes included. Main thread only.
class TIEditReader : public TInterface {
 public:
  /// Copies up to `count` characters from `position` into `buffer`; returns how many
  /// were copied (0 at or past the end, and for a negative position).
  virtual int GetText(int32_t position, char* buffer, int count) = 0;
};

/// Rewrites the buffer front to back: text before a position is copied or deleted, new
/// text is inserted at the writer's place. The changes reach the buffer in one step when
/// the last reference to the writer is released. Only one writer per buffer at a time.
/// Main thread only.
class TIEditWriter : public TInterface {
 public:
  /// Keeps the text from the current place up to `position`; false when `position` is
  /// behind the current place or past the end.
  virtual bool CopyTo(int32_t position) = 0;
  /// Drops the text from the current place up to `position`; false as for CopyTo.
  virtual bool DeleteTo(int32_t position) = 0;
  /// Inserts `text` (zero-terminated) at the current place, which does not move in the
  /// original text.
  virtual bool Insert(const char* text) = 0;
  /// The current place in the original text.
  virtual int32_t Position() = 0;
};

/// One window onto a buffer. Main thread only.
class TIEditView : public TInterface {
 public:
  /// Index 0: the cursor; index 1: the top line and left column shown.
  virtual TEditPos GetPos(int index) = 0;
  /// Moves the cursor (0) or the top-left corner (1); false for another index.
  virtual bool SetPos(int index, TEditPos pos) = 0;
  /// The buffer offset of a character position (clamped to its line and the buffer).
  virtual int32_t CharPosToPos(TCharPos pos) = 0;
  /// With `editPosToCharPos` set, fills `charPos` from `editPos`, else the reverse.
  virtual void ConvertPos(bool editPosToCharPos, TEditPos& editPos, TCharPos& charPos) = 0;
};

/// The editor of a module. Every call that returns an interface returns a new
/// reference, or nullptr. Main thread only.
class TIEditor : public TInterface {
 public:
  virtual TIEditReader* CreateReader() = 0;
  virtual int ViewCount() = 0;
  virtual TIEditView* GetView(int index) = 0;
  /// nullptr while another writer of this buffer is alive.
  virtual TIEditWriter* CreateWriter() = 0;
  /// The file whose text the editor holds.
  virtual std::string FileName() = 0;
};

}  // namespace velmora
