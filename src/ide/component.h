// The IDE's own objects as a tree of components, found by class name: the application
// object owns the forms, a form owns its controls and menus. The add-in reaches into the
// IDE through it where no interface is offered (editor windows, their tab control,
// message view and status bar) and hangs shared objects of its own on it.
//
// A host maps its own objects onto it (the Qt host: QObject class and object names);
// TComponent is a plain tree for hosts that have no objects of their own.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

/// Owned by its owner component; valid as long as the owner holds it. Main thread only.
class TIComponent {
 public:
  virtual ~TIComponent() = default;
  /// The class name the IDE gives the object ("TEditWindow").
  virtual std::string ClassName() const = 0;
  /// The component name, unique among the owner's components ("EditorLocalMenu").
  virtual std::string Name() const = 0;
  virtual TIComponent* Owner() const = 0;
  virtual int ComponentCount() const = 0;
  virtual TIComponent* Component(int index) const = 0;
  /// A new component of the given class and name owned by this one; nullptr when the
  /// host cannot make one of that class.
  virtual TIComponent* CreateComponent(const std::string& className, const std::string& name) = 0;
  /// Frees an owned component and everything it owns; false when it is not owned here.
  virtual bool DestroyComponent(TIComponent* component) = 0;
};

/// The first component owned by `root` (depth first, in order, `root` itself excluded)
/// whose class name equals `className` without regard to case; nullptr if none.
TIComponent* FindComponentByClassName(const TIComponent& root, std::string_view className);
/// The same, by component name.
TIComponent* FindComponentByName(const TIComponent& root, std::string_view name);

/// A component that is nothing but a node of the tree.
class TComponent : public TIComponent {
 public:
  TComponent(std::string className, std::string name, TComponent* owner = nullptr)
      : className_(std::move(className)), name_(std::move(name)), owner_(owner) {}

  std::string ClassName() const override { return className_; }
  std::string Name() const override { return name_; }
  TIComponent* Owner() const override { return owner_; }
  int ComponentCount() const override { return static_cast<int>(components_.size()); }
  TIComponent* Component(int index) const override;
  TIComponent* CreateComponent(const std::string& className, const std::string& name) override;
  bool DestroyComponent(TIComponent* component) override;

  /// CreateComponent with the concrete type.
  TComponent* Add(const std::string& className, const std::string& name);

 private:
  std::string className_;
  std::string name_;
  TComponent* owner_;  ///< back link; nullptr for the root
  std::vector<std::unique_ptr<TComponent>> components_;
};

}  // namespace velmora
