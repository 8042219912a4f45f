#include "hosts/qt/qt_ide.h"

#include <Qsci/qscilexercpp.h>
#include <Qsci/qscilexerpascal.h>
#include <Qsci/qsciscintilla.h>
#include <dlfcn.h>

#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QLabel>
#include <QListWidget>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressBar>
#include <QSplitter>
#include <QStatusBar>
#include <QStyle>
#include <QTabWidget>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>
#include <algorithm>

#include "addin/model_view_listener.h"
#include "addin/plugin/addin_plugin.h"
#include "addin/vl_manager.h"
#include "hosts/qt/class_browser.h"
#include "hosts/qt/dock_panel.h"
#include "hosts/qt/project_model.h"
#include "projects/project.h"
#include "support/ansi.h"
#include "support/exception.h"
#include "support/paths.h"
#include "support/stream.h"

namespace velmora {
namespace {

bool IsPascalFile(const std::string& fileName) {
  const std::string ext = AnsiLowerCase(std::string(ExtractFileExt(fileName)));
  return ext == ".pas" || ext == ".pp" || ext == ".dpr" || ext == ".dpk" || ext == ".lpr" ||
         ext == ".inc";
}

QString Latin1(const std::string& s) {
  return QString::fromLatin1(s.data(), static_cast<qsizetype>(s.size()));
}

QFont EditorFont() {
  QFont font(QStringLiteral("DejaVu Sans Mono"));
  font.setStyleHint(QFont::Monospace);
  font.setPointSize(10);
  return font;
}

// The editor's colours: a light theme close to what users of these IDEs know, the
// keywords bold and navy, comments green and italic, strings and numbers apart.
void StyleLexer(QsciLexer& lexer, bool pascal) {
  const QFont font = EditorFont();
  lexer.setDefaultFont(font);
  lexer.setFont(font, -1);
  QFont bold = font;
  bold.setBold(true);
  QFont italic = font;
  italic.setItalic(true);
  const QColor comment(0x00, 0x80, 0x00), keyword(0x00, 0x00, 0x80), text(0x20, 0x20, 0x20);
  const QColor string(0xa3, 0x15, 0x15), number(0x09, 0x86, 0x58), preprocessor(0x80, 0x40, 0x80);
  lexer.setColor(text, -1);
  if (pascal) {
    for (int style : {QsciLexerPascal::Comment, QsciLexerPascal::CommentParenthesis,
                      QsciLexerPascal::CommentLine}) {
      lexer.setColor(comment, style);
      lexer.setFont(italic, style);
    }
    lexer.setColor(keyword, QsciLexerPascal::Keyword);
    lexer.setFont(bold, QsciLexerPascal::Keyword);
    lexer.setColor(string, QsciLexerPascal::SingleQuotedString);
    lexer.setColor(number, QsciLexerPascal::Number);
    lexer.setColor(preprocessor, QsciLexerPascal::PreProcessor);
    lexer.setColor(preprocessor, QsciLexerPascal::PreProcessorParenthesis);
  } else {
    for (int style : {QsciLexerCPP::Comment, QsciLexerCPP::CommentLine, QsciLexerCPP::CommentDoc,
                      QsciLexerCPP::CommentLineDoc}) {
      lexer.setColor(comment, style);
      lexer.setFont(italic, style);
    }
    lexer.setColor(keyword, QsciLexerCPP::Keyword);
    lexer.setFont(bold, QsciLexerCPP::Keyword);
    lexer.setColor(string, QsciLexerCPP::DoubleQuotedString);
    lexer.setColor(string, QsciLexerCPP::SingleQuotedString);
    lexer.setColor(number, QsciLexerCPP::Number);
    lexer.setColor(preprocessor, QsciLexerCPP::PreProcessor);
  }
}

// The C++Builder keywords beyond standard C++, so the editor shows them as keywords.
class TBuilderLexer : public QsciLexerCPP {
 public:
  using QsciLexerCPP::QsciLexerCPP;
  const char* keywords(int set) const override {
    if (set != 1) return QsciLexerCPP::keywords(set);
    static const std::string words =
        std::string(QsciLexerCPP::keywords(1)) +
        " __property __published __fastcall __closure __declspec __classid __automated"
        " __int64 __finally __try __except";
    return words.c_str();
  }
};

// The class view as the add-in's manager sees it: told after every merge, and before a
// file's objects go.
class TBrowserModelListener : public TModelViewListener {
 public:
  explicit TBrowserModelListener(TClassBrowser& browser) : browser_(browser) {}
  void ModelChanged() override { browser_.Refresh(); }
  void FileRemoving(const std::string& fileName) override {
    browser_.View().RemoveFileObjects(fileName);
  }

 private:
  TClassBrowser& browser_;
};

}  // namespace

struct TQtIDE::TOwnItem {
  const char* Caption;
  const char* Name;
  std::function<void()> Run;  ///< empty for a separator
  QKeySequence Keys = {};
};

TQtIDE::TQtIDE() : model_(std::make_unique<TProjectModel>(queue_)) {
  queue_.SetMainThread();
  BuildWindows();
  BuildMenu();
  idlePoll_ = new QTimer(window_.get());
  idlePoll_->setInterval(100);
  QObject::connect(idlePoll_, &QTimer::timeout, window_.get(), [this] {
    if (!Parsing()) ParseFinished();
  });
  // Work other threads queue is run by the event loop: each post asks the window to run
  // the queue when the loop next gets to it.
  QPointer<QMainWindow> window = window_.get();
  queue_.SetWakeHook([this, window] {
    QMetaObject::invokeMethod(
        window.data(),
        [this] {
          try {
            queue_.RunUntilIdle();
          } catch (const std::exception& e) {
            ReportException(e.what());
          }
        },
        Qt::QueuedConnection);
  });
}

TQtIDE::~TQtIDE() {
  UnloadAddIns();
  CloseProject();
  while (!modules_.empty()) CloseFile(modules_.begin()->first);
  model_.reset();
  queue_.Shutdown();
  menuBar_.Reset();
  ownItems_.clear();
}

// ---- windows ----

void TQtIDE::BuildWindows() {
  window_ = std::make_unique<QMainWindow>();
  MarkComponent(*window_, "TAppBuilder", "AppBuilder", true);
  components_.AddForm(window_.get());
  window_->setWindowTitle(QStringLiteral("Velmora IDE"));
  window_->resize(1280, 800);
  MarkComponent(*window_->menuBar(), "TMainMenu", "MainMenu1");

  // The editor window sits in the main window, as one window is what a desktop of today
  // expects; it is a form of its own all the same.
  editWindow_ = new QWidget(window_.get());
  MarkComponent(*editWindow_, "TEditWindow", "EditWindow_0", true);
  components_.AddForm(editWindow_);
  window_->setCentralWidget(editWindow_);

  tabs_ = new QTabWidget(editWindow_);
  MarkComponent(*tabs_, "TTabControl", "ViewBar");
  tabs_->setDocumentMode(true);
  tabs_->setTabsClosable(true);
  tabs_->setMovable(true);
  QObject::connect(tabs_, &QTabWidget::currentChanged, window_.get(), [this] { UpdateStatus(); });
  QObject::connect(tabs_, &QTabWidget::tabCloseRequested, window_.get(), [this](int index) {
    auto* editor = qobject_cast<QsciScintilla*>(tabs_->widget(index));
    if (!editor) return;
    const std::string fileName = editor->property("velmoraFile").toString().toStdString();
    if (editor->isModified()) {
      const auto answer = QMessageBox::question(
          window_.get(), QStringLiteral("Velmora IDE"),
          QStringLiteral("Save changes to %1?").arg(QFileInfo(Latin1(fileName)).fileName()),
          QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
      if (answer == QMessageBox::Cancel) return;
      if (answer == QMessageBox::Save && !SaveFile(fileName)) return;
    }
    CloseFile(fileName);
  });

  browser_ = new TClassBrowser(settings_);
  browser_->setObjectName("ClassBrowser");
  auto* panel = new TDockPanel(QStringLiteral("Class View"), browser_);
  MarkComponent(*panel, "TDockableDisplayForm", "VLClassViewPanel");
  dockSite_ = new TDockSite(tabs_, panel);
  QObject::connect(browser_, &TClassBrowser::JumpRequested, window_.get(),
                   [this](const QString& file, int line) { GoTo(file.toStdString(), line); });
  QObject::connect(browser_, &TClassBrowser::Message, window_.get(),
                   [this](const QString& text) { statusBar_->showMessage(text, 5000); });

  messages_ = new QListWidget;
  MarkComponent(*messages_, "TMessageView", "MessageView");
  messages_->setAlternatingRowColors(true);
  auto* vertical = new QSplitter(Qt::Vertical);
  vertical->addWidget(dockSite_);
  vertical->addWidget(messages_);
  vertical->setStretchFactor(0, 1);
  vertical->setStretchFactor(1, 0);
  vertical->setSizes({620, 110});
  vertical->setChildrenCollapsible(false);

  statusBar_ = new QStatusBar;
  MarkComponent(*statusBar_, "TStatusbar", "StatusBar");
  cursorLabel_ = new QLabel;
  cursorLabel_->setMinimumWidth(90);
  modifiedLabel_ = new QLabel;
  modifiedLabel_->setMinimumWidth(70);
  progress_ = new QProgressBar;
  progress_->setMaximumWidth(180);
  progress_->setMaximumHeight(14);
  progress_->setTextVisible(false);
  progress_->hide();
  statusBar_->addPermanentWidget(progress_);
  statusBar_->addPermanentWidget(cursorLabel_);
  statusBar_->addPermanentWidget(modifiedLabel_);
  statusBar_->showMessage(QStringLiteral("Ready"));

  auto* layout = new QVBoxLayout(editWindow_);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(vertical, 1);
  layout->addWidget(statusBar_);

  // The popup menus an add-in extends.
  auto* editorMenu = new QMenu(editWindow_);
  MarkComponent(*editorMenu, "TPopupMenu", "EditorLocalMenu");
  auto* messageMenu = new QMenu(editWindow_);
  MarkComponent(*messageMenu, "TPopupMenu", "MsgViewPopupMenu");
}

void TQtIDE::AddMenu(const char* caption, const char* name, const std::vector<TOwnItem>& items) {
  TIRef<TQtMenuItem> menu(static_cast<TQtMenuItem*>(menuBar_->InsertItem(
      menuBar_->ItemCount(), caption, name, "", 0, 0, 0, mfEnabled | mfVisible, {})));
  for (const TOwnItem& own : items) {
    TMenuClickHandler handler;
    if (own.Run) handler = [run = own.Run](TIMenuItem&) { run(); };
    TIRef<TQtMenuItem> item(static_cast<TQtMenuItem*>(
        menu->InsertItem(menu->ItemCount(), own.Caption, own.Name, "", 0, 0, 0,
                         own.Run ? mfEnabled | mfVisible : mfVisible, std::move(handler))));
    if (!own.Keys.isEmpty()) item->Action()->setShortcut(own.Keys);
    ownItems_.push_back(std::move(item));
  }
  ownItems_.push_back(std::move(menu));
}

// The IDE's own menus, in the order an IDE of this kind shows them; what matters to the
// add-in is the Project menu and its "ProjectAddItem".
void TQtIDE::BuildMenu() {
  menuBar_ = TIRef<TQtMenuItem>(new TQtMenuItem(window_->menuBar()));
  auto editor = [this] { return qobject_cast<QsciScintilla*>(tabs_->currentWidget()); };
  auto onEditor = [editor](void (QsciScintilla::*command)()) {
    return [editor, command] {
      if (QsciScintilla* e = editor()) (e->*command)();
    };
  };
  AddMenu("&File", "FileMenu",
          {{"Open &Project...", "FileOpenProjectItem", [this] { CmdOpenProject(); },
            QKeySequence(Qt::CTRL | Qt::Key_F11)},
           {"&Open...", "FileOpenItem", [this] { CmdOpenFile(); }, QKeySequence::Open},
           {"&Reopen", "FileReopenItem", [this] { ReopenFile(); }},
           {"-", "FileSep1", {}},
           {"&Save", "FileSaveItem", [this] { SaveFile(CurrentFile()); }, QKeySequence::Save},
           {"Save A&ll", "FileSaveAllItem", [this] { CmdSaveAll(); },
            QKeySequence(Qt::SHIFT | Qt::CTRL | Qt::Key_S)},
           {"&Close", "FileCloseItem", [this] { CmdCloseCurrent(); },
            QKeySequence(Qt::CTRL | Qt::Key_F4)},
           {"Close Pro&ject", "FileCloseProjectItem", [this] { CloseProject(); }},
           {"-", "FileSep2", {}},
           {"E&xit", "FileExitItem", [this] { window_->close(); }, QKeySequence::Quit}});
  AddMenu("&Edit", "EditMenu",
          {{"&Undo", "EditUndoItem", onEditor(&QsciScintilla::undo), QKeySequence::Undo},
           {"&Redo", "EditRedoItem", onEditor(&QsciScintilla::redo), QKeySequence::Redo},
           {"-", "EditSep1", {}},
           {"Cu&t", "EditCutItem", onEditor(&QsciScintilla::cut), QKeySequence::Cut},
           {"&Copy", "EditCopyItem", onEditor(&QsciScintilla::copy), QKeySequence::Copy},
           {"&Paste", "EditPasteItem", onEditor(&QsciScintilla::paste), QKeySequence::Paste},
           {"-", "EditSep2", {}},
           {"Select &All", "EditSelectAllItem",
            [editor] {
              if (QsciScintilla* e = editor()) e->selectAll();
            },
            QKeySequence::SelectAll}});
  AddMenu("&Search", "SearchMenu",
          {{"&Find...", "SearchFindItem", [this] { CmdFind(false); }, QKeySequence::Find},
           {"Find &Next", "SearchAgainItem", [this] { CmdFind(true); }, QKeySequence::FindNext},
           {"&Go to Line Number...", "SearchGotoItem", [this] { CmdGoToLine(); },
            QKeySequence(Qt::ALT | Qt::Key_G)}});
  AddMenu("&View", "ViewMenu",
          {{"&Class View", "ViewClassViewItem",
            [this] { dockSite_->ShowPanel(!dockSite_->Panel()->isVisible()); }},
           {"&Message View", "ViewMessageViewItem",
            [this] { messages_->setVisible(!messages_->isVisible()); }}});
  AddMenu("&Project", "ProjectMenu",
          {{"&Add to Project...", "ProjectAddItem", [this] { CmdAddToProject(); },
            QKeySequence(Qt::SHIFT | Qt::Key_F11)},
           {"&Remove from Project...", "ProjectRemoveItem", [this] { CmdRemoveFromProject(); }}});
  AddMenu("&Help", "HelpMenu",
          {{"&About Velmora IDE...", "HelpAboutItem", [this] { CmdAbout(); }}});

  auto* tools = window_->addToolBar(QStringLiteral("Standard"));
  tools->setObjectName("StandardToolBar");
  tools->setMovable(false);
  tools->setIconSize(QSize(18, 18));
  QStyle* style = window_->style();
  tools->addAction(style->standardIcon(QStyle::SP_DirOpenIcon), QStringLiteral("Open Project"),
                   [this] { CmdOpenProject(); });
  tools->addAction(style->standardIcon(QStyle::SP_FileIcon), QStringLiteral("Open File"),
                   [this] { CmdOpenFile(); });
  tools->addAction(style->standardIcon(QStyle::SP_DialogSaveButton), QStringLiteral("Save"),
                   [this] { SaveFile(CurrentFile()); });
  tools->addSeparator();
  tools->addAction(style->standardIcon(QStyle::SP_FileDialogContentsView),
                   QStringLiteral("Class View"),
                   [this] { dockSite_->ShowPanel(!dockSite_->Panel()->isVisible()); });
}

QsciScintilla* TQtIDE::NewEditor(const std::string& fileName) {
  auto* editor = new QsciScintilla;
  MarkComponent(*editor, "TEditControl", QStringLiteral("Editor%1").arg(++editorNumber_));
  editor->setProperty("velmoraFile", QString::fromStdString(fileName));
  // Single-byte text: a character is a byte, as the add-in's offsets count them.
  editor->setUtf8(false);
  editor->setEolMode(QsciScintilla::EolWindows);
  editor->setEolVisibility(false);
  const bool pascal = IsPascalFile(fileName);
  QsciLexer* lexer = pascal ? static_cast<QsciLexer*>(new QsciLexerPascal(editor))
                            : static_cast<QsciLexer*>(new TBuilderLexer(editor));
  StyleLexer(*lexer, pascal);
  editor->setLexer(lexer);
  editor->setFont(EditorFont());
  editor->setMarginType(0, QsciScintilla::NumberMargin);
  editor->setMarginWidth(0, QStringLiteral("00000"));
  editor->setMarginsFont(EditorFont());
  editor->setMarginsForegroundColor(QColor(0x80, 0x80, 0x80));
  editor->setMarginsBackgroundColor(QColor(0xf3, 0xf3, 0xf3));
  editor->setMarginWidth(1, 4);
  editor->setCaretLineVisible(true);
  editor->setCaretLineBackgroundColor(QColor(0xe8, 0xf2, 0xfe));
  editor->setSelectionBackgroundColor(QColor(0xad, 0xd6, 0xff));
  editor->resetSelectionForegroundColor();
  editor->setBraceMatching(QsciScintilla::SloppyBraceMatch);
  editor->setIndentationsUseTabs(false);
  editor->setTabWidth(8);
  editor->setIndentationWidth(2);
  editor->setAutoIndent(true);
  editor->setFrameShape(QFrame::NoFrame);
  // The horizontal scroll bar only when a line is wider than the window.
  editor->SendScintilla(QsciScintillaBase::SCI_SETSCROLLWIDTH, 1UL);
  editor->SendScintilla(QsciScintillaBase::SCI_SETSCROLLWIDTHTRACKING, 1UL);
  QObject::connect(editor, &QsciScintilla::cursorPositionChanged, window_.get(),
                   [this] { UpdateStatus(); });
  QObject::connect(editor, &QsciScintilla::modificationChanged, window_.get(),
                   [this] { UpdateStatus(); });
  return editor;
}

void TQtIDE::UpdateStatus() {
  auto* editor = qobject_cast<QsciScintilla*>(tabs_->currentWidget());
  if (!editor) {
    cursorLabel_->clear();
    modifiedLabel_->clear();
    return;
  }
  int line = 0, index = 0;
  editor->getCursorPosition(&line, &index);
  cursorLabel_->setText(QStringLiteral("%1: %2").arg(line + 1).arg(index + 1));
  modifiedLabel_->setText(editor->isModified() ? QStringLiteral("Modified") : QString());
  for (int i = 0; i < tabs_->count(); ++i) {
    auto* e = qobject_cast<QsciScintilla*>(tabs_->widget(i));
    if (!e) continue;
    const QString name = QFileInfo(e->property("velmoraFile").toString()).fileName();
    tabs_->setTabText(i, e->isModified() ? name + QStringLiteral(" *") : name);
  }
}

void TQtIDE::Info(const QString& text) {
  auto* item = new QListWidgetItem(window_->style()->standardIcon(QStyle::SP_MessageBoxInformation),
                                   text, messages_);
  messages_->scrollToItem(item);
}

// ---- the add-in ----

bool TQtIDE::LoadAddInLibrary(const std::string& path) {
  // The library stays loaded for the rest of the process: the add-in's code may still be
  // reached through menu handlers and queued work until the very end.
  void* handle = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) {
    const char* error = ::dlerror();
    ReportException(error ? error : "Cannot load " + path);
    return false;
  }
  void* entry = ::dlsym(handle, kExpertEntryPointName);
  if (!entry) {
    ReportException(path + " has no entry point " + kExpertEntryPointName);
    return false;
  }
  const bool loaded = LoadAddIn(reinterpret_cast<TExpertInitProc>(entry));
  ConnectAddInModel(handle);
  return loaded;
}

// The add-in's objects carry the representation slots of the library's own manager, so
// the class view takes its slot there.
void TQtIDE::ConnectAddInModel(void* library) {
  auto manager = reinterpret_cast<TAddInManagerEntry>(::dlsym(library, kAddInManagerEntryName));
  auto representations = reinterpret_cast<TAddInRepresentationsEntry>(
      ::dlsym(library, kAddInRepresentationsEntryName));
  if (!manager || !representations || !manager() || !representations() || addInManager_) return;
  addInManager_ = manager();
  browser_->UseRepresentations(*representations());
  viewListener_ = std::make_unique<TBrowserModelListener>(*browser_);
  addInManager_->SetProgressHandler([this](const TVLProgress& progress) {
    progress_->setMaximum(std::max(progress.FilesTotal, 1));
    progress_->setValue(progress.FilesParsed);
  });
  ShowAddInModel();
  addInManager_->AddView(viewListener_.get());
}

void TQtIDE::DisconnectAddInModel() {
  if (!addInManager_) return;
  addInManager_->RemoveView(viewListener_.get());
  addInManager_->SetProgressHandler({});
  browser_->SetSources({});
  browser_->UseRepresentations(RepresentationManager());
  viewListener_.reset();
  addInManager_ = nullptr;
}

void TQtIDE::ShowAddInModel() {
  if (!addInManager_) return;
  browser_->SetSources({.ProjectName = UnitNameOf(projectName_),
                        .ProjectClasses = &addInManager_->ProjectClasses(),
                        .ExternalClasses = &addInManager_->ExternalClasses(),
                        .ProjectFiles = &addInManager_->ProjectFiles(),
                        .ExternalFiles = &addInManager_->ExternalFiles()});
}

void TQtIDE::UnloadAddIns() {
  DisconnectAddInModel();
  UnloadExperts();
}

void TQtIDE::ReportException(const std::string& message) {
  TToolServicesBase::ReportException(message);
  if (!messages_) return;
  auto* item = new QListWidgetItem(window_->style()->standardIcon(QStyle::SP_MessageBoxCritical),
                                   Latin1(message), messages_);
  messages_->scrollToItem(item);
}

std::string TQtIDE::KeyOf(const std::string& fileName) const {
  std::string existing = ResolveExistingFile(fileName);
  return existing.empty() ? ToPosixSeparators(fileName) : existing;
}

TQtModule* TQtIDE::ModuleOf(const std::string& fileName) const {
  auto it = modules_.find(KeyOf(fileName));
  return it == modules_.end() ? nullptr : it->second.Get();
}

// ---- the project ----

bool TQtIDE::OpenProjectFile(const std::string& path) {
  TProject project;
  try {
    project = OpenProject(path);
  } catch (const Exception& e) {
    ReportException(e.Message());
    return false;
  }
  CloseProject();
  const std::string key = KeyOf(project.FileName);
  Broadcast(TFileNotification::ProjectOpening, key);
  project_.Open(key);
  projectName_ = std::string(ExtractFileName(key));
  for (const TProjectUnit& unit : project.Units) {
    project_.Add(KeyOf(unit.FileName));
    parseFiles_.push_back(unit.FileName);
    if (!unit.Header.empty()) parseFiles_.push_back(unit.Header);
  }
  projectModule_ = TIRef<TQtModule>(new TQtModule(key, nullptr));
  if (addInManager_) addInManager_->SetProjectIncludePath(key, project.IncludePath);
  Broadcast(TFileNotification::ProjectOpened, key);
  window_->setWindowTitle(QStringLiteral("Velmora IDE - %1").arg(Latin1(project.Name)));
  Info(QStringLiteral("Opened %1 project %2: %3 units")
           .arg(QString::fromLatin1(ProjectKindName(project.Kind)), Latin1(projectName_))
           .arg(project.Units.size()));
  for (const std::string& warning : project.Warnings) Info(Latin1(warning));
  if (!project_.Units().empty()) OpenFile(project_.Units().front());
  StartParse();
  return true;
}

void TQtIDE::StartParse() {
  statusBar_->showMessage(QStringLiteral("Parsing Project %1").arg(Latin1(projectName_)));
  progress_->setRange(0, std::max<int>(static_cast<int>(parseFiles_.size()), 1));
  progress_->setValue(0);
  progress_->show();
  if (addInManager_) {
    // The add-in's jobs were queued when it heard of the project.
    ShowAddInModel();
    idlePoll_->start();
    return;
  }
  model_->Parse(
      parseFiles_, [this](int done, int) { progress_->setValue(done); },
      [this] {
        browser_->SetSources({.ProjectName = UnitNameOf(projectName_),
                              .ProjectClasses = model_->Classes(),
                              .ProjectFiles = model_->Files()});
        progress_->hide();
        statusBar_->showMessage(QStringLiteral("Ready"));
      });
}

bool TQtIDE::Parsing() const {
  return addInManager_ ? !addInManager_->Idle() : model_->Busy();
}

void TQtIDE::ParseFinished() {
  idlePoll_->stop();
  progress_->hide();
  statusBar_->showMessage(QStringLiteral("Ready"));
}

void TQtIDE::WaitUntilParsed() {
  if (addInManager_) {
    addInManager_->WaitUntilIdle();
    ParseFinished();
    return;
  }
  while (model_->Busy()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
}

void TQtIDE::CloseProject() {
  if (!project_.IsOpen()) return;
  Broadcast(TFileNotification::ProjectClosing, project_.FileName());
  TIRef<TQtModule> module = std::move(projectModule_);
  if (module) module->Close();
  project_.Close();
  projectName_.clear();
  parseFiles_.clear();
  // The view lets go of the IDE's own lists before they are freed; the add-in's stay.
  if (addInManager_)
    ShowAddInModel();
  else
    browser_->SetSources({});
  model_->Clear();
  idlePoll_->stop();
  progress_->hide();
  window_->setWindowTitle(QStringLiteral("Velmora IDE"));
}

bool TQtIDE::AddToProject(const std::string& fileName) {
  const std::string key = KeyOf(fileName);
  if (!project_.Add(key)) return false;
  parseFiles_.push_back(key);
  Broadcast(TFileNotification::AddedToProject, key);
  if (!addInManager_) StartParse();
  return true;
}

bool TQtIDE::RemoveFromProject(const std::string& fileName) {
  const std::string key = KeyOf(fileName);
  if (!project_.Remove(key)) return false;
  std::erase(parseFiles_, key);
  Broadcast(TFileNotification::RemovedFromProject, key);
  if (!addInManager_) StartParse();
  return true;
}

// ---- files and editors ----

bool TQtIDE::OpenFile(const std::string& fileName) {
  const std::string key = KeyOf(fileName);
  if (TQtModule* open = ModuleOf(key)) {
    if (open->Buffer()->Editor) tabs_->setCurrentWidget(open->Buffer()->Editor);
    return true;
  }
  Broadcast(TFileNotification::FileOpening, key);
  auto buffer = std::make_shared<TQtBuffer>();
  buffer->FileName = key;
  std::string text;
  try {
    const std::string raw = ReadWholeFile(key);
    buffer->Style = DetectLineEndStyle(raw);
    text = ToBufferForm(raw);
  } catch (const std::exception& e) {
    ReportException(e.what());
    return false;
  }
  buffer->Editor = NewEditor(key);
  buffer->Load(text);
  const int index =
      tabs_->addTab(buffer->Editor, QFileInfo(QString::fromStdString(key)).fileName());
  tabs_->setTabToolTip(index, QString::fromStdString(key));
  modules_.emplace(key, TIRef<TQtModule>(new TQtModule(key, buffer)));
  tabs_->setCurrentIndex(index);
  std::erase(closedFiles_, key);
  Broadcast(TFileNotification::FileOpened, key);
  UpdateStatus();
  return true;
}

bool TQtIDE::ReloadFile(const std::string& fileName) {
  TQtModule* module = ModuleOf(fileName);
  if (!module || !module->Buffer() || module->Buffer()->Modified()) return false;
  try {
    const std::string raw = ReadWholeFile(module->FileName());
    module->Buffer()->Style = DetectLineEndStyle(raw);
    module->Buffer()->Load(ToBufferForm(raw));
  } catch (const std::exception& e) {
    ReportException(e.what());
    return false;
  }
  return true;
}

bool TQtIDE::IsFileOpen(const std::string& fileName) {
  return ModuleOf(fileName) != nullptr;
}

std::string TQtIDE::CurrentFile() {
  auto* editor = qobject_cast<QsciScintilla*>(tabs_->currentWidget());
  return editor ? editor->property("velmoraFile").toString().toStdString() : std::string();
}

QsciScintilla* TQtIDE::EditorOf(const std::string& fileName) const {
  TQtModule* module = ModuleOf(fileName);
  return module && module->Buffer() ? module->Buffer()->Editor.data() : nullptr;
}

bool TQtIDE::CloseFile(const std::string& fileName) {
  auto it = modules_.find(KeyOf(fileName));
  if (it == modules_.end()) return false;
  const std::string key = it->first;
  Broadcast(TFileNotification::FileClosing, key);
  TIRef<TQtModule> module = std::move(it->second);
  modules_.erase(key);
  module->Close();
  if (QsciScintilla* editor = module->Buffer()->Editor) {
    tabs_->removeTab(tabs_->indexOf(editor));
    delete editor;
  }
  closedFiles_.push_back(key);
  UpdateStatus();
  return true;
}

bool TQtIDE::ReopenFile() {
  if (closedFiles_.empty()) return false;
  const std::string last = closedFiles_.back();
  return OpenFile(last);
}

bool TQtIDE::SaveFile(const std::string& fileName) {
  TQtModule* module = ModuleOf(fileName);
  if (!module || !module->Buffer()) return false;
  TQtBuffer& buffer = *module->Buffer();
  try {
    WriteFileAtomically(buffer.FileName, FromBufferForm(buffer.Text(), buffer.Style));
  } catch (const std::exception& e) {
    ReportException(e.what());
    return false;
  }
  buffer.SetSaved();
  module->Notify(TModuleNotification::ModuleSaved);
  statusBar_->showMessage(QStringLiteral("Saved %1").arg(Latin1(buffer.FileName)), 3000);
  // The class view shows the file as saved once it is parsed again: by the add-in, which
  // heard of the save, or else here.
  if (!addInManager_ &&
      std::any_of(parseFiles_.begin(), parseFiles_.end(),
                  [&](const std::string& f) { return KeyOf(f) == buffer.FileName; }))
    StartParse();
  return true;
}

bool TQtIDE::GoTo(const std::string& fileName, int line) {
  if (!OpenFile(fileName)) return false;
  QsciScintilla* editor = EditorOf(fileName);
  if (!editor) return false;
  const int target = std::max(line - 1, 0);
  // The declaration a few lines below the top, with its surroundings in view.
  editor->setFirstVisibleLine(std::max(target - 4, 0));
  editor->setCursorPosition(target, 0);
  editor->setSelection(target, 0, target, editor->lineLength(target) - 2);
  editor->setFocus();
  return true;
}

TIModule* TQtIDE::GetModule(const std::string& fileName) {
  TQtModule* module = ModuleOf(fileName);
  if (!module && projectModule_ && KeyOf(fileName) == project_.FileName())
    module = projectModule_.Get();
  return TIRef<TIModule>::Share(module).Detach();
}

TIMainMenu* TQtIDE::GetMainMenu() {
  return new TQtMainMenu(menuBar_.Get());
}

// ---- menu commands ----

void TQtIDE::CmdOpenProject() {
  const QString path = QFileDialog::getOpenFileName(
      window_.get(), QStringLiteral("Open Project"), QString(),
      QStringLiteral("Projects (*.bpr *.bpk *.mak *.cbproj *.dpr *.dproj *.lpi *.lpk);;"
                     "All files (*)"));
  if (!path.isEmpty()) OpenProjectFile(path.toStdString());
}

void TQtIDE::CmdOpenFile() {
  const QStringList paths = QFileDialog::getOpenFileNames(
      window_.get(), QStringLiteral("Open"), QString(),
      QStringLiteral("Sources (*.cpp *.h *.hpp *.c *.pas *.pp *.dpr *.lpr *.inc);;All files (*)"));
  for (const QString& path : paths) OpenFile(path.toStdString());
}

void TQtIDE::CmdSaveAll() {
  std::vector<std::string> names;
  for (const auto& [name, module] : modules_)
    if (module->Buffer() && module->Buffer()->Modified()) names.push_back(name);
  for (const std::string& name : names) SaveFile(name);
}

void TQtIDE::CmdCloseCurrent() {
  const int index = tabs_->currentIndex();
  if (index >= 0) emit tabs_->tabCloseRequested(index);
}

void TQtIDE::CmdFind(bool next) {
  auto* editor = qobject_cast<QsciScintilla*>(tabs_->currentWidget());
  if (!editor) return;
  static QString last;
  if (next && !last.isEmpty()) {
    if (!editor->findNext())
      statusBar_->showMessage(QStringLiteral("Search string '%1' not found").arg(last), 3000);
    return;
  }
  bool ok = false;
  const QString text = QInputDialog::getText(
      window_.get(), QStringLiteral("Find Text"), QStringLiteral("Text to find:"),
      QLineEdit::Normal, editor->selectedText().isEmpty() ? last : editor->selectedText(), &ok);
  if (!ok || text.isEmpty()) return;
  last = text;
  if (!editor->findFirst(text, false, false, false, true))
    statusBar_->showMessage(QStringLiteral("Search string '%1' not found").arg(text), 3000);
}

void TQtIDE::CmdGoToLine() {
  auto* editor = qobject_cast<QsciScintilla*>(tabs_->currentWidget());
  if (!editor) return;
  bool ok = false;
  const int line =
      QInputDialog::getInt(window_.get(), QStringLiteral("Go to Line Number"),
                           QStringLiteral("Enter new line number:"), 1, 1, editor->lines(), 1, &ok);
  if (ok) GoTo(CurrentFile(), line);
}

void TQtIDE::CmdAddToProject() {
  if (!project_.IsOpen()) return;
  const QStringList paths = QFileDialog::getOpenFileNames(
      window_.get(), QStringLiteral("Add to Project"),
      QFileInfo(Latin1(project_.FileName())).path(),
      QStringLiteral("Sources (*.cpp *.c *.pas *.pp);;All files (*)"));
  for (const QString& path : paths) AddToProject(path.toStdString());
}

void TQtIDE::CmdRemoveFromProject() {
  if (project_.Units().empty()) return;
  QStringList names;
  for (const std::string& unit : project_.Units()) names << Latin1(unit);
  bool ok = false;
  const QString unit = QInputDialog::getItem(window_.get(), QStringLiteral("Remove From Project"),
                                             QStringLiteral("Unit:"), names, 0, false, &ok);
  if (ok) RemoveFromProject(unit.toStdString());
}

void TQtIDE::CmdAbout() {
  QMessageBox::about(window_.get(), QStringLiteral("About Velmora IDE"),
                     QStringLiteral("<b>Velmora IDE</b><p>A small IDE for C++Builder, Delphi and "
                                    "Lazarus projects, hosting the Velmora class browser.</p>"));
}

}  // namespace velmora
