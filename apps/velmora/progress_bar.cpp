#include "progress_bar.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>

#include "support/paths.h"

namespace velmora::app {

TProgressBar::TProgressBar(bool enabled) : shown_(enabled && ::isatty(STDERR_FILENO)) {}

void TProgressBar::Update(int done, int total, const std::string& file) {
  if (!shown_ || total <= 0) return;
  int columns = 80;
  struct winsize size;
  if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) columns = size.ws_col;
  constexpr int kWidth = 24;
  const int filled = done * kWidth / total;
  std::string line = "\r\033[K[";
  line.append(static_cast<size_t>(filled), '#');
  line.append(static_cast<size_t>(kWidth - filled), ' ');
  line += "] " + std::to_string(done) + "/" + std::to_string(total) + " ";
  // The file name fills what the terminal has left (the escape codes take no column).
  const size_t room =
      static_cast<size_t>(std::max(0, columns - 1 - (static_cast<int>(line.size()) - 5)));
  std::string name(ExtractFileName(file));
  if (name.size() > room) name.resize(room);
  line += name;
  std::fputs(line.c_str(), stderr);
  std::fflush(stderr);
  drawn_ = true;
}

void TProgressBar::Finish() {
  if (!drawn_) return;
  std::fputs("\r\033[K", stderr);
  std::fflush(stderr);
  drawn_ = false;
}

}  // namespace velmora::app
