// The base of every interface between the add-in and its host IDE, and the reference
// that releases one when it goes out of scope.
//
// An interface object counts its references. Whoever obtains one from a call that says
// "a new reference" owns that reference and gives it back with Release(); the object is
// freed when the last reference is gone. TIRef does that in its destructor, so an
// interface obtained in a function is released on every path out of it, also when a
// later call throws.
#pragma once

#include <atomic>
#include <utility>

namespace velmora {

/// Reference counts may be taken and given back from any thread; everything else an
/// interface offers is main-thread only unless its class says otherwise.
class TInterface {
 public:
  TInterface(const TInterface&) = delete;
  TInterface& operator=(const TInterface&) = delete;

  /// One more reference to the object.
  void AddRef() { refs_.fetch_add(1, std::memory_order_relaxed); }
  /// Gives one reference back; the last one frees the object.
  void Release() {
    if (refs_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
  }

 protected:
  /// A new object holds one reference, its creator's.
  TInterface() = default;
  virtual ~TInterface() = default;

 private:
  std::atomic<int> refs_{1};
};

/// Owns one reference to an interface (or none) and releases it on destruction.
template <class T>
class TIRef {
 public:
  TIRef() = default;
  /// Takes over a reference the caller owns (a new reference, or nullptr).
  explicit TIRef(T* adopted) : p_(adopted) {}
  TIRef(const TIRef& other) : p_(other.p_) {
    if (p_) p_->AddRef();
  }
  TIRef(TIRef&& other) noexcept : p_(std::exchange(other.p_, nullptr)) {}
  TIRef& operator=(TIRef other) noexcept {
    std::swap(p_, other.p_);
    return *this;
  }
  ~TIRef() { Reset(); }

  /// A new reference to an object someone else holds.
  static TIRef Share(T* p) {
    if (p) p->AddRef();
    return TIRef(p);
  }

  void Reset() {
    if (T* p = std::exchange(p_, nullptr)) p->Release();
  }
  /// Hands the reference to the caller, who must release it.
  T* Detach() { return std::exchange(p_, nullptr); }

  T* Get() const { return p_; }
  T* operator->() const { return p_; }
  T& operator*() const { return *p_; }
  explicit operator bool() const { return p_ != nullptr; }

 private:
  T* p_ = nullptr;
};

}  // namespace velmora
