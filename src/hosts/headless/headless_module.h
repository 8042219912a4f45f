// The module, editor, reader, writer and view of the headless IDE, all over one
// THeadlessBuffer shared with the host. A module outlives its closing while the add-in
// holds a reference; it then has no buffer and its calls return nothing. Main thread only.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "hosts/headless/headless_ide.h"
#include "ide/module.h"
#include "ide/module_notifier_list.h"

namespace velmora {

class THeadlessModule : public TIModule {
 public:
  /// `buffer` is nullptr for the project's module, which has no editor here.
  THeadlessModule(std::string fileName, std::shared_ptr<THeadlessBuffer> buffer)
      : fileName_(std::move(fileName)), buffer_(std::move(buffer)) {}

  TIEditor* GetEditor() override;
  bool AddNotifier(TIModuleNotifier* notifier) override;
  bool RemoveNotifier(TIModuleNotifier* notifier) override;
  TIEditor* GetEditorOfFile(const std::string& fileName) override;
  std::string FileName() override { return fileName_; }

  /// Sends `code` to every attached notifier (a copy of the list, so a notifier may
  /// detach itself).
  void Notify(TModuleNotification code);
  /// ModuleDeleted to every notifier, then detaches them all and drops the buffer.
  void Close();
  void SetFileName(std::string fileName);
  const std::shared_ptr<THeadlessBuffer>& Buffer() const { return buffer_; }
  /// Counts GetEditorOfFile calls, for tests of who reads through which editor.
  int EditorOfFileCalls = 0;

 private:
  std::string fileName_;
  std::shared_ptr<THeadlessBuffer> buffer_;
  TModuleNotifierList notifiers_;
};

/// The editor of one buffer.
class THeadlessEditor : public TIEditor {
 public:
  explicit THeadlessEditor(std::shared_ptr<THeadlessBuffer> buffer) : buffer_(std::move(buffer)) {}
  TIEditReader* CreateReader() override;
  int ViewCount() override { return 1; }
  TIEditView* GetView(int index) override;
  TIEditWriter* CreateWriter() override;
  std::string FileName() override { return buffer_->FileName; }

 private:
  std::shared_ptr<THeadlessBuffer> buffer_;
};

}  // namespace velmora
