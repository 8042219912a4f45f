// The texts one request reads, each loaded once: an open document's text as the client
// holds it, else the file on disk, both in buffer form, with the line index that turns the
// model's byte offsets into the client's positions.
//
// Threads: main thread only; made for one request and dropped after it.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "hosts/lsp/dispatcher.h"
#include "hosts/lsp/documents.h"
#include "hosts/lsp/positions.h"
#include "parsing/implementation_locator.h"

namespace velmora::lsp {

class TSourceTexts {
 public:
  TSourceTexts(const TDocumentStore& documents, TPositionEncoding encoding)
      : documents_(documents), encoding_(encoding) {}

  /// The buffer-form text of `path`, or null when it cannot be read.
  const std::string* Text(const std::string& path);
  /// The protocol's range of [from, to) in `path` ({0,0} positions when unreadable).
  json Range(const std::string& path, int64_t from, int64_t to);
  json Location(const std::string& path, int64_t from, int64_t to);
  /// The same range as positions, for answers written as text.
  std::pair<TLspPosition, TLspPosition> Span(const std::string& path, int64_t from, int64_t to);
  /// A client position in `path` as a buffer offset; -1 when unreadable.
  int64_t Offset(const std::string& path, TLspPosition position);
  /// Whether `path` is open in the client (its text is at hand without a read).
  bool IsOpen(const std::string& path) const { return documents_.FindByPath(path) != nullptr; }
  /// Open documents first, then the disk: what the code finders search.
  TSourceTextReader Reader();
  TPositionEncoding Encoding() const { return encoding_; }

 private:
  const TBufferText* Find(const std::string& path);

  const TDocumentStore& documents_;
  TPositionEncoding encoding_;
  /// By path; a null entry: unreadable.
  std::map<std::string, std::shared_ptr<const TBufferText>> entries_;
};

/// Appends `text` as a JSON string; bytes that are not UTF-8 come out as U+FFFD.
void AppendJsonString(std::string& out, std::string_view text);
/// Appends {"start":{...},"end":{...}}.
void AppendJsonRange(std::string& out, std::pair<TLspPosition, TLspPosition> range);

/// Whether `c` may stand in an identifier.
inline bool IsIdentChar(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

/// The first whole-word occurrence of `name` in text[from, to), or -1.
int64_t FindWord(const std::string& text, std::string_view name, int64_t from, int64_t to,
                 bool caseSensitive);

}  // namespace velmora::lsp
