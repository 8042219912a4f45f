#include "parsing/parse_queue.h"

#include <algorithm>
#include <future>
#include <utility>

#include "parsing/source_provider.h"

namespace velmora {

TParseQueue::TParseQueue(TResultHandler onResult, TParseQueueOptions options)
    : onResult_(std::move(onResult)),
      sources_(options.Sources ? *options.Sources : DiskSources()),
      pause_(std::move(options.Pause)) {
  int threads = options.Threads;
  if (threads <= 0) threads = std::max(1U, std::thread::hardware_concurrency());
  workers_.reserve(threads);
  for (int i = 0; i < threads; ++i)
    workers_.emplace_back([this](std::stop_token shutdown) { Work(shutdown); });
}

TParseQueue::~TParseQueue() {
  CancelAll();
  for (std::jthread& worker : workers_) worker.request_stop();
  wake_.notify_all();
  workers_.clear();  // joins
}

void TParseQueue::Post(TParseRequest request) {
  auto job = std::make_unique<TJob>();
  job->Request = std::move(request);
  {
    std::lock_guard lock(mutex_);
    waiting_.push_back(std::move(job));
  }
  wake_.notify_one();
}

void TParseQueue::CancelBefore(uint64_t generation) {
  std::lock_guard lock(mutex_);
  for (auto& job : waiting_)
    if (job->Request.Generation < generation) job->Cancel.request_stop();
  for (TJob* job : running_)
    if (job->Request.Generation < generation) job->Cancel.request_stop();
}

void TParseQueue::CancelAll() {
  std::lock_guard lock(mutex_);
  for (auto& job : waiting_) job->Cancel.request_stop();
  for (TJob* job : running_) job->Cancel.request_stop();
}

void TParseQueue::WaitUntilIdle() {
  std::unique_lock lock(mutex_);
  idle_.wait(lock, [this] { return waiting_.empty() && running_.empty(); });
}

void TParseQueue::Work(std::stop_token shutdown) {
  for (;;) {
    std::unique_ptr<TJob> job;
    {
      std::unique_lock lock(mutex_);
      // Woken by Post or by shutdown; a queue with jobs left drains them (cancelled) first
      // so that nobody waits for a result that never comes.
      wake_.wait(lock, shutdown, [this] { return !waiting_.empty(); });
      if (waiting_.empty()) return;
      job = std::move(waiting_.front());
      waiting_.pop_front();
      running_.push_back(job.get());
    }
    TParseResult result;
    if (job->Cancel.stop_requested() || job->Request.Stop.stop_requested()) {
      result.RootFile = job->Request.RootFile;
      result.Generation = job->Request.Generation;
      result.Context = job->Request.Context;
      result.Cancelled = true;
    } else {
      result = RunParseJob(job->Request, MakeParseJobHooks(job->Request, sources_, pause_),
                           job->Cancel.get_token());
    }
    try {
      onResult_(std::move(result));
    } catch (...) {
    }
    {
      std::lock_guard lock(mutex_);
      running_.erase(std::find(running_.begin(), running_.end(), job.get()));
    }
    idle_.notify_all();
  }
}

TParseQueue& SharedParseQueue() {
  // Results go back to whoever posted: StartParse puts a promise in the request's context.
  static TParseQueue queue([](TParseResult result) {
    auto* promise = static_cast<std::promise<TParseResult>*>(result.Context);
    if (promise) promise->set_value(std::move(result));
  });
  return queue;
}

}  // namespace velmora
