// The C++ tokenizer on any bytes, as `velmora tokens` reads a file: exactly as on disk.
#include "fuzz_support.h"
#include "parsing/cpp_tokenizer.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  velmora::TCPPTokenizer tokenizer;
  velmora::fuzz::CheckTokenizer(tokenizer, velmora::fuzz::AsText(data, size), true);
  return 0;
}
