// The code generators' text buffers over the IDE's editor buffers: text is read through
// TEditorReadStream and written through TEditorWriteStream (opening a file the IDE does
// not have open yet), so generated code lands in the editor, unsaved, with whatever the
// user typed there. The focus moves the cursor of the file's first editor view.
//
// Main thread only, like the editor streams.
#pragma once

#include "codegen/code_text_buffers.h"

namespace velmora {

class TEditorCodeBuffers : public TCodeTextBuffers {
 public:
  std::optional<std::string> ReadText(const std::string& fileName) override;
  std::unique_ptr<TCodeTextWriter> OpenWriter(const std::string& fileName) override;
  /// Moves the cursor of the editor's first view to the start of `line`; the file and
  /// line are kept for the caller either way.
  void SetFocus(const std::string& fileName, int32_t line, int32_t offset) override;

  std::string FocusFile;
  int32_t FocusLine = -1;
};

}  // namespace velmora
