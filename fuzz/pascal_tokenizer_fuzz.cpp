// The Pascal tokenizer on any bytes, as `velmora tokens` reads a file: exactly as on disk.
#include "fuzz_support.h"
#include "parsing/pascal_tokenizer.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  velmora::TPascalTokenizer tokenizer;
  velmora::fuzz::CheckTokenizer(tokenizer, velmora::fuzz::AsText(data, size), false);
  return 0;
}
