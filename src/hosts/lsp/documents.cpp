#include "hosts/lsp/documents.h"

#include "support/text_buffer.h"

namespace velmora::lsp {

std::shared_ptr<const TBufferText> TDocument::Buffer() const {
  if (!buffer_) buffer_ = std::make_shared<const TBufferText>(ToBufferForm(Text));
  return buffer_;
}

bool TDocumentStore::Open(std::string_view uri, std::string_view languageId, int version,
                          std::string text) {
  std::string path = PathFromUri(uri);
  if (path.empty()) return false;
  TDocument& doc = byPath_[path];
  doc.Uri = std::string(uri);
  doc.Path = std::move(path);
  doc.LanguageId = std::string(languageId);
  doc.Version = version;
  doc.Text = std::move(text);
  doc.buffer_.reset();
  return true;
}

bool TDocumentStore::Change(std::string_view uri, int version,
                            const std::vector<TDocumentChange>& changes,
                            TPositionEncoding encoding) {
  const auto it = byPath_.find(PathFromUri(uri));
  if (it == byPath_.end()) return false;
  TDocument& doc = it->second;
  for (const TDocumentChange& change : changes) {
    if (!change.From || !change.To)
      doc.Text = change.Text;
    else
      doc.Text = ApplyEdit(doc.Text, *change.From, *change.To, change.Text, encoding);
  }
  doc.Version = version;
  doc.buffer_.reset();
  return true;
}

bool TDocumentStore::Close(std::string_view uri) {
  return byPath_.erase(PathFromUri(uri)) > 0;
}

const TDocument* TDocumentStore::FindByPath(std::string_view path) const {
  const auto it = byPath_.find(path);
  return it == byPath_.end() ? nullptr : &it->second;
}

const TDocument* TDocumentStore::FindByUri(std::string_view uri) const {
  return FindByPath(PathFromUri(uri));
}

std::vector<std::string> TDocumentStore::Paths() const {
  std::vector<std::string> paths;
  paths.reserve(byPath_.size());
  for (const auto& [path, doc] : byPath_) paths.push_back(path);
  return paths;
}

}  // namespace velmora::lsp
