#include "settings/help_export_config.h"

#include "settings/ini_file.h"
#include "settings/registry_ini_store.h"
#include "settings/settings_paths.h"
#include "support/stream.h"

namespace velmora {
namespace {

constexpr char kSection[] = "Help Generator";

void ReadBool(const TIniFile& ini, const char* key, bool& value) {
  if (const std::string* text = ini.Find(kSection, key)) ParseStoredBool(*text, value);
}

void ReadString(const TIniFile& ini, const char* key, std::string& value) {
  if (const std::string* text = ini.Find(kSection, key)) value = *text;
}

}  // namespace

std::string THelpExportConfiguration::Text() const {
  TIniFile ini;
  ini.Header = {"; Velmora Help Export Configuration", ";", "; This file is maintained by the",
                "; Velmora Help Generator", "; Do not edit it manually"};
  ini.BlankLineBetweenSections = false;
  const auto flag = [](bool b) { return b ? "1" : "0"; };
  ini.WriteString(kSection, "HelpTitle", HelpTitle);
  ini.WriteString(kSection, "Configfile", Configfile);
  ini.WriteString(kSection, "Outputfile", Outputfile);
  ini.WriteString(kSection, "ExtraTexts", ExtraTexts);
  ini.WriteString(kSection, "UseExtraTexts", flag(UseExtraTexts));
  ini.WriteString(kSection, "HelpCompiler", HelpCompiler);
  ini.WriteString(kSection, "HelpProject", HelpProject);
  ini.WriteString(kSection, "Compile", flag(Compile));
  ini.WriteString(kSection, "DontCompress", flag(DontCompress));
  ini.WriteString(kSection, "UseProject", flag(UseProject));
  ini.WriteString(kSection, "StartHelp", flag(StartHelp));
  return ini.Text();
}

void THelpExportConfiguration::LoadFromText(std::string_view text) {
  const TIniFile ini = TIniFile::Parse(text);
  ReadString(ini, "HelpTitle", HelpTitle);
  ReadString(ini, "Configfile", Configfile);
  ReadString(ini, "Outputfile", Outputfile);
  ReadString(ini, "ExtraTexts", ExtraTexts);
  ReadBool(ini, "UseExtraTexts", UseExtraTexts);
  ReadString(ini, "HelpCompiler", HelpCompiler);
  ReadString(ini, "HelpProject", HelpProject);
  ReadBool(ini, "DontCompress", DontCompress);
  ReadBool(ini, "UseProject", UseProject);
  ReadBool(ini, "Compile", Compile);
  ReadBool(ini, "StartHelp", StartHelp);
}

void THelpExportConfiguration::LoadFromFile(const std::string& fileName) {
  std::string text;
  try {
    text = ReadWholeFile(fileName);
  } catch (const Exception& e) {
    throw EExportCFGError(FormatText(kHelpExportLoadError, {fileName, e.Message()}));
  }
  Clear();
  LoadFromText(text);
}

void THelpExportConfiguration::SaveToFile(const std::string& fileName) const {
  try {
    WriteFileAtomically(fileName, Text());
  } catch (const Exception& e) {
    throw EExportCFGError(FormatText(kHelpExportSaveError, {fileName, e.Message()}));
  }
}

}  // namespace velmora
