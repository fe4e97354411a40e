#pragma once

#include <cstdint>

/// Tags by which a TIFF file says where its picture lies on the map, and keys of its GeoTIFF
/// directory.
namespace rasterkit::detail {

inline constexpr uint16_t kPixelScaleTag = 33550;
inline constexpr uint16_t kTiePointTag = 33922;
inline constexpr uint16_t kTransformationTag = 34264;
inline constexpr uint16_t kGeoKeysTag = 34735;
/// Text: the number that stands for "no data" in a grid.
inline constexpr uint16_t kNoDataTag = 42113;

inline constexpr uint16_t kRasterTypeKey = 1025;
/// Keys from here on describe coordinate systems; lower ones describe the raster.
inline constexpr uint16_t kFirstSystemKey = 2048;

}  // namespace rasterkit::detail
