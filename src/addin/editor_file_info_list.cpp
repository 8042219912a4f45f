#include "addin/editor_file_info_list.h"

#include <sys/stat.h>

#include "ide/tool_services.h"
#include "support/paths.h"

namespace velmora {

TEditorFileInfoList* EditorFileInfos = nullptr;

TEditorFileInfoList::TStamp TEditorFileInfoList::StampOf(const std::string& fileName) {
  struct stat st {};
  if (::stat(fileName.c_str(), &st) != 0) return {};
  return {.Seconds = static_cast<int64_t>(st.st_mtim.tv_sec),
          .Nanoseconds = static_cast<int64_t>(st.st_mtim.tv_nsec),
          .Size = static_cast<int64_t>(st.st_size)};
}

void TEditorFileInfoList::Record(const std::string& fileName) {
  files_[ToPosixSeparators(fileName)] = StampOf(fileName);
}

void TEditorFileInfoList::Forget(const std::string& fileName) {
  files_.erase(ToPosixSeparators(fileName));
}

bool TEditorFileInfoList::Check(const std::string& fileName) const {
  auto it = files_.find(ToPosixSeparators(fileName));
  // A file gone from the disk leaves its editor as the only copy: nothing to reload.
  if (it == files_.end()) return true;
  const TStamp now = StampOf(fileName);
  return now.Size < 0 || now == it->second;
}

bool TEditorFileInfoList::ReloadIfStale(TIToolServices& ide, const std::string& fileName) {
  if (Check(fileName)) return true;
  if (!ide.ReloadFile(fileName)) return false;
  Record(fileName);
  return true;
}

}  // namespace velmora
