// The model the Qt IDE's class view shows of the open project: its units parsed on a
// worker thread into lists nobody else sees, and handed to the main thread in one step
// when the last one is done, so the view never sees half a parse and the window never
// waits on the parser.
//
// Threads: the worker only fills its own lists and posts to the main-thread queue; every
// call here and every callback runs on the main thread.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace velmora {

class TClasslist;
class TFilesList;
class TMainThreadQueue;

class TProjectModel {
 public:
  /// `done` and `total` count files.
  using TProgress = std::function<void(int done, int total)>;
  /// Called after the new lists replaced the old ones (which are freed when it returns).
  using TFinished = std::function<void()>;

  explicit TProjectModel(TMainThreadQueue& queue);
  /// Stops the worker and waits for it.
  ~TProjectModel();
  TProjectModel(const TProjectModel&) = delete;
  TProjectModel& operator=(const TProjectModel&) = delete;

  /// Parses `files` (a parse still running is dropped), reporting progress through the
  /// queue. A file that cannot be read is passed over.
  void Parse(std::vector<std::string> files, TProgress progress, TFinished finished);
  /// Drops a running parse and empties the model.
  void Clear();
  bool Busy() const { return busy_; }

  /// The last finished parse's lists; null before the first.
  TClasslist* Classes() const { return classes_.get(); }
  TFilesList* Files() const { return files_.get(); }

 private:
  struct TState;
  void Stop();

  TMainThreadQueue& queue_;
  std::shared_ptr<TState> state_;  ///< the running parse's; shared with its worker
  std::thread worker_;
  bool busy_ = false;
  std::unique_ptr<TClasslist> classes_;
  std::unique_ptr<TFilesList> files_;
};

}  // namespace velmora
