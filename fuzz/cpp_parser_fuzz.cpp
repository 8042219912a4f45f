// The C++ file parser on any bytes.
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  velmora::fuzz::ParseAndCheck(velmora::TLanguage::Cpp, "Fuzz.h", data, size);
  return 0;
}
