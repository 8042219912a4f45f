// The keys of the global options, one row each, in the order they are read and written.
// Load, Save and the settings command all walk this one table, so a key cannot be saved
// under one name and read under another. Used inside the settings layer only.
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <string>

#include "model/code_object.h"

namespace velmora {

class TVLSettings;

enum class TSettingType : uint8_t {
  Boolean,          // bool
  Integer,          // int32_t, within [Min, Max]
  ShortCut,         // TShortCut
  String,           // std::string
  OptionBit,        // one bit (Min) of the uint8_t view option byte
  CppTemplates,     // the texts of TCppTemplates, in a subsection named by Key
  PascalTemplates,  // the same for TPascalTemplates
  RecentFiles,      // THelpGeneratorSettings::RecentFiles as "MruCount" and "File" + index
};

struct TSettingDef {
  const char* Section;
  const char* Key;
  TSettingType Type;
  /// The field the row stands for, of the type that Type names.
  void* (*Field)(TVLSettings&);
  int32_t Min = std::numeric_limits<int32_t>::min();
  int32_t Max = std::numeric_limits<int32_t>::max();
};

std::span<const TSettingDef> SettingDefs();

/// The subsection that holds the texts of a template row ("CodeGeneration\C++ Code
/// Templates"), one key per template index.
inline std::string TemplateSection(const TSettingDef& def) {
  return std::string(def.Section) + "\\" + def.Key;
}

/// The language of a template row.
inline TLanguage TemplateLanguage(const TSettingDef& def) {
  return def.Type == TSettingType::CppTemplates ? TLanguage::Cpp : TLanguage::Pascal;
}

/// The typed field of a row.
template <typename T>
T& FieldOf(const TSettingDef& def, TVLSettings& settings) {
  return *static_cast<T*>(def.Field(settings));
}
template <typename T>
const T& FieldOf(const TSettingDef& def, const TVLSettings& settings) {
  return *static_cast<const T*>(def.Field(const_cast<TVLSettings&>(settings)));
}

}  // namespace velmora
