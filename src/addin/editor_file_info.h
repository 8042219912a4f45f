// Where the user stands in the IDE's current editor, and what the commands that act on
// "the class named at the cursor" read from there. Main thread only.
#pragma once

#include <cstdint>
#include <string>

#include "ide/editor.h"

namespace velmora {

/// A snapshot of the cursor in the current editor.
class TEditorFileInfo {
 public:
  /// Fills the snapshot from the IDE's current file and its first view. True only when
  /// every step succeeded; the fields of a failed fill mean nothing. Every interface
  /// obtained is released before it returns.
  bool Fill();

  std::string FileName;
  int32_t CursorLine = 0;
  int32_t CursorCol = 0;
  int32_t TopLine = 0;
  int32_t LeftCol = 0;
  /// The cursor as the view reports it (column with tabs expanded).
  TEditPos CursorPos;
  /// The same place as the buffer holds it.
  TCharPos CursorCharPos;
  /// The cursor's offset in the buffer.
  int32_t Offset = -1;
};

/// The text of line `line` (1-based) of the current editor, without its line end.
/// False (and `text` empty) when there is no current editor or it has no such line.
bool CurrentEditorLineText(int32_t line, std::string& text);

/// The identifier at character index `charIndex` (0-based) of `line`: the one that
/// holds that character, or else the one that ends just before it; "" when there is
/// neither.
std::string IdentifierAt(const std::string& line, int charIndex);

/// The identifier at the cursor of the current editor; "" when there is none or no
/// editor.
std::string WordAtCursor();

}  // namespace velmora
