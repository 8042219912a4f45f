#include "parsing/source_provider.h"

#include <utility>

#include "support/paths.h"
#include "support/text_buffer.h"

namespace velmora {

bool TDiskSourceProvider::Exists(const std::string& path) const {
  return FileExists(path);
}

std::string TDiskSourceProvider::Read(const std::string& path) const {
  return LoadSourceText(path);
}

const TSourceProvider& DiskSources() {
  static const TDiskSourceProvider disk;
  return disk;
}

void TEditorBufferSources::SetBuffer(const std::string& path, std::string text) {
  std::lock_guard lock(mutex_);
  buffers_[path] = std::move(text);
}

void TEditorBufferSources::CloseBuffer(const std::string& path) {
  std::lock_guard lock(mutex_);
  buffers_.erase(path);
}

bool TEditorBufferSources::Exists(const std::string& path) const {
  {
    std::lock_guard lock(mutex_);
    if (buffers_.count(path)) return true;
  }
  return fallback_.Exists(path);
}

std::string TEditorBufferSources::Read(const std::string& path) const {
  {
    std::lock_guard lock(mutex_);
    if (auto it = buffers_.find(path); it != buffers_.end()) return it->second;
  }
  return fallback_.Read(path);
}

}  // namespace velmora
