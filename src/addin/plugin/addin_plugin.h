// What the add-in library offers the host that loads it, besides its entry point: the
// manager its expert made, whose model the host's own class view shows, and the
// representation slots the model's objects were made with. A host finds these with
// dlsym by the names below; both return null before the expert has started.
#pragma once

namespace velmora {
class TRepresentationManager;
class TVLManager;
}  // namespace velmora

/// The names a host looks the functions up by.
inline constexpr char kAddInManagerEntryName[] = "VelmoraAddInManager";
inline constexpr char kAddInRepresentationsEntryName[] = "VelmoraAddInRepresentations";

using TAddInManagerEntry = velmora::TVLManager* (*)();
using TAddInRepresentationsEntry = velmora::TRepresentationManager* (*)();
