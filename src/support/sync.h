// Named synchronisation objects: a counting semaphore and a mutex that threads of one
// process find by name. They are POSIX named semaphores ("/" + the name).
//
// Lifetime of a name: the first holder in this process creates the semaphore and removes
// its name from the system at once (sem_unlink); later holders in the process find it in
// a process-wide table, and the last one to let go closes it. So a crash never leaves an
// entry in /dev/shm behind, and another process cannot reach the object by name - which
// nothing needs, since every name the system uses ends in the process id.
//
// Threads: each object is used by one thread at a time; the objects it names are shared
// by all threads of the process.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "support/exception.h"

namespace velmora {

/// Raised when a named semaphore or mutex can be neither created nor opened.
class ESemaphoreError : public Exception {
 public:
  ESemaphoreError() : Exception("Cannot create semaphore.") {}
};

enum class TWaitResult : uint8_t { Signaled, Timeout, Error };

/// A time-out that never runs out.
inline constexpr uint32_t kInfinite = 0xFFFFFFFF;

/// Base of the named objects: holds the handle of one named semaphore.
class THandledObject {
 public:
  virtual ~THandledObject();
  THandledObject(const THandledObject&) = delete;
  THandledObject& operator=(const THandledObject&) = delete;

  /// Takes one count, waiting until there is one or `timeoutMs` milliseconds have passed
  /// (kInfinite: for ever, 0: not at all). Error leaves the system's code in LastError.
  TWaitResult WaitFor(uint32_t timeoutMs = kInfinite);
  /// The name as given, without the leading "/".
  const std::string& Name() const;
  int LastError() const { return lastError_; }

  /// One named semaphore shared by every holder in this process (defined in sync.cpp).
  struct TNamedHandle;

 protected:
  /// Creates the semaphore with `initialCount`, or opens the one this process holds by
  /// that name already (its count is then left as it is). Raises ESemaphoreError.
  THandledObject(std::string_view name, unsigned initialCount);
  /// Adds one count unless the count is already 1; false then. Windows semaphores carry a
  /// maximum count, POSIX ones do not: releases in this process are serialised and check
  /// the count first, which holds the maximum of 1 against every releaser of this process.
  bool Signal();

 private:
  TNamedHandle* handle_;
  int lastError_ = 0;
};

/// A semaphore used as a completion signal: created with count 0 and maximum 1.
class TSemaphore : public THandledObject {
 public:
  explicit TSemaphore(std::string_view name) : THandledObject(name, 0) {}
  /// Releases by one; false when the count already was at its maximum.
  bool Release() { return Signal(); }
};

/// A named mutex: a semaphore with count 1 while free. Not recursive, and any thread may
/// release it, unlike a Windows mutex; its holders acquire and release in pairs.
class TMutex : public THandledObject {
 public:
  explicit TMutex(std::string_view name) : THandledObject(name, 1) {}
  bool Acquire(uint32_t timeoutMs = kInfinite) {
    return WaitFor(timeoutMs) == TWaitResult::Signaled;
  }
  void Release() { Signal(); }
};

/// "Velmora.ParseSemaphore." followed by the process id in decimal: the completion signal
/// of the parser threads. Formed once, on first use.
const std::string& ParseSemaphoreName();
/// "Velmora.ManagerThreadMutex." followed by the process id in decimal.
const std::string& ManagerThreadMutexName();
/// "Velmora.IdleThreadMutex." followed by the process id in decimal.
const std::string& IdleThreadMutexName();

}  // namespace velmora
