// The class information loader on any bytes, followed by what `velmora dump --load` does
// with the model: describe it. A rejected file must still leave a model that can be
// described and saved; an accepted one must save to bytes that load back to the same
// model.
#include "fuzz_support.h"
#include "model/class_list.h"
#include "model/files.h"
#include "model/hierarchy.h"
#include "model/model_text.h"

using namespace velmora;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  TFilesList files;
  TClasslist classes;
  const bool ok = fuzz::LoadModel(fuzz::AsText(data, size), files, classes);
  (void)DescribeModel(classes);
  TBaseHierarchy hierarchy;
  hierarchy.BuildFromClasses(classes);
  hierarchy.Sort();
  const std::string saved = fuzz::SavedModel(files, classes);
  if (!ok) return 0;

  TFilesList againFiles;
  TClasslist again;
  VELMORA_FUZZ_CHECK(fuzz::LoadModel(saved, againFiles, again));
  VELMORA_FUZZ_CHECK(fuzz::SavedModel(againFiles, again) == saved);
  return 0;
}
