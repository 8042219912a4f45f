// Where a parser gets the text of a file: an open editor buffer when there is one, the
// file on disk otherwise. A background parse goes through a provider so that the editor
// layer can hand it unsaved text without the parser knowing about editors.
//
// Threads and locks: every provider may be read from any number of parser threads at
// once. TEditorBufferSources guards its buffers with its own mutex; the disk provider has
// no state.
#pragma once

#include <map>
#include <mutex>
#include <string>

namespace velmora {

class TSourceProvider {
 public:
  virtual ~TSourceProvider() = default;
  /// Whether `path` names a text this provider can give (an open buffer or a file).
  virtual bool Exists(const std::string& path) const = 0;
  /// The whole text of `path` in buffer form (CR LF line ends), its NUL kept after size()
  /// as LoadSourceText gives it. Raises when the text cannot be had.
  virtual std::string Read(const std::string& path) const = 0;
};

/// The files on disk, read with LoadSourceText.
class TDiskSourceProvider : public TSourceProvider {
 public:
  bool Exists(const std::string& path) const override;
  std::string Read(const std::string& path) const override;
};

/// The process's disk provider; lives as long as the process.
const TSourceProvider& DiskSources();

/// Editor buffers in front of another provider: a path with a buffer reads the buffer's
/// text, every other path goes to `fallback`. Buffers are looked up by the exact path
/// the parse asks for, so the editor layer registers them under the name the include
/// walker resolves.
class TEditorBufferSources : public TSourceProvider {
 public:
  explicit TEditorBufferSources(const TSourceProvider& fallback = DiskSources())
      : fallback_(fallback) {}

  /// Sets (or replaces) the text of an open buffer; `text` is in buffer form.
  void SetBuffer(const std::string& path, std::string text);
  /// Forgets the buffer of `path`: the file on disk is read again.
  void CloseBuffer(const std::string& path);

  bool Exists(const std::string& path) const override;
  std::string Read(const std::string& path) const override;

 private:
  const TSourceProvider& fallback_;
  mutable std::mutex mutex_;
  std::map<std::string, std::string> buffers_;  ///< guarded by mutex_
};

}  // namespace velmora
