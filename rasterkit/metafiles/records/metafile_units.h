#pragma once

namespace rasterkit::detail {

/// Pixels per inch that the sizes of metafiles are stated for.
inline constexpr double kMetafileDpi = 96;
/// Units of 0.01 mm per inch.
inline constexpr double kMm100PerInch = 2540;

}  // namespace rasterkit::detail
