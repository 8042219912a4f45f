// The documents a language client has open: their text as the client holds it, their
// version and language. An open document is what Velmora reads instead of the file on
// disk; the text is kept exactly as the client sent it (its line ends included), and the
// buffer form the add-in works on is made from it when asked.
//
// Threads: main thread only.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/lsp/positions.h"

namespace velmora::lsp {

/// A text in buffer form with its line index; shared by the requests that read it, so a
/// large document is converted once per change, not once per request.
struct TBufferText {
  explicit TBufferText(std::string text) : Text(std::move(text)), Lines(Text) {}
  TBufferText(const TBufferText&) = delete;
  TBufferText& operator=(const TBufferText&) = delete;
  const std::string Text;
  const TLineIndex Lines;  // views Text: declared after it
};

struct TDocument {
  std::string Uri;
  std::string Path;
  std::string LanguageId;
  int Version = 0;
  std::string Text;  ///< as the client holds it

  /// Text in buffer form, made on first use after each change.
  std::shared_ptr<const TBufferText> Buffer() const;

 private:
  friend class TDocumentStore;
  mutable std::shared_ptr<const TBufferText> buffer_;  ///< null until asked, and after a change
};

/// One change of a didChange: a range and its new text, or (no range) the whole text.
struct TDocumentChange {
  std::optional<TLspPosition> From, To;
  std::string Text;
};

class TDocumentStore {
 public:
  /// Opens (or reopens) a document; false when the URI names no local file.
  bool Open(std::string_view uri, std::string_view languageId, int version, std::string text);
  /// Applies the changes in order; false when the document is not open.
  bool Change(std::string_view uri, int version, const std::vector<TDocumentChange>& changes,
              TPositionEncoding encoding);
  /// Closes; false when it was not open.
  bool Close(std::string_view uri);

  /// The open document of a file path or URI, or null.
  const TDocument* FindByPath(std::string_view path) const;
  const TDocument* FindByUri(std::string_view uri) const;
  int Count() const { return static_cast<int>(byPath_.size()); }
  std::vector<std::string> Paths() const;

 private:
  std::map<std::string, TDocument, std::less<>> byPath_;
};

}  // namespace velmora::lsp
