#include "model/representation.h"

#include <utility>

namespace velmora {

TRepresentationManager& RepresentationManager() {
  static TRepresentationManager manager;
  return manager;
}

// ---- TRepresentationManager ----

int TRepresentationManager::AddSlot(TRepresentationClient* client) {
  std::lock_guard lock(mutex_);
  const int slot = slotCount_++;
  clients_.push_back(client);
  if (client) client->slot_ = slot;
  for (TRepresentations* r : all_) r->entries_.emplace_back();
  return slot;
}

void TRepresentationManager::RemoveSlot(int slot) {
  std::lock_guard lock(mutex_);
  if (slot < 0 || slot >= slotCount_) return;
  --slotCount_;
  if (TRepresentationClient* c = clients_[slot]) c->slot_ = -1;
  clients_.erase(clients_.begin() + slot);
  for (size_t i = slot; i < clients_.size(); ++i)
    if (clients_[i]) clients_[i]->slot_ = static_cast<int>(i);
  for (TRepresentations* r : all_) r->entries_.erase(r->entries_.begin() + slot);
}

int TRepresentationManager::SlotCount() const {
  std::lock_guard lock(mutex_);
  return slotCount_;
}

int TRepresentationManager::RegisteredCount() const {
  std::lock_guard lock(mutex_);
  return static_cast<int>(all_.size());
}

void TRepresentationManager::Register(TRepresentations* r) {
  std::lock_guard lock(mutex_);
  r->entries_.resize(slotCount_);
  r->registeredAt_ = all_.size();
  all_.push_back(r);
}

// Swap-remove: objects die in large numbers when a list is cleared, and the order of the
// registered tables means nothing.
void TRepresentationManager::Unregister(TRepresentations* r) {
  std::lock_guard lock(mutex_);
  const size_t at = r->registeredAt_;
  if (at >= all_.size() || all_[at] != r) return;
  all_[at] = all_.back();
  all_[at]->registeredAt_ = at;
  all_.pop_back();
}

// ---- TRepresentations ----

TRepresentations::TRepresentations(TRepresentationManager& manager) : manager_(manager) {
  manager_.Register(this);
}

TRepresentations::~TRepresentations() {
  manager_.Unregister(this);
}

TRepresentation* TRepresentations::Get(int slot) {
  std::lock_guard lock(manager_.mutex_);
  if (slot < 0 || slot >= static_cast<int>(entries_.size())) return nullptr;
  auto& entry = entries_[slot];
  if (!entry) entry = std::make_unique<TRepresentation>(this);
  return entry.get();
}

TRepresentation* TRepresentations::Peek(int slot) const {
  std::lock_guard lock(manager_.mutex_);
  if (slot < 0 || slot >= static_cast<int>(entries_.size())) return nullptr;
  return entries_[slot].get();
}

void TRepresentations::ResetAll() {
  std::lock_guard lock(manager_.mutex_);
  for (auto& entry : entries_)
    if (entry) entry->Reset();
}

int TRepresentations::Count() const {
  std::lock_guard lock(manager_.mutex_);
  return static_cast<int>(entries_.size());
}

int TRepresentations::IndexOf(const TRepresentation* r) const {
  std::lock_guard lock(manager_.mutex_);
  for (size_t i = 0; i < entries_.size(); ++i)
    if (entries_[i].get() == r) return static_cast<int>(i);
  return -1;
}

// ---- TRepresentedObject ----

TRepresentedObject::~TRepresentedObject() = default;

TRepresentations& TRepresentedObject::Representations() {
  if (!representations_) representations_ = std::make_unique<TRepresentations>(*manager_);
  return *representations_;
}

void TRepresentedObject::SignalChanged(int index) {
  if (!representations_) return;
  // The clients are collected under the lock and called after it, so that a client may
  // read representations without deadlocking.
  TRepresentationClient* single = nullptr;
  std::vector<TRepresentationClient*> told;
  {
    std::lock_guard lock(manager_->mutex_);
    auto& entries = representations_->entries_;
    auto tell = [&](size_t slot) {
      if (entries[slot]) ++entries[slot]->Words[1];
      return slot < manager_->clients_.size() ? manager_->clients_[slot] : nullptr;
    };
    if (index >= 0) {
      if (static_cast<size_t>(index) < entries.size()) single = tell(index);
    } else if (index == -1) {
      for (size_t slot = 0; slot < entries.size(); ++slot)
        if (TRepresentationClient* c = tell(slot)) told.push_back(c);
    }
  }
  if (single) single->RepresentationChanged(*this);
  for (TRepresentationClient* c : told) c->RepresentationChanged(*this);
}

}  // namespace velmora
