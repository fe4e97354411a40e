#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// One function of a byte, applied to many bytes.
namespace rasterkit::kernels {

using ByteTable = std::array<uint8_t, 256>;

/// A function of a byte: always as a table, and as a slope too where that gives the same 256
/// values, which runs at the speed of memory.
///
/// The slope form is `origin + whole * x + part(x)` with x = byte - origin, cut to 0 to 255, where
/// `part` is x times `low` (or `high`) thirty-two-thousandths, rounded. Where the two differ the
/// even sum is taken: so are halves rounded to even.
struct ByteMap {
  ByteTable table;
  bool hasSlope = false;
  int16_t origin = 0, whole = 0, low = 0, high = 0;
};

/// The map of a table that is (nearly) `origin + (byte - origin) * factor`.
ByteMap MakeByteMap(const ByteTable& table, double factor, int origin);

/// Replaces each of `count` bytes by what the map makes of it. Nothing beyond them is touched.
void MapBytes(const ByteMap& map, uint8_t* bytes, size_t count);

}  // namespace rasterkit::kernels
