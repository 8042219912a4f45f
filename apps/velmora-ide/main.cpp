// velmora-ide: the Qt desktop IDE with the Velmora add-in loaded.
//
//   velmora-ide [PROJECT]                      opens the project (any kind, or a folder)
//   velmora-ide --screenshot FILE [PROJECT]    writes a PNG of the window once it is parsed
//
// The add-in is the shared library named by $VELMORA_ADDIN, else the installed one, else
// the one of the build tree; --no-addin runs the IDE alone.
#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QFont>
#include <QMainWindow>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <cstdlib>
#include <filesystem>

#include "hosts/qt/qt_ide.h"
#include "screenshot.h"

namespace {

std::string AddInPath() {
  if (const char* env = std::getenv("VELMORA_ADDIN"); env && *env) return env;
  if (QFile::exists(QStringLiteral(VELMORA_INSTALLED_ADDIN))) return VELMORA_INSTALLED_ADDIN;
  return VELMORA_BUILD_ADDIN;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  QApplication::setApplicationName(QStringLiteral("Velmora IDE"));
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPointSize(9);
  QApplication::setFont(font);

  QCommandLineParser parser;
  parser.setApplicationDescription(QStringLiteral("The Velmora class browser in a small IDE"));
  parser.addHelpOption();
  const QCommandLineOption screenshot(
      QStringLiteral("screenshot"),
      QStringLiteral("Write a PNG of the main window to FILE once the project is parsed, and "
                     "exit (the example project when no project is named)."),
      QStringLiteral("FILE"));
  const QCommandLineOption noAddIn(QStringLiteral("no-addin"),
                                   QStringLiteral("Run without loading the add-in."));
  parser.addOption(screenshot);
  parser.addOption(noAddIn);
  parser.addPositionalArgument(QStringLiteral("PROJECT"),
                               QStringLiteral("A project file or a folder to open."));
  parser.process(app);

  velmora::TQtIDE ide;
  if (!parser.isSet(noAddIn)) ide.LoadAddInLibrary(AddInPath());
  ide.Window().show();

  QString project = parser.positionalArguments().value(0);
  // The example project is shown from a copy: the add-in keeps its class information
  // beside the project, and the source tree stays as it is.
  QTemporaryDir exampleCopy;
  if (project.isEmpty() && parser.isSet(screenshot) && exampleCopy.isValid()) {
    // The whole examples folder: the project reaches into its sibling "common".
    const std::filesystem::path example(VELMORA_EXAMPLE_PROJECT);
    const std::filesystem::path examples = example.parent_path().parent_path();
    const std::filesystem::path copy = std::filesystem::path(exampleCopy.path().toStdString());
    std::error_code error;
    std::filesystem::copy(examples, copy, std::filesystem::copy_options::recursive, error);
    const std::filesystem::path copied =
        copy / example.parent_path().filename() / example.filename();
    project = QString::fromStdString((error ? example : copied).string());
  }
  if (!project.isEmpty() && !ide.OpenProjectFile(project.toStdString()) && parser.isSet(screenshot))
    return 1;
  if (parser.isSet(screenshot)) velmora::TakeScreenshotWhenReady(ide, parser.value(screenshot));
  return app.exec();
}
