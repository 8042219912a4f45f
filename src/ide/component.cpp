#include "ide/component.h"

#include "support/ansi.h"

namespace velmora {
namespace {

template <class Match>
TIComponent* FindDepthFirst(const TIComponent& root, const Match& match, int depth) {
  // Component trees are shallow; the cap only keeps a host's cyclic tree from looping.
  if (depth > 64) return nullptr;
  for (int i = 0; i < root.ComponentCount(); ++i) {
    TIComponent* c = root.Component(i);
    if (!c) continue;
    if (match(*c)) return c;
    if (TIComponent* found = FindDepthFirst(*c, match, depth + 1)) return found;
  }
  return nullptr;
}

}  // namespace

TIComponent* FindComponentByClassName(const TIComponent& root, std::string_view className) {
  return FindDepthFirst(
      root, [&](const TIComponent& c) { return SameText(c.ClassName(), className); }, 0);
}

TIComponent* FindComponentByName(const TIComponent& root, std::string_view name) {
  return FindDepthFirst(
      root, [&](const TIComponent& c) { return SameText(c.Name(), name); }, 0);
}

TIComponent* TComponent::Component(int index) const {
  if (index < 0 || index >= ComponentCount()) return nullptr;
  return components_[static_cast<size_t>(index)].get();
}

TIComponent* TComponent::CreateComponent(const std::string& className, const std::string& name) {
  return Add(className, name);
}

TComponent* TComponent::Add(const std::string& className, const std::string& name) {
  components_.push_back(std::make_unique<TComponent>(className, name, this));
  return components_.back().get();
}

bool TComponent::DestroyComponent(TIComponent* component) {
  for (auto it = components_.begin(); it != components_.end(); ++it) {
    if (it->get() == component) {
      components_.erase(it);
      return true;
    }
  }
  return false;
}

}  // namespace velmora
