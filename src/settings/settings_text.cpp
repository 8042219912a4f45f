#include "settings/settings_text.h"

#include <ostream>

#include "model/filters.h"
#include "settings/ini_file.h"
#include "settings/registry_ini_store.h"
#include "settings/settings_table.h"
#include "settings/vl_settings.h"
#include "support/ansi.h"
#include "support/text_buffer.h"

namespace velmora {
namespace {

using T = TSettingType;

// Settings is TVLSettings or const TVLSettings; the result follows.
template <typename Settings>
auto& TemplateText(Settings& s, const TSettingItem& item) {
  return item.Def->Type == T::CppTemplates
             ? FieldOf<TCppTemplates>(*item.Def, s)[item.Index].Template
             : FieldOf<TPascalTemplates>(*item.Def, s)[item.Index].Template;
}

template <typename Settings>
auto& RecentFiles(Settings& s, const TSettingItem& item) {
  return FieldOf<std::vector<std::string>>(*item.Def, s);
}

TVisibility VisibilityOf(int index) {
  return static_cast<TVisibility>(index % 10);
}

bool ParseBoolText(std::string_view text, bool& value) {
  text = Trim(text);
  if (SameText(text, "true") || text == "1") {
    value = true;
    return true;
  }
  if (SameText(text, "false") || text == "0") {
    value = false;
    return true;
  }
  return false;
}

bool ParseIntegerText(std::string_view text, int32_t min, int32_t max, int32_t& value,
                      std::string& error) {
  int32_t parsed = 0;
  if (!ParseStoredInteger(text, parsed)) {
    error = "\"" + std::string(text) + "\" is not a decimal integer";
    return false;
  }
  if (parsed < min || parsed > max) {
    error = std::to_string(parsed) + " is out of range (" + std::to_string(min) + " to " +
            std::to_string(max) + ")";
    return false;
  }
  value = parsed;
  return true;
}

}  // namespace

std::vector<TSettingItem> SettingItems(const TVLSettings& settings) {
  std::vector<TSettingItem> items;
  const std::span<const TSettingDef> defs = SettingDefs();
  for (size_t i = 0; i < defs.size(); ++i) {
    const TSettingDef& def = defs[i];
    switch (def.Type) {
      case T::CppTemplates:
      case T::PascalTemplates:
        for (int t = 0; t < TemplateCount(TemplateLanguage(def)); ++t)
          items.push_back(
              {TemplateSection(def), std::to_string(t), TSettingItem::Kind::Template, &def, t});
        break;
      case T::RecentFiles: {
        items.push_back({def.Section, def.Key, TSettingItem::Kind::Row, &def, 0});
        const auto& files = FieldOf<std::vector<std::string>>(def, settings);
        for (size_t f = 0; f < files.size(); ++f)
          items.push_back({def.Section, "File" + std::to_string(f), TSettingItem::Kind::RecentFile,
                           &def, static_cast<int>(f)});
        break;
      }
      default:
        items.push_back({def.Section, def.Key, TSettingItem::Kind::Row, &def, 0});
    }
    // The member filter shares the filter toolbar's section; its cells follow its keys.
    const bool lastOfFilter =
        std::string_view(def.Section) == "Filter" &&
        (i + 1 == defs.size() || std::string_view(defs[i + 1].Section) != "Filter");
    if (lastOfFilter)
      for (int c = 0; c < TClassMemberFilter::kCategories; ++c)
        for (int v = 0; v < TClassMemberFilter::kVisibilities; ++v)
          items.push_back({"Filter", "F" + std::to_string(c) + std::to_string(v),
                           TSettingItem::Kind::MemberFilter, nullptr, c * 10 + v});
  }
  return items;
}

std::optional<TSettingItem> FindSettingItem(const TVLSettings& settings, std::string_view section,
                                            std::string_view key) {
  for (TSettingItem& item : SettingItems(settings))
    if (SameText(item.Section, section) && SameText(item.Key, key)) return std::move(item);
  return std::nullopt;
}

std::string SettingText(const TVLSettings& s, const TSettingItem& item) {
  switch (item.ItemKind) {
    case TSettingItem::Kind::Template:
      return TemplateText(s, item);
    case TSettingItem::Kind::RecentFile:
      return RecentFiles(s, item)[item.Index];
    case TSettingItem::Kind::MemberFilter:
      return s.MemberFilter().IsShown(item.Index / 10, VisibilityOf(item.Index)) ? "true" : "false";
    case TSettingItem::Kind::Row:
      break;
  }
  const TSettingDef& def = *item.Def;
  switch (def.Type) {
    case T::Boolean:
      return FieldOf<bool>(def, s) ? "true" : "false";
    case T::Integer:
      return std::to_string(FieldOf<int32_t>(def, s));
    case T::ShortCut:
      return ShortCutToText(FieldOf<TShortCut>(def, s));
    case T::String:
      return FieldOf<std::string>(def, s);
    case T::OptionBit:
      return (s.ViewOptions >> def.Min) & 1 ? "true" : "false";
    case T::RecentFiles:
      return std::to_string(RecentFiles(s, item).size());
    case T::CppTemplates:
    case T::PascalTemplates:
      break;  // listed one template at a time
  }
  return {};
}

std::string SettingListText(const TVLSettings& settings, const TSettingItem& item) {
  const std::string text = SettingText(settings, item);
  if (item.ItemKind != TSettingItem::Kind::Template) return EncodeIniValue(text);
  const size_t end = text.find_first_of("\r\n");
  if (end == std::string::npos) return EncodeIniValue(text);
  return EncodeIniValue(text.substr(0, end)) + " ...";
}

bool SetSettingText(TVLSettings& settings, const TSettingItem& item, std::string_view text,
                    std::string& error) {
  bool flag = false;
  const auto needBool = [&] {
    if (ParseBoolText(text, flag)) return true;
    error = "\"" + std::string(text) + "\" is not a boolean (true, false, 1 or 0)";
    return false;
  };
  switch (item.ItemKind) {
    case TSettingItem::Kind::Template:
      TemplateText(settings, item) = ToBufferForm(text);
      return true;
    case TSettingItem::Kind::RecentFile:
      RecentFiles(settings, item)[item.Index] = std::string(text);
      return true;
    case TSettingItem::Kind::MemberFilter:
      if (!needBool()) return false;
      settings.MemberFilter().SetShown(item.Index / 10, VisibilityOf(item.Index), flag);
      return true;
    case TSettingItem::Kind::Row:
      break;
  }
  const TSettingDef& def = *item.Def;
  switch (def.Type) {
    case T::Boolean:
      if (!needBool()) return false;
      FieldOf<bool>(def, settings) = flag;
      return true;
    case T::OptionBit:
      if (!needBool()) return false;
      settings.SetViewOption(static_cast<uint8_t>(1u << def.Min), flag);
      return true;
    case T::Integer:
      return ParseIntegerText(text, def.Min, def.Max, FieldOf<int32_t>(def, settings), error);
    case T::RecentFiles: {
      int32_t count = 0;
      if (!ParseIntegerText(text, def.Min, def.Max, count, error)) return false;
      RecentFiles(settings, item).resize(static_cast<size_t>(count));
      return true;
    }
    case T::ShortCut:
      if (const std::optional<TShortCut> code = TextToShortCut(text)) {
        FieldOf<TShortCut>(def, settings) = *code;
        return true;
      }
      error = "\"" + std::string(text) +
              "\" is not a hot key (a number, or a text such as Shift+Ctrl+F10)";
      return false;
    case T::String:
      FieldOf<std::string>(def, settings) = std::string(text);
      return true;
    case T::CppTemplates:
    case T::PascalTemplates:
      break;
  }
  error = "this value cannot be set";
  return false;
}

int RunSettingsCommand(const std::string& storeFile, const std::vector<std::string>& args,
                       std::ostream& out, std::ostream& err) {
  if (args.size() > 3) {
    err << "velmora settings: give at most a section, a key and a value\n";
    return 1;
  }
  TRegistryIniStore store(storeFile);
  if (!store.Load()) {
    err << "velmora settings: " << store.LastError() << '\n';
    return 1;
  }
  TVLSettings settings;
  settings.Load(store);

  if (args.size() <= 1) {
    bool any = false;
    std::string section;
    for (const TSettingItem& item : SettingItems(settings)) {
      if (!args.empty() && !SameText(item.Section, args[0])) continue;
      if (item.Section != section) {
        section = item.Section;
        out << '[' << section << "]\n";
      }
      out << item.Key << '=' << SettingListText(settings, item) << '\n';
      any = true;
    }
    if (!any) {
      err << "velmora settings: unknown section \"" << args[0] << "\"\n";
      return 1;
    }
    return 0;
  }

  const std::optional<TSettingItem> item = FindSettingItem(settings, args[0], args[1]);
  if (!item) {
    bool sectionKnown = false;
    for (const TSettingItem& any : SettingItems(settings))
      sectionKnown = sectionKnown || SameText(any.Section, args[0]);
    if (sectionKnown)
      err << "velmora settings: unknown key \"" << args[1] << "\" in section \"" << args[0]
          << "\"\n";
    else
      err << "velmora settings: unknown section \"" << args[0] << "\"\n";
    return 1;
  }
  if (args.size() == 2) {
    // A template's CR LF line breaks are shown as the terminal's own.
    out << FromBufferForm(SettingText(settings, *item), TLineEndStyle::Lf) << '\n';
    return 0;
  }

  std::string error;
  if (!SetSettingText(settings, *item, args[2], error)) {
    err << "velmora settings: " << item->Section << ' ' << item->Key << ": " << error << '\n';
    return 1;
  }
  settings.Save(store);
  if (!store.Flush()) {
    err << "velmora settings: " << store.LastError() << '\n';
    return 1;
  }
  return 0;
}

}  // namespace velmora
