#include "hosts/qt/class_view_icons.h"

#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

#include "views/node_text.h"

// The SVGs are compiled into this static library; its resources are registered by hand,
// as no object of the library is linked for their sake alone.
static void InitClassViewIcons() {
  Q_INIT_RESOURCE(classview);
}

namespace velmora {
namespace {

const char* ClassPicture(int image) {
  switch (image) {
    case 15:
      return "interface";
    case 16:
      return "form";
    case 20:
      return "template";
    case 21:
      return "struct";
    default:
      return "class";
  }
}

const char* MethodPicture(int image) {
  if (image == 11) return "constructor";
  if (image == 12) return "destructor";
  if (image >= 17 && image <= 19) return "operator";
  return "method";
}

const char* FilePicture(int image) {
  switch (image) {
    case 2:
      return "file-cpp";
    case 3:
      return "file-pas";
    case 6:
      return "file-h";
    default:
      return "file-other";
  }
}

const char* BasePicture(const TClassViewNode& node, bool externalRoot) {
  switch (node.Kind) {
    case TNodeKind::Root:
      return externalRoot ? "root-external" : "root-project";
    case TNodeKind::Class:
      return ClassPicture(node.ImageIndex);
    case TNodeKind::Field:
      return "field";
    case TNodeKind::Property:
      return "property";
    case TNodeKind::Method:
      return MethodPicture(node.ImageIndex);
    case TNodeKind::Domain:
      return "domain";
    case TNodeKind::RoutineList:
      return "routine-list";
    case TNodeKind::Routine:
      return "routine";
    case TNodeKind::File:
      return FilePicture(node.ImageIndex);
  }
  return "class";
}

void Draw(QPainter& painter, const QString& picture, int size) {
  QSvgRenderer renderer(QStringLiteral(":/icons/%1.svg").arg(picture));
  renderer.render(&painter, QRectF(0, 0, size, size));
}

}  // namespace

QString IconNameOf(const TClassViewNode& node, bool externalRoot) {
  QString name = QString::fromLatin1(BasePicture(node, externalRoot));
  if (node.HasVisibility && node.Kind != TNodeKind::Routine) {
    if (node.Visibility == TVisibility::Protected) name += "-protected";
    if (node.Visibility == TVisibility::Private) name += "-private";
  }
  return name;
}

QIcon TClassViewIcons::Icon(const QString& name) {
  auto it = cache_.find(name);
  if (it != cache_.end()) return it->second;
  static const bool registered = (InitClassViewIcons(), true);
  (void)registered;
  QString base = name;
  QString overlay;
  for (const char* sign : {"protected", "private"}) {
    const QString suffix = QStringLiteral("-") + QLatin1String(sign);
    if (name.endsWith(suffix)) {
      base.chop(suffix.size());
      overlay = QLatin1String(sign);
    }
  }
  QIcon icon;
  for (int size : {16, 32}) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    Draw(painter, base, size);
    if (!overlay.isEmpty()) Draw(painter, overlay, size);
    painter.end();
    icon.addPixmap(pixmap);
  }
  cache_.emplace(name, icon);
  return icon;
}

}  // namespace velmora
