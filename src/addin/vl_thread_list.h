// The manager's background jobs. A job (TVLManagerThread) is a list of source files to
// parse, with their includes, into the project's or the external files' model. The job
// list (TVLThreadList) starts jobs and stamps each with its generation; cancelling all
// jobs moves the generation on, so whatever a job of an older generation still hands
// back is dropped.
//
// A job does not run on a thread of its own: the list hands a started job to its starter
// (the manager), which turns the job's files into parse requests for the parse queue. The
// parses come back as values and are merged on the main thread; when the last of a job's
// parses is back, the starter calls JobCompleted and the list calls the owner's
// job-finished handler for a job that is still current and was not cancelled.
//
// Threads and locks: the job list and everything but the cancel flag of a job belong to
// the main thread. The cancel flag may be read and set from any thread; its mutex guards
// it, and the job's stop source carries it to the parse requests.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>
#include <vector>

namespace velmora {

/// Which model a job parses into.
enum class TVLJobTarget : uint8_t { Project, External };

class TVLManagerThread {
 public:
  TVLManagerThread(std::vector<std::string> files, TVLJobTarget target, bool updateViews,
                   std::vector<std::string> includePath);
  TVLManagerThread(const TVLManagerThread&) = delete;
  TVLManagerThread& operator=(const TVLManagerThread&) = delete;

  bool Cancelled() const;
  /// Sets the cancel flag and stops the job's parse requests before their next file.
  void SetCancelled(bool cancelled);
  std::stop_token StopToken() const { return stop_.get_token(); }

  /// The files still to hand to the parser; the starter empties it.
  std::vector<std::string> FilesToProcess;
  /// Files parsed for this job so far (roots and the includes they reached), in the
  /// order their results came back.
  std::vector<std::string> ProcessedFiles;
  /// Included files the job reached, sorted, each once.
  std::vector<std::string> FoundFiles;
  const TVLJobTarget Target;
  /// The views are refreshed when the job has finished.
  const bool UpdateViews;
  /// Folders searched for included files after the including file's own, in order.
  const std::vector<std::string> IncludePath;
  /// The job parses the whole project after the model was reset or loaded: the class
  /// information is saved when it finishes.
  bool FullParse = false;
  /// Given by the job list when the job is queued.
  uint32_t Generation = 0;
  /// Parse requests posted and not yet back; the starter's count.
  int Pending = 0;
  /// Unique within the process; names the job in its parse requests.
  uint64_t Id = 0;

 private:
  mutable std::mutex cancelLock_;
  bool cancelled_ = false;  ///< guarded by cancelLock_
  std::stop_source stop_;
};

class TVLThreadList {
 public:
  /// Main thread: a job of the current generation, not cancelled, handed back its last
  /// result.
  using TJobFinished = std::function<void(TVLManagerThread& job)>;
  /// Main thread: the job was taken off the queue to run; the starter posts its work.
  using TJobStarter = std::function<void(TVLManagerThread& job)>;

  TVLThreadList(TJobFinished onFinished, TJobStarter onStart);
  ~TVLThreadList();
  TVLThreadList(const TVLThreadList&) = delete;
  TVLThreadList& operator=(const TVLThreadList&) = delete;

  /// Stamps the job with the list's generation and queues it; when the queue then holds
  /// exactly this job, starts it. Returns the job (owned by the list).
  TVLManagerThread* AddJob(std::unique_ptr<TVLManagerThread> job);
  /// Starts the first queued job of the current generation, freeing the stale ones
  /// before it.
  void StartNext();
  /// Moves the generation on, cancels the running job and frees every queued one.
  void CancelAll();
  /// Frees every queued job (the started ones go on).
  void Clear();
  /// The starter's call when a started job's last result is back (or it was cancelled):
  /// the list forgets and frees the job, after calling the job-finished handler when the
  /// job is current and not cancelled.
  void JobCompleted(TVLManagerThread& job);

  uint32_t Generation() const { return generation_; }
  /// The job started last and not yet completed, or null.
  TVLManagerThread* Running() const { return running_; }
  int QueuedCount() const { return static_cast<int>(queue_.size()); }
  /// Jobs started and not yet completed (jobs may overlap).
  int StartedCount() const { return static_cast<int>(started_.size()); }
  bool Idle() const { return queue_.empty() && started_.empty(); }
  /// A started job by its Id, or null (a result of a job already gone).
  TVLManagerThread* FindStarted(uint64_t id) const;

 private:
  std::vector<std::unique_ptr<TVLManagerThread>> queue_;
  std::vector<std::unique_ptr<TVLManagerThread>> started_;  ///< owned until completed
  TVLManagerThread* running_ = nullptr;                     ///< one of started_, or null
  TJobFinished onFinished_;
  TJobStarter onStart_;
  uint32_t generation_ = 0;
  uint64_t nextId_ = 1;
};

}  // namespace velmora
