// The ini text reader on any bytes, and the project settings read from the document it
// gives. Reading is total, so every input must give a document whose text reads back as
// the same document, and settings whose own text loads back to the same settings.
#include "fuzz_support.h"
#include "settings/ini_file.h"
#include "settings/project_settings.h"

using namespace velmora;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text = fuzz::AsText(data, size);
  const TIniFile document = TIniFile::Parse(text);
  const std::string written = document.Text();
  VELMORA_FUZZ_CHECK(TIniFile::Parse(written).Text() == written);
  for (int s = 0; s < document.SectionCount(); ++s)
    for (const TIniFile::Entry& entry : document.Sections(s).Entries) {
      VELMORA_FUZZ_CHECK(DecodeIniValue(EncodeIniValue(entry.Value)) == entry.Value);
      const std::string* found = document.Find(document.Sections(s).Name, entry.Key);
      VELMORA_FUZZ_CHECK(found && *found == entry.Value);
    }

  TCurrentProjectSettings settings;
  settings.LoadFromText(text);
  TCurrentProjectSettings again;
  again.LoadFromText(settings.Text());
  VELMORA_FUZZ_CHECK(again == settings);
  return 0;
}
