#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include <rasterkit/metadata/tag_value.h>
#include <rasterkit/placement/placement.h>

/// The position in the tags of a TIFF file.
namespace rasterkit::detail {

/// Tag numbers.
inline constexpr uint16_t kPixelScaleTag = 33550, kTiePointTag = 33922, kTransformationTag = 34264,
                          kGeoKeysTag = 34735, kGeoDoublesTag = 34736, kGeoAsciiTag = 34737,
                          kNoDataTag = 42113, kRationalModelTag = 50844;

/// Count of numbers in a rational model.
inline constexpr size_t kRationalNumbers = 92;

/// Reads all tags of the position into `placement`: stated positions, control points, coordinate
/// system, raster type, "no data", rational model, warnings. Damaged tags give a warning.
void ReadGeoTags(std::span<const TagValue> tags, Placement& placement);

}  // namespace rasterkit::detail
