#include "hosts/headless/headless_module.h"

#include <algorithm>
#include <cstring>

#include "ide/edit_writer_base.h"
#include "support/ansi.h"
#include "support/paths.h"

namespace velmora {
namespace {

class THeadlessReader : public TIEditReader {
 public:
  explicit THeadlessReader(std::shared_ptr<THeadlessBuffer> buffer) : buffer_(std::move(buffer)) {}
  int GetText(int32_t position, char* buffer, int count) override {
    const std::string& text = buffer_->Text;
    if (position < 0 || count <= 0 || static_cast<size_t>(position) >= text.size()) return 0;
    const size_t n =
        std::min(static_cast<size_t>(count), text.size() - static_cast<size_t>(position));
    std::memcpy(buffer, text.data() + position, n);
    return static_cast<int>(n);
  }

 private:
  std::shared_ptr<THeadlessBuffer> buffer_;
};

// Builds the new text aside and puts it into the buffer in one step when released, so
// that a generator that gives up half way (and releases its writer after a failed copy)
// still leaves either all of its change or - when nothing was written - none.
class THeadlessWriter : public TEditWriterBase {
 public:
  explicit THeadlessWriter(std::shared_ptr<THeadlessBuffer> buffer) : buffer_(std::move(buffer)) {
    buffer_->WriterAlive = true;
  }
  ~THeadlessWriter() override {
    if (Changed()) {
      buffer_->Text = TakeResult();
      buffer_->Modified = true;
    }
    buffer_->WriterAlive = false;
  }

 protected:
  // No other writer can change the buffer while this one lives.
  const std::string& Original() const override { return buffer_->Text; }

 private:
  std::shared_ptr<THeadlessBuffer> buffer_;
};

// Columns are characters here: the headless buffers show no tabs expanded.
class THeadlessView : public TIEditView {
 public:
  explicit THeadlessView(std::shared_ptr<THeadlessBuffer> buffer) : buffer_(std::move(buffer)) {}
  TEditPos GetPos(int index) override {
    if (index == 0) return buffer_->Cursor;
    if (index == 1) return buffer_->TopLeft;
    return {};
  }
  bool SetPos(int index, TEditPos pos) override {
    if (index == 0)
      buffer_->Cursor = pos;
    else if (index == 1)
      buffer_->TopLeft = pos;
    else
      return false;
    return true;
  }
  int32_t CharPosToPos(TCharPos pos) override {
    const std::string& text = buffer_->Text;
    size_t start = 0;
    for (int32_t line = 1; line < pos.Line; ++line) {
      const size_t cr = text.find('\r', start);
      if (cr == std::string::npos) return static_cast<int32_t>(text.size());
      start = cr + 1;
      if (start < text.size() && text[start] == '\n') ++start;
    }
    size_t end = text.find('\r', start);
    if (end == std::string::npos) end = text.size();
    const size_t index = static_cast<size_t>(std::max<int16_t>(pos.CharIndex, 0));
    return static_cast<int32_t>(std::min(start + index, end));
  }
  void ConvertPos(bool editPosToCharPos, TEditPos& editPos, TCharPos& charPos) override {
    if (editPosToCharPos) {
      charPos.Line = editPos.Line;
      charPos.CharIndex = static_cast<int16_t>(std::max(editPos.Col - 1, 0));
    } else {
      editPos.Line = charPos.Line;
      editPos.Col = static_cast<int16_t>(charPos.CharIndex + 1);
    }
  }

 private:
  std::shared_ptr<THeadlessBuffer> buffer_;
};

}  // namespace

TIEditor* THeadlessModule::GetEditor() {
  if (!Buffer()) return nullptr;
  return new THeadlessEditor(Buffer());
}

TIEditor* THeadlessModule::GetEditorOfFile(const std::string& fileName) {
  ++EditorOfFileCalls;
  // Each file is a module of its own here; the module shows no other file.
  if (!ShowsFile(fileName)) return nullptr;
  return new THeadlessEditor(Buffer());
}

void THeadlessModule::Close() {
  TIRef<TIModule> keep = TIRef<TIModule>::Share(this);
  CloseNotifiers();
  DropBuffer();
}

TIEditReader* THeadlessEditor::CreateReader() {
  return new THeadlessReader(buffer_);
}

TIEditView* THeadlessEditor::GetView(int index) {
  if (index != 0) return nullptr;
  return new THeadlessView(buffer_);
}

TIEditWriter* THeadlessEditor::CreateWriter() {
  if (buffer_->WriterAlive) return nullptr;
  return new THeadlessWriter(buffer_);
}

}  // namespace velmora
