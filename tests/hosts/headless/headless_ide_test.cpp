// The headless IDE: buffers backed by files and saved back as the files were written,
// the notifications an IDE sends, and the menu add-ins hang their own menu on.
#include <gtest/gtest.h>

#include <thread>

#include "hosts/headless/headless_fixture.h"
#include "hosts/headless/headless_menu.h"
#include "ide/editor.h"
#include "ide/menus.h"

namespace velmora {
namespace {

using test::TRecordingNotifier;
using test::TScratch;

TEST(HeadlessIDETest, ABufferIsSavedBackInItsFilesOwnLineEndStyle) {
  const struct {
    const char* name;
    std::string onDisk;
    std::string edited;  // the new buffer text, as an edit leaves it (CR LF)
    std::string saved;
  } cases[] = {
      {.name = "CR LF",
       .onDisk = "a\r\nb\r\n",
       .edited = "a\r\nx\r\nb\r\n",
       .saved = "a\r\nx\r\nb\r\n"},
      {.name = "LF", .onDisk = "a\nb\n", .edited = "a\r\nx\r\nb\r\n", .saved = "a\nx\nb\n"},
      {.name = "lone CR", .onDisk = "a\rb", .edited = "a\r\nx\r\nb", .saved = "a\rx\rb"},
      {.name = "no line end: CR LF", .onDisk = "a", .edited = "a\r\nb", .saved = "a\r\nb"},
  };
  for (const auto& c : cases) {
    TScratch dir;
    const std::string file = dir.Write("unit.cpp", c.onDisk);
    THeadlessIDE ide;
    ASSERT_TRUE(ide.OpenFile(file)) << c.name;
    EXPECT_EQ(ide.Buffer(file)->Text, ToBufferForm(c.onDisk)) << c.name;
    ASSERT_TRUE(ide.SetBufferText(file, c.edited)) << c.name;
    EXPECT_TRUE(ide.Buffer(file)->Modified) << c.name;
    ASSERT_TRUE(ide.SaveFile(file)) << c.name;
    EXPECT_EQ(ReadWholeFile(file), c.saved) << c.name;
    EXPECT_FALSE(ide.Buffer(file)->Modified) << c.name;
  }
}

TEST(HeadlessIDETest, ASaveThatCannotBeWrittenLeavesTheFileAndTheBuffer) {
  TScratch dir;
  std::filesystem::create_directory(dir / "src");
  const std::string file = dir.Write("src/unit.cpp", "old\n");
  THeadlessIDE ide;
  ASSERT_TRUE(ide.OpenFile(file));
  ide.SetBufferText(file, "new\n");
  // The folder moved away and a plain file in its place: nothing can be written there,
  // whoever runs the test.
  std::filesystem::rename(dir / "src", dir / "away");
  dir.Write("src", "");
  EXPECT_FALSE(ide.SaveFile(file));
  std::filesystem::remove(dir / "src");
  std::filesystem::rename(dir / "away", dir / "src");
  EXPECT_EQ(ReadWholeFile(file), "old\n");
  EXPECT_EQ(std::filesystem::directory_iterator(dir / "src")->path().filename(), "unit.cpp")
      << "no temporary file left";
  EXPECT_TRUE(ide.Buffer(file)->Modified);
  EXPECT_EQ(ide.Reports().size(), 1u);
  ASSERT_TRUE(ide.SaveFile(file));
  EXPECT_EQ(ReadWholeFile(file), "new\n");
}

TEST(HeadlessIDETest, OpeningAMissingFileFailsAndIsReported) {
  TScratch dir;
  THeadlessIDE ide;
  EXPECT_FALSE(ide.OpenFile(dir / "missing.cpp"));
  EXPECT_FALSE(ide.IsFileOpen(dir / "missing.cpp"));
  EXPECT_EQ(ide.Reports().size(), 1u);
}

TEST(HeadlessIDETest, NotificationsReachAddInAndModuleNotifiersAsAnIDESendsThem) {
  TScratch dir;
  const std::string a = dir.Write("a.cpp", "int a;\n");
  const std::string b = dir.Write("b.pas", "unit b;\n");
  const std::string project = dir.Write("demo.bpr", "");
  std::vector<std::string> log;
  THeadlessIDE ide;
  TRecordingNotifier notifier(log);
  ASSERT_TRUE(ide.AddNotifier(&notifier));
  EXPECT_FALSE(ide.AddNotifier(&notifier));

  ide.OpenProject(project, {a});
  TIRef<TIModule> projectModule(ide.GetModule(project));
  ASSERT_TRUE(projectModule);
  projectModule->AddNotifier(&notifier);
  ide.OpenFile(a);
  TIRef<TIModule> module(ide.GetModule(a));
  ASSERT_TRUE(module);
  module->AddNotifier(&notifier);
  ide.SaveFile(a);
  ide.SaveFileAs(a, dir / "c.cpp");
  EXPECT_EQ(module->FileName(), ide.CurrentFile());
  ide.AddToProject(b);
  EXPECT_FALSE(ide.AddToProject(b));
  ide.RemoveFromProject(b);
  EXPECT_FALSE(ide.RemoveFromProject(b));
  ide.SaveProject();
  ide.CloseFile(dir / "c.cpp");
  ide.CloseProject();
  ide.RemoveNotifier(&notifier);
  ide.OpenFile(b);  // no longer heard

  EXPECT_EQ(log, (std::vector<std::string>{
                     "3 demo.bpr",
                     "4 demo.bpr",  // project opening, opened
                     "0 a.cpp",
                     "1 a.cpp",         // file opening, opened
                     "module 7 a.cpp",  // saved
                     "module 1 c.cpp",
                     "module 7 c.cpp",  // saved under another name
                     "6 b.pas",
                     "7 b.pas",            // added, removed
                     "module 7 demo.bpr",  // project saved
                     "2 c.cpp",
                     "module 0 c.cpp",  // closing, module deleted
                     "5 demo.bpr",
                     "module 0 demo.bpr",
                 }));
  // A module closed while the add-in holds it answers nothing.
  EXPECT_EQ(TIRef<TIEditor>(module->GetEditor()).Get(), nullptr);
  EXPECT_FALSE(module->AddNotifier(&notifier));
}

TEST(HeadlessIDETest, ProjectUnitsAreEnumeratedProjectFileFirst) {
  TScratch dir;
  const std::string a = dir.Write("a.cpp", "");
  const std::string b = dir.Write("b.pas", "");
  THeadlessIDE ide;
  std::vector<std::string> seen;
  auto collect = [&](const std::string& file, const std::string& unit) {
    seen.push_back(std::filesystem::path(file).filename().string() + ":" + unit);
    return true;
  };
  EXPECT_FALSE(ide.EnumProjectUnits(collect));
  ide.OpenProject(dir / "demo.bpr", {a, b, a});
  EXPECT_EQ(ide.ProjectName(), dir / "demo.bpr");
  EXPECT_TRUE(ide.EnumProjectUnits(collect));
  EXPECT_EQ(seen, (std::vector<std::string>{"demo.bpr:demo", "a.cpp:a", "b.pas:b"}));
  seen.clear();
  ide.EnumProjectUnits([&](const std::string& file, const std::string& unit) {
    collect(file, unit);
    return false;
  });
  EXPECT_EQ(seen.size(), 1u);
}

TEST(HeadlessIDETest, AWriterPutsItsChangesIntoTheBufferWhenReleased) {
  TScratch dir;
  const std::string file = dir.Write("a.cpp", "class A {\n};\n");
  THeadlessIDE ide;
  ASSERT_TRUE(ide.OpenFile(file));
  TIRef<TIModule> module(ide.GetModule(file));
  TIRef<TIEditor> editor(module->GetEditor());
  {
    TIRef<TIEditWriter> writer(editor->CreateWriter());
    ASSERT_TRUE(writer);
    EXPECT_EQ(TIRef<TIEditWriter>(editor->CreateWriter()).Get(), nullptr) << "one at a time";
    EXPECT_TRUE(writer->CopyTo(11));
    EXPECT_TRUE(writer->Insert("  int x;\r\n"));
    EXPECT_EQ(writer->Position(), 11);
    EXPECT_FALSE(writer->CopyTo(5)) << "behind the current place";
    EXPECT_FALSE(writer->CopyTo(1000)) << "past the end";
    EXPECT_EQ(ide.Buffer(file)->Text, "class A {\r\n};\r\n") << "not before the release";
  }
  EXPECT_EQ(ide.Buffer(file)->Text, "class A {\r\n  int x;\r\n};\r\n");
  {
    TIRef<TIEditWriter> writer(editor->CreateWriter());
    writer->CopyTo(6);
    writer->DeleteTo(7);
    writer->Insert("B");
  }
  EXPECT_EQ(ide.Buffer(file)->Text, "class B {\r\n  int x;\r\n};\r\n");
  TIRef<TIEditReader> reader(editor->CreateReader());
  char text[8] = {};
  EXPECT_EQ(reader->GetText(6, text, 7), 7);
  EXPECT_EQ(std::string(text), "B {\r\n  ");
  EXPECT_EQ(reader->GetText(1000, text, 7), 0);
  EXPECT_EQ(reader->GetText(-1, text, 7), 0);
}

TEST(HeadlessIDETest, TheMenuHasTheProjectMenuAndTakesAnAddInsItemsOutWhenReleased) {
  THeadlessIDE ide;
  TIRef<TIMainMenu> menu(ide.GetMainMenu());
  TIRef<TIMenuItem> addItem(menu->FindMenuItem("projectadditem"));
  ASSERT_TRUE(addItem);
  TIRef<TIMenuItem> projectMenu(addItem->Parent());
  ASSERT_TRUE(projectMenu);
  EXPECT_EQ(projectMenu->Caption(), "&Project");
  TIRef<TIMenuItem> bar(menu->MenuItems());
  const int count = bar->ItemCount();
  int clicks = 0;
  {
    TIRef<TIMenuItem> root(bar->InsertItem(projectMenu->Index() + 1, "&Mine", "MineRoot", "", 0, 0,
                                           0, mfEnabled | mfVisible, {}));
    TIRef<TIMenuItem> item(root->InsertItem(0, "Do", "MineDo", "", 0, 0, 0, mfEnabled | mfVisible,
                                            [&](TIMenuItem&) { ++clicks; }));
    EXPECT_EQ(root->Index(), projectMenu->Index() + 1);
    EXPECT_TRUE(item->Click());
    item->SetFlags(mfEnabled | mfVisible, mfVisible);
    EXPECT_FALSE(item->Click()) << "disabled";
    EXPECT_EQ(item->Flags(), mfVisible);
    EXPECT_EQ(bar->ItemCount(), count + 1);
  }
  EXPECT_EQ(clicks, 1);
  EXPECT_EQ(bar->ItemCount(), count);
  EXPECT_EQ(TIRef<TIMenuItem>(menu->FindMenuItem("MineDo")).Get(), nullptr);
}

TEST(HeadlessIDETest, TheEditorWindowCanBeFoundByClassName) {
  THeadlessIDE ide;
  TIComponent* window = FindComponentByClassName(ide.Application(), "TEditWindow");
  ASSERT_NE(window, nullptr);
  for (const char* cls : {"TTabControl", "TMessageView", "TStatusbar", "TEditControl"})
    EXPECT_NE(FindComponentByClassName(*window, cls), nullptr) << cls;
  EXPECT_NE(FindComponentByName(*window, "EditorLocalMenu"), nullptr);
}

}  // namespace
}  // namespace velmora

namespace velmora {
namespace {

TEST(HeadlessIDEThreadsTest, BackgroundWorkReachesTheBuffersThroughTheMainThreadQueue) {
  TScratch dir;
  const std::string file = dir.Write("a.cpp", "x");
  THeadlessIDE ide;
  ASSERT_TRUE(ide.OpenFile(file));
  std::thread worker([&] {
    for (int i = 0; i < 3; ++i)
      ide.MainThreadQueue().Synchronize([&] { ide.Buffer(file)->Text += "y"; });
    ide.MainThreadQueue().Stop();
  });
  ide.MainThreadQueue().RunLoop();
  worker.join();
  EXPECT_EQ(ide.Buffer(file)->Text, "xyyy");
}

}  // namespace
}  // namespace velmora
