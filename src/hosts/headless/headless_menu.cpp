#include "hosts/headless/headless_menu.h"

#include <algorithm>

#include "support/ansi.h"

namespace velmora {

THeadlessMenuItem::THeadlessMenuItem(std::string caption, std::string name, TMenuFlags flags,
                                     TMenuClickHandler onClick)
    : caption_(std::move(caption)),
      name_(std::move(name)),
      flags_(flags),
      onClick_(std::move(onClick)) {}

THeadlessMenuItem::~THeadlessMenuItem() {
  if (parent_) std::erase(parent_->items_, this);
  for (THeadlessMenuItem* child : items_) child->parent_ = nullptr;
}

int THeadlessMenuItem::Index() {
  if (!parent_) return -1;
  auto it = std::find(parent_->items_.begin(), parent_->items_.end(), this);
  return static_cast<int>(it - parent_->items_.begin());
}

THeadlessMenuItem* THeadlessMenuItem::Child(int index) const {
  if (index < 0 || index >= static_cast<int>(items_.size())) return nullptr;
  return items_[static_cast<size_t>(index)];
}

TIMenuItem* THeadlessMenuItem::Item(int index) {
  return TIRef<TIMenuItem>::Share(Child(index)).Detach();
}

TIMenuItem* THeadlessMenuItem::Parent() {
  return TIRef<TIMenuItem>::Share(parent_).Detach();
}

bool THeadlessMenuItem::SetShortCut(uint16_t shortCut) {
  shortCut_ = shortCut;
  return true;
}

bool THeadlessMenuItem::SetFlags(TMenuFlags mask, TMenuFlags flags) {
  flags_ = (flags_ & ~mask) | (flags & mask);
  return true;
}

TIMenuItem* THeadlessMenuItem::InsertItem(int index, const std::string& caption,
                                          const std::string& name, const std::string& /*hint*/,
                                          uint16_t shortCut, int /*helpContext*/,
                                          int /*groupIndex*/, TMenuFlags flags,
                                          TMenuClickHandler onClick) {
  auto* item = new THeadlessMenuItem(caption, name, flags, std::move(onClick));
  item->shortCut_ = shortCut;
  item->parent_ = this;
  const int at = std::clamp(index, 0, ItemCount());
  items_.insert(items_.begin() + at, item);
  return item;  // the caller's reference is the only one
}

bool THeadlessMenuItem::Click() {
  if ((flags_ & (mfEnabled | mfVisible)) != (mfEnabled | mfVisible) || !onClick_) return false;
  // The handler may release the last other reference to this item.
  TIRef<THeadlessMenuItem> keep = TIRef<THeadlessMenuItem>::Share(this);
  TMenuClickHandler handler = onClick_;
  handler(*this);
  return true;
}

THeadlessMenuItem* THeadlessMenuItem::Find(const std::string& name) {
  if (SameText(name_, name)) return this;
  for (THeadlessMenuItem* child : items_)
    if (THeadlessMenuItem* found = child->Find(name)) return found;
  return nullptr;
}

std::string THeadlessMenuItem::Dump(int depth) const {
  std::string out;
  for (const THeadlessMenuItem* child : items_) {
    out += std::string(static_cast<size_t>(depth) * 2, ' ') + child->caption_ + "|" + child->name_ +
           "|" + std::to_string(child->flags_) + "|" + std::to_string(child->shortCut_) + "\n";
    out += child->Dump(depth + 1);
  }
  return out;
}

}  // namespace velmora
