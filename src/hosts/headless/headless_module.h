// The module, editor, reader, writer and view of the headless IDE, all over one
// THeadlessBuffer shared with the host. A module outlives its closing while the add-in
// holds a reference; it then has no buffer and its calls return nothing. Main thread only.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "hosts/headless/headless_ide.h"
#include "ide/module_base.h"

namespace velmora {

class THeadlessModule : public TModuleBase<THeadlessBuffer> {
 public:
  /// `buffer` is nullptr for the project's module, which has no editor here.
  using TModuleBase::TModuleBase;

  TIEditor* GetEditor() override;
  TIEditor* GetEditorOfFile(const std::string& fileName) override;

  /// ModuleDeleted to every notifier, then detaches them all and drops the buffer.
  void Close();
  /// Counts GetEditorOfFile calls, for tests of who reads through which editor.
  int EditorOfFileCalls = 0;
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
