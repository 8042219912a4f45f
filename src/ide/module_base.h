// The part of a module that is the same in every host: its file name, the buffer it
// shares with the host's editor, and its notifiers. The host's module adds the editors.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "ide/module.h"
#include "ide/module_notifier_list.h"

namespace velmora {

/// True when `fileName` names the file `bufferFileName`: compared without regard to
/// case or separator.
bool IsBufferFile(const std::string& fileName, const std::string& bufferFileName);

/// `TBuffer` is the host's buffer, with a `std::string FileName` field. The buffer is
/// null for the project's module and for a host module that dropped it on close. Main
/// thread only.
template <class TBuffer>
class TModuleBase : public TIModule {
 public:
  TModuleBase(std::string fileName, std::shared_ptr<TBuffer> buffer)
      : fileName_(std::move(fileName)), buffer_(std::move(buffer)) {}

  bool AddNotifier(TIModuleNotifier* notifier) override { return notifiers_.Add(notifier); }
  bool RemoveNotifier(TIModuleNotifier* notifier) override { return notifiers_.Remove(notifier); }
  std::string FileName() override { return fileName_; }

  /// Sends `code` to every attached notifier; one may detach itself.
  void Notify(TModuleNotification code) { notifiers_.Notify(code, *this); }
  /// The module saved under another name: the buffer's name follows.
  void SetFileName(std::string fileName) {
    fileName_ = std::move(fileName);
    if (buffer_) buffer_->FileName = fileName_;
  }
  const std::shared_ptr<TBuffer>& Buffer() const { return buffer_; }

 protected:
  /// The module's end: ModuleDeleted to its notifiers, which are then detached for good.
  void CloseNotifiers() { notifiers_.Close(*this); }
  /// The module has a buffer and it is of `fileName`.
  bool ShowsFile(const std::string& fileName) const {
    return buffer_ && IsBufferFile(fileName, buffer_->FileName);
  }
  void DropBuffer() { buffer_.reset(); }

 private:
  std::string fileName_;
  std::shared_ptr<TBuffer> buffer_;  ///< shared with the host and the editors
  TModuleNotifierList notifiers_;
};

}  // namespace velmora
