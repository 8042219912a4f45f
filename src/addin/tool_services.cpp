#include "addin/tool_services.h"

namespace velmora {

TIToolServices* ToolServices = nullptr;

}  // namespace velmora
