#pragma once

#include <array>
#include <cstdint>

namespace rasterkit {

class TPixelThread;

namespace detail {

/// The index of the target's palette for one of the source's: the same one where both have the same
/// color there, else the entry at the least distance (the greatest difference of a channel), the
/// first of equals, unless none is nearer than the entry of that index itself. Indexes beyond the
/// source's palette stay.
uint8_t MappedIndex(const TPixelThread& worker, uint8_t index);

/// True for the indexes of the source that count as white.
bool IsWhiteSourceIndex(const TPixelThread& worker, uint8_t index);

/// True for the indexes of an 8-bit target that count as white.
bool IsWhiteTargetIndex(const TPixelThread& worker, uint8_t index);

/// Each index's color in the source's palette, bytes B G R 0; black beyond it.
std::array<uint8_t, 1024> SourceColors(const TPixelThread& worker);

}  // namespace detail
}  // namespace rasterkit
