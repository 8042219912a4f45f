// What the browsing commands print: the class view as readable text or as JSON, the
// class hierarchy, and the matches of a search, all from an open session's model.
//
// The readable tree, one node a line, two spaces a level:
//   KilnLog - Classes
//     class TFormMain : TForm  examples/KilnLog/MainForm.h:15
//       field published TMainMenu * MainMenu  examples/KilnLog/MainForm.h:18
//       method public void Draw(TCanvas* Canvas) [virtual const]  examples/KilnLog/MainForm.h:60
//   External Classes
// A part a node does not have (ancestors, visibility, directives, place) is left out.
#pragma once

#include <string>
#include <string_view>

#include "views/class_view.h"

namespace velmora::app {

class TBrowseSession;

/// Turns a file name of the model into a path relative to the current folder.
class TPathNamer {
 public:
  explicit TPathNamer(TBrowseSession& session);
  /// The file's full name (absolute), or "" when the model holds no file of that name.
  std::string FullPath(std::string_view unitName) const;
  /// The file's path relative to the current folder, or the name as given.
  std::string Relative(std::string_view unitName) const;

 private:
  TBrowseSession& session_;
  std::string cwd_;
};

/// The version of the JSON the commands print; raised when a key changes meaning or goes.
inline constexpr int kJsonFormatVersion = 1;

/// The whole expanded class page as text (see above).
std::string RenderTreeText(const TClassView& view, const TPathNamer& paths);
/// The same as JSON: {"format": "velmora-class-view", "version": 1, "project": {...},
/// "roots": [{"name", "classes", "domains", "routines"}...]}.
std::string RenderTreeJson(const TClassView& view, const TPathNamer& paths,
                           TBrowseSession& session);

/// The project's classes under their direct ancestors; with `className`, only that class's
/// ancestor chain and its descendants. Returns false when that class is not in the model.
bool RenderHierarchy(TBrowseSession& session, const TPathNamer& paths, std::string_view className,
                     std::string& out);

struct TFindOptions {
  bool MatchCase = false;
  bool WholeWord = false;  ///< the name must equal the text, not merely contain it
};
/// One line per class, field, property, method and routine whose name matches; returns the
/// number of matches.
int RenderFind(TBrowseSession& session, const TPathNamer& paths, std::string_view text,
               const TFindOptions& options, std::string& out);

}  // namespace velmora::app
