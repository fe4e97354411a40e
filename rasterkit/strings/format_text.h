#pragma once

#include <span>
#include <string>
#include <string_view>

/// How values come into the texts of the resource table.
namespace rasterkit {

/// Fills a text that a translator may have written: each "%d" or "%s" takes the next value, "%%" is
/// a percent sign, everything else stays. Values that are too many are left out, places that are
/// too many stay as they are, so that a wrong translation shows and does no harm.
[[gnu::visibility("default")]] std::string FormatText(std::string_view pattern,
                                                      std::span<const std::string> values);

/// What stands between the whole part and the decimals of a number in a text for people: "." unless
/// the host has set another. Safe on any thread.
[[gnu::visibility("default")]] std::string DecimalMark();

/// An empty mark means "." again.
[[gnu::visibility("default")]] void SetDecimalMark(std::string mark);

}  // namespace rasterkit
