// The pictures of the class view's nodes: one per kind of object (and per kind of class,
// method and file), with a small sign for protected and private members, drawn from the
// SVGs compiled into the host.
#pragma once

#include <QIcon>
#include <QString>
#include <map>

#include "views/class_view_node.h"

namespace velmora {

/// The name of the node's picture ("class", "method-private", "file-h"), the key of the
/// icon and what the tree's text form shows. `externalRoot` tells the two kinds of root
/// apart.
QString IconNameOf(const TClassViewNode& node, bool externalRoot);

/// Main thread only (it draws pixmaps).
class TClassViewIcons {
 public:
  /// The icon of `IconNameOf`'s name.
  QIcon Icon(const QString& name);

 private:
  std::map<QString, QIcon> cache_;
};

}  // namespace velmora
