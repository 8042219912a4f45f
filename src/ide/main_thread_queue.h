// The queue behind the synchronise-with-main-thread call: background threads hand work
// to the IDE's main thread through it, and the host's main thread runs what is queued.
//
// Thread rule: Post, Synchronize, Stop and IsMainThread may be called from any thread;
// RunUntilIdle and RunLoop only from the main thread (the thread that created the queue,
// or the one last given to SetMainThread). One mutex guards the queue; work runs without
// it, so work may queue more work.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace velmora {

class TMainThreadQueue {
 public:
  using TWork = std::function<void()>;

  /// The calling thread becomes the main thread.
  TMainThreadQueue();
  /// Work still queued is dropped; a Synchronize still waiting returns false.
  ~TMainThreadQueue();
  TMainThreadQueue(const TMainThreadQueue&) = delete;
  TMainThreadQueue& operator=(const TMainThreadQueue&) = delete;

  /// Makes the calling thread the main thread (a host whose event loop runs elsewhere).
  void SetMainThread();
  bool IsMainThread() const;

  /// Queues `work` to run later on the main thread and returns at once.
  void Post(TWork work);
  /// Runs `work` on the main thread and waits until it has run: at once when called on
  /// the main thread, else queued. An exception thrown by the work is thrown again here.
  /// Returns false, without running it, when the queue is shut down before the work
  /// ran - so a thread never waits for a main thread that has stopped for good.
  bool Synchronize(const TWork& work);

  /// Runs queued work, including work queued meanwhile, until the queue is empty;
  /// returns how many items ran. An exception from posted work is thrown to the caller
  /// after the item is taken off the queue.
  int RunUntilIdle();
  /// Runs work as it arrives until Stop is called; returns after the stop, with what
  /// was queued before it run.
  void RunLoop();
  /// Ends RunLoop (the current or the next one).
  void Stop();
  /// Drops queued work and releases every waiting Synchronize with false; later Post
  /// and Synchronize calls from other threads do nothing and return false.
  void Shutdown();

  /// Called (from the posting thread) whenever work is queued, for a host whose own
  /// event loop must be woken to run it. Set it before other threads post.
  void SetWakeHook(std::function<void()> hook);

  /// Items waiting.
  size_t Pending() const;

 private:
  bool TakeOne(TWork& work);

  mutable std::mutex mutex_;
  std::condition_variable arrived_;
  std::deque<TWork> queue_;     ///< guarded by mutex_
  bool stopRequested_ = false;  ///< guarded by mutex_; cleared when RunLoop returns
  bool shutDown_ = false;       ///< guarded by mutex_; never cleared
  std::thread::id mainThread_;  ///< guarded by mutex_
  std::function<void()> wake_;  ///< set before other threads post; read without the lock
};

}  // namespace velmora
