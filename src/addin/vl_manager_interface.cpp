#include "addin/vl_manager_interface.h"

namespace velmora {
namespace {

TVLManagerFactory& Factory() {
  static TVLManagerFactory factory;
  return factory;
}

}  // namespace

void SetManagerFactory(TVLManagerFactory factory) {
  Factory() = std::move(factory);
}

std::unique_ptr<TVLManagerInterface> CreateManager() {
  return Factory() ? Factory()() : nullptr;
}

}  // namespace velmora
