#include "hosts/qt/qt_module.h"

#include <Qsci/qsciscintilla.h>

#include <algorithm>
#include <cstring>

#include "ide/edit_writer_base.h"
#include "support/ansi.h"
#include "support/paths.h"

namespace velmora {
namespace {

using Sci = QsciScintillaBase;

long Send(QsciScintilla& editor, unsigned int message, unsigned long wParam = 0, long lParam = 0) {
  return editor.SendScintilla(message, wParam, lParam);
}

class TQtReader : public TIEditReader {
 public:
  explicit TQtReader(std::shared_ptr<TQtBuffer> buffer) : buffer_(std::move(buffer)) {}
  int GetText(int32_t position, char* buffer, int count) override {
    QsciScintilla* editor = buffer_->Editor;
    if (!editor || position < 0 || count <= 0) return 0;
    const long length = Send(*editor, Sci::SCI_GETLENGTH);
    if (position >= length) return 0;
    const long n = std::min<long>(count, length - position);
    const auto* text =
        reinterpret_cast<const char*>(editor->SendScintilla(Sci::SCI_GETCHARACTERPOINTER));
    std::memcpy(buffer, text + position, static_cast<size_t>(n));
    return static_cast<int>(n);
  }

 private:
  std::shared_ptr<TQtBuffer> buffer_;
};

// Builds the new text aside and puts it into the editor in one undoable step when
// released: a generator that gives up half way leaves either all of its change or none.
// Only the part that differs is replaced, so the editor keeps its place and folds.
class TQtWriter : public TEditWriterBase {
 public:
  explicit TQtWriter(std::shared_ptr<TQtBuffer> buffer)
      : buffer_(std::move(buffer)), original_(buffer_->Text()) {
    buffer_->WriterAlive = true;
  }
  ~TQtWriter() override {
    if (Changed()) {
      const std::string out = TakeResult();
      size_t prefix = 0;
      const size_t limit = std::min(out.size(), original_.size());
      while (prefix < limit && out[prefix] == original_[prefix]) ++prefix;
      size_t suffix = 0;
      while (suffix < limit - prefix &&
             out[out.size() - 1 - suffix] == original_[original_.size() - 1 - suffix])
        ++suffix;
      buffer_->Replace(static_cast<int32_t>(prefix),
                       static_cast<int32_t>(original_.size() - suffix),
                       std::string_view(out).substr(prefix, out.size() - suffix - prefix));
    }
    buffer_->WriterAlive = false;
  }

 protected:
  const std::string& Original() const override { return original_; }

 private:
  std::shared_ptr<TQtBuffer> buffer_;
  const std::string original_;  ///< the text when the writer was made
};

// Columns of an edit position are the editor's own: tabs expanded to its tab width.
class TQtView : public TIEditView {
 public:
  explicit TQtView(std::shared_ptr<TQtBuffer> buffer) : buffer_(std::move(buffer)) {}
  TEditPos GetPos(int index) override {
    QsciScintilla* e = buffer_->Editor;
    if (!e) return {};
    if (index == 0) {
      const long pos = Send(*e, Sci::SCI_GETCURRENTPOS);
      return {static_cast<int16_t>(Send(*e, Sci::SCI_GETCOLUMN, pos) + 1),
              static_cast<int32_t>(Send(*e, Sci::SCI_LINEFROMPOSITION, pos) + 1)};
    }
    if (index == 1) {
      const long width = std::max<long>(Send(*e, Sci::SCI_TEXTWIDTH, 32, long(" ")), 1);
      return {static_cast<int16_t>(Send(*e, Sci::SCI_GETXOFFSET) / width + 1),
              static_cast<int32_t>(Send(*e, Sci::SCI_GETFIRSTVISIBLELINE) + 1)};
    }
    return {};
  }
  bool SetPos(int index, TEditPos pos) override {
    QsciScintilla* e = buffer_->Editor;
    if (!e || (index != 0 && index != 1)) return false;
    const long line = std::max<int32_t>(pos.Line - 1, 0);
    if (index == 0) {
      const long at = Send(*e, Sci::SCI_FINDCOLUMN, line, std::max<int16_t>(pos.Col - 1, 0));
      Send(*e, Sci::SCI_GOTOPOS, at);
    } else {
      Send(*e, Sci::SCI_SETFIRSTVISIBLELINE, line);
    }
    return true;
  }
  int32_t CharPosToPos(TCharPos pos) override {
    QsciScintilla* e = buffer_->Editor;
    if (!e) return 0;
    const long lines = Send(*e, Sci::SCI_GETLINECOUNT);
    if (pos.Line > lines) return static_cast<int32_t>(Send(*e, Sci::SCI_GETLENGTH));
    const long line = std::max<int32_t>(pos.Line - 1, 0);
    const long start = Send(*e, Sci::SCI_POSITIONFROMLINE, line);
    const long end = Send(*e, Sci::SCI_GETLINEENDPOSITION, line);
    return static_cast<int32_t>(std::min(start + std::max<int16_t>(pos.CharIndex, 0), end));
  }
  void ConvertPos(bool editPosToCharPos, TEditPos& editPos, TCharPos& charPos) override {
    QsciScintilla* e = buffer_->Editor;
    if (!e) return;
    if (editPosToCharPos) {
      const long line = std::max<int32_t>(editPos.Line - 1, 0);
      const long at = Send(*e, Sci::SCI_FINDCOLUMN, line, std::max<int16_t>(editPos.Col - 1, 0));
      charPos.Line = editPos.Line;
      charPos.CharIndex = static_cast<int16_t>(at - Send(*e, Sci::SCI_POSITIONFROMLINE, line));
    } else {
      const long line = std::max<int32_t>(charPos.Line - 1, 0);
      const long at = Send(*e, Sci::SCI_POSITIONFROMLINE, line) + charPos.CharIndex;
      editPos.Line = charPos.Line;
      editPos.Col = static_cast<int16_t>(Send(*e, Sci::SCI_GETCOLUMN, at) + 1);
    }
  }

 private:
  std::shared_ptr<TQtBuffer> buffer_;
};

class TQtEditor : public TIEditor {
 public:
  explicit TQtEditor(std::shared_ptr<TQtBuffer> buffer) : buffer_(std::move(buffer)) {}
  TIEditReader* CreateReader() override { return new TQtReader(buffer_); }
  int ViewCount() override { return buffer_->Editor ? 1 : 0; }
  TIEditView* GetView(int index) override {
    return index == 0 && buffer_->Editor ? new TQtView(buffer_) : nullptr;
  }
  TIEditWriter* CreateWriter() override {
    return buffer_->WriterAlive || !buffer_->Editor ? nullptr : new TQtWriter(buffer_);
  }
  std::string FileName() override { return buffer_->FileName; }

 private:
  std::shared_ptr<TQtBuffer> buffer_;
};

}  // namespace

std::string TQtBuffer::Text() const {
  if (!Editor) return {};
  const long length = Send(*Editor, Sci::SCI_GETLENGTH);
  const auto* text =
      reinterpret_cast<const char*>(Editor->SendScintilla(Sci::SCI_GETCHARACTERPOINTER));
  return std::string(text, static_cast<size_t>(length));
}

void TQtBuffer::Replace(int32_t from, int32_t to, std::string_view text) {
  if (!Editor) return;
  Send(*Editor, Sci::SCI_BEGINUNDOACTION);
  Send(*Editor, Sci::SCI_SETTARGETSTART, static_cast<unsigned long>(from));
  Send(*Editor, Sci::SCI_SETTARGETEND, static_cast<unsigned long>(to));
  Editor->SendScintilla(Sci::SCI_REPLACETARGET, static_cast<unsigned long>(text.size()),
                        text.data());
  Send(*Editor, Sci::SCI_ENDUNDOACTION);
}

void TQtBuffer::Load(const std::string& text) {
  if (!Editor) return;
  Editor->SendScintilla(Sci::SCI_SETTEXT, 0UL, text.c_str());
  Send(*Editor, Sci::SCI_EMPTYUNDOBUFFER);
  Send(*Editor, Sci::SCI_SETSAVEPOINT);
}

bool TQtBuffer::Modified() const {
  return Editor && Send(*Editor, Sci::SCI_GETMODIFY) != 0;
}

void TQtBuffer::SetSaved() {
  if (Editor) Send(*Editor, Sci::SCI_SETSAVEPOINT);
}

TIEditor* TQtModule::GetEditor() {
  return Buffer() ? new TQtEditor(Buffer()) : nullptr;
}

TIEditor* TQtModule::GetEditorOfFile(const std::string& fileName) {
  // Each file has a module of its own here; the module shows no other file.
  if (!ShowsFile(fileName)) return nullptr;
  return new TQtEditor(Buffer());
}

void TQtModule::Close() {
  CloseNotifiers();
}

}  // namespace velmora
