#pragma once

#include <span>
#include <string_view>

namespace rasterkit::detail {

/// Families to take in place of one that is not there, best first; of the same widths where there
/// is such a family. Names count without regard to case; none for names without a known stand-in.
std::span<const char* const> StandInsFor(std::string_view faceName);

/// The generic family for `pitchAndFamily` of a font, as fontconfig calls it.
const char* GenericFamily(unsigned pitchAndFamily);

/// Equal but for the case of ASCII letters.
bool IsSameName(std::string_view a, std::string_view b);

}  // namespace rasterkit::detail
