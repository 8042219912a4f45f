#include "addin/entry.h"

#include <exception>

#include "addin/class_browser_expert.h"
#include "addin/tool_services.h"
#include "ide/tool_services.h"

namespace velmora {

TClassBrowserExpert* ClassBrowserExpert = nullptr;

namespace {

// All cleanup is in the expert's destructor, which runs when the IDE releases it.
void Terminate() {}

}  // namespace
}  // namespace velmora

extern "C" bool INITEXPERT0017(velmora::TIToolServices* toolServices,
                               velmora::TExpertRegisterProc registerProc,
                               velmora::TExpertTerminateProc* terminate) {
  using namespace velmora;
  try {
    ToolServices = toolServices;
    ClassBrowserExpert = new TClassBrowserExpert();
    if (terminate) *terminate = &Terminate;
    if (registerProc) registerProc(ClassBrowserExpert);
  } catch (const std::exception& e) {
    if (toolServices) toolServices->ReportException(e.what());
  } catch (...) {
    if (toolServices) toolServices->ReportException("Unknown error");
  }
  return true;
}
