// Replays inputs through a fuzz target's entry point without libFuzzer, so the ordinary
// build's ctest runs every input kept under fuzz/corpus/TARGET/ on every change. Each
// argument is a file or a folder (every regular file in it, in name order). A failed
// check aborts as it does under the fuzzer; the name of the input being run is printed
// first, so the test's output says which one it was.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> Inputs(const fs::path& where) {
  std::vector<fs::path> files;
  if (fs::is_directory(where)) {
    for (const auto& entry : fs::directory_iterator(where))
      if (entry.is_regular_file()) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
  } else {
    files.push_back(where);
  }
  return files;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: %s FILE-OR-FOLDER...\n", argv[0]);
    return 2;
  }
  int replayed = 0;
  for (int i = 1; i < argc; ++i) {
    std::error_code ec;
    if (!fs::exists(argv[i], ec)) {
      std::fprintf(stderr, "%s: no such file or folder\n", argv[i]);
      return 1;
    }
    for (const fs::path& file : Inputs(argv[i])) {
      std::ifstream in(file, std::ios::binary);
      if (!in) {
        std::fprintf(stderr, "%s: cannot be read\n", file.c_str());
        return 1;
      }
      const std::string bytes((std::istreambuf_iterator<char>(in)),
                              std::istreambuf_iterator<char>());
      std::printf("%s\n", file.c_str());
      std::fflush(stdout);
      LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
      ++replayed;
    }
  }
  std::printf("%d input(s) replayed\n", replayed);
  return 0;
}
