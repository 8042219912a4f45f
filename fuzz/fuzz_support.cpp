#include "fuzz_support.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "model/class_list.h"
#include "model/files.h"
#include "parsing/cpp_tokenizer.h"
#include "parsing/pascal_tokenizer.h"
#include "parsing/source_parser.h"
#include "support/exception.h"
#include "support/stream.h"
#include "support/stringlist.h"
#include "support/text_buffer.h"

namespace velmora::fuzz {

void Fail(const char* what, const char* file, int line) {
  std::fprintf(stderr, "fuzz check failed: %s (%s:%d)\n", what, file, line);
  std::abort();
}

void CheckTokenizer(TTokenizer& t, const std::string& text, bool cpp) {
  t.SetText(text.c_str(), static_cast<int32_t>(text.size()));
  const int32_t last = t.LastIndex();
  const int32_t nul = static_cast<int32_t>(std::strlen(text.c_str()));
  VELMORA_FUZZ_CHECK(last >= 0);
  VELMORA_FUZZ_CHECK(t.Offsets().Count() == t.Kinds().Count());
  VELMORA_FUZZ_CHECK(t.TokenOffset(0) == 0);
  VELMORA_FUZZ_CHECK(t.TokenOffset(last) == nul);
  VELMORA_FUZZ_CHECK(t.Kinds().Get(last) == 0);

  int32_t line = 1;  // counted here on its own: LF, or CR not followed by LF
  int32_t counted = 0;
  for (int32_t i = 0; i < last; ++i) {
    const int32_t offset = t.TokenOffset(i);
    VELMORA_FUZZ_CHECK(offset < t.TokenOffset(i + 1));
    for (; counted < offset; ++counted)
      if (text[counted] == '\n' || (text[counted] == '\r' && text[counted + 1] != '\n')) ++line;
    VELMORA_FUZZ_CHECK(t.LineOfToken(i) == line);
    const int kind = t.Kinds().Get(i);
    VELMORA_FUZZ_CHECK(kind != 0);
    VELMORA_FUZZ_CHECK((cpp ? CppTokenKindName(kind) : PascalTokenKindName(kind)) != "unused");
    VELMORA_FUZZ_CHECK(t.IndexOfOffset(offset) == i);
    VELMORA_FUZZ_CHECK(t.TokenView(i).size() == size_t(t.TokenOffset(i + 1) - offset));
  }

  // Every skip moves at least one token and stops at the ends; a walk that did not would
  // be a parser's endless loop.
  for (int skip = 0; skip < 2; ++skip) {
    t.SetIndex(0);
    int32_t steps = 0;
    for (int32_t before = 0;; before = t.Index()) {
      const int kind = skip == 0 ? t.NextSignificant() : t.NextSkipComments();
      if (kind == 0) break;
      VELMORA_FUZZ_CHECK(t.Index() > before);
      VELMORA_FUZZ_CHECK(++steps <= last);
    }
    VELMORA_FUZZ_CHECK(t.Index() == last);
  }
  for (int32_t before = t.Index(); t.Index() > 0; before = t.Index()) {
    t.PrevSignificant();
    VELMORA_FUZZ_CHECK(t.Index() < before);
  }
}

std::string SavedModel(const TFilesList& files, const TClasslist& classes) {
  TMemoryStream stream;
  files.SaveToStream(stream);
  classes.SaveToStream(stream);
  return std::move(stream.Data());
}

bool LoadModel(const std::string& bytes, TFilesList& files, TClasslist& classes) {
  TMemoryStream stream(bytes);
  try {
    files.LoadFromStream(stream);
    classes.LoadFromStream(stream);
    return true;
  } catch (const Exception&) {
    return false;
  }
}

void ParseAndCheck(TLanguage language, std::string_view unitName, const uint8_t* data,
                   size_t size) {
  const TMemoryStream text(
      ToBufferForm(std::string_view(reinterpret_cast<const char*>(data), size)));
  const TParseOptions options{.WantPositions = true};
  TFilesList files;
  TClasslist classes;
  TStringList includes(true, TDuplicates::Ignore, false);
  ParseSourceText(language, unitName, text, classes, options, &includes);
  const std::string parsed = SavedModel(files, classes);

  classes.Mark(unitName, false);
  ParseSourceText(language, unitName, text, classes, options, nullptr);
  classes.Sweep(false, unitName);
  VELMORA_FUZZ_CHECK(SavedModel(files, classes) == parsed);

  TFilesList loadedFiles;
  TClasslist loaded;
  VELMORA_FUZZ_CHECK(LoadModel(parsed, loadedFiles, loaded));
  VELMORA_FUZZ_CHECK(SavedModel(loadedFiles, loaded) == parsed);
}

}  // namespace velmora::fuzz
