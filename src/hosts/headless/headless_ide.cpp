#include "hosts/headless/headless_ide.h"

#include <algorithm>

#include "hosts/headless/headless_menu.h"
#include "hosts/headless/headless_module.h"
#include "ide/notifiers.h"
#include "support/ansi.h"
#include "support/exception.h"
#include "support/paths.h"
#include "support/stream.h"

namespace velmora {
THeadlessIDE::THeadlessIDE() {
  BuildMenu();
  BuildComponents();
}

THeadlessIDE::~THeadlessIDE() {
  UnloadAddIns();
  CloseProject();
  while (!modules_.empty()) CloseFile(modules_.begin()->first);
  queue_.Shutdown();
}

// The IDE's own menus, in the order an IDE of this kind shows them; what matters to
// add-ins is the Project menu and its "ProjectAddItem".
void THeadlessIDE::BuildMenu() {
  menuBar_ =
      TIRef<THeadlessMenuItem>(new THeadlessMenuItem("", "MainMenu", mfEnabled | mfVisible, {}));
  struct TOwnItem {
    const char* Caption;
    const char* Name;
  };
  const struct {
    TOwnItem Menu;
    std::vector<TOwnItem> Items;
  } menus[] = {
      {{"&File", "FileMenu"}, {{"&Open...", "FileOpenItem"}, {"&Save", "FileSaveItem"}}},
      {{"&Edit", "EditMenu"}, {{"&Undo", "EditUndoItem"}}},
      {{"&Search", "SearchMenu"}, {{"&Find...", "SearchFindItem"}}},
      {{"&View", "ViewMenu"}, {{"&Project Manager", "ViewPrjMgrItem"}}},
      {{"&Project", "ProjectMenu"},
       {{"&Add to Project...", "ProjectAddItem"},
        {"&Remove from Project...", "ProjectRemoveItem"}}},
      {{"&Run", "RunMenu"}, {{"&Run", "RunRunItem"}}},
      {{"&Tools", "ToolsMenu"}, {{"&Environment Options...", "ToolsOptionsItem"}}},
      {{"&Help", "HelpMenu"}, {{"&Contents", "HelpContentsItem"}}},
  };
  for (const auto& m : menus) {
    TIRef<THeadlessMenuItem> menu(static_cast<THeadlessMenuItem*>(
        menuBar_->InsertItem(menuBar_->ItemCount(), m.Menu.Caption, m.Menu.Name, "", 0, 0, 0,
                             mfEnabled | mfVisible, {})));
    for (const TOwnItem& item : m.Items)
      ownItems_.emplace_back(static_cast<THeadlessMenuItem*>(menu->InsertItem(
          menu->ItemCount(), item.Caption, item.Name, "", 0, 0, 0, mfEnabled | mfVisible, {})));
    ownItems_.push_back(std::move(menu));
  }
}

// The forms an add-in may look for by class name: the main window with its menu, and
// one editor window with the controls editor integration rearranges.
void THeadlessIDE::BuildComponents() {
  TComponent* main = application_.Add("TAppBuilder", "AppBuilder");
  main->Add("TMainMenu", "MainMenu1");
  TComponent* editor = application_.Add("TEditWindow", "EditWindow_0");
  editor->Add("TTabControl", "ViewBar");
  editor->Add("TEditControl", "Editor");
  editor->Add("TMessageView", "MessageView");
  editor->Add("TStatusbar", "StatusBar");
  editor->Add("TPopupMenu", "EditorLocalMenu");
  editor->Add("TPopupMenu", "MsgViewPopupMenu");
}

void THeadlessIDE::UnloadAddIns() {
  UnloadExperts();
}

std::string THeadlessIDE::KeyOf(const std::string& fileName) const {
  std::string existing = ResolveExistingFile(fileName);
  return existing.empty() ? ToPosixSeparators(fileName) : existing;
}

THeadlessModule* THeadlessIDE::ModuleOf(const std::string& fileName) const {
  auto it = modules_.find(KeyOf(fileName));
  return it == modules_.end() ? nullptr : it->second.Get();
}

// ---- the project ----

void THeadlessIDE::OpenProject(const std::string& projectFile, std::vector<std::string> unitPaths) {
  CloseProject();
  const std::string key = KeyOf(projectFile);
  Broadcast(TFileNotification::ProjectOpening, key);
  project_.Open(key);
  for (const std::string& unit : unitPaths) project_.Add(KeyOf(unit));
  projectModule_ = TIRef<THeadlessModule>(new THeadlessModule(key, nullptr));
  Broadcast(TFileNotification::ProjectOpened, key);
}

void THeadlessIDE::CloseProject() {
  if (!project_.IsOpen()) return;
  Broadcast(TFileNotification::ProjectClosing, project_.FileName());
  TIRef<THeadlessModule> module = std::move(projectModule_);
  if (module) module->Close();
  project_.Close();
}

bool THeadlessIDE::SaveProject() {
  if (!projectModule_) return false;
  projectModule_->Notify(TModuleNotification::ModuleSaved);
  return true;
}

bool THeadlessIDE::RenameProject(const std::string& newProjectFile) {
  if (!projectModule_) return false;
  TIRef<THeadlessModule> module = projectModule_;
  project_.Rename(KeyOf(newProjectFile));
  module->SetFileName(project_.FileName());
  module->Notify(TModuleNotification::ModuleRenamed);
  module->Notify(TModuleNotification::ModuleSaved);
  return true;
}

bool THeadlessIDE::AddToProject(const std::string& fileName) {
  const std::string key = KeyOf(fileName);
  if (!project_.Add(key)) return false;
  Broadcast(TFileNotification::AddedToProject, key);
  return true;
}

bool THeadlessIDE::RemoveFromProject(const std::string& fileName) {
  const std::string key = KeyOf(fileName);
  if (!project_.Remove(key)) return false;
  Broadcast(TFileNotification::RemovedFromProject, key);
  return true;
}

// ---- files and buffers ----

bool THeadlessIDE::OpenFile(const std::string& fileName) {
  const std::string key = KeyOf(fileName);
  if (modules_.count(key)) {
    currentFile_ = key;
    return true;
  }
  Broadcast(TFileNotification::FileOpening, key);
  auto buffer = std::make_shared<THeadlessBuffer>();
  buffer->FileName = key;
  try {
    const std::string raw = ReadWholeFile(key);
    buffer->Style = DetectLineEndStyle(raw);
    buffer->Text = ToBufferForm(raw);
  } catch (const std::exception& e) {
    ReportException(e.what());
    return false;
  }
  modules_.emplace(key, TIRef<THeadlessModule>(new THeadlessModule(key, std::move(buffer))));
  currentFile_ = key;
  Broadcast(TFileNotification::FileOpened, key);
  return true;
}

bool THeadlessIDE::ReloadFile(const std::string& fileName) {
  THeadlessModule* module = ModuleOf(fileName);
  if (!module || !module->Buffer() || module->Buffer()->Modified) return false;
  try {
    const std::string raw = ReadWholeFile(module->FileName());
    module->Buffer()->Style = DetectLineEndStyle(raw);
    module->Buffer()->Text = ToBufferForm(raw);
  } catch (const std::exception& e) {
    ReportException(e.what());
    return false;
  }
  return true;
}

bool THeadlessIDE::IsFileOpen(const std::string& fileName) {
  return ModuleOf(fileName) != nullptr;
}

bool THeadlessIDE::CloseFile(const std::string& fileName) {
  auto it = modules_.find(KeyOf(fileName));
  if (it == modules_.end()) return false;
  const std::string key = it->first;
  Broadcast(TFileNotification::FileClosing, key);
  TIRef<THeadlessModule> module = std::move(it->second);
  modules_.erase(key);
  if (currentFile_ == key) currentFile_.clear();
  module->Close();
  return true;
}

bool THeadlessIDE::SaveFile(const std::string& fileName) {
  THeadlessModule* module = ModuleOf(fileName);
  if (!module || !module->Buffer()) return false;
  THeadlessBuffer& buffer = *module->Buffer();
  try {
    WriteFileAtomically(buffer.FileName, FromBufferForm(buffer.Text, buffer.Style));
  } catch (const std::exception& e) {
    ReportException(e.what());
    return false;
  }
  buffer.Modified = false;
  module->Notify(TModuleNotification::ModuleSaved);
  return true;
}

bool THeadlessIDE::SaveFileAs(const std::string& fileName, const std::string& newName) {
  auto it = modules_.find(KeyOf(fileName));
  if (it == modules_.end() || !it->second->Buffer()) return false;
  const std::string oldKey = it->first;
  TIRef<THeadlessModule> module = it->second;
  THeadlessBuffer& buffer = *module->Buffer();
  const std::string newPath = ToPosixSeparators(newName);
  try {
    WriteFileAtomically(newPath, FromBufferForm(buffer.Text, buffer.Style));
  } catch (const std::exception& e) {
    ReportException(e.what());
    return false;
  }
  const std::string newKey = KeyOf(newPath);
  modules_.erase(oldKey);
  modules_[newKey] = module;
  if (currentFile_ == oldKey) currentFile_ = newKey;
  buffer.Modified = false;
  module->SetFileName(newKey);
  module->Notify(TModuleNotification::ModuleRenamed);
  module->Notify(TModuleNotification::ModuleSaved);
  return true;
}

THeadlessBuffer* THeadlessIDE::Buffer(const std::string& fileName) {
  THeadlessModule* module = ModuleOf(fileName);
  return module ? module->Buffer().get() : nullptr;
}

bool THeadlessIDE::SetBufferText(const std::string& fileName, std::string_view text) {
  THeadlessBuffer* buffer = Buffer(fileName);
  if (!buffer) return false;
  buffer->Text = ToBufferForm(text);
  buffer->Modified = true;
  return true;
}

bool THeadlessIDE::SetCurrentFile(const std::string& fileName) {
  if (!ModuleOf(fileName)) return false;
  currentFile_ = KeyOf(fileName);
  return true;
}

TIModule* THeadlessIDE::GetModule(const std::string& fileName) {
  THeadlessModule* module = ModuleOf(fileName);
  if (!module && projectModule_ && KeyOf(fileName) == project_.FileName())
    module = projectModule_.Get();
  return TIRef<TIModule>::Share(module).Detach();
}

TIMainMenu* THeadlessIDE::GetMainMenu() {
  return new THeadlessMainMenu(menuBar_.Get());
}

}  // namespace velmora
