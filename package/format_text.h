#pragma once

#include <span>
#include <string>
#include <string_view>

namespace rasterkit {

/// Fills a text that a translator may have written: each "%d" or "%s" takes the next value, "%%" is
/// a percent sign, everything else stays. Values that are too many are left out, places that are
/// too many stay as they are, so that a wrong translation shows and does no harm.
[[gnu::visibility("default")]] std::string FormatText(std::string_view pattern,
                                                      std::span<const std::string> values);

}  // namespace rasterkit
