#include "addin/editor_code_buffers.h"

#include "addin/editor_streams.h"
#include "addin/tool_services.h"
#include "ide/editor.h"
#include "ide/module.h"
#include "ide/tool_services.h"

namespace velmora {

namespace {

constexpr int kReadBlock = 65536;

class TEditorCodeWriter : public TCodeTextWriter {
 public:
  explicit TEditorCodeWriter(std::unique_ptr<TEditorWriteStream> stream)
      : stream_(std::move(stream)) {}
  bool Insert(int32_t offset, const std::string& text) override {
    // The writer keeps its place in the original text: copy up to the offset unless an
    // earlier insertion left it there already.
    if (offset > stream_->Position() && !stream_->CopyTo(offset)) return false;
    return stream_->Insert(text);
  }

 private:
  std::unique_ptr<TEditorWriteStream> stream_;  // valid; its release puts the text in
};

}  // namespace

std::optional<std::string> TEditorCodeBuffers::ReadText(const std::string& fileName) {
  TEditorReadStream stream(fileName, true);
  if (!stream.Valid()) return std::nullopt;
  std::string text, block;
  for (int n; (n = stream.Read(block, kReadBlock)) > 0;)
    text.append(block, 0, static_cast<size_t>(n));
  return text;
}

std::unique_ptr<TCodeTextWriter> TEditorCodeBuffers::OpenWriter(const std::string& fileName) {
  auto stream = std::make_unique<TEditorWriteStream>(fileName, true);
  if (!stream->Valid()) return nullptr;
  return std::make_unique<TEditorCodeWriter>(std::move(stream));
}

void TEditorCodeBuffers::SetFocus(const std::string& fileName, int32_t line, int32_t /*offset*/) {
  FocusFile = fileName;
  FocusLine = line;
  TIToolServices* ide = ToolServices;
  if (!ide) return;
  TIRef<TIModule> module(ide->GetModule(fileName));
  if (!module) return;
  TIRef<TIEditor> editor(EditorOfFile(*module, fileName));
  if (!editor || editor->ViewCount() < 1) return;
  TIRef<TIEditView> view(editor->GetView(0));
  if (view) view->SetPos(0, TEditPos{.Col = 1, .Line = line});
}

}  // namespace velmora
