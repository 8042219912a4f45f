#include "support/sync.h"

#include <fcntl.h>
#include <semaphore.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <map>
#include <mutex>

namespace velmora {

struct THandledObject::TNamedHandle {
  std::string name;
  sem_t* semaphore;
  int holders;
  std::mutex releaseLock;  // makes the check against the maximum and the post one step
};

namespace {

// The named objects this process holds. Never destroyed: a parser thread that frees
// itself may still close its handle while the process runs its exit handlers.
struct TRegistry {
  std::mutex lock;
  std::map<std::string, THandledObject::TNamedHandle*, std::less<>> handles;
};

TRegistry& Registry() {
  static TRegistry* registry = new TRegistry;
  return *registry;
}

sem_t* CreateUnlinked(const std::string& systemName, unsigned initialCount) {
  sem_t* semaphore = ::sem_open(systemName.c_str(), O_CREAT | O_EXCL, 0600, initialCount);
  if (semaphore == SEM_FAILED && errno == EEXIST) {
    // Left behind by a process that died between creating and unlinking a name carrying
    // the same process id: it is nobody's now.
    ::sem_unlink(systemName.c_str());
    semaphore = ::sem_open(systemName.c_str(), O_CREAT | O_EXCL, 0600, initialCount);
  }
  if (semaphore != SEM_FAILED) ::sem_unlink(systemName.c_str());
  return semaphore;
}

std::string WithProcessId(const char* prefix) {
  return prefix + std::to_string(::getpid());
}

}  // namespace

THandledObject::THandledObject(std::string_view name, unsigned initialCount) {
  TRegistry& registry = Registry();
  std::lock_guard<std::mutex> guard(registry.lock);
  if (auto it = registry.handles.find(name); it != registry.handles.end()) {
    handle_ = it->second;
    ++handle_->holders;
    return;
  }
  sem_t* semaphore = CreateUnlinked("/" + std::string(name), initialCount);
  if (semaphore == SEM_FAILED) throw ESemaphoreError();
  handle_ = new TNamedHandle{std::string(name), semaphore, 1, {}};
  registry.handles.emplace(handle_->name, handle_);
}

THandledObject::~THandledObject() {
  TRegistry& registry = Registry();
  std::lock_guard<std::mutex> guard(registry.lock);
  if (--handle_->holders > 0) return;
  registry.handles.erase(handle_->name);
  ::sem_close(handle_->semaphore);
  delete handle_;
}

const std::string& THandledObject::Name() const {
  return handle_->name;
}

TWaitResult THandledObject::WaitFor(uint32_t timeoutMs) {
  sem_t* semaphore = handle_->semaphore;
  int rc;
  if (timeoutMs == kInfinite) {
    while ((rc = ::sem_wait(semaphore)) != 0 && errno == EINTR) {
    }
  } else if (timeoutMs == 0) {
    rc = ::sem_trywait(semaphore);
    if (rc != 0 && errno == EAGAIN) return TWaitResult::Timeout;
  } else {
    // Measured on the monotonic clock, so a change of the wall clock neither cuts a wait
    // short nor stretches it.
    timespec deadline;
    ::clock_gettime(CLOCK_MONOTONIC, &deadline);
    deadline.tv_sec += timeoutMs / 1000;
    deadline.tv_nsec += static_cast<long>(timeoutMs % 1000) * 1000000L;
    if (deadline.tv_nsec >= 1000000000L) {
      ++deadline.tv_sec;
      deadline.tv_nsec -= 1000000000L;
    }
    while ((rc = ::sem_clockwait(semaphore, CLOCK_MONOTONIC, &deadline)) != 0 && errno == EINTR) {
    }
    if (rc != 0 && errno == ETIMEDOUT) return TWaitResult::Timeout;
  }
  if (rc == 0) return TWaitResult::Signaled;
  lastError_ = errno;
  return TWaitResult::Error;
}

bool THandledObject::Signal() {
  std::lock_guard<std::mutex> guard(handle_->releaseLock);
  int count = 0;
  if (::sem_getvalue(handle_->semaphore, &count) == 0 && count >= 1) return false;
  if (::sem_post(handle_->semaphore) == 0) return true;
  lastError_ = errno;
  return false;
}

const std::string& ParseSemaphoreName() {
  static const std::string name = WithProcessId("Velmora.ParseSemaphore.");
  return name;
}

const std::string& ManagerThreadMutexName() {
  static const std::string name = WithProcessId("Velmora.ManagerThreadMutex.");
  return name;
}

const std::string& IdleThreadMutexName() {
  static const std::string name = WithProcessId("Velmora.IdleThreadMutex.");
  return name;
}

}  // namespace velmora
