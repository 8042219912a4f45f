// The Qt IDE's modules and editors: an open file is a QScintilla editor holding the file's
// text in buffer form (CR LF line ends, one byte a character), and the add-in's readers,
// writers and views work on that editor's document, unsaved changes and all.
//
// Offsets are byte offsets into the document: the editors run in single-byte mode, so the
// ANSI text the add-in reads is exactly what the editor holds.
//
// Main thread only.
#pragma once

#include <QPointer>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ide/editor.h"
#include "ide/module_base.h"
#include "support/text_buffer.h"

class QsciScintilla;

namespace velmora {

/// One open file. The editor widget belongs to the editor window's tab control; the
/// buffer outlives it while readers or writers still hold it (they then read nothing).
struct TQtBuffer {
  std::string FileName;
  TLineEndStyle Style = TLineEndStyle::CrLf;  ///< how the file on disk ends its lines
  QPointer<QsciScintilla> Editor;
  bool WriterAlive = false;  ///< one writer at a time

  /// The whole text in buffer form; "" once the editor is gone.
  std::string Text() const;
  /// Replaces the text from `from` to `to` by `text` as one undoable edit.
  void Replace(int32_t from, int32_t to, std::string_view text);
  /// Puts new text into the editor as freshly loaded: no undo, not modified.
  void Load(const std::string& text);
  bool Modified() const;
  void SetSaved();
};

class TQtModule : public TModuleBase<TQtBuffer> {
 public:
  /// A module of an open file (`buffer` set) or of the project (`buffer` null).
  using TModuleBase::TModuleBase;

  TIEditor* GetEditor() override;
  TIEditor* GetEditorOfFile(const std::string& fileName) override;

  /// The module's end: ModuleDeleted to its notifiers, which are then detached.
  void Close();
};

}  // namespace velmora
