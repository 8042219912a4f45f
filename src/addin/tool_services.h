// The IDE's tool services as the add-in keeps them: set by the entry point, read by
// everything that talks to the IDE. nullptr while no IDE has loaded the add-in (the
// functions that need it then return their "nothing" value).
#pragma once

namespace velmora {

class TIToolServices;

/// Main thread only.
extern TIToolServices* ToolServices;

}  // namespace velmora
