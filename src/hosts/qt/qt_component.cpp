#include "hosts/qt/qt_component.h"

#include <QVariant>
#include <algorithm>

namespace velmora {
namespace {

constexpr char kClassProperty[] = "velmoraClass";
constexpr char kFormProperty[] = "velmoraForm";

bool IsMarked(const QObject* object) {
  return object && object->property(kClassProperty).isValid();
}

bool IsForm(const QObject* object) {
  return object && object->property(kFormProperty).toBool();
}

// The marked objects below `object` whose nearest marked ancestor (forms count) is it.
void CollectOwned(const QObject* object, std::vector<QObject*>& out) {
  for (QObject* child : object->children()) {
    if (IsMarked(child)) {
      out.push_back(child);
      if (IsForm(child)) continue;
    }
    if (!IsForm(child)) CollectOwned(child, out);
  }
}

}  // namespace

void MarkComponent(QObject& object, const char* className, const QString& name, bool form) {
  object.setProperty(kClassProperty, QString::fromLatin1(className));
  object.setObjectName(name);
  if (form) object.setProperty(kFormProperty, true);
}

std::string TQtComponent::ClassName() const {
  return object_ ? object_->property(kClassProperty).toString().toStdString() : std::string();
}

std::string TQtComponent::Name() const {
  return object_ ? object_->objectName().toStdString() : std::string();
}

TIComponent* TQtComponent::Owner() const {
  if (!object_) return nullptr;
  if (IsForm(object_)) return &tree_;
  for (QObject* up = object_->parent(); up; up = up->parent())
    if (IsMarked(up)) return tree_.Of(up);
  return &tree_;
}

std::vector<QObject*> TQtComponent::Owned() const {
  std::vector<QObject*> owned;
  if (object_) CollectOwned(object_, owned);
  return owned;
}

int TQtComponent::ComponentCount() const {
  return static_cast<int>(Owned().size());
}

TIComponent* TQtComponent::Component(int index) const {
  const std::vector<QObject*> owned = Owned();
  if (index < 0 || index >= static_cast<int>(owned.size())) return nullptr;
  return tree_.Of(owned[static_cast<size_t>(index)]);
}

// What an add-in makes this way holds nothing the IDE draws: a plain marked object.
TIComponent* TQtComponent::CreateComponent(const std::string& className, const std::string& name) {
  if (!object_) return nullptr;
  auto* object = new QObject(object_);
  MarkComponent(*object, className.c_str(), QString::fromStdString(name));
  return tree_.Of(object);
}

bool TQtComponent::DestroyComponent(TIComponent* component) {
  auto* own = dynamic_cast<TQtComponent*>(component);
  if (!own || own->Owner() != this || !own->Object()) return false;
  delete own->Object();  // the tree forgets the component when the object goes
  return true;
}

void TQtComponentTree::AddForm(QObject* form) {
  forms_.emplace_back(form);
}

TQtComponent* TQtComponentTree::Of(QObject* object) {
  if (!object) return nullptr;
  auto it = components_.find(object);
  if (it != components_.end()) return it->second.get();
  auto component = std::make_unique<TQtComponent>(object, *this);
  TQtComponent* result = component.get();
  components_.emplace(object, std::move(component));
  QObject::connect(object, &QObject::destroyed, &guard_,
                   [this, object] { components_.erase(object); });
  return result;
}

int TQtComponentTree::ComponentCount() const {
  return static_cast<int>(std::count_if(forms_.begin(), forms_.end(),
                                        [](const QPointer<QObject>& f) { return !f.isNull(); }));
}

TIComponent* TQtComponentTree::Component(int index) const {
  for (const QPointer<QObject>& form : forms_) {
    if (form.isNull()) continue;
    if (index-- == 0) return const_cast<TQtComponentTree*>(this)->Of(form.data());
  }
  return nullptr;
}

TIComponent* TQtComponentTree::CreateComponent(const std::string&, const std::string&) {
  return nullptr;  // the application makes no components for add-ins
}

bool TQtComponentTree::DestroyComponent(TIComponent*) {
  return false;
}

}  // namespace velmora
