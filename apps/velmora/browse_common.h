// What every browsing command (tree, hierarchy, find, files, watch) does first: find the
// project (the bundled example when none is named), open it with a progress bar on a
// terminal, tell whether the open was warm, and save the model when it changed.
#pragma once

#include <memory>
#include <string>

#include "browse_session.h"

namespace velmora::app {

/// Opens the project; TCommandError (failed) when it is missing or unreadable, before
/// anything is written.
std::unique_ptr<TBrowseSession> OpenBrowseSession(const std::string& projectArg);
/// Saves the class information when this run parsed anything; false when the save failed
/// (the message is printed).
bool SaveWhenChanged(TBrowseSession& session);
/// `path` relative to the current folder (as given when that fails).
std::string RelativeToCurrent(const std::string& path);
/// Prints a message line the way every command does: "velmora: " and the text.
void PrintMessage(const std::string& line);

}  // namespace velmora::app
