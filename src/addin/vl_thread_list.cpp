#include "addin/vl_thread_list.h"

#include <algorithm>

namespace velmora {

TVLManagerThread::TVLManagerThread(std::vector<std::string> files, TVLJobTarget target,
                                   bool updateViews, std::vector<std::string> includePath)
    : FilesToProcess(std::move(files)),
      Target(target),
      UpdateViews(updateViews),
      IncludePath(std::move(includePath)) {}

bool TVLManagerThread::Cancelled() const {
  std::lock_guard lock(cancelLock_);
  return cancelled_;
}

void TVLManagerThread::SetCancelled(bool cancelled) {
  std::lock_guard lock(cancelLock_);
  cancelled_ = cancelled;
  if (cancelled) stop_.request_stop();
}

TVLThreadList::TVLThreadList(TJobFinished onFinished, TJobStarter onStart)
    : onFinished_(std::move(onFinished)), onStart_(std::move(onStart)) {}

TVLThreadList::~TVLThreadList() {
  for (auto& job : started_) job->SetCancelled(true);
}

TVLManagerThread* TVLThreadList::AddJob(std::unique_ptr<TVLManagerThread> job) {
  job->Generation = generation_;
  job->Id = nextId_++;
  TVLManagerThread* added = job.get();
  queue_.push_back(std::move(job));
  if (queue_.size() == 1) StartNext();
  return added;
}

void TVLThreadList::StartNext() {
  while (!queue_.empty()) {
    std::unique_ptr<TVLManagerThread> job = std::move(queue_.front());
    queue_.erase(queue_.begin());
    if (job->Generation != generation_) continue;  // stale: freed here, never run
    running_ = job.get();
    started_.push_back(std::move(job));
    if (onStart_) onStart_(*running_);
    return;
  }
}

void TVLThreadList::CancelAll() {
  ++generation_;
  if (running_) {
    running_->SetCancelled(true);
    running_ = nullptr;
  }
  // Jobs started before the running one may still have parses on their way: they are
  // stale now, and must not reach the model either.
  for (auto& job : started_) job->SetCancelled(true);
  Clear();
}

void TVLThreadList::Clear() {
  queue_.clear();
}

void TVLThreadList::JobCompleted(TVLManagerThread& job) {
  auto it = std::find_if(started_.begin(), started_.end(),
                         [&](const auto& p) { return p.get() == &job; });
  if (it == started_.end()) return;
  std::unique_ptr<TVLManagerThread> owned = std::move(*it);
  started_.erase(it);
  if (running_ == &job) running_ = nullptr;
  if (owned->Generation == generation_ && !owned->Cancelled() && onFinished_) onFinished_(*owned);
}

TVLManagerThread* TVLThreadList::FindStarted(uint64_t id) const {
  for (const auto& job : started_)
    if (job->Id == id) return job.get();
  return nullptr;
}

}  // namespace velmora
