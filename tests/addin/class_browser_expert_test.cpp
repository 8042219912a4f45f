// The add-in loaded into the headless IDE through its entry point: its menu right of the
// Project menu, the enabled-state rule, and the IDE's notifications reaching the
// manager; then its shutdown.
#include <gtest/gtest.h>

#include <stdexcept>

#include "addin/addin_notifiers.h"
#include "addin/class_browser_expert.h"
#include "addin/entry.h"
#include "addin/tool_services.h"
#include "addin/vl_manager_interface.h"
#include "addin_fixture.h"
#include "hosts/headless/headless_menu.h"
#include "ide/menus.h"
#include "settings/registry_ini_store.h"
#include "settings/vl_settings.h"
#include "support/paths.h"

namespace velmora {
namespace {

using test::TScratch;

/// Writes each manager call as one line, file names without their folder.
class TRecordingManager : public TVLManagerInterface {
 public:
  explicit TRecordingManager(std::vector<std::string>& log) : log_(log) {}
  void StartUp(const std::string& file) override { Log("StartUp " + Base(file)); }
  void ProjectChanged(const std::string& project, const std::vector<std::string>& files) override {
    std::string line = "ProjectChanged " + Base(project);
    for (const std::string& f : files) line += " " + Base(f);
    Log(line);
  }
  void ProjectClosed() override { Log("ProjectClosed"); }
  void ProjectRenamed(const std::string& name) override { Log("ProjectRenamed " + Base(name)); }
  void FileAdded(const std::string& file) override { Log("FileAdded " + Base(file)); }
  void FileRemoved(const std::string& file, bool update) override {
    Log("FileRemoved " + Base(file) + (update ? " update" : ""));
  }
  void FileSaved(const std::string& file) override { Log("FileSaved " + Base(file)); }
  void FileRenamed(const std::string& from, const std::string& to) override {
    Log("FileRenamed " + Base(from) + " " + Base(to));
  }
  void Command(TVLMenuCommand command) override {
    Log("Command " + std::to_string(static_cast<int>(command)));
  }
  void StartUpExternals(const std::string& file) override { Log("StartUpExternals " + Base(file)); }
  void FileOpened(const std::string& file) override { Log("FileOpened " + Base(file)); }
  void FileClosing(const std::string& file) override { Log("FileClosing " + Base(file)); }

 private:
  static std::string Base(const std::string& f) {
    return std::filesystem::path(f).filename().string();
  }
  void Log(std::string line) { log_.push_back(std::move(line)); }
  std::vector<std::string>& log_;
};

/// A headless IDE with the add-in loaded, its settings in a scratch folder and its
/// manager writing into `log`.
struct TLoadedAddIn {
  explicit TLoadedAddIn(bool withManager = true)
      : env("XDG_CONFIG_HOME", dir.path), dataEnv("XDG_DATA_HOME", dir / "data") {
    TClassBrowserExpert::RegisterFileTypesHook = nullptr;
    if (withManager)
      SetManagerFactory([this] { return std::make_unique<TRecordingManager>(log); });
    else
      SetManagerFactory({});
    loaded = ide.LoadAddIn(&INITEXPERT0017);
  }
  ~TLoadedAddIn() {
    ide.UnloadAddIns();
    SetManagerFactory({});
    ToolServices = nullptr;  // the entry kept this IDE, which goes now
  }
  std::string MenuDump() {
    TIRef<TIMainMenu> menu(ide.GetMainMenu());
    auto* root = static_cast<THeadlessMenuItem*>(
        TIRef<TIMenuItem>(menu->FindMenuItem("VLRootMenuItem")).Get());
    return root ? root->Dump() : "(no menu)";
  }
  TMenuFlags FlagsOf(const std::string& name) {
    TIRef<TIMainMenu> menu(ide.GetMainMenu());
    TIRef<TIMenuItem> item(menu->FindMenuItem(name));
    return item ? item->Flags() : 0;
  }

  struct TEnv {
    TEnv(const char* name, const std::string& value) : name_(name) {
      if (const char* old = std::getenv(name)) old_ = old;
      ::setenv(name, value.c_str(), 1);
    }
    ~TEnv() {
      if (old_.empty())
        ::unsetenv(name_);
      else
        ::setenv(name_, old_.c_str(), 1);
    }
    const char* name_;
    std::string old_;
  };

  TScratch dir;
  TEnv env;
  TEnv dataEnv;
  std::vector<std::string> log;
  THeadlessIDE ide;
  bool loaded = false;
};

TEST(ClassBrowserExpertTest, TheEntryRegistersTheExpert) {
  TLoadedAddIn addIn;
  EXPECT_TRUE(addIn.loaded);
  ASSERT_EQ(addIn.ide.ExpertCount(), 1);
  TIExpert* expert = addIn.ide.Expert(0);
  EXPECT_EQ(expert->Name(), "Velmora");
  EXPECT_EQ(expert->IDString(), "Quarnby.Velmora");
  EXPECT_EQ(expert->Style(), TExpertStyle::AddIn);
  EXPECT_EQ(expert->State(), 0u);
  EXPECT_EQ(expert->MenuText(), "");
  EXPECT_EQ(expert->Glyph(), 0u);
  EXPECT_TRUE(addIn.ide.Reports().empty());
}

// Caption|name|flags|shortcut, children indented, with no project open and the hot
// keys of a first start.
constexpr char kMenuWithoutProject[] =
    "&Velmora|VLMenuItem|6|8313\n"
    "Class &Hierarchy|VLClassHierarchyMenuItem|6|49224\n"
    "Co&ntext Bar|VLContextBarMenuItem|6|24697\n"
    "&Options...|VLOptionsMenuItem|6|0\n"
    "P&roject Options...|VLProjectOptionsMenuItem|4|0\n"
    "-|VLSeparatorMenuItem2|4|0\n"
    "&Help Export Manager...|VLExportHelpMenuItem|4|0\n"
    "-|VLSeparatorMenuItem3|4|0\n"
    "&Find...|VLFindMenuItem|4|24646\n"
    "Quick &Code Find|VLQuickFindCodeMenuItem|4|49275\n"
    "Quick &Tree Find|VLQuickFindTreeMenuItem|4|57467\n"
    "&Browse Back|VLBrowseBackMenuItem|4|49160\n"
    "Browse Histor&y|VLBrowseHistoryMenuItem|6|0\n"
    "-|VLSeparatorMenuItem4|4|0\n"
    "Add F&ield...|VLAddFieldMenuItem|4|57409\n"
    "Add &Property...|VLAddPropertyMenuItem|4|49232\n"
    "Add Me&thod...|VLAddMethodMenuItem|4|24641\n"
    "Add &Description...|VLAddDescriptionMenuItem|4|0\n"
    "-|VLSeparatorMenuItem5|4|0\n"
    "Insert Code &Marker|VLCodeInsertMenuItem|6|0\n"
    "  &Global insert end|VLCodeInsertGlobalMarkerMenuItem|6|0\n"
    "  &Class implementation end|VLCodeInsertClassMarkerMenuItem|6|0\n"
    "  &Method implementation begin|VLCodeInsertMethodMarkerMenuItem|6|0\n"
    "  &Help Description|VLCodeInsertHelpDescriptionMenuItem|6|0\n"
    "-|VLSeparatorMenuItem6|4|0\n"
    "Velmora He&lp|VLHelpMenuItem|6|0\n"
    "&About...|VLAboutMenuItem|6|0\n";

TEST(ClassBrowserExpertTest, TheMenuStandsRightOfTheProjectMenuWithEveryItem) {
  TLoadedAddIn addIn;
  EXPECT_EQ(addIn.MenuDump(), kMenuWithoutProject);
  TIRef<TIMainMenu> menu(addIn.ide.GetMainMenu());
  TIRef<TIMenuItem> root(menu->FindMenuItem("VLRootMenuItem"));
  TIRef<TIMenuItem> project(TIRef<TIMenuItem>(menu->FindMenuItem("ProjectAddItem"))->Parent());
  EXPECT_EQ(root->Caption(), "&Velmora");
  EXPECT_EQ(root->Index(), project->Index() + 1);
  EXPECT_EQ(TIRef<TIMenuItem>(menu->FindMenuItem("VLSeparatorMenuItem1")).Get(), nullptr);
}

TEST(ClassBrowserExpertTest, TheMenuFollowsTheProjectMenuWhereverItStands) {
  for (int before : {0, 3}) {
    TScratch dir;
    TLoadedAddIn::TEnv env("XDG_CONFIG_HOME", dir.path);
    TClassBrowserExpert::RegisterFileTypesHook = nullptr;
    THeadlessIDE ide;
    // Menus of other add-ins in front of the IDE's own move the Project menu along.
    std::vector<TIRef<TIMenuItem>> others;
    for (int i = 0; i < before; ++i)
      others.emplace_back(ide.MenuBar().InsertItem(0, "Other", "Other" + std::to_string(i), "", 0,
                                                   0, 0, mfEnabled | mfVisible, {}));
    ASSERT_TRUE(ide.LoadAddIn(&INITEXPERT0017));
    TIRef<TIMainMenu> menu(ide.GetMainMenu());
    TIRef<TIMenuItem> root(menu->FindMenuItem("VLRootMenuItem"));
    TIRef<TIMenuItem> project(menu->FindMenuItem("ProjectMenu"));
    ASSERT_TRUE(root) << before;
    EXPECT_EQ(project->Index(), 4 + before) << before;
    EXPECT_EQ(root->Index(), 5 + before) << before;
    ide.UnloadAddIns();
    ToolServices = nullptr;
  }
}

TEST(ClassBrowserExpertTest, ProjectBoundCommandsWaitForAProject) {
  TLoadedAddIn addIn;
  const char* bound[] = {"VLProjectOptionsMenuItem", "VLFindMenuItem",
                         "VLQuickFindCodeMenuItem",  "VLQuickFindTreeMenuItem",
                         "VLBrowseBackMenuItem",     "VLExportHelpMenuItem",
                         "VLAddFieldMenuItem",       "VLAddPropertyMenuItem",
                         "VLAddMethodMenuItem",      "VLAddDescriptionMenuItem"};
  const char* always[] = {"VLMenuItem",        "VLClassHierarchyMenuItem", "VLContextBarMenuItem",
                          "VLOptionsMenuItem", "VLBrowseHistoryMenuItem",  "VLCodeInsertMenuItem",
                          "VLHelpMenuItem",    "VLAboutMenuItem"};
  for (const char* name : bound) EXPECT_EQ(addIn.FlagsOf(name), mfVisible) << name;
  for (const char* name : always) EXPECT_EQ(addIn.FlagsOf(name), mfEnabled | mfVisible) << name;

  const std::string a = addIn.dir.Write("a.cpp", "");
  addIn.ide.OpenProject(addIn.dir.Write("demo.bpr", ""), {a});
  for (const char* name : bound) EXPECT_EQ(addIn.FlagsOf(name), mfEnabled | mfVisible) << name;
  for (const char* name : always) EXPECT_EQ(addIn.FlagsOf(name), mfEnabled | mfVisible) << name;

  addIn.ide.CloseProject();
  for (const char* name : bound) EXPECT_EQ(addIn.FlagsOf(name), mfVisible) << name;
}

TEST(ClassBrowserExpertTest, FileAndProjectNotificationsReachTheManager) {
  TLoadedAddIn addIn;
  TScratch& dir = addIn.dir;
  const std::string a = dir.Write("a.cpp", "int a;\n");
  const std::string b = dir.Write("b.pas", "unit b;\n");
  const std::string res = dir.Write("demo.res", "");
  const std::string project = dir.Write("demo.bpr", "");
  THeadlessIDE& ide = addIn.ide;

  ide.OpenProject(project, {a, res, a});
  ide.OpenFile(a);
  ide.SaveFile(a);
  ide.SaveFileAs(a, a);  // renamed to its own name: no call
  ide.SaveFileAs(a, dir / "c.cpp");
  ide.AddToProject(b);
  ide.RemoveFromProject(b);
  ide.SaveProject();
  ide.RenameProject(dir / "other.bpr");
  ide.CloseFile(dir / "c.cpp");
  ide.CloseProject();

  EXPECT_EQ(addIn.log, (std::vector<std::string>{
                           "ProjectChanged demo.bpr a.cpp",
                           "FileOpened a.cpp",
                           "FileSaved a.cpp",
                           "FileAdded a.cpp",
                           "FileSaved a.cpp",
                           "FileAdded a.cpp",
                           "FileRenamed a.cpp c.cpp",
                           "FileSaved c.cpp",
                           "FileAdded c.cpp",
                           "FileAdded b.pas",
                           "FileRemoved b.pas update",
                           "ProjectChanged demo.bpr a.cpp",  // saved: started again
                           "ProjectRenamed other.bpr",
                           // Saved under the new name: the old one closes, the new starts.
                           "ProjectClosed",
                           "ProjectChanged other.bpr a.cpp",
                           "FileClosing c.cpp",
                           "ProjectClosed",
                       }));
  ASSERT_NE(ClassBrowserExpert, nullptr);
  EXPECT_EQ(ClassBrowserExpert->ModuleList().Count(), 0) << "the closed module's notifier is gone";
  EXPECT_EQ(ClassBrowserExpert->ProjectFile(), "");
}

TEST(ClassBrowserExpertTest, AnotherProjectClosesTheFirstAndTellsTheManager) {
  TLoadedAddIn addIn;
  const std::string a = addIn.dir.Write("a.cpp", "");
  const std::string b = addIn.dir.Write("b.cpp", "");
  // The host closes the first project itself; the add-in sees the module go and then
  // the new project.
  addIn.ide.OpenProject(addIn.dir.Write("one.bpr", ""), {a});
  addIn.ide.OpenProject(addIn.dir.Write("two.bpr", ""), {b});
  EXPECT_EQ(addIn.log, (std::vector<std::string>{"ProjectChanged one.bpr a.cpp", "ProjectClosed",
                                                 "ProjectChanged two.bpr b.cpp"}));
  EXPECT_EQ(ClassBrowserExpert->ProjectFiles(), (std::vector<std::string>{b}));
}

TEST(ClassBrowserExpertTest, MenuCommandsGoToTheManagerAndDoNothingWithoutOne) {
  for (bool withManager : {true, false}) {
    TLoadedAddIn addIn(withManager);
    TIRef<TIMainMenu> menu(addIn.ide.GetMainMenu());
    for (const char* name : {"VLMenuItem", "VLAboutMenuItem", "VLCodeInsertClassMarkerMenuItem",
                             "VLFindMenuItem" /* disabled: no project */})
      TIRef<TIMenuItem>(menu->FindMenuItem(name))->Click();
    EXPECT_EQ(addIn.log, withManager
                             ? (std::vector<std::string>{"Command 0", "Command 20", "Command 16"})
                             : std::vector<std::string>{})
        << withManager;
  }
}

TEST(ClassBrowserExpertTest, ShutdownTakesTheMenuOutAndSavesTheSettings) {
  TLoadedAddIn addIn;
  const std::string a = addIn.dir.Write("a.cpp", "");
  addIn.ide.OpenProject(addIn.dir.Write("demo.bpr", ""), {a});
  addIn.ide.OpenFile(a);
  const int menus = addIn.ide.MenuBar().ItemCount();
  addIn.ide.UnloadAddIns();
  EXPECT_EQ(addIn.ide.MenuBar().ItemCount(), menus - 1);
  EXPECT_EQ(addIn.MenuDump(), "(no menu)");
  EXPECT_EQ(ClassBrowserExpert, nullptr);
  EXPECT_EQ(VLManager, nullptr);
  EXPECT_EQ(VLSettings, nullptr);
  // Nothing of the add-in is called any more.
  addIn.ide.SaveFile(a);
  addIn.ide.CloseProject();
  EXPECT_EQ(addIn.log,
            (std::vector<std::string>{"ProjectChanged demo.bpr a.cpp", "FileOpened a.cpp"}));
  EXPECT_TRUE(FileExists(addIn.dir / "velmora/registry.ini"));
}

void FailingFileTypes() {
  throw std::runtime_error("no desktop");
}

TEST(ClassBrowserExpertTest, AFailingStartIsReportedAndLeavesNothingBehind) {
  TScratch dir;
  TLoadedAddIn::TEnv env("XDG_CONFIG_HOME", dir.path);
  THeadlessIDE ide;
  TClassBrowserExpert::RegisterFileTypesHook = &FailingFileTypes;
  EXPECT_TRUE(ide.LoadAddIn(&INITEXPERT0017));
  TClassBrowserExpert::RegisterFileTypesHook = nullptr;
  EXPECT_EQ(ide.Reports(), (std::vector<std::string>{"no desktop"}));
  EXPECT_EQ(ide.ExpertCount(), 0);
  EXPECT_EQ(
      TIRef<TIMenuItem>(TIRef<TIMainMenu>(ide.GetMainMenu())->FindMenuItem("VLRootMenuItem")).Get(),
      nullptr);
  const std::string a = dir.Write("a.cpp", "");
  ide.OpenProject(dir / "demo.bpr", {a});  // no notifier left to call
  ToolServices = nullptr;
}

}  // namespace
}  // namespace velmora

namespace velmora {
namespace {

TEST(ClassBrowserExpertTest, FileNotificationsOtherThanTheFiveAreIgnored) {
  TLoadedAddIn addIn;
  const std::string a = addIn.dir.Write("a.cpp", "");
  addIn.ide.OpenProject(addIn.dir.Write("demo.bpr", ""), {a});
  addIn.log.clear();
  TIRef<TAddInNotifier> notifier(new TAddInNotifier(*ClassBrowserExpert));
  for (int code : {0, 3, 5, 8, 9, 100, -1}) {
    bool cancel = false;
    notifier->FileNotification(static_cast<TFileNotification>(code), a, cancel);
    EXPECT_FALSE(cancel) << code;
  }
  EXPECT_TRUE(addIn.log.empty());
  EXPECT_EQ(ClassBrowserExpert->ProjectFiles(), (std::vector<std::string>{a}));
}

}  // namespace
}  // namespace velmora

namespace velmora {
namespace {

// The external class information is loaded at start, after the manager is made and
// before any project, only when the settings' external files are in use and the file
// they name is there.
TEST(ClassBrowserExpertTest, StartUpLoadsTheExternalClassInformationTheSettingsName) {
  const struct {
    const char* Name;
    bool FileThere;
    bool UseExternals;
    std::vector<std::string> Log;
  } rows[] = {
      {.Name = "there and used",
       .FileThere = true,
       .UseExternals = true,
       .Log = {"StartUpExternals external.cinfo", "ProjectChanged demo.bpr a.cpp"}},
      {.Name = "missing",
       .FileThere = false,
       .UseExternals = true,
       .Log = {"ProjectChanged demo.bpr a.cpp"}},
      {.Name = "not used",
       .FileThere = true,
       .UseExternals = false,
       .Log = {"ProjectChanged demo.bpr a.cpp"}},
  };
  for (const auto& row : rows) {
    TLoadedAddIn addIn;
    VLSettings->UseExternals = row.UseExternals;
    addIn.ide.UnloadAddIns();  // the settings are saved
    if (row.FileThere) {
      std::filesystem::create_directories(addIn.dir / "data/velmora");
      addIn.dir.Write("data/velmora/external.cinfo", "any");
    }
    addIn.log.clear();
    ASSERT_TRUE(addIn.ide.LoadAddIn(&INITEXPERT0017)) << row.Name;
    const std::string a = addIn.dir.Write("a.cpp", "");
    addIn.ide.OpenProject(addIn.dir.Write("demo.bpr", ""), {a});
    EXPECT_EQ(addIn.log, row.Log) << row.Name;
  }
}

}  // namespace
}  // namespace velmora
