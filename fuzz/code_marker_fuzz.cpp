// The code marker reader, the marker finder and the template engine on any bytes. The
// bytes are read as one comment, then as a file of both languages whose markers are
// walked, then split at NULs into a template and name/value pairs for the builder (which
// must end whatever the values hold), and into the line-continuation joiner.
#include <algorithm>
#include <vector>

#include "codegen/code_builder.h"
#include "codegen/code_markers.h"
#include "codegen/marker_position_finder.h"
#include "fuzz_support.h"
#include "support/ansi.h"
#include "support/text_buffer.h"

using namespace velmora;

namespace {

void CheckClassify(const std::string& bytes) {
  const TMarkerClass marker = ClassifyComment(bytes);
  VELMORA_FUZZ_CHECK(marker.Kind >= mkNone && marker.Kind <= mkDescInclude);
  if (!MarkerHasArgument(marker.Kind)) VELMORA_FUZZ_CHECK(marker.Argument.empty());
  VELMORA_FUZZ_CHECK(Trim(marker.Argument) == marker.Argument);

  // Any trimmed argument comes back from a marker written with it, in every style.
  const std::string argument(Trim(bytes.substr(0, 24)));
  for (int kind = mkInsertEnd; kind <= mkDescInclude; ++kind) {
    for (int style = mcsPascalLine; style <= mcsCppBlock; ++style) {
      const TMarkerClass back = ClassifyComment(MarkerText(kind, style, argument));
      VELMORA_FUZZ_CHECK(back.Kind == kind);
      if (MarkerHasArgument(kind)) VELMORA_FUZZ_CHECK(back.Argument == argument);
    }
  }
}

void CheckFinder(const std::string& text, TLanguage language) {
  TMarkerPositionFinder finder(language, text);
  int32_t last = 0;
  int count = 0;
  for (TMarker m = finder.NextMarker(); m.Line != -1; m = finder.NextMarker()) {
    VELMORA_FUZZ_CHECK(m.Kind != mkNone && m.Line >= last);
    last = m.Line;
    if (++count == 1) {
      VELMORA_FUZZ_CHECK(TMarkerPositionFinder::FindMarker(language, text, m.Kind) == m.Line);
    }
  }
  const int32_t line =
      TMarkerPositionFinder::FindMethodImplementationLine(language, text, "TFoo", "Bar", true);
  VELMORA_FUZZ_CHECK(line == -1 || line >= 1);
}

void CheckBuilder(const std::string& bytes) {
  std::vector<std::string> parts;
  size_t start = 0;
  for (;;) {
    const size_t nul = bytes.find('\0', start);
    // Short parts and three parameters at most: a value may hold the next parameter's
    // placeholder many times over, and each parameter multiplies the text by its value.
    parts.push_back(bytes.substr(start, std::min<size_t>(nul - start, 64)));
    if (nul == std::string::npos || parts.size() == 7) break;
    start = nul + 1;
  }
  TCodeBuilder builder(parts[0], TLanguage::Cpp);
  for (size_t i = 1; i + 1 < parts.size(); i += 2) builder.SetParam(parts[i], parts[i + 1]);
  (void)builder.Text();

  const std::string joined = JoinContinuedLines(bytes);
  VELMORA_FUZZ_CHECK(joined.size() <= bytes.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string bytes = fuzz::AsText(data, size);
  CheckClassify(bytes);
  const std::string text = ToBufferForm(bytes);
  CheckFinder(text, TLanguage::Cpp);
  CheckFinder(text, TLanguage::Pascal);
  CheckBuilder(bytes);
  return 0;
}
