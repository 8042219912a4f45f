#include "hosts/lsp/parse_driver.h"

#include "model/class_list.h"
#include "parsing/source_parser.h"
#include "support/exception.h"
#include "support/paths.h"
#include "support/stream.h"
#include "support/text_buffer.h"

namespace velmora::lsp {

TParsedFile ParseFileForModel(const std::string& path, const std::optional<std::string>& text,
                              uint64_t generation) {
  TParsedFile result;
  result.Path = path;
  result.Generation = generation;
  std::string buffer;
  if (text) {
    buffer = ToBufferForm(*text);
  } else {
    try {
      buffer = LoadSourceText(path);
    } catch (const Exception& e) {
      result.Error = e.Message();
      return result;
    }
  }
  result.LineStarts.push_back(0);
  for (std::size_t i = 0; i < buffer.size(); ++i)
    if (buffer[i] == '\n') result.LineStarts.push_back(static_cast<int32_t>(i + 1));
  const std::string unitName(ExtractFileName(path));
  result.Classes = std::make_unique<TClasslist>();
  TMemoryStream stream(std::move(buffer));
  TParseOptions options;
  options.WantPositions = true;
  ParseSourceText(LanguageOfFile(unitName), unitName, stream, *result.Classes, options, nullptr);
  result.Ok = true;
  return result;
}

void TInlineParseDriver::Parse(std::string path, std::optional<std::string> text,
                               uint64_t generation, std::chrono::milliseconds) {
  deliver_(ParseFileForModel(path, text, generation));
}

TThreadParseDriver::TThreadParseDriver(TDeliver deliver)
    : deliver_(std::move(deliver)), worker_([this] { Work(); }) {}

TThreadParseDriver::~TThreadParseDriver() {
  {
    std::lock_guard<std::mutex> hold(lock_);
    stop_ = true;
    pending_.clear();
  }
  wake_.notify_all();
  worker_.join();
}

void TThreadParseDriver::Parse(std::string path, std::optional<std::string> text,
                               uint64_t generation, std::chrono::milliseconds delay) {
  {
    std::lock_guard<std::mutex> hold(lock_);
    TJob& job = pending_[path];
    job.Path = std::move(path);
    job.Text = std::move(text);
    job.Generation = generation;
    job.Due = TClock::now() + delay;
    job.Order = nextOrder_++;
  }
  wake_.notify_all();
}

void TThreadParseDriver::CancelPending() {
  std::lock_guard<std::mutex> hold(lock_);
  pending_.clear();
  if (!running_) idle_.notify_all();
}

void TThreadParseDriver::WaitIdle() {
  std::unique_lock<std::mutex> hold(lock_);
  idle_.wait(hold, [this] { return pending_.empty() && !running_; });
}

void TThreadParseDriver::Work() {
  std::unique_lock<std::mutex> hold(lock_);
  for (;;) {
    if (stop_) return;
    if (pending_.empty()) {
      idle_.notify_all();
      wake_.wait(hold);
      continue;
    }
    // The earliest due request; with many files queued at once (a project opening) the
    // map walk is dwarfed by the parse of each.
    auto next = pending_.begin();
    for (auto it = pending_.begin(); it != pending_.end(); ++it)
      if (it->second.Due < next->second.Due ||
          (it->second.Due == next->second.Due && it->second.Order < next->second.Order))
        next = it;
    if (next->second.Due > TClock::now()) {
      // A copy: the wait reads its deadline again on waking, and by then the request may
      // be gone (replaced, cancelled, or the driver stopping).
      const TClock::time_point due = next->second.Due;
      wake_.wait_until(hold, due);
      continue;
    }
    TJob job = std::move(next->second);
    pending_.erase(next);
    running_ = true;
    hold.unlock();
    TParsedFile parsed = ParseFileForModel(job.Path, job.Text, job.Generation);
    deliver_(std::move(parsed));
    hold.lock();
    running_ = false;
  }
}

}  // namespace velmora::lsp
