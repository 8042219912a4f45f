#include "screenshot.h"

#include <QApplication>
#include <QMainWindow>
#include <QPixmap>
#include <QTimer>
#include <QTreeWidget>
#include <cstdio>

#include "hosts/qt/class_browser.h"
#include "hosts/qt/qt_ide.h"

namespace velmora {
namespace {

// Opens the first form class (or the first class) with its members, selects it and
// jumps to its declaration, as a user looking at the project would.
void ShowAClass(TQtIDE& ide) {
  QTreeWidget* tree = ide.ClassBrowser().Tree(TClassView::pgClasses);
  if (tree->topLevelItemCount() == 0) return;
  QTreeWidgetItem* root = tree->topLevelItem(0);
  QTreeWidgetItem* chosen = nullptr;
  for (int i = 0; i < root->childCount() && !chosen; ++i)
    if (root->child(i)->data(0, Qt::UserRole + 1).toString() == QLatin1String("form"))
      chosen = root->child(i);
  if (!chosen && root->childCount() > 0) chosen = root->child(0);
  if (!chosen) return;
  chosen->setExpanded(true);
  tree->setCurrentItem(chosen);
  emit tree->itemActivated(chosen, 0);
  tree->setFocus();
}

void Write(TQtIDE& ide, const QString& fileName) {
  const QPixmap picture = ide.Window().grab();
  if (!picture.save(fileName, "PNG")) {
    std::fprintf(stderr, "velmora-ide: cannot write %s\n", qPrintable(fileName));
    QApplication::exit(1);
    return;
  }
  QApplication::exit(0);
}

}  // namespace

void TakeScreenshotWhenReady(TQtIDE& ide, const QString& fileName) {
  QTimer::singleShot(0, &ide.Window(), [&ide, fileName] {
    ide.WaitUntilParsed();
    ShowAClass(ide);
    // A moment for the editor and the tree to lay themselves out and paint.
    QTimer::singleShot(300, &ide.Window(), [&ide, fileName] { Write(ide, fileName); });
  });
}

}  // namespace velmora
