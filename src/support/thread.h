// A thread object in the manner of the background jobs: created suspended, started by
// Resume, runs Execute once, and - with FreeOnTerminate - deletes itself when Execute
// returns. Whoever must know that such a thread has ended holds its end signal, which
// outlives the object.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>

namespace velmora {

/// The seven scheduling levels of the settings, 0 (idle) to 6 (time critical).
enum class TThreadPriority : uint8_t { Idle, Lowest, Lower, Normal, Higher, Highest, TimeCritical };

/// Set once, when a thread's Execute has returned and (with FreeOnTerminate) the thread
/// object is gone. Everything the thread wrote before is visible to a thread that saw it.
class TThreadEnd {
 public:
  bool Done() const { return done_.load(std::memory_order_acquire); }
  void Wait() const { done_.wait(false, std::memory_order_acquire); }

 private:
  friend class TThread;
  void Set() {
    done_.store(true, std::memory_order_release);
    done_.notify_all();
  }
  std::atomic<bool> done_{false};
};

class TThread {
 public:
  virtual ~TThread();
  TThread(const TThread&) = delete;
  TThread& operator=(const TThread&) = delete;

  /// Starts Execute on a thread of its own; later calls do nothing.
  void Resume();
  /// Blocks until Execute has returned. Only for a thread that does not free itself.
  void WaitFor();
  /// Taken before Resume, since a thread that frees itself may be gone by the time the
  /// caller looks again.
  std::shared_ptr<const TThreadEnd> EndSignal() const { return end_; }

  /// Set before Resume: the object deletes itself when Execute returns.
  bool FreeOnTerminate = false;
  /// Set before Resume. Linux gives each thread its own nice value: levels below Normal
  /// raise it (always allowed), levels above lower it, which only privileged processes
  /// may do - otherwise the thread stays at the process's level. Elsewhere ignored.
  TThreadPriority Priority = TThreadPriority::Normal;

 protected:
  TThread() = default;
  /// The thread's work. An exception that escapes it ends the thread quietly.
  virtual void Execute() = 0;

 private:
  void Run();

  std::thread thread_;  // joinable only for a started thread that does not free itself
  std::shared_ptr<TThreadEnd> end_ = std::make_shared<TThreadEnd>();
  bool started_ = false;
};

}  // namespace velmora
