// The Pascal file parser on any bytes.
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  velmora::fuzz::ParseAndCheck(velmora::TLanguage::Pascal, "Fuzz.pas", data, size);
  return 0;
}
