// `velmora-ide --screenshot FILE [PROJECT]`: a picture of the IDE at work on a project,
// for the documentation and for a look at the widgets without a display.
#pragma once

#include <QString>

namespace velmora {

class TQtIDE;

/// Once the event loop runs: waits until the project's parse is done, shows a class of
/// it in the class view and its declaration in the editor, writes a PNG of the main
/// window to `fileName` and quits the event loop with 0 (1 when the picture cannot be
/// written).
void TakeScreenshotWhenReady(TQtIDE& ide, const QString& fileName);

}  // namespace velmora
