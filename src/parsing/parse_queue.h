// The parse queue: parse jobs run on worker threads (one per core unless told otherwise)
// and come back as values through a callback. The host posts each result to its main
// thread and merges it there (TParseMerger); the workers never touch a model.
//
// Threads and locks: Post, Cancel*, WaitUntilIdle and the destructor may be called from
// any thread except from inside the result callback (which may Post). The callback runs
// on a worker thread, one call at a time per worker, and must not throw. The queue's own
// state is guarded by one mutex, never held while a job runs or a callback is made.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <stop_token>
#include <thread>
#include <vector>

#include "parsing/parse_job.h"

namespace velmora {

class TSourceProvider;

struct TParseQueueOptions {
  /// Worker threads; 0 for one per core.
  int Threads = 0;
  /// Where the files are read; null for the disk.
  const TSourceProvider* Sources = nullptr;
  /// Waits between two attempts at a file; empty for the wall clock. Tests put a fake in.
  std::function<void(std::chrono::milliseconds)> Pause = {};
};

class TParseQueue {
 public:
  /// Gets every result, cancelled ones included (Cancelled set), on a worker thread.
  using TResultHandler = std::function<void(TParseResult)>;

  explicit TParseQueue(TResultHandler onResult, TParseQueueOptions options = {});
  /// Cancels what waits and what runs, and joins the workers; every job posted still gets
  /// its (cancelled) result.
  ~TParseQueue();
  TParseQueue(const TParseQueue&) = delete;
  TParseQueue& operator=(const TParseQueue&) = delete;

  /// Queues a job; jobs start in the order posted.
  void Post(TParseRequest request);
  /// Cancels every job, waiting or running, whose Generation is below `generation`; a
  /// running one stops before its next file.
  void CancelBefore(uint64_t generation);
  /// Cancels every job posted so far.
  void CancelAll();
  /// Returns when no job waits or runs and every result has been handed over.
  void WaitUntilIdle();

  int ThreadCount() const { return static_cast<int>(workers_.size()); }

 private:
  struct TJob {
    TParseRequest Request;
    std::stop_source Cancel;
  };
  void Work(std::stop_token shutdown);

  TResultHandler onResult_;
  const TSourceProvider& sources_;
  std::function<void(std::chrono::milliseconds)> pause_;

  std::mutex mutex_;
  std::condition_variable_any wake_;           ///< a job was posted, or shutdown
  std::condition_variable idle_;               ///< a job ended
  std::deque<std::unique_ptr<TJob>> waiting_;  ///< guarded by mutex_
  std::vector<TJob*> running_;                 ///< guarded by mutex_; owned by the workers
  std::vector<std::jthread> workers_;          ///< last: started after everything else
};

/// The queue StartParse posts to, made on first use with one worker per core; it lives
/// until the process ends.
TParseQueue& SharedParseQueue();

}  // namespace velmora
