// What the fuzz targets share: a check whose failure is a finding just like a crash, the
// invariants of a tokenizer's lists and cursor, and a model turned into the bytes of its
// class information file (so two models compare as their files do).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "model/code_object.h"

namespace velmora {

class TClasslist;
class TFilesList;
class TTokenizer;

namespace fuzz {

/// Prints what failed and aborts, so libFuzzer keeps the input as a crash.
[[noreturn]] void Fail(const char* what, const char* file, int line);

#define VELMORA_FUZZ_CHECK(condition) \
  ((condition) ? (void)0 : ::velmora::fuzz::Fail(#condition, __FILE__, __LINE__))

/// The fuzzer's bytes as a string; std::string keeps a NUL after them, which is the NUL
/// the tokenizers and parsers stop at.
inline std::string AsText(const uint8_t* data, size_t size) {
  return std::string(reinterpret_cast<const char*>(data), size);
}

/// Tokenizes `text` and checks the lists (offsets rising from 0 to the first NUL, one
/// end entry, every kind a named one, line numbers as counted from the text) and the
/// cursor (each skip moves and ends, forwards and backwards).
void CheckTokenizer(TTokenizer& tokenizer, const std::string& text, bool cpp);

/// The bytes loaded as a source file is (buffer form) and parsed as the unit `unitName`
/// into a class list; then a re-parse between a mark and a sweep, as the parser threads
/// refresh a unit, must change nothing, and the model must come back unchanged from its
/// saved form.
void ParseAndCheck(TLanguage language, std::string_view unitName, const uint8_t* data, size_t size);

/// The class information file `files` and `classes` would be saved as.
std::string SavedModel(const TFilesList& files, const TClasslist& classes);

/// Loads class information bytes into the two lists; false (the lists holding what was
/// read) when the bytes are rejected with one of the loader's exceptions.
bool LoadModel(const std::string& bytes, TFilesList& files, TClasslist& classes);

}  // namespace fuzz
}  // namespace velmora
