#include "ide/tool_services_base.h"

namespace velmora {

bool TToolServicesBase::LoadAddIn(TExpertInitProc entry) {
  return experts_.Load(this, entry, [this](const std::string& m) { ReportException(m); });
}

void TToolServicesBase::Broadcast(TFileNotification code, const std::string& fileName) {
  notifiers_.Broadcast(code, fileName, [this](const std::string& m) { ReportException(m); });
}

}  // namespace velmora
