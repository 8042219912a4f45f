// Built into the add-in's shared library only. Loading the library installs the manager
// factory, so the expert its entry point makes runs with a manager as in every host.
#include "addin/plugin/addin_plugin.h"

#include "addin/vl_manager.h"
#include "model/representation.h"

namespace {

const bool managerInstalled = (velmora::InstallVLManager(), true);

}  // namespace

extern "C" velmora::TVLManager* VelmoraAddInManager() {
  (void)managerInstalled;
  return velmora::TVLManager::Instance();
}

extern "C" velmora::TRepresentationManager* VelmoraAddInRepresentations() {
  return &velmora::RepresentationManager();
}
