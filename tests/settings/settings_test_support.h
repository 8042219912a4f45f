// Scratch folders, environment overrides and golden files for the settings tests. Every
// test that touches the file system works in its own temporary folder, never in the
// user's configuration.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>

namespace velmora::test {

/// A scratch folder removed with everything in it at the end of the test.
struct TTempDir {
  TTempDir() {
    std::string pattern = ::testing::TempDir() + "velmora_settings_XXXXXX";
    path = ::mkdtemp(pattern.data());
  }
  ~TTempDir() {
    std::error_code ec;
    std::filesystem::remove_all(path, ec);
  }
  std::string operator/(const std::string& name) const { return path + "/" + name; }
  std::string path;
};

/// Sets (or, with nullopt, removes) an environment variable for one scope.
class TScopedEnv {
 public:
  TScopedEnv(const char* name, std::optional<std::string> value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    Apply(value);
  }
  ~TScopedEnv() { Apply(old_); }
  TScopedEnv(const TScopedEnv&) = delete;
  TScopedEnv& operator=(const TScopedEnv&) = delete;

 private:
  void Apply(const std::optional<std::string>& value) {
    if (value)
      ::setenv(name_, value->c_str(), 1);
    else
      ::unsetenv(name_);
  }
  const char* name_;
  std::optional<std::string> old_;
};

inline std::string ReadText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

inline void WriteText(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

/// Compares `actual` with tests/settings/golden/<name> as one text, so a failure shows
/// all of it. With VELMORA_UPDATE_GOLDEN set the file is rewritten instead.
inline void ExpectGolden(const std::string& name, const std::string& actual) {
  const std::string path = std::string(VELMORA_TEST_DATA) + "/settings/golden/" + name;
  if (std::getenv("VELMORA_UPDATE_GOLDEN")) {
    WriteText(path, actual);
    return;
  }
  EXPECT_EQ(actual, ReadText(path)) << "golden file " << path;
}

}  // namespace velmora::test
