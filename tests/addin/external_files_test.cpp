// The external files' model end to end: files added through the manager parsed on the
// parse queue into the external lists, saved to the external class information file and
// loaded again at the next start; damaged information; removal and re-parse; the
// editors' unsaved text reaching the parses; the menu commands bringing up their forms.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "addin/display_form_entries.h"
#include "hosts/headless/headless_ide.h"
#include "ide/menus.h"
#include "manager_fixture.h"
#include "model/files.h"
#include "settings/project_settings.h"
#include "support/paths.h"

namespace velmora {
namespace {

using test::TManagedAddIn;

constexpr char kBase[] = "class TBase {\r\npublic:\r\n  int Id;\r\n};\r\n";
constexpr char kWidgets[] =
    "#include \"Base.h\"\r\nclass TWidget : public TBase {\r\npublic:\r\n  int Size;\r\n};\r\n";

std::string ReadText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::set<std::string> Names(TClasslist& classes) {
  std::set<std::string> names;
  std::lock_guard lock(classes.Lock);
  for (int i = 0; i < classes.Index.Count(); ++i) names.insert(classes.Index.Strings(i));
  return names;
}

std::set<std::string> FileNames(TVLManager& manager) {
  std::set<std::string> names;
  std::lock_guard lock(manager.ExternalClasses().Lock);
  for (int i = 0; i < manager.ExternalFiles().Count(); ++i)
    names.insert(manager.ExternalFiles().Items(i)->GetName());
  return names;
}

/// The external headers written under the scratch folder; returns Widgets.h.
std::string WriteExternals(TManagedAddIn& f) {
  f.Write("ext/Base.h", kBase);
  return f.Write("ext/Widgets.h", kWidgets);
}

TEST(ExternalFilesThreads, AddedFilesAreParsedSavedAndLoadedAtTheNextStart) {
  TManagedAddIn f;
  ASSERT_TRUE(f.loaded);
  EXPECT_EQ(f.manager()->ExternalClassInfoFile(), f.ExternalClassInfo());
  f.manager()->AddExternalFiles({WriteExternals(f)});
  f.manager()->WaitUntilIdle();
  EXPECT_EQ(Names(f.manager()->ExternalClasses()), (std::set<std::string>{"TBase", "TWidget"}));
  EXPECT_EQ(FileNames(*f.manager()), (std::set<std::string>{"Base.h", "Widgets.h"}));
  EXPECT_TRUE(Names(f.manager()->ProjectClasses()).empty());
  ASSERT_TRUE(FileExists(f.ExternalClassInfo())) << "saved after the parse";

  f.Restart();
  ASSERT_TRUE(f.loaded);
  EXPECT_TRUE(f.manager()->Idle()) << "loaded, not parsed";
  EXPECT_EQ(Names(f.manager()->ExternalClasses()), (std::set<std::string>{"TBase", "TWidget"}));
  EXPECT_EQ(FileNames(*f.manager()), (std::set<std::string>{"Base.h", "Widgets.h"}));
  EXPECT_EQ(f.manager()->ExternalLoadMessage(), "");
  EXPECT_TRUE(f.ide.Reports().empty());

  // A project opened after the start keeps the external model beside its own.
  f.OpenKiln();
  EXPECT_NE(f.FindClass("TFormMain"), nullptr);
  EXPECT_EQ(Names(f.manager()->ExternalClasses()), (std::set<std::string>{"TBase", "TWidget"}));
}

TEST(ExternalFilesThreads, AProjectOpenedWhileTheyAreParsedDoesNotLoseThem) {
  TManagedAddIn f;
  f.manager()->AddExternalFiles({WriteExternals(f)});
  f.OpenKiln();  // cancels every job on its way
  EXPECT_EQ(Names(f.manager()->ExternalClasses()), (std::set<std::string>{"TBase", "TWidget"}));
  EXPECT_NE(f.FindClass("TFormMain"), nullptr);
}

TEST(ExternalFilesThreads, RemovedFileIsGoneFromTheModelAndFromTheSavedFile) {
  TManagedAddIn f;
  const std::string widgets = WriteExternals(f);
  f.manager()->AddExternalFiles({widgets});
  f.manager()->WaitUntilIdle();
  f.manager()->RemoveExternalFile(widgets);
  EXPECT_EQ(Names(f.manager()->ExternalClasses()), std::set<std::string>{"TBase"});
  EXPECT_EQ(FileNames(*f.manager()), std::set<std::string>{"Base.h"});
  f.Restart();
  EXPECT_EQ(Names(f.manager()->ExternalClasses()), std::set<std::string>{"TBase"});
}

TEST(ExternalFilesThreads, UpdateParsesEveryExternalFileAgain) {
  TManagedAddIn f;
  const std::string widgets = WriteExternals(f);
  f.manager()->AddExternalFiles({widgets});
  f.manager()->WaitUntilIdle();
  f.Write("ext/Base.h", "class TBase2 {\r\n  int Id;\r\n};\r\n");
  f.Write("ext/Widgets.h", std::string(kWidgets) + "class TGadget {\r\n  int Knob;\r\n};\r\n");
  f.manager()->UpdateExternalFiles();
  f.manager()->WaitUntilIdle();
  EXPECT_EQ(Names(f.manager()->ExternalClasses()),
            (std::set<std::string>{"TBase2", "TGadget", "TWidget"}));
}

// The saved external class information damaged in the ways a load tells apart; each
// gives the load message and an empty external model, whatever of it could be read.
TEST(ExternalFilesThreads, DamagedClassInformationIsReportedAndLeavesTheListsEmpty) {
  const std::string kVersion("\xF4\xF2\xF1\xF0", 4);
  const std::string kDomainMarker("\xF3\xF2\xF1\xF0", 4);
  const struct {
    const char* Name;
    std::function<void(std::string&)> Damage;
  } rows[] = {
      {.Name = "cut short", .Damage = [](std::string& s) { s.resize(s.size() / 2); }},
      {.Name = "wrong version", .Damage = [](std::string& s) { s[101] = 'x'; }},
      {.Name = "wrong domain marker",
       .Damage = [&](std::string& s) { s[s.find(kDomainMarker)] = 'x'; }},
      {.Name = "wrong class marker",
       .Damage = [&](std::string& s) { s[s.find(kVersion, s.find(kDomainMarker))] = 'x'; }},
      {.Name = "not class information", .Damage = [](std::string& s) { s = "junk"; }},
  };
  for (const auto& row : rows) {
    TManagedAddIn f;
    f.manager()->AddExternalFiles({WriteExternals(f)});
    f.manager()->WaitUntilIdle();
    std::string bytes = ReadText(f.ExternalClassInfo());
    ASSERT_GT(bytes.size(), 110u) << row.Name;
    row.Damage(bytes);
    f.Write("data/velmora/external.cinfo", bytes);

    f.Restart();
    const std::string& message = f.manager()->ExternalLoadMessage();
    EXPECT_EQ(message.rfind("The class information file \"" + f.ExternalClassInfo() +
                                "\" could not be loaded because of the following error: ",
                            0),
              0u)
        << row.Name << ": " << message;
    ASSERT_EQ(f.ide.Reports().size(), 1u) << row.Name;
    EXPECT_EQ(f.ide.Reports().front(), message) << row.Name;
    EXPECT_TRUE(Names(f.manager()->ExternalClasses()).empty()) << row.Name;
    EXPECT_TRUE(FileNames(*f.manager()).empty()) << row.Name;
    // Nothing is written over the damaged file until the user parses again.
    f.Restart();
    EXPECT_EQ(ReadText(f.ExternalClassInfo()), bytes) << row.Name;
  }
}

TEST(ExternalFilesThreads, ReparseReadsTheUnsavedTextOfAnOpenEditor) {
  TManagedAddIn f;
  f.OpenKiln();
  const std::string unit = f.KilnLog("GlazeForm.pas");
  const std::string onDisk = ReadText(unit);
  ASSERT_TRUE(f.ide.OpenFile(unit));
  std::string edited = onDisk;
  const std::string anchor = "type\r\n";
  ASSERT_NE(edited.find(anchor), std::string::npos);
  edited.insert(
      edited.find(anchor) + anchor.size(),
      "  TUnsavedPanel = class(TObject)\r\n  public\r\n    Width: Integer;\r\n  end;\r\n");
  ASSERT_TRUE(f.ide.SetBufferText(unit, edited));

  f.manager()->FileAdded(unit);  // a re-parse, as "Parse again" asks for
  f.manager()->WaitUntilIdle();
  EXPECT_NE(f.FindClass("TUnsavedPanel"), nullptr);
  EXPECT_NE(f.FindClass("TRecipeCheck"), nullptr);
  EXPECT_EQ(ReadText(unit), onDisk) << "nothing saved";

  // The editor closes without saving: the file on disk is what the next parse reads.
  ASSERT_TRUE(f.ide.CloseFile(unit));
  f.manager()->FileAdded(unit);
  f.manager()->WaitUntilIdle();
  EXPECT_EQ(f.FindClass("TUnsavedPanel"), nullptr);
  EXPECT_NE(f.FindClass("TRecipeCheck"), nullptr);
}

// Each menu command reaches the manager through the expert's click handler; the ones
// with a view or dialog bring up its entry, made once and brought up again after.
TEST(ExternalFilesThreads, MenuCommandsBringUpTheirFormsThroughTheManager) {
  const struct {
    const char* Item;
    const char* Form;  // "" when the command has none
    TVLMenuCommand Command;
  } rows[] = {
      {"VLMenuItem", "ClassView", TVLMenuCommand::ShowClassView},
      {"VLClassHierarchyMenuItem", "ClassHierarchy", TVLMenuCommand::ShowClassHierarchy},
      {"VLContextBarMenuItem", "ContextBar", TVLMenuCommand::ShowContextBar},
      {"VLBrowseHistoryMenuItem", "BrowseHistory", TVLMenuCommand::BrowseHistory},
      {"VLOptionsMenuItem", "Options", TVLMenuCommand::Options},
      {"VLFindMenuItem", "Find", TVLMenuCommand::Find},
      {"VLAddMethodMenuItem", "AddMethod", TVLMenuCommand::AddMethod},
      {"VLAboutMenuItem", "About", TVLMenuCommand::About},
      {"VLQuickFindCodeMenuItem", "", TVLMenuCommand::QuickFindCode},
      {"VLCodeInsertGlobalMarkerMenuItem", "", TVLMenuCommand::InsertGlobalMarker},
  };
  TManagedAddIn f;
  f.OpenKiln();  // the project-bound commands are enabled
  std::vector<std::string> shown;
  std::vector<TVLMenuCommand> commands;
  f.manager()->DisplayForms().SetHandler([&](const TDisplayFormEntry& form, bool created) {
    shown.push_back(form.Name + (created ? " made" : " again"));
  });
  f.manager()->SetCommandHandler([&](TVLMenuCommand c) { commands.push_back(c); });
  TIRef<TIMainMenu> menu(f.ide.GetMainMenu());
  for (const auto& row : rows) {
    for (int click = 0; click < 2; ++click) {
      shown.clear();
      commands.clear();
      ASSERT_TRUE(TIRef<TIMenuItem>(menu->FindMenuItem(row.Item))->Click()) << row.Item;
      EXPECT_EQ(commands, std::vector<TVLMenuCommand>{row.Command}) << row.Item;
      const std::string form = row.Form;
      if (form.empty()) {
        EXPECT_TRUE(shown.empty()) << row.Item;
        continue;
      }
      EXPECT_EQ(shown, std::vector<std::string>{form + (click == 0 ? " made" : " again")})
          << row.Item;
      const TDisplayFormEntry* entry = f.manager()->DisplayForms().Find(form);
      ASSERT_NE(entry, nullptr) << row.Item;
      EXPECT_TRUE(entry->Visible) << row.Item;
      EXPECT_EQ(entry->ShowCount, click + 1) << row.Item;
    }
  }
}

}  // namespace
}  // namespace velmora

namespace velmora {
namespace {

// The views open when the project was last closed come back when it opens again.
TEST(ExternalFilesThreads, AProjectBringsBackTheViewsItsSettingsRecordAsOpen) {
  TManagedAddIn f;
  TCurrentProjectSettings settings;
  settings.ClassViewWindow = {.Statesaved = true, .Visible = true};
  settings.ContextBarWindow = {.Statesaved = true, .Visible = false};
  settings.BrowseHistoryWindow = {.Statesaved = false, .Visible = true};
  ASSERT_TRUE(settings.Save(f.ProjectFile()));
  f.OpenKiln();
  std::vector<std::string> visible;
  for (const TDisplayFormEntry& form : f.manager()->DisplayForms().Entries())
    if (form.Visible) visible.push_back(form.Name);
  EXPECT_EQ(visible, std::vector<std::string>{"ClassView"});
}

}  // namespace
}  // namespace velmora

namespace velmora {
namespace {

// A file changed on disk behind an open editor: an editor with no changes of its own is
// reloaded before the parse reads it; one with unsaved changes keeps them.
TEST(ExternalFilesThreads, AnEditorLeftBehindByAChangeOnDiskIsReloadedUnlessEdited) {
  const struct {
    const char* Name;
    bool Edited;
    const char* Expected;
  } rows[] = {
      {.Name = "unchanged editor", .Edited = false, .Expected = "TOnDisk"},
      {.Name = "edited editor", .Edited = true, .Expected = "TInEditor"},
  };
  for (const auto& row : rows) {
    TManagedAddIn f;
    f.OpenKiln();
    const std::string header = f.Write("KilnLog/Extra.h", "class TFirst { int A; };\r\n");
    f.ide.AddToProject(header);
    ASSERT_TRUE(f.ide.OpenFile(header)) << row.Name;
    if (row.Edited) {
      ASSERT_TRUE(f.ide.SetBufferText(header, "class TInEditor { int A; };\r\n")) << row.Name;
    }
    f.Write("KilnLog/Extra.h", "class TOnDisk { int A; int B; };\r\n");
    std::filesystem::last_write_time(
        header, std::filesystem::last_write_time(header) + std::chrono::seconds(5));
    f.manager()->FileAdded(header);
    f.manager()->WaitUntilIdle();
    EXPECT_NE(f.FindClass(row.Expected), nullptr) << row.Name;
    EXPECT_EQ(f.FindClass("TFirst"), nullptr) << row.Name;
    const std::string buffer = f.ide.Buffer(header)->Text;
    EXPECT_NE(buffer.find(row.Expected), std::string::npos) << row.Name << ": " << buffer;
  }
}

}  // namespace
}  // namespace velmora

namespace velmora {
namespace {

// An external file saved in the IDE is parsed again into the external model, not the
// project's, and the external class information is saved again.
TEST(ExternalFilesThreads, ASavedExternalFileIsParsedAgainIntoTheExternalModel) {
  TManagedAddIn f;
  f.OpenKiln();
  const std::string widgets = WriteExternals(f);
  f.manager()->AddExternalFiles({widgets});
  f.manager()->WaitUntilIdle();
  ASSERT_TRUE(f.ide.OpenFile(widgets));
  ASSERT_TRUE(f.ide.SetBufferText(widgets, "class TSprocket {\r\n  int Teeth;\r\n};\r\n"));
  ASSERT_TRUE(f.ide.SaveFile(widgets));
  f.manager()->WaitUntilIdle();
  EXPECT_EQ(Names(f.manager()->ExternalClasses()), (std::set<std::string>{"TBase", "TSprocket"}));
  EXPECT_EQ(f.FindClass("TSprocket"), nullptr);
  EXPECT_NE(f.FindClass("TFormMain"), nullptr);
  f.Restart();
  EXPECT_EQ(Names(f.manager()->ExternalClasses()), (std::set<std::string>{"TBase", "TSprocket"}));
}

}  // namespace
}  // namespace velmora
