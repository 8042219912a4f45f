// A headless IDE over a scratch folder, and a notifier that writes down what it hears:
// the fixture the host's and the add-in's tests share.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "hosts/headless/headless_ide.h"
#include "ide/module.h"
#include "ide/notifiers.h"
#include "support/stream.h"

namespace velmora::test {

/// A scratch folder removed with everything in it at the end of the test.
struct TScratch {
  TScratch() {
    std::string pattern = ::testing::TempDir() + "velmora_headless_XXXXXX";
    path = ::mkdtemp(pattern.data());
  }
  ~TScratch() {
    std::error_code ec;
    std::filesystem::remove_all(path, ec);
  }
  /// Writes `text` as it stands to `name` and returns the file's path.
  std::string Write(const std::string& name, std::string_view text) const {
    const std::string file = path + "/" + name;
    WriteFileAtomically(file, text);
    return file;
  }
  std::string operator/(const std::string& name) const { return path + "/" + name; }
  std::string path;
};

/// Writes each notification as "code file" (file notifications) or "module code file"
/// (module notifications) into one shared log.
class TRecordingNotifier : public TIAddInNotifier, public TIModuleNotifier {
 public:
  explicit TRecordingNotifier(std::vector<std::string>& log) : log_(log) {}
  void FileNotification(TFileNotification code, const std::string& fileName,
                        bool& /*cancel*/) override {
    log_.push_back(std::to_string(static_cast<int>(code)) + " " +
                   std::filesystem::path(fileName).filename().string());
  }
  void EventNotification(TEventNotification /*code*/, bool& /*cancel*/) override {}
  void Notify(TModuleNotification code, TIModule& module) override {
    log_.push_back("module " + std::to_string(static_cast<int>(code)) + " " +
                   std::filesystem::path(module.FileName()).filename().string());
  }
  void ComponentRenamed(const std::string&, const std::string&) override {}

 private:
  std::vector<std::string>& log_;
};

}  // namespace velmora::test
