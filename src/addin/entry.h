// The add-in's entry point, called once by the IDE that loads it.
#pragma once

#include "ide/expert.h"

namespace velmora {
class TClassBrowserExpert;
/// The expert the entry point made; nullptr before and after the add-in's life.
extern TClassBrowserExpert* ClassBrowserExpert;
}  // namespace velmora

/// Keeps the IDE's tool services, makes the expert and registers it. Whatever fails is
/// reported through the IDE; the result is always true.
extern "C" bool INITEXPERT0017(velmora::TIToolServices* toolServices,
                               velmora::TExpertRegisterProc registerProc,
                               velmora::TExpertTerminateProc* terminate);
