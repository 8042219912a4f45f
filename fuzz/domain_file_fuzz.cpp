// The domain information file loader on any bytes. The loader reads from a path, so each
// input is written to one scratch file first. The domains are linked to a small class
// list whose names the seeds use, so linking has classes to find.
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "fuzz_support.h"
#include "model/class_info_file.h"
#include "model/class_list.h"
#include "support/stream.h"

using namespace velmora;

namespace {

// Made once, rewritten for every input, removed when the run ends. In memory when the
// machine has /dev/shm: rewriting a file on disk thousands of times a second makes the
// file system, not the loader, the thing being measured.
struct TScratchFile {
  TScratchFile() {
    const char* tmp = std::getenv("TMPDIR");
    for (std::string dir : {std::string("/dev/shm"), std::string(tmp && *tmp ? tmp : "/tmp")}) {
      path = dir + "/velmora-domain-fuzz.XXXXXX";
      const int fd = ::mkstemp(path.data());
      if (fd < 0) continue;
      ::close(fd);
      return;
    }
    VELMORA_FUZZ_CHECK(!"no folder for the scratch file");
  }
  ~TScratchFile() { ::unlink(path.c_str()); }
  std::string path;
};

void AddClasses(TClasslist& classes) {
  for (const char* name : {"TClass0", "TClass1", "TClass2", "TClass3", "tclass0"})
    classes.FindOrAdd(name, TLanguage::Cpp);
}

std::string SavedDomains(const TClasslist& classes) {
  TMemoryStream stream;
  classes.Domains.SaveToStream(stream, false);
  return std::move(stream.Data());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const TScratchFile scratch;
  const std::string& path = scratch.path;
  TFileStream(path, TFileStream::Mode::Create).Write(data, size);

  TClasslist classes;
  AddClasses(classes);
  const TModelFileOutcome outcome = LoadDomainFileReported(path, "Fuzz", classes.Domains);
  const std::string saved = SavedDomains(classes);
  if (!outcome.Ok) return 0;

  TClasslist again;
  AddClasses(again);
  TMemoryStream stream(saved);
  again.Domains.LoadFromStream(stream, false);
  again.Domains.LinkClasses();
  VELMORA_FUZZ_CHECK(SavedDomains(again) == saved);
  return 0;
}
