// How busy the machine is: a low-priority thread sleeps 20 ms a turn and counts its
// turns over periods of half a second. When other threads keep the processors busy, a
// sleep takes longer, so fewer turns fit into a period; a period slower than the fastest
// seen (by more than the tolerance) means busy. Views ask it before work that can wait
// while the user types.
//
// Threads and locks: Step runs on the idle thread (or a test's thread) under the named
// idle-thread mutex, which also guards the measured values; the readers take the same
// mutex. The clock and the sleeper are injected so that tests need no wall time.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <thread>

#include "support/sync.h"

namespace velmora {

struct TIdleClock {
  /// Milliseconds since some fixed start, wrapping; the system's tick count by default.
  std::function<uint32_t()> TickCount;
  /// Waits `ms` milliseconds; a sleep of the calling thread by default.
  std::function<void(int ms)> Sleep;
};

class TIdleThread {
 public:
  enum TBusyState : int32_t { bsUnknown = -1, bsIdle = 0, bsBusy = 1 };

  explicit TIdleThread(TIdleClock clock = {});
  /// Ends the thread and waits for it.
  ~TIdleThread();
  TIdleThread(const TIdleThread&) = delete;
  TIdleThread& operator=(const TIdleThread&) = delete;

  /// Starts the thread at the lowest priority: Step, then a 20 ms sleep, until ended.
  void Start();
  /// Asks the thread to end after its current turn and waits for it.
  void Terminate();

  /// One measurement turn: does nothing when the mutex cannot be had at once.
  void Step();

  TBusyState BusyState() const;
  /// Milliseconds per turn of the last period, and the smallest and largest seen;
  /// -1.0 while not measured.
  double TimePerTurn() const;
  double MinTimePerTurn() const;
  double MaxTimePerTurn() const;

  static constexpr int kSleepMs = 20;
  static constexpr uint32_t kPeriodMs = 500;

 private:
  void Run(std::stop_token stop);

  TIdleClock clock_;
  double time_ = -1.0;         ///< guarded by mutex_
  double min_ = -1.0;          ///< guarded by mutex_; -1.0 until a period was measured
  double max_ = -1.0;          ///< guarded by mutex_
  int32_t state_ = bsUnknown;  ///< guarded by mutex_
  mutable TMutex mutex_;
  int periods_ = 0;      ///< periods measured since the last reset; guarded by mutex_
  int32_t turns_ = -10;  ///< turns in the open period; guarded by mutex_
  /// Tuning for a tick count too coarse to measure with; a millisecond tick never needs it.
  static constexpr int kTuneTicks = 1000;
  static constexpr int kTuneTurns = 10;
  uint32_t startTick_ = 2147483647u;  ///< 2147483647: no period open; guarded by mutex_
  const double tolerance_ = 1.1;
  std::jthread thread_;
};

}  // namespace velmora
