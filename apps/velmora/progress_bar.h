// The progress bar of a parse on standard error: files parsed of all, and the current
// file, redrawn in place. Only on a terminal; a pipe or file gets nothing, so logs stay
// clean.
#pragma once

#include <string>

namespace velmora::app {

class TProgressBar {
 public:
  /// Shown only when `enabled` and standard error is a terminal.
  explicit TProgressBar(bool enabled);
  ~TProgressBar() { Finish(); }
  TProgressBar(const TProgressBar&) = delete;
  TProgressBar& operator=(const TProgressBar&) = delete;

  void Update(int done, int total, const std::string& file);
  /// Clears the bar's line.
  void Finish();

 private:
  bool shown_;
  bool drawn_ = false;
};

}  // namespace velmora::app
