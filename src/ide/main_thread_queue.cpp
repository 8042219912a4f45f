#include "ide/main_thread_queue.h"

#include <exception>
#include <memory>

namespace velmora {

TMainThreadQueue::TMainThreadQueue() : mainThread_(std::this_thread::get_id()) {}

TMainThreadQueue::~TMainThreadQueue() {
  Shutdown();
}

void TMainThreadQueue::SetMainThread() {
  std::lock_guard lock(mutex_);
  mainThread_ = std::this_thread::get_id();
}

bool TMainThreadQueue::IsMainThread() const {
  std::lock_guard lock(mutex_);
  return mainThread_ == std::this_thread::get_id();
}

void TMainThreadQueue::SetWakeHook(std::function<void()> hook) {
  wake_ = std::move(hook);
}

size_t TMainThreadQueue::Pending() const {
  std::lock_guard lock(mutex_);
  return queue_.size();
}

void TMainThreadQueue::Post(TWork work) {
  {
    std::lock_guard lock(mutex_);
    if (shutDown_) return;
    queue_.push_back(std::move(work));
  }
  arrived_.notify_all();
  if (wake_) wake_();
}

bool TMainThreadQueue::Synchronize(const TWork& work) {
  if (IsMainThread()) {
    work();
    return true;
  }
  // The waiting side and the queued item share this state, so that an item dropped by
  // Shutdown (which destroys it) still wakes the waiter.
  struct TWait {
    std::mutex Mutex;
    std::condition_variable Done;
    bool Ran = false;
    bool Finished = false;
    std::exception_ptr Error;
  };
  auto wait = std::make_shared<TWait>();
  struct TSignal {
    explicit TSignal(std::shared_ptr<TWait> wait) : Wait(std::move(wait)) {}
    TSignal(const TSignal&) = delete;
    TSignal& operator=(const TSignal&) = delete;
    std::shared_ptr<TWait> Wait;
    ~TSignal() {
      {
        std::lock_guard lock(Wait->Mutex);
        Wait->Finished = true;
      }
      Wait->Done.notify_all();
    }
  };
  auto signal = std::make_shared<TSignal>(wait);
  {
    std::lock_guard lock(mutex_);
    if (shutDown_) return false;
    queue_.push_back([signal, &work] {
      try {
        work();
      } catch (...) {
        signal->Wait->Error = std::current_exception();
      }
      signal->Wait->Ran = true;
    });
  }
  signal.reset();  // now only the queued item holds it
  arrived_.notify_all();
  if (wake_) wake_();
  std::unique_lock lock(wait->Mutex);
  wait->Done.wait(lock, [&] { return wait->Finished; });
  // The exception leaves the shared state here, so that its last owner is this thread
  // and never the main thread freeing the queued item: the exception's own reference
  // count is not something a thread checker can see.
  const std::exception_ptr error = std::move(wait->Error);
  wait->Error = nullptr;
  const bool ran = wait->Ran;
  lock.unlock();
  if (error) std::rethrow_exception(error);
  return ran;
}

bool TMainThreadQueue::TakeOne(TWork& work) {
  std::lock_guard lock(mutex_);
  if (queue_.empty()) return false;
  work = std::move(queue_.front());
  queue_.pop_front();
  return true;
}

int TMainThreadQueue::RunUntilIdle() {
  int count = 0;
  TWork work;
  while (TakeOne(work)) {
    ++count;
    TWork running = std::move(work);
    work = nullptr;
    running();
  }
  return count;
}

void TMainThreadQueue::RunLoop() {
  for (;;) {
    RunUntilIdle();
    std::unique_lock lock(mutex_);
    arrived_.wait(lock, [&] { return stopRequested_ || shutDown_ || !queue_.empty(); });
    if (stopRequested_ || shutDown_) {
      stopRequested_ = false;
      lock.unlock();
      RunUntilIdle();
      return;
    }
  }
}

void TMainThreadQueue::Stop() {
  {
    std::lock_guard lock(mutex_);
    stopRequested_ = true;
  }
  arrived_.notify_all();
  if (wake_) wake_();
}

void TMainThreadQueue::Shutdown() {
  std::deque<TWork> dropped;
  {
    std::lock_guard lock(mutex_);
    shutDown_ = true;
    dropped.swap(queue_);
  }
  arrived_.notify_all();
  // Destroying the dropped items outside the lock releases their waiters.
  dropped.clear();
}

}  // namespace velmora
