#include "settings/project_settings.h"

#include "settings/ini_file.h"
#include "settings/registry_ini_store.h"
#include "settings/settings_paths.h"
#include "support/ansi.h"
#include "support/exception.h"
#include "support/paths.h"
#include "support/stream.h"

namespace velmora {
namespace {

constexpr char kGeneral[] = "General";
constexpr char kClassView[] = "Window Settings\\ClassView";
constexpr char kContextBar[] = "Window Settings\\ContextBar";
constexpr char kClassHierarchy[] = "Window Settings\\ClassHierarchy";
constexpr char kBrowseHistoryWindow[] = "Window Settings\\BrowseHistory";
constexpr char kExclude[] = "Exclude From Parsing";
constexpr char kBrowseHistory[] = "Browse History";
constexpr char kClassFilters[] = "Class Filters";

constexpr char kStars[] = ";*******************************************";

// Typed access to one document, in both directions, so that the reader and the writer
// name each key once.
class TProjectIni {
 public:
  explicit TProjectIni(TIniFile& ini, bool writing) : ini_(ini), writing_(writing) {}

  void Bool(const char* section, const char* key, bool& value) {
    if (writing_)
      ini_.WriteString(section, key, value ? "1" : "0");
    else if (const std::string* text = ini_.Find(section, key))
      ParseStoredBool(*text, value);
  }

  void Integer(const char* section, const char* key, int32_t& value) {
    if (writing_)
      ini_.WriteString(section, key, std::to_string(value));
    else if (const std::string* text = ini_.Find(section, key))
      ParseStoredInteger(*text, value);
  }

  void Window(const char* section, TProjectWindowSettings& w) {
    Bool(section, "Statesaved", w.Statesaved);
    Bool(section, "Visible", w.Visible);
    Bool(section, "Docked", w.Docked);
    Integer(section, "Left", w.Left);
    Integer(section, "Top", w.Top);
    Integer(section, "Width", w.Width);
    Integer(section, "Height", w.Height);
  }

  // "Count", then `item` + index from 0. Reading stops at the first missing entry, so a
  // damaged count can neither invent entries nor make a long loop.
  void List(const char* section, const char* item, std::vector<std::string>& list) {
    if (writing_) {
      ini_.WriteString(section, "Count", std::to_string(list.size()));
      for (size_t i = 0; i < list.size(); ++i)
        ini_.WriteString(section, item + std::to_string(i), list[i]);
      return;
    }
    int32_t count = 0;
    if (const std::string* text = ini_.Find(section, "Count")) ParseStoredInteger(*text, count);
    list.clear();
    for (int32_t i = 0; i < count; ++i) {
      const std::string* value = ini_.Find(section, item + std::to_string(i));
      if (!value) break;
      list.push_back(*value);
    }
  }

  void Comment(const char* section, std::vector<std::string> lines) {
    if (writing_) ini_.AddSection(section).Leading = std::move(lines);
  }

 private:
  TIniFile& ini_;
  bool writing_;
};

// The one description of the file, used for reading and for writing.
void Transfer(TProjectIni& io, TCurrentProjectSettings& s) {
  io.Comment(kGeneral, {"; General Project Options"});
  io.Bool(kGeneral, "UseProjectExternals", s.UseProjectExternals);
  io.Bool(kGeneral, "SynchronizeContextBar", s.SynchronizeContextBar);
  io.Integer(kGeneral, "SynchronizeContextBarSpeed", s.SynchronizeContextBarSpeed);
  io.Bool(kGeneral, "SynchronizeContextBarModeIdle", s.SynchronizeContextBarModeIdle);
  io.Integer(kGeneral, "ClassViewActivePage", s.ClassViewActivePage);
  io.Integer(kGeneral, "ClassHierarchyTreeWidth", s.ClassHierarchyTreeWidth);
  io.Integer(kGeneral, "ClassHierarchyListHeight", s.ClassHierarchyListHeight);

  io.Comment(kClassView, {"; Window Settings"});
  io.Window(kClassView, s.ClassViewWindow);
  io.Window(kContextBar, s.ContextBarWindow);
  io.Window(kClassHierarchy, s.ClassHierarchyWindow);
  io.Window(kBrowseHistoryWindow, s.BrowseHistoryWindow);

  io.Comment(kExclude, {"; Files excluded from parsing"});
  io.List(kExclude, "File", s.ExcludedFiles);

  io.Comment(kBrowseHistory, {"; Browse History"});
  io.List(kBrowseHistory, "Item", s.BrowseHistory);

  io.Comment(kClassFilters, {"; Class Filter Settings"});
  io.List(kClassFilters, "Name", s.ClassFilters);
}

}  // namespace

std::string TCurrentProjectSettings::SettingsFileName(std::string_view projectFile) {
  const std::string_view ext = ExtractFileExt(projectFile);
  return std::string(projectFile.substr(0, projectFile.size() - ext.size())) + ".vlsettings";
}

bool TCurrentProjectSettings::IsExcluded(std::string_view fileName) const {
  for (const std::string& excluded : ExcludedFiles)
    if (SameText(excluded, fileName)) return true;
  return false;
}

std::string TCurrentProjectSettings::Text() const {
  TIniFile ini;
  ini.Header = {kStars,
                ";           Velmora Settings File",
                "; This file is maintained by Velmora",
                "; All project dependend Velmora",
                "; settings are saved in this file",
                ";",
                "; DO NOT CHANGE THIS FILE MANUALLY!",
                kStars};
  TProjectIni io(ini, true);
  TCurrentProjectSettings values = *this;  // Transfer takes them by reference both ways
  Transfer(io, values);
  return ini.Text();
}

void TCurrentProjectSettings::LoadFromText(std::string_view text) {
  Clear();
  TIniFile ini = TIniFile::Parse(text);
  TProjectIni io(ini, false);
  Transfer(io, *this);
}

bool TCurrentProjectSettings::Load(const std::string& projectFile, std::string* message) {
  Clear();
  const std::string fileName = SettingsFileName(projectFile);
  if (!FileExists(fileName) && !DirectoryExists(fileName)) return true;
  try {
    LoadFromText(ReadWholeFile(fileName));
    return true;
  } catch (const Exception& e) {
    if (message) *message = FormatText(kProjectSettingsLoadError, {projectFile, e.Message()});
    return false;
  }
}

bool TCurrentProjectSettings::Save(const std::string& projectFile, std::string* message) const {
  try {
    WriteFileAtomically(SettingsFileName(projectFile), Text());
    return true;
  } catch (const Exception& e) {
    if (message) *message = FormatText(kProjectSettingsSaveError, {projectFile, e.Message()});
    return false;
  }
}

}  // namespace velmora
