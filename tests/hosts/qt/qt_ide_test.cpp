// The Qt IDE under the offscreen platform: the add-in's menu in the menu bar, the class
// view of the example project, the editors as the add-in reads and writes them, and the
// docking panel. VELMORA_UPDATE_GOLDEN=1 rewrites the expected tree after a deliberate
// change; review the diff before committing it.
#include <Qsci/qsciscintilla.h>

#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QProgressBar>
#include <QSplitter>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>
#include <filesystem>
#include <string>

#include "hosts/qt/class_browser.h"
#include "hosts/qt/dock_panel.h"
#include "hosts/qt/qt_ide.h"
#include "ide/editor.h"
#include "ide/module.h"

using namespace velmora;

namespace {

QByteArray ReadFile(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return {};
  return file.readAll();
}

void WriteFile(const QString& path, const QByteArray& data) {
  QFile file(path);
  QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
  file.write(data);
}

// The text the add-in reads: the whole buffer through a reader, in small pieces.
std::string ReadThroughReader(TIEditor& editor) {
  TIRef<TIEditReader> reader(editor.CreateReader());
  std::string text;
  char piece[7];
  for (int n; (n = reader->GetText(static_cast<int32_t>(text.size()), piece, sizeof piece)) > 0;)
    text.append(piece, static_cast<size_t>(n));
  return text;
}

}  // namespace

class TQtHostTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase();
  void velmoraMenuRightOfProjectMenu();
  void editWindowFoundByClassName();
  void classViewOfExampleProject();
  void filterKeepsParentsOfMatches();
  void statusAndProgressWhileParsing();
  void enterJumpsToTheDeclaration();
  void savedEditorUpdatesTheTree();
  void editorReaderReadsUnsavedText();
  void writerChangesTheEditorInOneStep();
  void saveKeepsTheFilesLineEnds();
  void dockPanelSidesAndCollapse();

 private:
  /// The example project copied to a temporary folder, so nothing beside the real one
  /// is written; returns its project file.
  QString CopyExample();
  void OpenExample(TQtIDE& ide);

  QTemporaryDir home_;
};

void TQtHostTest::initTestCase() {
  QVERIFY(home_.isValid());
  // The add-in's settings and data go to the temporary folder, never the user's.
  qputenv("XDG_CONFIG_HOME", QDir(home_.path()).filePath("config").toLocal8Bit());
  qputenv("XDG_DATA_HOME", QDir(home_.path()).filePath("data").toLocal8Bit());
}

QString TQtHostTest::CopyExample() {
  // The whole examples folder: the project reaches into its sibling "common".
  const QString target = QDir(home_.path()).filePath("examples");
  if (!QDir(target).exists()) {
    std::filesystem::copy(std::filesystem::path(VELMORA_SOURCE_DIR) / "examples",
                          target.toStdString(), std::filesystem::copy_options::recursive);
  }
  return QDir(target).filePath("KilnLog/KilnLog.bpr");
}

// With the add-in loaded, as a user has it: the class view shows the add-in's model.
void TQtHostTest::OpenExample(TQtIDE& ide) {
  QVERIFY(ide.LoadAddInLibrary(VELMORA_ADDIN_PLUGIN));
  QVERIFY(ide.AddInManager());
  QVERIFY(ide.OpenProjectFile(CopyExample().toStdString()));
  QVERIFY(ide.Parsing());
  QTRY_VERIFY_WITH_TIMEOUT(!ide.Parsing(), 30000);
  QTRY_COMPARE(ide.StatusBar().currentMessage(), QStringLiteral("Ready"));
}

void TQtHostTest::velmoraMenuRightOfProjectMenu() {
  TQtIDE ide;
  QVERIFY(ide.LoadAddInLibrary(VELMORA_ADDIN_PLUGIN));
  QCOMPARE(ide.ExpertCount(), 1);
  QStringList captions;
  for (QAction* action : ide.Window().menuBar()->actions()) captions << action->text();
  QCOMPARE(captions,
           (QStringList{"&File", "&Edit", "&Search", "&View", "&Project", "&Velmora", "&Help"}));
  // The add-in's menu is a real menu with its commands in it.
  QAction* velmora = ide.Window().menuBar()->actions().at(5);
  QVERIFY(velmora->menu());
  QVERIFY(velmora->menu()->actions().size() > 5);
  QVERIFY(ide.Reports().empty());
  ide.UnloadAddIns();
  // Released by the add-in, its menu leaves the bar.
  QCOMPARE(ide.Window().menuBar()->actions().size(), 6);
}

void TQtHostTest::editWindowFoundByClassName() {
  TQtIDE ide;
  const struct {
    const char* ClassName;
    const char* Name;
  } cases[] = {
      {"TEditWindow", "EditWindow_0"},   {"TTabControl", "ViewBar"},
      {"TMessageView", "MessageView"},   {"TStatusbar", "StatusBar"},
      {"TPopupMenu", "EditorLocalMenu"}, {"TMainMenu", "MainMenu1"},
  };
  for (const auto& c : cases) {
    TIComponent* found = FindComponentByClassName(ide.Application(), c.ClassName);
    QVERIFY2(found, c.ClassName);
    QCOMPARE(QString::fromStdString(found->Name()), QString(c.Name));
  }
  // A component an add-in makes is owned by the form it was made on, and goes with it.
  TIComponent* edit = FindComponentByClassName(ide.Application(), "TEditWindow");
  const int before = edit->ComponentCount();
  TIComponent* made = edit->CreateComponent("TLabel", "VLLabel");
  QVERIFY(made);
  QCOMPARE(made->Owner(), edit);
  QCOMPARE(edit->ComponentCount(), before + 1);
  QVERIFY(edit->DestroyComponent(made));
  QCOMPARE(edit->ComponentCount(), before);
}

void TQtHostTest::classViewOfExampleProject() {
  TQtIDE ide;
  OpenExample(ide);
  TClassBrowser& browser = ide.ClassBrowser();
  browser.ExpandAllItems();
  const QString text = QStringLiteral("Classes\n") + browser.TreeText(TClassView::pgClasses) +
                       QStringLiteral("Files\n") + browser.TreeText(TClassView::pgFiles);
  const QString golden = QStringLiteral(VELMORA_TEST_DATA "/hosts/qt/golden/KilnLog.txt");
  if (qEnvironmentVariableIsSet("VELMORA_UPDATE_GOLDEN")) WriteFile(golden, text.toLatin1());
  QCOMPARE(text, QString::fromLatin1(ReadFile(golden)));
  QVERIFY(ide.Progress().isHidden());
}

void TQtHostTest::filterKeepsParentsOfMatches() {
  TQtIDE ide;
  OpenExample(ide);
  TClassBrowser& browser = ide.ClassBrowser();
  browser.FilterBox()->setText("AddSegment");
  const QString shown = browser.TreeText(TClassView::pgClasses);
  // The matches, their class and the root; nothing else of the project.
  QVERIFY2(shown.contains("class TFiring  FiringTypes.h:58"), qPrintable(shown));
  QCOMPARE(shown.count("AddSegment"), 2);
  QVERIFY2(!shown.contains("TCostModel"), qPrintable(shown));
  browser.FilterBox()->clear();
  QVERIFY(browser.TreeText(TClassView::pgClasses).contains("TCostModel"));
}

// Without the add-in the IDE parses the project itself, for its class view.
void TQtHostTest::statusAndProgressWhileParsing() {
  TQtIDE ide;
  QVERIFY(ide.OpenProjectFile(CopyExample().toStdString()));
  // The parse runs on a worker: until the event loop hands its result over, the window
  // says what it is doing.
  QVERIFY(ide.Parsing());
  QCOMPARE(ide.StatusBar().currentMessage(), QStringLiteral("Parsing Project KilnLog.bpr"));
  QVERIFY(!ide.Progress().isHidden());
  QTRY_VERIFY_WITH_TIMEOUT(!ide.Parsing(), 30000);
  QCOMPARE(ide.StatusBar().currentMessage(), QStringLiteral("Ready"));
  QVERIFY(ide.Progress().isHidden());
  QCOMPARE(ide.Progress().value(), ide.Progress().maximum());
  // A project that cannot be read changes nothing.
  QVERIFY(!ide.OpenProjectFile(QDir(home_.path()).filePath("missing.bpr").toStdString()));
  QVERIFY(QString::fromStdString(ide.ProjectName()).endsWith("KilnLog.bpr"));
  QCOMPARE(ide.Reports().size(), size_t{1});
}

void TQtHostTest::enterJumpsToTheDeclaration() {
  TQtIDE ide;
  OpenExample(ide);
  QTreeWidget* tree = ide.ClassBrowser().Tree(TClassView::pgClasses);
  const struct {
    const char* Item;  ///< a class of the project root
    const char* File;
    int Line;
  } cases[] = {
      {"TFiring", "FiringTypes.h", 58},
      {"IExporter", "ExportUnit.pas", 22},
  };
  for (const auto& c : cases) {
    const auto found = tree->findItems(c.Item, Qt::MatchExactly | Qt::MatchRecursive);
    QVERIFY2(!found.isEmpty(), c.Item);
    tree->setCurrentItem(found.first());
    tree->setFocus();
    QTest::keyClick(tree, Qt::Key_Return);
    QVERIFY2(QString::fromStdString(ide.CurrentFile()).endsWith(c.File), c.Item);
    int line = 0, index = 0;
    ide.EditorOf(ide.CurrentFile())->getCursorPosition(&line, &index);
    QCOMPARE(line + 1, c.Line);
  }
}

// A field typed into a header shows in the class view once the header is saved: the
// add-in hears of the save and parses the file again; the tree follows in place.
void TQtHostTest::savedEditorUpdatesTheTree() {
  TQtIDE ide;
  OpenExample(ide);
  TClassBrowser& browser = ide.ClassBrowser();
  QTreeWidget* tree = browser.Tree(TClassView::pgClasses);
  const auto costModel = tree->findItems("TCostModel", Qt::MatchExactly | Qt::MatchRecursive);
  QCOMPARE(costModel.size(), 1);
  costModel.first()->setExpanded(true);
  const int members = costModel.first()->childCount();
  QVERIFY(members > 0);

  const std::string header = browser.FullFileName("FiringTypes.h");
  QVERIFY(ide.GoTo(header, 113));  // the line after "double FRate;"
  ide.EditorOf(header)->insert("  double FMinimum;\r\n");
  QVERIFY(ide.SaveFile(header));
  QTRY_VERIFY_WITH_TIMEOUT(!ide.Parsing(), 30000);
  QTRY_VERIFY(browser.TreeText(TClassView::pgClasses).contains("double FMinimum"));
  // The class kept its item and its expansion.
  const auto after = tree->findItems("TCostModel", Qt::MatchExactly | Qt::MatchRecursive);
  QCOMPARE(after.size(), 1);
  QVERIFY(after.first()->isExpanded());
  QCOMPARE(after.first()->childCount(), members + 1);
}

void TQtHostTest::editorReaderReadsUnsavedText() {
  const QString path = QDir(home_.path()).filePath("unsaved.cpp");
  WriteFile(path, "int a;\nint b;\n");
  TQtIDE ide;
  QVERIFY(ide.OpenFile(path.toStdString()));
  QsciScintilla* editor = ide.EditorOf(path.toStdString());
  QVERIFY(editor);
  editor->setFocus();
  editor->setCursorPosition(1, 0);
  QTest::keyClicks(editor, "long ");
  TIRef<TIModule> module(ide.GetModule(path.toStdString()));
  QVERIFY(module);
  TIRef<TIEditor> ed(module->GetEditor());
  QCOMPARE(ReadThroughReader(*ed), std::string("int a;\r\nlong int b;\r\n"));
  // Only the editor changed; the file is as it was.
  QCOMPARE(ReadFile(path), QByteArray("int a;\nint b;\n"));

  TIRef<TIEditReader> reader(ed->CreateReader());
  const struct {
    const char* Name;
    int32_t Position;
    int Count;
    const char* Expected;
  } cases[] = {
      {"start", 0, 3, "int"},
      {"across a line end", 5, 4, ";\r\nl"},
      {"cut at the end", 18, 10, ";\r\n"},
      {"at the end", 21, 4, ""},
      {"negative", -1, 4, ""},
  };
  for (const auto& c : cases) {
    char buffer[16] = {};
    const int n = reader->GetText(c.Position, buffer, c.Count);
    QVERIFY2(std::string(buffer, static_cast<size_t>(n)) == c.Expected, c.Name);
  }
}

void TQtHostTest::writerChangesTheEditorInOneStep() {
  const QString path = QDir(home_.path()).filePath("writer.h");
  WriteFile(path, "class A {\r\n};\r\n");
  TQtIDE ide;
  QVERIFY(ide.OpenFile(path.toStdString()));
  TIRef<TIModule> module(ide.GetModule(path.toStdString()));
  TIRef<TIEditor> ed(module->GetEditor());
  QsciScintilla* editor = ide.EditorOf(path.toStdString());
  {
    TIRef<TIEditWriter> writer(ed->CreateWriter());
    QVERIFY(writer);
    QVERIFY(!TIRef<TIEditWriter>(ed->CreateWriter()));  // one writer at a time
    QVERIFY(writer->CopyTo(11));
    QVERIFY(writer->Insert("  int x;\r\n"));
    QVERIFY(!writer->CopyTo(3));  // behind the writer's place
    // Nothing reaches the editor before the writer is released.
    QCOMPARE(editor->length(), 15);
  }
  QCOMPARE(ReadThroughReader(*ed), std::string("class A {\r\n  int x;\r\n};\r\n"));
  QVERIFY(editor->isModified());
  // One undo takes the whole change back.
  editor->undo();
  QCOMPARE(ReadThroughReader(*ed), std::string("class A {\r\n};\r\n"));
}

void TQtHostTest::saveKeepsTheFilesLineEnds() {
  const struct {
    const char* Name;
    QByteArray OnDisk;
    QByteArray Saved;
  } cases[] = {
      {"lf.pas", "unit U;\nend.\n", "{x}unit U;\nend.\n"},
      {"crlf.cpp", "int a;\r\n", "{x}int a;\r\n"},
  };
  for (const auto& c : cases) {
    const QString path = QDir(home_.path()).filePath(c.Name);
    WriteFile(path, c.OnDisk);
    TQtIDE ide;
    QVERIFY(ide.OpenFile(path.toStdString()));
    ide.EditorOf(path.toStdString())->insertAt("{x}", 0, 0);
    QVERIFY2(ide.SaveFile(path.toStdString()), c.Name);
    QVERIFY2(ReadFile(path) == c.Saved, c.Name);
    QVERIFY2(!ide.EditorOf(path.toStdString())->isModified(), c.Name);
    // Closed and opened again, the editor holds what was saved.
    QVERIFY(ide.CloseFile(path.toStdString()));
    QVERIFY(!ide.IsFileOpen(path.toStdString()));
    QVERIFY(ide.ReopenFile());
    QCOMPARE(ide.EditorOf(path.toStdString())->text().left(3), QStringLiteral("{x}"));
  }
}

void TQtHostTest::dockPanelSidesAndCollapse() {
  TQtIDE ide;
  ide.Window().show();
  QVERIFY(QTest::qWaitForWindowExposed(&ide.Window()));
  TDockSite& site = ide.DockSite();
  const struct {
    TDockSide Side;
    Qt::Orientation Orientation;
    int PanelIndex;
  } cases[] = {
      {TDockSide::Right, Qt::Horizontal, 1},
      {TDockSide::Top, Qt::Vertical, 0},
      {TDockSide::Bottom, Qt::Vertical, 1},
      {TDockSide::Left, Qt::Horizontal, 0},
  };
  for (const auto& c : cases) {
    emit site.Panel()->SideRequested(c.Side);
    const char* name = DockSideName(c.Side);
    QVERIFY2(site.Splitter()->orientation() == c.Orientation, name);
    QVERIFY2(site.Splitter()->indexOf(site.Panel()) == c.PanelIndex, name);
    QVERIFY2(site.Panel()->Side() == c.Side, name);
  }
  const int width = site.Panel()->width();
  site.Panel()->SetCollapsed(true);
  QTRY_VERIFY(site.Panel()->width() < 60);
  QVERIFY(!site.Panel()->Content()->isVisible());
  site.Panel()->SetCollapsed(false);
  QTRY_COMPARE(site.Panel()->width(), width);
  QVERIFY(site.Panel()->Content()->isVisible());
  site.ShowPanel(false);
  QVERIFY(!site.Panel()->isVisible());
}

QTEST_MAIN(TQtHostTest)
#include "qt_ide_test.moc"
