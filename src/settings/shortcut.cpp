#include "settings/shortcut.h"

#include "settings/registry_ini_store.h"
#include "support/ansi.h"

namespace velmora {
namespace {

struct KeyName {
  uint8_t Key;
  const char* Name;
};

// The first name of a key is the one written; the others are accepted when read.
constexpr KeyName kKeyNames[] = {
    {0x08, "Backspace"}, {0x08, "BkSp"},     {0x09, "Tab"},   {0x0D, "Enter"}, {0x0D, "Return"},
    {0x1B, "Esc"},       {0x1B, "Escape"},   {0x20, "Space"}, {0x21, "PgUp"},  {0x21, "PageUp"},
    {0x22, "PgDn"},      {0x22, "PageDown"}, {0x23, "End"},   {0x24, "Home"},  {0x25, "Left"},
    {0x26, "Up"},        {0x27, "Right"},    {0x28, "Down"},  {0x2D, "Ins"},   {0x2D, "Insert"},
    {0x2E, "Del"},       {0x2E, "Delete"},
};

std::string KeyText(uint8_t key) {
  if ((key >= '0' && key <= '9') || (key >= 'A' && key <= 'Z')) return std::string(1, char(key));
  if (key >= VK_F1 && key < VK_F1 + 24) return "F" + std::to_string(key - VK_F1 + 1);
  for (const KeyName& k : kKeyNames)
    if (k.Key == key) return k.Name;
  return {};
}

std::optional<uint8_t> KeyOfText(std::string_view text) {
  if (text.size() == 1) {
    const char c = AnsiUpperChar(text[0]);
    if ((c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z')) return static_cast<uint8_t>(c);
  }
  if (text.size() >= 2 && (text[0] == 'F' || text[0] == 'f')) {
    int32_t n = 0;
    if (text[1] != '+' && text[1] != '-' && ParseStoredInteger(text.substr(1), n) && n >= 1 &&
        n <= 24)
      return static_cast<uint8_t>(VK_F1 + n - 1);
  }
  if (text.size() >= 2 && text[0] == '#') {
    int32_t n = 0;
    if (ParseStoredInteger(text.substr(1), n) && n >= 1 && n <= 255) return static_cast<uint8_t>(n);
  }
  for (const KeyName& k : kKeyNames)
    if (SameText(text, k.Name)) return k.Key;
  return std::nullopt;
}

}  // namespace

std::string ShortCutToText(TShortCut shortCut) {
  if (shortCut == 0) return "None";
  const uint8_t key = shortCut & 0xFF;
  std::string name = KeyText(key);
  if (name.empty()) name = key ? "#" + std::to_string(key) : std::string();
  // Bits outside the key and the three modifiers have no text: write the number.
  if (name.empty() || (shortCut & 0x1F00) != 0) return std::to_string(shortCut);
  std::string out;
  if (shortCut & scShift) out += "Shift+";
  if (shortCut & scCtrl) out += "Ctrl+";
  if (shortCut & scAlt) out += "Alt+";
  return out + name;
}

std::optional<TShortCut> TextToShortCut(std::string_view text) {
  text = Trim(text);
  if (SameText(text, "None")) return TShortCut{0};
  int32_t number = 0;
  // A single digit is the digit's key; a code is given with two digits or more.
  if (text.size() > 1 && text[0] >= '0' && text[0] <= '9' && ParseStoredInteger(text, number))
    return number <= 0xFFFF ? std::optional<TShortCut>(static_cast<TShortCut>(number))
                            : std::nullopt;
  TShortCut modifiers = 0;
  while (true) {
    const size_t plus = text.find('+');
    if (plus == std::string_view::npos) break;
    const std::string_view part = Trim(text.substr(0, plus));
    if (SameText(part, "Shift"))
      modifiers |= scShift;
    else if (SameText(part, "Ctrl") || SameText(part, "Control"))
      modifiers |= scCtrl;
    else if (SameText(part, "Alt"))
      modifiers |= scAlt;
    else
      return std::nullopt;
    text.remove_prefix(plus + 1);
  }
  const std::optional<uint8_t> key = KeyOfText(Trim(text));
  if (!key) return std::nullopt;
  return ShortCut(*key, modifiers);
}

}  // namespace velmora
