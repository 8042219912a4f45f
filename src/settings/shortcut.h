// Hot keys as shortcut codes: a virtual-key code in the low byte and modifier flags
// above it, as the host's menus take them. Key codes are those of the Windows keyboard
// (letters and digits their ASCII upper-case codes, F1 0x70, Backspace 0x08), so that
// settings written on either platform mean the same keys.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velmora {

using TShortCut = uint16_t;

inline constexpr TShortCut scShift = 0x2000;
inline constexpr TShortCut scCtrl = 0x4000;
inline constexpr TShortCut scAlt = 0x8000;

inline constexpr uint8_t VK_BACK = 0x08;
inline constexpr uint8_t VK_F1 = 0x70;
inline constexpr uint8_t VK_F10 = 0x79;
inline constexpr uint8_t VK_F12 = 0x7B;

constexpr TShortCut ShortCut(uint8_t key, TShortCut modifiers) {
  return static_cast<TShortCut>(key | modifiers);
}

/// "Shift+Ctrl+Alt+F12": the modifiers in that order, then the key's name. A key without
/// a name is written as "#" and its decimal code ("Ctrl+#186"); 0 is "None".
std::string ShortCutToText(TShortCut shortCut);
/// The code of a text in the form ShortCutToText writes (names and modifiers in any
/// case and order, "Control" for "Ctrl", a few common key aliases), or of a decimal
/// number of two digits or more up to 65535 (a single digit is that digit's key);
/// nothing when the text is neither.
std::optional<TShortCut> TextToShortCut(std::string_view text);

}  // namespace velmora
