// Per-view data kept inside the objects of the code model. Every open view owns one slot;
// every represented object that has ever been shown carries one entry per slot, so a view
// finds its own datum (the tree node showing the object, say) in the object itself while
// the model knows nothing about views.
//
// Threads and locks: the manager's mutex guards the list of all TRepresentations, the
// slot owners, the slot count and the entries of every TRepresentations. Views take and
// give back slots on the main thread; objects carrying representations may be created and
// destroyed on any thread. A view must take its slot before it reads any representation.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace velmora {

class TRepresentations;
class TRepresentedObject;

/// One object's data for one view: four 32-bit words, all zero when created or reset.
/// Word 0 is the view's datum for the object, word 1 counts the change signals the object
/// sent since the last reset, word 2 is free for the view, word 3 is the view's flag (the
/// class view marks there that a node's children are in the tree).
class TRepresentation {
 public:
  explicit TRepresentation(TRepresentations* owner) : owner_(owner) {}

  TRepresentations* Owner() const { return owner_; }
  uint32_t Data() const { return Words[0]; }
  void SetData(uint32_t value) { Words[0] = value; }
  uint32_t ChangeCount() const { return Words[1]; }
  uint32_t Flag() const { return Words[3]; }
  void SetFlag(uint32_t value) { Words[3] = value; }
  void Reset() { Words[0] = Words[1] = Words[2] = Words[3] = 0; }

  uint32_t Words[4] = {0, 0, 0, 0};

 private:
  TRepresentations* owner_;
};

/// What a view hands to the manager with its slot. The manager keeps it current when an
/// earlier slot is given back (slot numbers above it move down by one) and tells it about
/// changed objects.
class TRepresentationClient {
 public:
  virtual ~TRepresentationClient() = default;
  /// The slot this client holds, -1 when it holds none.
  int Slot() const { return slot_; }
  /// Called by TRepresentedObject::SignalChanged, on the signalling thread and outside the
  /// manager's lock. The model changes shown objects on the main thread only.
  virtual void RepresentationChanged(TRepresentedObject& /*object*/) {}

 private:
  friend class TRepresentationManager;
  int slot_ = -1;
};

class TRepresentationManager {
 public:
  TRepresentationManager() = default;
  TRepresentationManager(const TRepresentationManager&) = delete;
  TRepresentationManager& operator=(const TRepresentationManager&) = delete;

  /// Takes a new slot (the current count) and appends an empty entry to every registered
  /// TRepresentations. `client` may be null; when given it learns its slot.
  int AddSlot(TRepresentationClient* client = nullptr);
  /// Gives back a slot: its entry is deleted (and its TRepresentation freed) in every
  /// registered TRepresentations; later slots move down by one. Out of range: no effect.
  void RemoveSlot(int slot);
  int SlotCount() const;
  /// Number of TRepresentations in existence.
  int RegisteredCount() const;

 private:
  friend class TRepresentations;
  friend class TRepresentedObject;
  void Register(TRepresentations* r);
  void Unregister(TRepresentations* r);

  mutable std::mutex mutex_;
  std::vector<TRepresentations*> all_;  ///< every TRepresentations; each knows its index here
  /// The second list: the client holding each slot (null when taken without one).
  std::vector<TRepresentationClient*> clients_;
  int32_t slotCount_ = 0;
};

/// The one manager of the system; every code-model object uses it.
TRepresentationManager& RepresentationManager();

/// The table of one object: one entry per slot, each created on first use.
class TRepresentations {
 public:
  explicit TRepresentations(TRepresentationManager& manager);
  ~TRepresentations();
  TRepresentations(const TRepresentations&) = delete;
  TRepresentations& operator=(const TRepresentations&) = delete;

  TRepresentationManager& Manager() const { return manager_; }
  /// The entry of `slot`, created on first use; null for a slot that does not exist.
  /// The pointer stays valid until the slot is given back.
  TRepresentation* Get(int slot);
  /// The entry of `slot` if it was ever asked for, else null (creates nothing).
  TRepresentation* Peek(int slot) const;
  /// Clears the four words of every existing entry.
  void ResetAll();
  int Count() const;
  /// Slot of `r` in this table, or -1.
  int IndexOf(const TRepresentation* r) const;

 private:
  friend class TRepresentationManager;
  friend class TRepresentedObject;
  TRepresentationManager& manager_;
  std::vector<std::unique_ptr<TRepresentation>> entries_;  ///< guarded by the manager's mutex
  size_t registeredAt_ = 0;  ///< index in the manager's list, guarded the same way
};

/// Base of everything a view can show. The table is created by the first view that asks
/// for it (main thread); objects that were never shown carry none and signal nothing.
class TRepresentedObject {
 public:
  TRepresentedObject() : manager_(&RepresentationManager()) {}
  explicit TRepresentedObject(TRepresentationManager& manager) : manager_(&manager) {}
  virtual ~TRepresentedObject();
  TRepresentedObject(const TRepresentedObject&) = delete;
  TRepresentedObject& operator=(const TRepresentedObject&) = delete;

  bool HasRepresentations() const { return representations_ != nullptr; }
  /// The table, created on first use (views only, main thread).
  TRepresentations& Representations();
  /// Shortcut for Representations().Get(slot).
  TRepresentation* Representation(int slot) { return Representations().Get(slot); }

  /// Tells the representations that the object changed: all of them for -1, else the one
  /// of that slot. Each told entry counts the signal in word 1 and its view's client is
  /// called. Does nothing when the object has no table.
  void SignalChanged(int index);

 private:
  TRepresentationManager* manager_;
  std::unique_ptr<TRepresentations> representations_;
};

}  // namespace velmora
