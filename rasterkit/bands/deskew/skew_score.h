#pragma once

#include <cstdint>

#include <rasterkit/bands/deskew/skew_edges.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// Slopes are in this part of a pixel per pixel.
inline constexpr int kSkewSlopeBits = 16;

/// Tells how far edges fall together if lines descend to the right by `slope` / 65536 pixels per
/// pixel: edges across are counted by floor((y - x slope / 65536) / 2^binBits), edges down by
/// floor((x + y slope / 65536) / 2^binBits); the result is the sum of the squared differences
/// between the numbers of neighboring counts.
RASTERKIT_EXPORT uint64_t SkewScore(const SkewEdges& edges, int slope, int binBits);

}  // namespace rasterkit::detail
