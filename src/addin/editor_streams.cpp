#include "addin/editor_streams.h"

#include "addin/editor_file_info_list.h"
#include "addin/tool_services.h"
#include "ide/editor.h"
#include "ide/module.h"
#include "ide/tool_services.h"
#include "support/ansi.h"
#include "support/paths.h"

namespace velmora {
namespace {

std::string UpperExt(const std::string& fileName) {
  return AnsiUpperCase(ExtractFileExt(fileName));
}

bool IsHeader(const std::string& fileName) {
  const std::string ext = UpperExt(fileName);
  return ext == ".H" || ext == ".HPP";
}

/// Opens the file when asked to and it is not open; then the module and its editor.
void Acquire(const std::string& fileName, bool openIfNeeded, TIRef<TIModule>& module,
             TIRef<TIEditor>& editor) {
  TIToolServices* ide = ToolServices;
  if (!ide) return;
  if (openIfNeeded && !ide->IsFileOpen(fileName)) {
    // A file that cannot be opened is found to have no module below.
    ide->OpenFile(fileName);
  } else if (openIfNeeded && EditorFileInfos) {
    // An open editor whose file changed on disk since it was loaded shows old text: it
    // is reloaded first (the IDE keeps an editor that holds changes of its own).
    EditorFileInfos->ReloadIfStale(*ide, fileName);
  }
  module = TIRef<TIModule>(ide->GetModule(fileName));
  if (!module) return;
  editor = TIRef<TIEditor>(EditorOfFile(*module, fileName));
}

}  // namespace

TIEditor* EditorOfFile(TIModule& module, const std::string& fileName) {
  if (UpperExt(fileName) != ".CPP") {
    std::string partner = fileName.substr(0, fileName.size() - ExtractFileExt(fileName).size());
    partner += ".CPP";
    if (!ResolveExistingFile(partner).empty()) {
      if (TIEditor* editor = module.GetEditorOfFile(fileName)) return editor;
    }
  }
  return module.GetEditor();
}

bool EnsureOpen(const std::string& fileName) {
  TIToolServices* ide = ToolServices;
  if (!ide) return false;
  if (!IsHeader(fileName) && ide->IsFileOpen(fileName)) return true;
  return ide->OpenFile(fileName);
}

TEditorReadStream::TEditorReadStream(const std::string& fileName, bool openIfNeeded) {
  Acquire(fileName, openIfNeeded, module_, editor_);
  if (editor_) reader_ = TIRef<TIEditReader>(editor_->CreateReader());
}

TEditorReadStream::~TEditorReadStream() = default;

int TEditorReadStream::Read(std::string& buffer, int count) {
  if (count < 0) count = 0;
  buffer.resize(static_cast<size_t>(count));
  if (!reader_ || count == 0) return 0;
  const int n = reader_->GetText(position_, buffer.data(), count);
  if (n > 0) position_ += n;
  return n;
}

TEditorWriteStream::TEditorWriteStream(const std::string& fileName, bool openIfNeeded) {
  Acquire(fileName, openIfNeeded, module_, editor_);
  if (editor_) writer_ = TIRef<TIEditWriter>(editor_->CreateWriter());
}

TEditorWriteStream::~TEditorWriteStream() = default;

bool TEditorWriteStream::CopyTo(int32_t position) {
  return writer_ && writer_->CopyTo(position);
}

bool TEditorWriteStream::Insert(const std::string& text) {
  return writer_ && writer_->Insert(text.c_str());
}

int32_t TEditorWriteStream::Position() {
  return writer_ ? writer_->Position() : -1;
}

}  // namespace velmora
