#pragma once

#include <cstdint>

namespace rasterkit::detail {

/// Tells whether a drawing of this size fits a metafile of `fileBytes` bytes: at most 256 MiB, or
/// 1024 pixels per byte. Always true if the limits of the thread allow implausible sizes (see
/// Limits).
bool IsDrawingPlausible(uint64_t width, uint64_t height, uint64_t fileBytes);

}  // namespace rasterkit::detail
