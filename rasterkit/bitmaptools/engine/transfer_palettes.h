#pragma once

#include <array>
#include <cstdint>

namespace rasterkit {

class TPixelThread;

namespace detail {

/// Maps an index of the source's palette to one of the target's: the same index if both have the
/// same color there, else the entry at the least distance (the greatest difference of a channel),
/// the first among equals, unless none is nearer than the entry of that index itself. Indexes
/// beyond the source's palette stay.
uint8_t MappedIndex(const TPixelThread& worker, uint8_t index);

/// Tells whether an index of the source counts as white.
bool IsWhiteSourceIndex(const TPixelThread& worker, uint8_t index);

/// Tells whether an index of an 8-bit target counts as white.
bool IsWhiteTargetIndex(const TPixelThread& worker, uint8_t index);

/// Colors of all indexes in the source's palette, bytes B G R 0; black beyond it.
std::array<uint8_t, 1024> SourceColors(const TPixelThread& worker);

}  // namespace detail
}  // namespace rasterkit
