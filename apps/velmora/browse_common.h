// What every browsing command (tree, hierarchy, find, files, watch) does first: find the
// project (the bundled example when none is named), open it with a progress bar on a
// terminal, and tell whether the open was warm.
#pragma once

#include <memory>
#include <string>

#include "browse_session.h"

namespace velmora::app {

/// Opens the project; TCommandError (failed) when it is missing or unreadable, before
/// anything is written.
std::unique_ptr<TBrowseSession> OpenBrowseSession(const std::string& projectArg);
/// `path` relative to the current folder (as given when that fails).
std::string RelativeToCurrent(const std::string& path);
/// Saves the class information now unless the open parsed nothing; false when the save
/// failed (the message is printed). The session also saves when it ends; this is for a
/// command that wants the failure before it goes on.
bool SaveWhenChanged(TBrowseSession& session);
/// Prints a message line the way every command does: "velmora: " and the text.
void PrintMessage(const std::string& line);

}  // namespace velmora::app
