#pragma once

#include <cstddef>
#include <cstdint>

/// Filters of rows of bytes as PNG files have them: differences to the pixel on the left, to the
/// one above, to their mean (rounded down), and to the one of left, above and above left that is
/// nearest to left + above - above left (Paeth). Bytes left of the row count as 0.
namespace rasterkit::kernels {

/// The filters by number.
enum PngFilter : uint8_t { kFilterNone, kFilterSub, kFilterUp, kFilterAverage, kFilterPaeth };

/// Undoes a filter in place. `above` is the unfiltered row above, or zeros; `bytes` is the length
/// of both rows; `pixelBytes` 1, 2, 3, 4, 6 or 8. A filter beyond the last one leaves the row as it
/// is.
void UnfilterRow(uint8_t filter, const uint8_t* above, size_t bytes, size_t pixelBytes,
                 uint8_t* row);

/// Filters a row. Returns the sum of the absolute values of the target's bytes, taken as signed
/// numbers. The rows must not overlap.
uint64_t FilterRow(PngFilter filter, const uint8_t* row, const uint8_t* above, size_t bytes,
                   size_t pixelBytes, uint8_t* target);

}  // namespace rasterkit::kernels
