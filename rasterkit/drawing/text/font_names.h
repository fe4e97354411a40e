#pragma once

#include <span>
#include <string_view>

namespace rasterkit::detail {

/// Returns replacements for a missing font family, best first; metric-compatible ones if they
/// exist. Names are compared without regard to case. Empty for names without a known replacement.
std::span<const char* const> StandInsFor(std::string_view faceName);

/// Returns fontconfig's name of the generic family for a font's `pitchAndFamily`.
const char* GenericFamily(unsigned pitchAndFamily);

/// Compares without regard to the case of ASCII letters.
bool IsSameName(std::string_view a, std::string_view b);

}  // namespace rasterkit::detail
