// Where each view stood when it was last seen: floating or docked, where and how big, so
// that the next run of the IDE puts it back. One TWindowPlacementSettings per view, kept
// by name in a TWindowPlacementList that loads and saves through a settings store (one
// section per view) or through the project settings.
//
// Threads: main thread only; nothing here locks.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "views/display_window.h"

namespace velmora {

class TSettingsStore;
struct TProjectWindowSettings;
class TCurrentProjectSettings;

/// An integer attribute with this value is not stored.
inline constexpr int32_t kPlacementNotStored = 2147483647;

/// The attributes a placement may store, as bit numbers of TPlacementAttributes.
enum class TPlacementAttribute : uint8_t {
  Position = 0,
  Width = 1,
  Height = 2,
  Visible = 3,
  WindowState = 4,
  Docked = 5,
  Align = 6,
  DockedSize = 7,
};

/// A set of attributes: bit n is TPlacementAttribute n.
using TPlacementAttributes = uint8_t;
constexpr TPlacementAttributes PlacementBit(TPlacementAttribute a) {
  return static_cast<TPlacementAttributes>(1u << static_cast<unsigned>(a));
}
inline constexpr TPlacementAttributes kAllPlacementAttributes = 0xFF;

/// A set of docking sides: bit n is TDockAlign n (0..7).
using TDockAligns = uint8_t;
constexpr TDockAligns AlignBit(TDockAlign a) {
  return static_cast<TDockAligns>(1u << static_cast<unsigned>(a));
}
inline constexpr TDockAligns kDefaultAllowedAligns =
    AlignBit(TDockAlign::Top) | AlignBit(TDockAlign::Bottom) | AlignBit(TDockAlign::Left) |
    AlignBit(TDockAlign::Right);

/// The settings keys of one view's section.
inline constexpr char kPlacementStateSavedKey[] = "StateSaved";
inline constexpr char kPlacementPositionXKey[] = "PositionX";
inline constexpr char kPlacementPositionYKey[] = "PositionY";
inline constexpr char kPlacementWidthKey[] = "Width";
inline constexpr char kPlacementHeightKey[] = "Height";
inline constexpr char kPlacementVisibleKey[] = "Visible";
inline constexpr char kPlacementStateKey[] = "State";
inline constexpr char kPlacementDockedKey[] = "Docked";
inline constexpr char kPlacementAlignKey[] = "Align";
inline constexpr char kPlacementSizeKey[] = "Size";

/// Moves and, when it is larger, shrinks `bounds` so that it lies inside `area`. A window
/// right of or below a smaller screen comes back to its right or bottom edge; one partly
/// off the top-left comes back to that corner.
TScreenRect ClampToScreen(TScreenRect bounds, const TScreenRect& area);

class TWindowPlacementSettings {
 public:
  TWindowPlacementSettings(std::string name, TPlacementAttributes savedAttributes)
      : Name(std::move(name)), SavedAttributes(savedAttributes) {}

  bool Saves(TPlacementAttribute a) const { return (SavedAttributes & PlacementBit(a)) != 0; }
  bool AllowsAlign(TDockAlign a) const { return (AllowedAligns & AlignBit(a)) != 0; }

  /// Puts the window where the placement says, unless locked or nothing was saved. A
  /// floating window gets its stored position, size and state and is kept on the screen;
  /// a docked one gets its panel's side and size. Applying is true meanwhile, so the
  /// window's move and resize signals do not capture a half-applied placement.
  void Apply(TDisplayWindow& window);
  /// Takes the window's current placement, unless locked or being applied.
  void Capture(const TDisplayWindow& window);

  /// Reads the view's section (`section` is its full name), then writes it back the same.
  void Load(const TSettingsStore& store, std::string_view section);
  void Save(TSettingsStore& store, std::string_view section) const;

  /// The project settings file keeps state saved, visible, docked, position and size.
  void LoadFromProject(const TProjectWindowSettings& settings);
  void SaveToProject(TProjectWindowSettings& settings) const;

  bool operator==(const TWindowPlacementSettings&) const = default;

  std::string Name;                                   ///< the view's key, fixed at creation
  bool Applying = false;                              ///< true only while Apply runs
  TDockAligns AllowedAligns = kDefaultAllowedAligns;  ///< sides the view may dock to
  TPlacementAttributes SavedAttributes;               ///< what Load, Save, Apply and Capture touch
  bool StateSaved = false;  ///< a placement was captured or loaded; nothing else counts before
  int32_t Left = kPlacementNotStored;  ///< Left and Top are stored together or not at all
  int32_t Top = kPlacementNotStored;
  int32_t Width = kPlacementNotStored;
  int32_t Height = kPlacementNotStored;
  TWindowState WindowState = TWindowState::Normal;
  bool Visible = false;
  bool Docked = false;
  TDockAlign Align = TDockAlign::Left;  ///< always one of AllowedAligns after Load
  int32_t DockedSize = kPlacementNotStored;
  bool Locked = false;  ///< when set, Apply and Capture do nothing
};

/// The placements of all views, sorted by name (case-insensitive); a name occurs once.
class TWindowPlacementList {
 public:
  /// Adds a view's placement with every default. A name already present is an error
  /// (std::invalid_argument) and changes nothing.
  TWindowPlacementSettings& Add(std::string_view name, TPlacementAttributes savedAttributes);
  /// The placement of `name`, or null.
  TWindowPlacementSettings* Find(std::string_view name);
  const TWindowPlacementSettings* Find(std::string_view name) const;
  /// True when the view has a placement whose state is saved and which was visible: the
  /// view was open when the placements were last saved.
  bool IsOpen(std::string_view name) const;
  void Clear() { items_.clear(); }
  /// Clears the state-saved flag of every placement, so nothing is applied.
  void ForgetState();
  int Count() const { return static_cast<int>(items_.size()); }
  TWindowPlacementSettings& At(int index) { return *items_[static_cast<size_t>(index)]; }

  /// Each view in the section `prefix` + "\" + name, or in the section name itself when
  /// `prefix` is empty (the registry's way, each view a subkey of the key given).
  void Load(const TSettingsStore& store, std::string_view prefix = {});
  void Save(TSettingsStore& store, std::string_view prefix = {}) const;
  /// The four views the project settings file has a section for ("ClassView",
  /// "ContextBar", "ClassHierarchy", "BrowseHistory"); other views are left alone.
  void LoadFromProject(const TCurrentProjectSettings& project);
  void SaveToProject(TCurrentProjectSettings& project) const;

  /// The section of view `name` under `prefix`.
  static std::string SectionName(std::string_view prefix, std::string_view name);

 private:
  /// Index of the first item not less than `name`.
  size_t LowerBound(std::string_view name) const;
  /// unique_ptr so that references handed out survive later additions.
  std::vector<std::unique_ptr<TWindowPlacementSettings>> items_;
};

}  // namespace velmora
