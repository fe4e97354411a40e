#pragma once

#include <array>
#include <cstdint>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

class TBitmap;

/// Scales the channels of a bitmap in place, each by its own percentage: at -100 and below the
/// channel is gone, at 0 it stays, at 100 it is doubled. Bitmaps of other formats become pf24bit
/// first, also if all three are 0.
///
/// The factor, percentage / 100 + 1, has single precision; its exact product with the channel is
/// rounded, halves to even, and clamped to 0 to 255. Null and empty bitmaps stay as they are.
RASTERKIT_EXPORT void ShiftColors(TBitmap* bitmap, float red, float green, float blue);

namespace detail {

/// Result of ShiftColors for each value of a channel.
std::array<uint8_t, 256> ShiftTable(float percent);

}  // namespace detail

}  // namespace rasterkit
