// The add-in with its real manager, loaded into a headless IDE through its entry point,
// over a scratch copy of the example project: what the manager's end-to-end tests share.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "addin/class_browser_expert.h"
#include "addin/entry.h"
#include "addin/tool_services.h"
#include "addin/vl_manager.h"
#include "addin/vl_manager_interface.h"
#include "hosts/headless/headless_fixture.h"
#include "model/class_list.h"
#include "model/model_text.h"
#include "settings/vl_settings.h"
#include "views/class_view.h"
#include "views/class_view_model_listener.h"
#include "views/class_view_text.h"

namespace velmora::test {

/// Sets an environment variable for the fixture's life.
class TEnvVar {
 public:
  TEnvVar(const char* name, const std::string& value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old, had_ = true;
    ::setenv(name, value.c_str(), 1);
  }
  ~TEnvVar() {
    if (had_)
      ::setenv(name_, old_.c_str(), 1);
    else
      ::unsetenv(name_);
  }
  TEnvVar(const TEnvVar&) = delete;
  TEnvVar& operator=(const TEnvVar&) = delete;

 private:
  const char* name_;
  std::string old_;
  bool had_ = false;
};

/// The example project's units, in the order its project file lists them.
inline const std::vector<std::string> kKilnLogUnits = {
    "KilnLog.cpp",     "MainForm.cpp",   "ScheduleDlg.cpp",
    "FiringTypes.cpp", "ExportUnit.pas", "GlazeForm.pas",
};

struct TManagedAddIn {
  explicit TManagedAddIn(TVLManagerOptions options = {.Threads = 2})
      : config(dir / "config"), configEnv("XDG_CONFIG_HOME", config) {
    std::filesystem::create_directories(config);
    std::filesystem::copy(std::string(VELMORA_SOURCE_DIR) + "/examples", dir.path,
                          std::filesystem::copy_options::recursive);
    TClassBrowserExpert::RegisterFileTypesHook = nullptr;
    InstallVLManager(options);
    loaded = ide.LoadAddIn(&INITEXPERT0017);
  }
  ~TManagedAddIn() {
    if (manager()) manager()->RemoveView(&listener);
    view.reset();
    ide.UnloadAddIns();
    SetManagerFactory({});
    ToolServices = nullptr;  // the entry kept this IDE, which goes now
  }
  TManagedAddIn(const TManagedAddIn&) = delete;
  TManagedAddIn& operator=(const TManagedAddIn&) = delete;

  /// Writes a file under the scratch folder, making its folders.
  std::string Write(const std::string& name, std::string_view text) {
    std::filesystem::create_directories(std::filesystem::path(dir / name).parent_path());
    return dir.Write(name, text);
  }

  TVLManager* manager() const { return TVLManager::Instance(); }

  std::string KilnLog(const std::string& name = "") const {
    return dir / ("KilnLog" + (name.empty() ? std::string() : "/" + name));
  }
  std::string ProjectFile() const { return KilnLog("KilnLog.bpr"); }

  /// Opens the example project and waits until its parse is merged.
  void OpenKiln() {
    std::vector<std::string> units;
    for (const std::string& unit : kKilnLogUnits) units.push_back(KilnLog(unit));
    ide.OpenProject(ProjectFile(), units);
    manager()->WaitUntilIdle();
  }

  /// Shows the manager's model in a class view of its own, registered with the manager.
  void ShowClassView() {
    view = std::make_unique<TClassView>(*VLSettings);
    view->SetSources({.ProjectName = "KilnLog",
                      .ProjectClasses = &manager()->ProjectClasses(),
                      .ExternalClasses = &manager()->ExternalClasses(),
                      .ProjectFiles = &manager()->ProjectFiles(),
                      .ExternalFiles = &manager()->ExternalFiles()});
    listener.view = view.get();
    manager()->AddView(&listener);
  }
  std::string ViewText() {
    view->ExpandAll();
    return RenderClassViewText(*view, TClassView::pgClasses) +
           RenderClassViewText(*view, TClassView::pgFiles);
  }

  TClassDescription* FindClass(const std::string& name) {
    std::lock_guard lock(manager()->ProjectClasses().Lock);
    return manager()->ProjectClasses().Find(name);
  }

  /// Passes model changes on to `view` once it exists.
  struct TLateListener : TModelViewListener {
    void ModelChanged() override {
      if (view) view->Refresh();
    }
    void FileRemoving(const std::string& fileName) override {
      if (view) view->RemoveFileObjects(fileName);
    }
    TClassView* view = nullptr;
  };

  TScratch dir;
  std::string config;
  TEnvVar configEnv;
  THeadlessIDE ide;
  bool loaded = false;
  // Made after the expert (it needs the settings), gone before it.
  std::unique_ptr<TClassView> view;
  TLateListener listener;
};

}  // namespace velmora::test
