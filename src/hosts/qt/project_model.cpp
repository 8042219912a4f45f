#include "hosts/qt/project_model.h"

#include <sys/stat.h>

#include "ide/main_thread_queue.h"
#include "model/class_list.h"
#include "model/files.h"
#include "parsing/source_parser.h"
#include "support/exception.h"
#include "support/paths.h"
#include "support/stream.h"
#include "support/text_buffer.h"

namespace velmora {

// What a worker and the main thread share: the cancel flag, and whether the model that
// started it is still there to take its results.
struct TProjectModel::TState {
  std::atomic<bool> Cancel{false};
  std::atomic<bool> Alive{true};
};

TProjectModel::TProjectModel(TMainThreadQueue& queue) : queue_(queue) {}

TProjectModel::~TProjectModel() {
  Stop();
}

void TProjectModel::Stop() {
  if (state_) {
    state_->Cancel = true;
    state_->Alive = false;
  }
  if (worker_.joinable()) worker_.join();
  state_.reset();
  busy_ = false;
}

void TProjectModel::Clear() {
  Stop();
  classes_.reset();
  files_.reset();
}

void TProjectModel::Parse(std::vector<std::string> files, TProgress progress, TFinished finished) {
  Stop();
  busy_ = true;
  auto state = std::make_shared<TState>();
  state_ = state;
  worker_ = std::thread([this, state, files = std::move(files), progress = std::move(progress),
                         finished = std::move(finished)] {
    auto classes = std::make_shared<std::unique_ptr<TClasslist>>(std::make_unique<TClasslist>());
    auto fileList = std::make_shared<std::unique_ptr<TFilesList>>(std::make_unique<TFilesList>());
    const int total = static_cast<int>(files.size());
    for (int i = 0; i < total && !state->Cancel; ++i) {
      const std::string& path = files[static_cast<size_t>(i)];
      try {
        const std::string unitName(ExtractFileName(path));
        TMemoryStream text(LoadSourceText(path));
        ParseSourceText(LanguageOfFile(unitName), unitName, text, **classes, TParseOptions{},
                        nullptr);
        auto file = std::make_unique<TFileDescription>(LanguageOfFile(unitName));
        file->Name = unitName;
        file->Directory = std::string(ExtractFilePath(path));
        struct stat st;
        if (::stat(path.c_str(), &st) == 0) file->FileDate = static_cast<int32_t>(st.st_mtime);
        (*fileList)->Add(std::move(file));
      } catch (const Exception&) {
        // A unit that cannot be read shows nothing; the project still opens.
      }
      queue_.Post([state, progress, done = i + 1, total] {
        if (state->Alive && progress) progress(done, total);
      });
    }
    if (state->Cancel) return;
    queue_.Post([this, state, classes, fileList, finished] {
      if (!state->Alive) return;
      if (worker_.joinable()) worker_.join();
      std::unique_ptr<TClasslist> oldClasses = std::exchange(classes_, std::move(*classes));
      std::unique_ptr<TFilesList> oldFiles = std::exchange(files_, std::move(*fileList));
      busy_ = false;
      if (finished) finished();
    });
  });
}

}  // namespace velmora
