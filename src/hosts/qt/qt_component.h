// The Qt IDE's component tree: its QObjects as the add-in finds them by class name. An
// object takes part when it carries the property "velmoraClass" (the class name an IDE of
// this kind gives it, "TEditWindow"); its component name is its objectName. A form (a
// window the application owns) carries "velmoraForm" as well; the components of a form
// are the marked objects below it that are not inside a nested form, whatever widgets lie
// between, as a form owns all its controls.
//
// Main thread only.
#pragma once

#include <QObject>
#include <QPointer>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "ide/component.h"

namespace velmora {

class TQtComponentTree;

/// Marks `object` as a component of class `className` named `name`; `form` makes it one
/// of the application's forms.
void MarkComponent(QObject& object, const char* className, const QString& name, bool form = false);

/// One marked QObject. Lives as long as its object (the tree frees it when the object is
/// destroyed).
class TQtComponent : public TIComponent {
 public:
  TQtComponent(QObject* object, TQtComponentTree& tree) : object_(object), tree_(tree) {}

  std::string ClassName() const override;
  std::string Name() const override;
  TIComponent* Owner() const override;
  int ComponentCount() const override;
  TIComponent* Component(int index) const override;
  TIComponent* CreateComponent(const std::string& className, const std::string& name) override;
  bool DestroyComponent(TIComponent* component) override;

  QObject* Object() const { return object_; }

 private:
  std::vector<QObject*> Owned() const;

  QPointer<QObject> object_;
  TQtComponentTree& tree_;
};

/// The application object, the root of the tree: it owns the forms given to AddForm.
class TQtComponentTree : public TIComponent {
 public:
  TQtComponentTree() = default;
  TQtComponentTree(const TQtComponentTree&) = delete;
  TQtComponentTree& operator=(const TQtComponentTree&) = delete;

  void AddForm(QObject* form);
  /// The component of a marked object (made on first use), or nullptr for null.
  TQtComponent* Of(QObject* object);

  std::string ClassName() const override { return "TApplication"; }
  std::string Name() const override { return "Application"; }
  TIComponent* Owner() const override { return nullptr; }
  int ComponentCount() const override;
  TIComponent* Component(int index) const override;
  TIComponent* CreateComponent(const std::string& className, const std::string& name) override;
  bool DestroyComponent(TIComponent* component) override;

 private:
  std::vector<QPointer<QObject>> forms_;
  std::unordered_map<QObject*, std::unique_ptr<TQtComponent>> components_;
  /// The context of the destroyed connections: it goes before components_, so an object
  /// that outlives the tree never reaches it.
  QObject guard_;
};

}  // namespace velmora
