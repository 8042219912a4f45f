#include "support/thread.h"

#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>

namespace velmora {
namespace {

// Nice steps of the levels, relative to the level the thread started with.
constexpr int kNiceStep[] = {19, 10, 5, 0, -5, -10, -20};

void ApplyPriority(TThreadPriority priority) {
#ifdef __linux__
  const int step = kNiceStep[static_cast<int>(priority)];
  if (step == 0) return;
  const pid_t self = ::gettid();
  errno = 0;
  const int current = ::getpriority(PRIO_PROCESS, self);
  if (errno != 0) return;
  ::setpriority(PRIO_PROCESS, self, current + step);  // refused without privilege: keep going
#else
  (void)priority;
#endif
}

}  // namespace

TThread::~TThread() {
  if (thread_.joinable() && thread_.get_id() != std::this_thread::get_id()) thread_.join();
  if (thread_.joinable()) thread_.detach();
}

void TThread::Resume() {
  if (started_) return;
  started_ = true;
  // Read before the thread starts: a thread that frees itself may be gone the moment
  // after.
  const bool detach = FreeOnTerminate;
  std::thread thread(&TThread::Run, this);
  if (detach)
    thread.detach();
  else
    thread_ = std::move(thread);
}

void TThread::WaitFor() {
  if (thread_.joinable() && thread_.get_id() != std::this_thread::get_id()) thread_.join();
}

void TThread::Run() {
  ApplyPriority(Priority);
  try {
    Execute();
  } catch (...) {
  }
  const std::shared_ptr<TThreadEnd> end = end_;
  if (FreeOnTerminate) delete this;
  end->Set();
}

}  // namespace velmora
