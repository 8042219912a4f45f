#include "codegen/code_text_buffers.h"

#include <algorithm>

#include "parsing/implementation_locator.h"

namespace velmora {

namespace {

// Collects the insertions and applies them all when it goes, so a writer that is dropped
// half-way through still changes its buffer in one step.
class TMemoryWriter : public TCodeTextWriter {
 public:
  explicit TMemoryWriter(std::string& target) : target_(target) {}
  ~TMemoryWriter() override {
    std::string out;
    out.reserve(target_.size() + added_);
    size_t from = 0;
    for (const auto& [offset, text] : inserts_) {
      out.append(target_, from, static_cast<size_t>(offset) - from);
      out += text;
      from = static_cast<size_t>(offset);
    }
    out.append(target_, from, std::string::npos);
    target_ = std::move(out);
  }
  bool Insert(int32_t offset, const std::string& text) override {
    const int32_t last = inserts_.empty() ? 0 : inserts_.back().first;
    if (offset < last || offset > static_cast<int32_t>(target_.size())) return false;
    inserts_.emplace_back(offset, text);
    added_ += text.size();
    return true;
  }

 private:
  std::string& target_;                                   // the buffer changed on destruction
  std::vector<std::pair<int32_t, std::string>> inserts_;  // offsets never decrease
  size_t added_ = 0;
};

}  // namespace

std::optional<std::string> TMemoryCodeBuffers::ReadText(const std::string& fileName) {
  auto it = files_.find(fileName);
  if (it != files_.end()) return it->second.Current;
  std::optional<std::string> text = ReadSourceTextFromDisk(fileName);
  if (!text) return std::nullopt;
  files_[fileName] = {*text, *text};
  return text;
}

std::unique_ptr<TCodeTextWriter> TMemoryCodeBuffers::OpenWriter(const std::string& fileName) {
  if (std::find(ReadOnly.begin(), ReadOnly.end(), fileName) != ReadOnly.end()) return nullptr;
  if (!ReadText(fileName)) return nullptr;
  return std::make_unique<TMemoryWriter>(files_[fileName].Current);
}

void TMemoryCodeBuffers::SetFocus(const std::string& fileName, int32_t line, int32_t offset) {
  FocusFile = fileName;
  FocusLine = line;
  FocusOffset = offset;
}

void TMemoryCodeBuffers::Set(const std::string& fileName, std::string text) {
  files_[fileName] = {text, text};
}

const std::string* TMemoryCodeBuffers::Text(const std::string& fileName) const {
  auto it = files_.find(fileName);
  return it == files_.end() ? nullptr : &it->second.Current;
}

const std::string* TMemoryCodeBuffers::Original(const std::string& fileName) const {
  auto it = files_.find(fileName);
  return it == files_.end() ? nullptr : &it->second.Original;
}

std::vector<std::string> TMemoryCodeBuffers::ChangedFiles() const {
  std::vector<std::string> result;
  for (const auto& [name, entry] : files_)
    if (entry.Current != entry.Original) result.push_back(name);
  return result;
}

}  // namespace velmora
