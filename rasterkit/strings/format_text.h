#pragma once

#include <span>
#include <string>
#include <string_view>

/// Puts values into the texts of the resource table.
namespace rasterkit {

/// Fills a text, which may come from a translator: each "%d" or "%s" takes the next value, "%%"
/// becomes a percent sign, everything else stays. Surplus values are ignored and surplus places
/// stay as they are, so that a wrong translation is visible and harmless.
[[gnu::visibility("default")]] std::string FormatText(std::string_view pattern,
                                                      std::span<const std::string> values);

/// Returns the decimal mark of numbers in texts for people: "." unless the host has set another.
/// Thread-safe.
[[gnu::visibility("default")]] std::string DecimalMark();

/// Sets the decimal mark; an empty mark means ".". Thread-safe.
[[gnu::visibility("default")]] void SetDecimalMark(std::string mark);

}  // namespace rasterkit
