// The fixed parts of the model's two binary files: the banners, the version and the
// markers. The banners are compared byte for byte when a file is read, so changing one
// makes every file written before unreadable.
#pragma once

#include <cstdint>
#include <string_view>

namespace velmora {

/// First 101 bytes of a class information file (".cinfo").
inline constexpr std::string_view kClassInfoBanner =
    "Velmora Class Information File: parsed files, domains and classes of a project. "
    "Binary, keep intact\r\n";
static_assert(kClassInfoBanner.size() == 101);

/// The banner string of a domain information file (".domain"), stored with its count.
inline constexpr std::string_view kDomainFileBanner =
    "Velmora Domain Information File: the class domains of a project. Keep intact.\r\n";
static_assert(kDomainFileBanner.size() == 79);

inline constexpr uint32_t kClassInfoVersion = 0xF0F1F2F4;
/// Stands before the domains of a class information file.
inline constexpr uint32_t kDomainMarker = 0xF0F1F2F3;
/// Stands before the classes of a class information file.
inline constexpr uint32_t kClassMarker = 0xF0F1F2F4;
/// Both of the two words that open a domain information file.
inline constexpr uint32_t kDomainFileMagic = 10006;

}  // namespace velmora
