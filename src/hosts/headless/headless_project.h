// Opening a project file in the headless IDE: the file is read by the project readers
// (any kind they know: C++Builder, Delphi, Lazarus, a folder) and its units handed to the
// IDE, which tells the add-in that a project opened.
//
// Main thread only, as the IDE is.
#pragma once

#include <functional>
#include <string>

#include "projects/project.h"

namespace velmora {

class THeadlessIDE;

/// Reads the project at `path`, calls `beforeOpen` with it (where a host hands the
/// project's include path to the add-in's manager, before the add-in hears of the
/// project), then opens it in `ide` with the units' source files in project order (their
/// headers are reached through the sources' includes). Returns the project read. Throws
/// EProjectError, leaving the IDE as it was, when the project cannot be read.
TProject OpenProjectFile(THeadlessIDE& ide, const std::string& path,
                         const std::function<void(const TProject&)>& beforeOpen = {});

}  // namespace velmora
