#include "ide/addin_experts.h"

#include <exception>
#include <utility>

namespace velmora {
namespace {

// The experts of the host whose Load is running: the registration procedure is a plain
// function, as a library's entry point gets it, so it finds its host's list here.
thread_local std::vector<TIExpert*>* loadingExperts = nullptr;

bool RegisterExpert(TIExpert* expert) {
  if (!loadingExperts || !expert) return false;
  loadingExperts->push_back(expert);
  return true;
}

}  // namespace

bool TAddInExperts::Load(TIToolServices* services, TExpertInitProc entry,
                         const std::function<void(const std::string&)>& report) {
  TExpertTerminateProc terminate = nullptr;
  std::vector<TIExpert*>* outerExperts = std::exchange(loadingExperts, &experts_);
  bool result = false;
  try {
    result = entry(services, &RegisterExpert, &terminate);
  } catch (const std::exception& e) {
    report(e.what());
  }
  loadingExperts = outerExperts;
  if (terminate) terminates_.push_back(terminate);
  return result;
}

void TAddInExperts::Unload() {
  while (!experts_.empty()) {
    TIExpert* expert = experts_.back();
    experts_.pop_back();
    expert->Release();
  }
  for (TExpertTerminateProc terminate : terminates_) terminate();
  terminates_.clear();
}

}  // namespace velmora
