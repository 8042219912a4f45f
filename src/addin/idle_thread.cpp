#include "addin/idle_thread.h"

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>

namespace velmora {

namespace {

uint32_t SystemTickCount() {
  using namespace std::chrono;
  return static_cast<uint32_t>(
      duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

void SystemSleep(int ms) {
  std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

/// Holds the named mutex for a scope when it could be had.
class TMutexHold {
 public:
  TMutexHold(TMutex& mutex, uint32_t timeoutMs) : mutex_(mutex), held_(mutex.Acquire(timeoutMs)) {}
  ~TMutexHold() {
    if (held_) mutex_.Release();
  }
  TMutexHold(const TMutexHold&) = delete;
  TMutexHold& operator=(const TMutexHold&) = delete;
  bool Held() const { return held_; }

 private:
  TMutex& mutex_;
  bool held_;
};

}  // namespace

TIdleThread::TIdleThread(TIdleClock clock)
    : clock_(std::move(clock)), mutex_(IdleThreadMutexName()) {
  if (!clock_.TickCount) clock_.TickCount = SystemTickCount;
  if (!clock_.Sleep) clock_.Sleep = SystemSleep;
}

TIdleThread::~TIdleThread() {
  Terminate();
}

void TIdleThread::Start() {
  if (thread_.joinable()) return;
  thread_ = std::jthread([this](std::stop_token stop) { Run(stop); });
}

void TIdleThread::Terminate() {
  if (!thread_.joinable()) return;
  thread_.request_stop();
  thread_.join();
}

void TIdleThread::Run(std::stop_token stop) {
  // The lowest priority the system gives without privileges: a thread that measures how
  // busy the machine is must never be what keeps it busy.
  setpriority(PRIO_PROCESS, static_cast<id_t>(syscall(SYS_gettid)), 19);
  while (!stop.stop_requested()) {
    Step();
    clock_.Sleep(kSleepMs);
  }
}

void TIdleThread::Step() {
  TMutexHold hold(mutex_, 0);
  if (!hold.Held()) return;
  if (startTick_ == 2147483647u) {
    startTick_ = clock_.TickCount();
    turns_ = 0;
  } else {
    const uint32_t elapsed = clock_.TickCount() - startTick_;
    if (elapsed >= kPeriodMs && turns_ > 0) {
      time_ = static_cast<double>(elapsed) / turns_;
      if (min_ < 0 || time_ < min_) min_ = time_;
      if (max_ < 0 || time_ > max_) max_ = time_;
      if (time_ > tolerance_ * min_) {
        state_ = bsBusy;
      } else {
        state_ = bsIdle;
        // A long idle stretch: start the range again from here, so that a machine that
        // got slower for good (power saving) is not called busy for ever.
        if (periods_ > 9) {
          min_ = time_;
          max_ = time_;
          periods_ = 0;
        }
      }
      startTick_ = 2147483647u;
      ++periods_;
    }
  }
  ++turns_;
}

TIdleThread::TBusyState TIdleThread::BusyState() const {
  TMutexHold hold(mutex_, kInfinite);
  return static_cast<TBusyState>(state_);
}

double TIdleThread::TimePerTurn() const {
  TMutexHold hold(mutex_, kInfinite);
  return time_;
}

double TIdleThread::MinTimePerTurn() const {
  TMutexHold hold(mutex_, kInfinite);
  return min_;
}

double TIdleThread::MaxTimePerTurn() const {
  TMutexHold hold(mutex_, kInfinite);
  return max_;
}

}  // namespace velmora
