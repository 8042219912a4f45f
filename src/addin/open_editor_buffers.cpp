#include "addin/open_editor_buffers.h"

#include <algorithm>

#include "addin/editor_file_info_list.h"
#include "addin/editor_streams.h"
#include "ide/editor.h"
#include "ide/module.h"
#include "ide/tool_services.h"
#include "parsing/source_provider.h"
#include "support/paths.h"

namespace velmora {

void TOpenEditorBuffers::Opened(const std::string& fileName) {
  const std::string path = ToPosixSeparators(fileName);
  if (std::find(files_.begin(), files_.end(), path) == files_.end()) files_.push_back(path);
}

void TOpenEditorBuffers::Closing(const std::string& fileName) {
  const std::string path = ToPosixSeparators(fileName);
  auto it = std::find(files_.begin(), files_.end(), path);
  if (it != files_.end()) Forget(static_cast<size_t>(it - files_.begin()));
}

bool TOpenEditorBuffers::Holds(const std::string& fileName) const {
  return std::find(files_.begin(), files_.end(), ToPosixSeparators(fileName)) != files_.end();
}

void TOpenEditorBuffers::Snapshot() {
  for (size_t i = files_.size(); i-- > 0;) {
    std::string text;
    const bool open = ide_.IsFileOpen(files_[i]);
    // An editor left behind by a change on disk is brought up to the file first.
    if (open && EditorFileInfos) EditorFileInfos->ReloadIfStale(ide_, files_[i]);
    if (open && ReadBuffer(files_[i], text))
      sources_.SetBuffer(files_[i], std::move(text));
    else
      Forget(i);
  }
}

bool TOpenEditorBuffers::ReadBuffer(const std::string& fileName, std::string& text) {
  TIRef<TIModule> module(ide_.GetModule(fileName));
  if (!module) return false;
  TIRef<TIEditor> editor(EditorOfFile(*module, fileName));
  if (!editor) return false;
  TIRef<TIEditReader> reader(editor->CreateReader());
  if (!reader) return false;
  // Read in blocks: the reader gives no size.
  constexpr int kBlock = 64 * 1024;
  text.clear();
  for (;;) {
    const size_t at = text.size();
    text.resize(at + kBlock);
    const int got = reader->GetText(static_cast<int32_t>(at), text.data() + at, kBlock);
    text.resize(at + static_cast<size_t>(std::max(got, 0)));
    if (got < kBlock) return true;
  }
}

void TOpenEditorBuffers::Forget(size_t index) {
  sources_.CloseBuffer(files_[index]);
  files_.erase(files_.begin() + static_cast<std::ptrdiff_t>(index));
}

}  // namespace velmora
