#include "settings/vl_settings.h"

#include <algorithm>

#include "model/filters.h"
#include "model/settings_store.h"
#include "settings/help_export_config.h"
#include "settings/project_settings.h"
#include "settings/settings_paths.h"
#include "settings/settings_table.h"
#include "support/paths.h"

namespace velmora {
namespace {

using T = TSettingType;

// The address of one field of the settings, as a table row keeps it.
#define VL_FIELD(member) [](TVLSettings& s) -> void* { return &s.member; }

const TSettingDef kSettingDefs[] = {
    {"General", "ShowWarnings", T::Boolean, VL_FIELD(ShowWarnings)},
    {"General", "ShowFileNotFoundWarning", T::Boolean, VL_FIELD(ShowFileNotFoundWarning)},
    {"General", "ShowMethArgs", T::OptionBit, VL_FIELD(ViewOptions), 0},
    {"General", "ShowMemTypes", T::OptionBit, VL_FIELD(ViewOptions), 1},
    {"General", "ParsePriority", T::Integer, VL_FIELD(ParsePriority), 0, 6},
    {"General", "Statusbar", T::Integer, VL_FIELD(Statusbar)},
    {"General", "EditorJumpOffSet", T::Integer, VL_FIELD(EditorJumpOffSet)},
    {"General", "BrowseHistoryItemCount", T::Integer, VL_FIELD(BrowseHistoryItemCount), 0, 100000},
    {"General", "UseMainMenu", T::Boolean, VL_FIELD(UseMainMenu)},
    {"General", "HKShow", T::ShortCut, VL_FIELD(HKShow)},
    {"General", "HKClassHierarchy", T::ShortCut, VL_FIELD(HKClassHierarchy)},
    {"General", "HKContextBar", T::ShortCut, VL_FIELD(HKContextBar)},
    {"General", "HKFind", T::ShortCut, VL_FIELD(HKFind)},
    {"General", "HKQuickFindCode", T::ShortCut, VL_FIELD(HKQuickFindCode)},
    {"General", "HKQuickFindTree", T::ShortCut, VL_FIELD(HKQuickFindTree)},
    {"General", "HKCodeBack", T::ShortCut, VL_FIELD(HKCodeBack)},
    {"General", "HKAddMeth", T::ShortCut, VL_FIELD(HKAddMeth)},
    {"General", "HKAddMemb", T::ShortCut, VL_FIELD(HKAddMemb)},
    {"General", "HKAddProp", T::ShortCut, VL_FIELD(HKAddProp)},
    {"General", "ParseRetryCount", T::Integer, VL_FIELD(ParseRetryCount), 0, 100},

    {"CodeGeneration", "CheckIdentSyntax", T::Boolean, VL_FIELD(CheckIdentSyntax)},
    {"CodeGeneration", "AddFieldDefaultVisibility", T::Integer, VL_FIELD(AddFieldDefaultVisibility),
     0, 4},
    {"CodeGeneration", "AddMethodDefaultVisibility", T::Integer,
     VL_FIELD(AddMethodDefaultVisibility), 0, 4},
    {"CodeGeneration", "AddPropertyDefaultVisibility", T::Integer,
     VL_FIELD(AddPropertyDefaultVisibility), 0, 4},
    {"CodeGeneration", "AlphabeticCodeGen", T::Boolean, VL_FIELD(AlphabeticCodeGen)},
    {"CodeGeneration", "CodeGenRemoveTrailingSpaces", T::Boolean,
     VL_FIELD(CodeGenRemoveTrailingSpaces)},
    {"CodeGeneration", "CodeGenRemovePrecedingSpaces", T::Boolean,
     VL_FIELD(CodeGenRemovePrecedingSpaces)},
    {"CodeGeneration", "PascalMarkerCommentType", T::Integer, VL_FIELD(PascalMarkerCommentType)},
    {"CodeGeneration", "CPPCodeGenMarkerCommentType", T::Integer,
     VL_FIELD(CPPCodeGenMarkerCommentType)},
    {"CodeGeneration", "C++ Code Templates", T::CppTemplates, VL_FIELD(CppTemplates)},
    {"CodeGeneration", "Pascal Code Templates", T::PascalTemplates, VL_FIELD(PascalTemplates)},

    {"Externals", "Use", T::Boolean, VL_FIELD(UseExternals)},
    {"Externals", "Save", T::Boolean, VL_FIELD(SaveExternals)},
    {"Externals", "ClassInfoFile", T::String, VL_FIELD(ClassInfoFile)},

    {"Misc", "FindWordAtCursor", T::Boolean, VL_FIELD(FindWordAtCursor)},
    {"Misc", "FindGotoSource", T::Boolean, VL_FIELD(FindGotoSource)},
    {"Misc", "MethodViewerOnTop", T::Boolean, VL_FIELD(MethodViewerOnTop)},
    {"Misc", "About", T::Boolean, VL_FIELD(About)},
    {"Misc", "OnTOP", T::Boolean, VL_FIELD(OnTOP)},
    {"Misc", "ParseImplementation", T::Boolean, VL_FIELD(ParseImplementation)},
    {"Misc", "UseEditorIntegration", T::Boolean, VL_FIELD(UseEditorIntegration)},
    {"Misc", "DockedTitlebarColorName", T::String, VL_FIELD(DockedTitlebarColorName)},
    {"Misc", "ShowDockedClassViewTitlebar", T::Boolean, VL_FIELD(ShowDockedClassViewTitlebar)},
    {"Misc", "ShowDockedContextBarTitlebar", T::Boolean, VL_FIELD(ShowDockedContextBarTitlebar)},
    {"Misc", "ShowDockedClassHierarchyTitlebar", T::Boolean,
     VL_FIELD(ShowDockedClassHierarchyTitlebar)},

    {"ClassHierarchy", "Statesaved", T::Boolean, VL_FIELD(ClassHierarchy.Statesaved)},
    {"ClassHierarchy", "TreeWidth", T::Integer, VL_FIELD(ClassHierarchy.TreeWidth)},
    {"ClassHierarchy", "FieldListHeigth", T::Integer, VL_FIELD(ClassHierarchy.FieldListHeigth)},
    {"ClassHierarchy", "LinkClassView", T::Boolean, VL_FIELD(ClassHierarchy.LinkClassView)},
    {"ClassHierarchy", "Windowstate", T::Integer, VL_FIELD(ClassHierarchy.Windowstate), 0, 2},
    {"ClassHierarchy", "Left", T::Integer, VL_FIELD(ClassHierarchy.Left)},
    {"ClassHierarchy", "Top", T::Integer, VL_FIELD(ClassHierarchy.Top)},
    {"ClassHierarchy", "Width", T::Integer, VL_FIELD(ClassHierarchy.Width)},
    {"ClassHierarchy", "Height", T::Integer, VL_FIELD(ClassHierarchy.Height)},

    {"Inheritance", "Statesaved", T::Boolean, VL_FIELD(Inheritance.Statesaved)},
    {"Inheritance", "LinkClassView", T::Boolean, VL_FIELD(Inheritance.LinkClassView)},
    {"Inheritance", "AutoUpdate", T::Boolean, VL_FIELD(Inheritance.AutoUpdate)},
    {"Inheritance", "KeepOnTop", T::Boolean, VL_FIELD(Inheritance.KeepOnTop)},
    {"Inheritance", "Left", T::Integer, VL_FIELD(Inheritance.Left)},
    {"Inheritance", "Top", T::Integer, VL_FIELD(Inheritance.Top)},
    {"Inheritance", "Width", T::Integer, VL_FIELD(Inheritance.Width)},
    {"Inheritance", "Height", T::Integer, VL_FIELD(Inheritance.Height)},

    {"Globals", "UseGlobalsProject", T::Boolean, VL_FIELD(UseGlobalsProject)},
    {"Globals", "UseGlobalsExternal", T::Boolean, VL_FIELD(UseGlobalsExternal)},

    {"Domains", "DomainsBefore", T::Boolean, VL_FIELD(DomainsBefore)},
    {"Domains", "Internal", T::Boolean, VL_FIELD(DomainsInternal)},
    {"Domains", "External", T::Boolean, VL_FIELD(DomainsExternal)},

    {"Finder", "Classes", T::Boolean, VL_FIELD(Finder.Classes)},
    {"Finder", "Fields", T::Boolean, VL_FIELD(Finder.Fields)},
    {"Finder", "Methods", T::Boolean, VL_FIELD(Finder.Methods)},
    {"Finder", "MatchCase", T::Boolean, VL_FIELD(Finder.MatchCase)},
    {"Finder", "WholeWord", T::Boolean, VL_FIELD(Finder.WholeWord)},
    {"Finder", "History", T::String, VL_FIELD(Finder.History)},

    {"Filter", "Statesaved", T::Boolean, VL_FIELD(FilterToolbar.Statesaved)},
    {"Filter", "Left", T::Integer, VL_FIELD(FilterToolbar.Left)},
    {"Filter", "Top", T::Integer, VL_FIELD(FilterToolbar.Top)},
    {"Filter", "ToolbarVisible", T::Boolean, VL_FIELD(FilterToolbar.ToolbarVisible)},
    {"Filter", "Ontop", T::Boolean, VL_FIELD(FilterToolbar.Ontop)},
    {"Filter", "UpdateAutomatic", T::Boolean, VL_FIELD(FilterToolbar.UpdateAutomatic)},
    {"Filter", "Docked", T::Boolean, VL_FIELD(FilterToolbar.Docked)},

    {"Help Generator", "Statesaved", T::Boolean, VL_FIELD(HelpGenerator.Statesaved)},
    {"Help Generator", "Windowstate", T::Integer, VL_FIELD(HelpGenerator.Windowstate), 0, 2},
    {"Help Generator", "Left", T::Integer, VL_FIELD(HelpGenerator.Left)},
    {"Help Generator", "Top", T::Integer, VL_FIELD(HelpGenerator.Top)},
    {"Help Generator", "Width", T::Integer, VL_FIELD(HelpGenerator.Width)},
    {"Help Generator", "Height", T::Integer, VL_FIELD(HelpGenerator.Height)},
    {"Help Generator", "TreeWidth", T::Integer, VL_FIELD(HelpGenerator.TreeWidth)},
    {"Help Generator", "TextHeight", T::Integer, VL_FIELD(HelpGenerator.TextHeight)},
    {"Help Generator", "TextVisible", T::Boolean, VL_FIELD(HelpGenerator.TextVisible)},
    {"Help Generator", "WarningLevel", T::Integer, VL_FIELD(HelpGenerator.WarningLevel)},
    {"Help Generator", "DoExport", T::Boolean, VL_FIELD(HelpGenerator.DoExport)},
    {"Help Generator", "CheckHelpConfiguration", T::Boolean,
     VL_FIELD(HelpGenerator.CheckHelpConfiguration)},
    {"Help Generator", "MruCount", T::RecentFiles, VL_FIELD(HelpGenerator.RecentFiles), 0,
     THelpGeneratorSettings::kMaxRecentFiles},

    {"System", "ShowTreeToolTips", T::Boolean, VL_FIELD(ShowTreeToolTips)},

    {"Hidden", "DontShowSettingsSaveError", T::Boolean, VL_FIELD(DontShowSettingsSaveError)},
};

#undef VL_FIELD

template <size_t N>
void LoadTemplates(const TSettingsStore& store, const TSettingDef& def,
                   std::array<TCodeTemplate, N>& templates) {
  const std::string section = TemplateSection(def);
  for (size_t i = 0; i < N; ++i)
    templates[i].Template = store.ReadString(section, std::to_string(i), templates[i].Template);
}

template <size_t N>
void SaveTemplates(TSettingsStore& store, const TSettingDef& def,
                   const std::array<TCodeTemplate, N>& templates) {
  const std::string section = TemplateSection(def);
  for (size_t i = 0; i < N; ++i)
    store.WriteString(section, std::to_string(i), templates[i].Template);
}

void LoadRow(const TSettingsStore& store, const TSettingDef& def, TVLSettings& s) {
  switch (def.Type) {
    case T::Boolean: {
      bool& value = FieldOf<bool>(def, s);
      value = store.ReadBool(def.Section, def.Key, value);
      break;
    }
    case T::Integer: {
      int32_t& value = FieldOf<int32_t>(def, s);
      const int32_t read = store.ReadInteger(def.Section, def.Key, value);
      if (read >= def.Min && read <= def.Max) value = read;
      break;
    }
    case T::ShortCut: {
      TShortCut& value = FieldOf<TShortCut>(def, s);
      const int32_t read = store.ReadInteger(def.Section, def.Key, value);
      if (read >= 0 && read <= 0xFFFF) value = static_cast<TShortCut>(read);
      break;
    }
    case T::String: {
      std::string& value = FieldOf<std::string>(def, s);
      value = store.ReadString(def.Section, def.Key, value);
      break;
    }
    case T::OptionBit: {
      const auto bit = static_cast<uint8_t>(1u << def.Min);
      s.SetViewOption(bit, store.ReadBool(def.Section, def.Key, (s.ViewOptions & bit) != 0));
      break;
    }
    case T::CppTemplates:
      LoadTemplates(store, def, FieldOf<TCppTemplates>(def, s));
      break;
    case T::PascalTemplates:
      LoadTemplates(store, def, FieldOf<TPascalTemplates>(def, s));
      break;
    case T::RecentFiles: {
      auto& files = FieldOf<std::vector<std::string>>(def, s);
      const int32_t count = store.ReadInteger(def.Section, def.Key, -1);
      if (count < def.Min || count > def.Max) break;  // missing or damaged: keep the list
      files.clear();
      for (int32_t i = 0; i < count; ++i) {
        const std::string key = "File" + std::to_string(i);
        if (!store.ValueExists(def.Section, key)) break;
        files.push_back(store.ReadString(def.Section, key, ""));
      }
      break;
    }
  }
}

void SaveRow(TSettingsStore& store, const TSettingDef& def, const TVLSettings& s) {
  switch (def.Type) {
    case T::Boolean:
      store.WriteBool(def.Section, def.Key, FieldOf<bool>(def, s));
      break;
    case T::Integer:
      store.WriteInteger(def.Section, def.Key, FieldOf<int32_t>(def, s));
      break;
    case T::ShortCut:
      store.WriteInteger(def.Section, def.Key, FieldOf<TShortCut>(def, s));
      break;
    case T::String:
      store.WriteString(def.Section, def.Key, FieldOf<std::string>(def, s));
      break;
    case T::OptionBit:
      store.WriteBool(def.Section, def.Key, (s.ViewOptions >> def.Min) & 1);
      break;
    case T::CppTemplates:
      SaveTemplates(store, def, FieldOf<TCppTemplates>(def, s));
      break;
    case T::PascalTemplates:
      SaveTemplates(store, def, FieldOf<TPascalTemplates>(def, s));
      break;
    case T::RecentFiles: {
      const auto& files = FieldOf<std::vector<std::string>>(def, s);
      const auto count = static_cast<int32_t>(std::min<size_t>(files.size(), def.Max));
      store.WriteInteger(def.Section, def.Key, count);
      for (int32_t i = 0; i < count; ++i)
        store.WriteString(def.Section, "File" + std::to_string(i), files[i]);
      break;
    }
  }
}

}  // namespace

std::span<const TSettingDef> SettingDefs() {
  return kSettingDefs;
}

TVLSettings::TVLSettings()
    : ClassInfoFile(JoinPath(VelmoraDataDir(), "external.cinfo")),
      memberFilter_(std::make_unique<TClassMemberFilter>()),
      filterList_(std::make_unique<TFilterList>()),
      helpExport_(std::make_unique<THelpExportConfiguration>()),
      projectSettings_(std::make_unique<TCurrentProjectSettings>()) {}

TVLSettings::~TVLSettings() = default;

void TVLSettings::Load(const TSettingsStore& store) {
  for (const TSettingDef& def : kSettingDefs) LoadRow(store, def, *this);
  memberFilter_->Load(store);
  filterList_->Load(store);
}

void TVLSettings::Save(TSettingsStore& store) const {
  for (const TSettingDef& def : kSettingDefs) SaveRow(store, def, *this);
  memberFilter_->Save(store);
  filterList_->Save(store);
}

}  // namespace velmora
