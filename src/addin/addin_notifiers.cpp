#include "addin/addin_notifiers.h"

#include <algorithm>

#include "addin/class_browser_expert.h"
#include "addin/editor_file_info_list.h"
#include "addin/tool_services.h"
#include "addin/vl_manager_interface.h"
#include "ide/tool_services.h"

namespace velmora {

// The IDE's notifications must never carry an exception back into the IDE; what fails
// inside one is dropped here, as the IDE would give the user no better word for it.
template <class F>
static void Guarded(F&& f) {
  try {
    f();
  } catch (...) {
  }
}

void TAddInNotifier::FileNotification(TFileNotification code, const std::string& fileName,
                                      bool& /*cancel*/) {
  Guarded([&] {
    switch (code) {
      case TFileNotification::FileOpened:
        expert_.FileOpened(fileName);
        break;
      case TFileNotification::FileClosing:
        expert_.FileClosing(fileName);
        break;
      case TFileNotification::ProjectOpened:
        expert_.ProjectStart(fileName, false);
        break;
      case TFileNotification::AddedToProject:
        expert_.FileAddedToProject(fileName);
        break;
      case TFileNotification::RemovedFromProject:
        expert_.FileRemovedFromProject(fileName);
        break;
      default:  // opening, project opening and closing, and codes above 7
        break;
    }
  });
}

void TAddInNotifier::EventNotification(TEventNotification /*code*/, bool& /*cancel*/) {}

void TProjectNotifier::Notify(TModuleNotification code, TIModule& /*module*/) {
  Guarded([&] {
    const std::string project = ToolServices ? ToolServices->ProjectName() : std::string();
    switch (code) {
      case TModuleNotification::ModuleDeleted:
        expert_.ProjectClosed();  // detaches and frees this notifier
        break;
      case TModuleNotification::ModuleRenamed:
        if (VLManager) VLManager->ProjectRenamed(project);
        break;
      case TModuleNotification::ModuleSaved:
        // A project saved under a new name is picked up by starting it again.
        expert_.ProjectStart(project, true);
        break;
    }
  });
}

void TProjectNotifier::ComponentRenamed(const std::string&, const std::string&) {}

void TCommonModuleNotifier::Notify(TModuleNotification code, TIModule& module) {
  Guarded([&] {
    switch (code) {
      case TModuleNotification::ModuleDeleted:
        list_.Forget(this);  // the list's reference was the last one: gone after this
        return;
      case TModuleNotification::ModuleRenamed: {
        const std::string newName = module.FileName();
        if (newName != fileName_) {
          if (EditorFileInfos) EditorFileInfos->Forget(fileName_);
          if (VLManager) VLManager->FileRenamed(fileName_, newName);
          fileName_ = newName;
        }
        break;
      }
      case TModuleNotification::ModuleSaved:
        // The editor and its file match again.
        if (EditorFileInfos) EditorFileInfos->Record(fileName_);
        if (VLManager) {
          VLManager->FileSaved(fileName_);
          VLManager->FileAdded(fileName_);
        }
        break;
    }
  });
}

void TCommonModuleNotifier::ComponentRenamed(const std::string&, const std::string&) {}

TCommonModuleList::~TCommonModuleList() {
  for (TCommonModuleNotifier* n : notifiers_) {
    if (ToolServices) {
      TIRef<TIModule> module(ToolServices->GetModule(n->FileName()));
      if (module) module->RemoveNotifier(n);
    }
    n->Release();
  }
}

bool TCommonModuleList::Watch(const std::string& fileName) {
  if (!ToolServices) return false;
  for (TCommonModuleNotifier* n : notifiers_)
    if (n->FileName() == fileName) return true;
  TIRef<TIModule> module(ToolServices->GetModule(fileName));
  if (!module) return false;
  auto* notifier = new TCommonModuleNotifier(fileName, expert_, *this);
  if (!module->AddNotifier(notifier)) {
    notifier->Release();
    return false;
  }
  notifiers_.push_back(notifier);
  return true;
}

void TCommonModuleList::Forget(TCommonModuleNotifier* notifier) {
  auto it = std::find(notifiers_.begin(), notifiers_.end(), notifier);
  if (it == notifiers_.end()) return;
  notifiers_.erase(it);
  notifier->Release();
}

}  // namespace velmora
