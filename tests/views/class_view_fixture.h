// One fixture for the class view tests: a model filled by the real parsers from snippets
// (re-parsed with the unit's mark and sweep, as a merge does) and a view over it.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "model/class_list.h"
#include "model/files.h"
#include "parsing/source_parser.h"
#include "settings/vl_settings.h"
#include "support/stream.h"
#include "views/class_view.h"
#include "views/class_view_text.h"

namespace velmora::testing {

/// Parses `text` as the unit `unitName` into `list` the way a merge updates the model:
/// the unit's objects are marked invalid, the parser finds them again in place, and what
/// stayed invalid is swept.
inline void Reparse(TClasslist& list, std::string_view unitName, std::string text) {
  std::string buffer;
  for (char c : text) {  // the parsers read buffer form
    if (c == '\n') buffer += '\r';
    buffer += c;
  }
  TMemoryStream stream(std::move(buffer));
  list.Mark(unitName, false);
  ParseSourceText(LanguageOfFile(unitName), unitName, stream, list, TParseOptions{}, nullptr);
  list.Sweep(false, unitName);
}

struct TViewFixture {
  TVLSettings Settings;
  TClasslist Project;
  TClasslist External;
  TFilesList Files;
  std::unique_ptr<TClassView> View = std::make_unique<TClassView>(Settings);

  void Show(std::string name = "Demo") {
    View->SetSources({.ProjectName = std::move(name),
                      .ProjectClasses = &Project,
                      .ExternalClasses = &External,
                      .ProjectFiles = &Files});
  }
  TClassViewNode& ProjectRoot() const {
    return View->Root(TClassView::pgClasses, TClassView::riProject);
  }
  /// The node of the project's top-level class `name`, or null.
  TClassViewNode* ClassNode(std::string_view name) const {
    const TClassDescription* cls = Project.Find(name);
    return cls ? View->NodeOf(*cls) : nullptr;
  }
  static std::vector<std::string> Texts(const TClassViewNode& node) {
    std::vector<std::string> texts;
    for (const auto& child : node.Children) texts.push_back(child->Text);
    return texts;
  }
};

}  // namespace velmora::testing
