#include "addin/class_browser_expert.h"

#include <algorithm>

#include "addin/addin_notifiers.h"
#include "addin/editor_file_info_list.h"
#include "addin/entry.h"
#include "addin/tool_services.h"
#include "addin/vl_manager_interface.h"
#include "ide/component.h"
#include "ide/menus.h"
#include "ide/module.h"
#include "ide/tool_services.h"
#include "settings/project_settings.h"
#include "settings/registry_ini_store.h"
#include "settings/vl_settings.h"
#include "support/ansi.h"
#include "support/file_types.h"
#include "support/paths.h"

namespace velmora {

TVLSettings* VLSettings = nullptr;
TVLManagerInterface* VLManager = nullptr;

namespace {

constexpr TMenuFlags kCommandFlags = mfEnabled | mfVisible;
constexpr TMenuFlags kSeparatorFlags = mfVisible;

void RegisterDesktopFileTypes() {
  // No icon folder is known to a library loaded into a host; the types are named
  // without icons, as when the settings hold no icon file.
  RegisterFileTypes(DefaultFileTypeRegistration(""));
}

/// The commands that need an open project.
constexpr std::string_view kProjectBoundItems[] = {
    "VLProjectOptionsMenuItem", "VLFindMenuItem",        "VLQuickFindCodeMenuItem",
    "VLQuickFindTreeMenuItem",  "VLBrowseBackMenuItem",  "VLExportHelpMenuItem",
    "VLAddFieldMenuItem",       "VLAddPropertyMenuItem", "VLAddMethodMenuItem",
    "VLAddDescriptionMenuItem",
};

/// The extensions of a project's own files, which are not sources to parse.
bool IsProjectOwnFile(const std::string& fileName) {
  const std::string ext = AnsiUpperCase(ExtractFileExt(fileName));
  return ext == ".BPR" || ext == ".MAK" || ext == ".DOF" || ext == ".RES";
}

}  // namespace

void (*TClassBrowserExpert::RegisterFileTypesHook)() = &RegisterDesktopFileTypes;

TClassBrowserExpert::TClassBrowserExpert() : menuItems_(kVLMenuRecordCount) {
  active_ = true;
  MarkSplash(0);
  try {
    store_ = std::make_unique<TRegistryIniStore>(TRegistryIniStore::DefaultFileName());
    store_->OnError = [](const std::string& message) {
      if (ToolServices) ToolServices->ReportException(message);
    };
    store_->Load();
    settings_ = std::make_unique<TVLSettings>();
    VLSettings = settings_.get();
    settings_->Load(*store_);
    moduleList_ = std::make_unique<TCommonModuleList>(*this);
    fileInfos_ = std::make_unique<TEditorFileInfoList>();
    EditorFileInfos = fileInfos_.get();
    BuildMenu();
    addInNotifier_ = TIRef<TAddInNotifier>(new TAddInNotifier(*this));
    if (ToolServices) ToolServices->AddNotifier(addInNotifier_.Get());
    UpdateMenu();
    if (RegisterFileTypesHook) RegisterFileTypesHook();
    manager_ = CreateManager();
    VLManager = manager_.get();
    StartUpManager();
  } catch (...) {
    // The destructor will not run: nothing the IDE holds may point into this object.
    if (addInNotifier_ && ToolServices) ToolServices->RemoveNotifier(addInNotifier_.Get());
    VLManager = nullptr;
    VLSettings = nullptr;
    EditorFileInfos = nullptr;
    MarkSplash(1);
    throw;
  }
  MarkSplash(1);
}

TClassBrowserExpert::~TClassBrowserExpert() {
  if (!active_) return;
  furtherList_.clear();
  // Children before their parents, the root last.
  for (auto it = menuItems_.rbegin(); it != menuItems_.rend(); ++it) it->Reset();
  if (addInNotifier_) {
    if (ToolServices) ToolServices->RemoveNotifier(addInNotifier_.Get());
    addInNotifier_.Reset();
  }
  CloseProjectState(false);
  projectFiles_.clear();
  manager_.reset();
  VLManager = nullptr;
  if (settings_ && store_) {
    settings_->Save(*store_);
    store_->Flush();
  }
  settings_.reset();
  VLSettings = nullptr;
  moduleList_.reset();
  EditorFileInfos = nullptr;
  fileInfos_.reset();
  if (ClassBrowserExpert == this) ClassBrowserExpert = nullptr;
}

std::string TClassBrowserExpert::Author() {
  return "Velmora developers";
}

void TClassBrowserExpert::BuildMenu() {
  if (!active_ || !ToolServices) return;
  TIRef<TIMainMenu> mainMenu(ToolServices->GetMainMenu());
  if (!mainMenu) return;
  TIRef<TIMenuItem> projectAdd(mainMenu->FindMenuItem("ProjectAddItem"));
  if (!projectAdd) return;
  TIRef<TIMenuItem> projectMenu(projectAdd->Parent());
  TIRef<TIMenuItem> bar(mainMenu->MenuItems());
  if (!projectMenu || !bar) return;
  for (int i = 0; i < kVLMenuRecordCount; ++i) {
    const TVLMenuRecord& record = kVLMenuRecords[i];
    const std::string caption(LoadResString(record.CaptionId));
    const std::string name(record.Name);
    TIMenuItem* item = nullptr;
    switch (record.Kind) {
      case TVLMenuItemKind::Unused:
        continue;
      case TVLMenuItemKind::Root:
        item = bar->InsertItem(projectMenu->Index() + 1, caption, name, "", 0, 0, 0, kCommandFlags,
                               {});
        break;
      default: {
        TIMenuItem* parent = menuItems_[static_cast<size_t>(record.Parent)].Get();
        if (!parent) continue;
        const bool command = record.Kind == TVLMenuItemKind::Command;
        TMenuClickHandler onClick;
        if (command) onClick = [this, c = record.Command](TIMenuItem&) { OnMenuClick(c); };
        item = parent->InsertItem(
            parent->ItemCount() + 1, caption, name, "", 0, 0, 0,
            record.Kind == TVLMenuItemKind::Separator ? kSeparatorFlags : kCommandFlags,
            std::move(onClick));
        break;
      }
    }
    menuItems_[static_cast<size_t>(i)] = TIRef<TIMenuItem>(item);
  }
}

void TClassBrowserExpert::UpdateMenu() {
  if (!active_ || !settings_) return;
  const TVLSettings& s = *settings_;
  const struct {
    std::string_view Item;
    TShortCut Key;
  } hotKeys[] = {
      {"VLMenuItem", s.HKShow},
      {"VLClassHierarchyMenuItem", s.HKClassHierarchy},
      {"VLContextBarMenuItem", s.HKContextBar},
      {"VLFindMenuItem", s.HKFind},
      {"VLQuickFindCodeMenuItem", s.HKQuickFindCode},
      {"VLQuickFindTreeMenuItem", s.HKQuickFindTree},
      {"VLBrowseBackMenuItem", s.HKCodeBack},
      {"VLAddFieldMenuItem", s.HKAddMemb},
      {"VLAddPropertyMenuItem", s.HKAddProp},
      {"VLAddMethodMenuItem", s.HKAddMeth},
  };
  for (const auto& h : hotKeys)
    if (TIMenuItem* item = MenuItem(MenuRecordIndex(h.Item))) item->SetShortCut(h.Key);
  // The views can be opened with no project; only what needs a project waits for one.
  const TMenuFlags flags = projectFile_.empty() ? mfVisible : (mfEnabled | mfVisible);
  for (std::string_view name : kProjectBoundItems)
    if (TIMenuItem* item = MenuItem(MenuRecordIndex(name)))
      item->SetFlags(mfEnabled | mfVisible, flags);
}

void TClassBrowserExpert::OnMenuClick(TVLMenuCommand command) {
  if (!manager_) return;
  manager_->Command(command);
  if (command == TVLMenuCommand::Options || command == TVLMenuCommand::BrowseBack) UpdateMenu();
}

// The class information loaded at start. The settings name no last project whose class
// information would be loaded here: a project's own is loaded by the manager when the
// project opens. What the settings do name is the external files' class information
// ("Use" and "ClassInfoFile" of the external files), loaded when it is there.
void TClassBrowserExpert::StartUpManager() {
  if (!manager_ || !settings_) return;
  if (settings_->UseExternals && !settings_->ClassInfoFile.empty() &&
      FileExists(settings_->ClassInfoFile))
    manager_->StartUpExternals(settings_->ClassInfoFile);
}

void TClassBrowserExpert::FileOpened(const std::string& fileName) {
  moduleList_->Watch(fileName);
  fileInfos_->Record(fileName);
  if (manager_) manager_->FileOpened(fileName);
}

void TClassBrowserExpert::FileClosing(const std::string& fileName) {
  // The module notifier hears of the close itself and leaves the list then; the manager
  // stops reading the file's buffer.
  fileInfos_->Forget(fileName);
  if (manager_) manager_->FileClosing(fileName);
}

void TClassBrowserExpert::ProjectStart(const std::string& projectFile, bool saved) {
  if (!projectFile_.empty() && !SameText(projectFile_, projectFile)) {
    CloseProjectState(true);
    if (manager_) manager_->ProjectClosed();
  } else {
    CloseProjectState(false);
  }
  if (!saved && settings_) {
    // No setting asks for the saved class information here: the manager loads it with
    // the project.
    settings_->ProjectSettings().Load(projectFile);
  }
  projectFile_ = projectFile;
  projectFiles_.clear();
  if (ToolServices) {
    ToolServices->EnumProjectUnits([this](const std::string& fileName, const std::string&) {
      if (!IsProjectOwnFile(fileName) &&
          std::find(projectFiles_.begin(), projectFiles_.end(), fileName) == projectFiles_.end())
        projectFiles_.push_back(fileName);
      return true;
    });
    projectModule_ = TIRef<TIModule>(ToolServices->GetModule(projectFile));
  }
  if (projectModule_) {
    projectNotifier_ = TIRef<TProjectNotifier>(new TProjectNotifier(*this));
    projectModule_->AddNotifier(projectNotifier_.Get());
    if (manager_) manager_->ProjectChanged(projectFile_, projectFiles_);
  }
  UpdateMenu();
}

void TClassBrowserExpert::ProjectClosed() {
  CloseProjectState(true);
  if (manager_) manager_->ProjectClosed();
}

void TClassBrowserExpert::CloseProjectState(bool updateMenu) {
  projectFile_.clear();
  projectFiles_.clear();
  if (projectNotifier_) {
    if (projectModule_) projectModule_->RemoveNotifier(projectNotifier_.Get());
    projectNotifier_.Reset();
  }
  projectModule_.Reset();
  if (updateMenu) UpdateMenu();
}

void TClassBrowserExpert::FileAddedToProject(const std::string& fileName) {
  projectFiles_.push_back(fileName);
  if (manager_) manager_->FileAdded(fileName);
}

void TClassBrowserExpert::FileRemovedFromProject(const std::string& fileName) {
  auto it = std::find_if(projectFiles_.begin(), projectFiles_.end(),
                         [&](const std::string& f) { return SameText(f, fileName); });
  if (it != projectFiles_.end()) projectFiles_.erase(it);
  if (manager_) manager_->FileRemoved(fileName, true);
}

// The add-in's mark on the IDE's splash form while it loads: its logo and its name,
// grey while loading and black when loaded. Only the components are made here; their
// look (and so the state) belongs to a host that draws them.
void TClassBrowserExpert::MarkSplash(int /*state*/) {
  if (!ToolServices) return;
  TIComponent& app = ToolServices->Application();
  TIComponent* form = nullptr;
  for (int i = 0; i < app.ComponentCount() && !form; ++i) {
    TIComponent* c = app.Component(i);
    const std::string cls = AnsiUpperCase(c->ClassName());
    if (cls.size() >= 4 && cls.compare(cls.size() - 4, 4, "FORM") == 0) form = c;
  }
  if (!form) return;
  if (!FindComponentByName(*form, "VLSplashLogo")) {
    form->CreateComponent("TImage", "VLSplashLogo");
    form->CreateComponent("TLabel", "VLSplashNameLabel");
  }
}

}  // namespace velmora
