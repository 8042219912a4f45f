// The parameter text parser (the text between a declaration's brackets) on any bytes. The
// first byte picks the language, the rest is the text.
#include "fuzz_support.h"
#include "model/parameters.h"
#include "support/stream.h"

using namespace velmora;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const TLanguage language = data[0] & 1 ? TLanguage::Cpp : TLanguage::Pascal;
  TParameterList list(language);
  list.Parse(std::string_view(reinterpret_cast<const char*>(data + 1), size - 1));
  (void)list.GetText();
  (void)list.GetText(toNamesOnly);
  VELMORA_FUZZ_CHECK(list.SameAs(list));
  for (const TParameter& p : list.Items) {
    const std::string type = NormalizeTypeText(p.ParamType);
    VELMORA_FUZZ_CHECK(NormalizeTypeText(type) == type);
  }

  TMemoryStream saved;
  list.SaveToStream(saved);
  saved.Seek(0);
  TParameterList loaded(language);
  loaded.LoadFromStream(saved);
  VELMORA_FUZZ_CHECK(loaded.Items == list.Items);
  VELMORA_FUZZ_CHECK(saved.Remaining() == 0);
  return 0;
}
