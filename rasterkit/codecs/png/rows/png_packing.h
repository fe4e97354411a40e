#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include <rasterkit/codecs/rows/form.h>
#include <rasterkit/kernels/filters/unfilter_row.h>

namespace rasterkit::detail {

/// How rows are filtered before they are packed.
enum class PngFiltering {
  none,
  /// By rows: none where most pixels are like the one on the left, as in drawings; else the
  /// difference to the row above, or another filter if its sum of absolute differences is clearly
  /// less.
  byRows
};

/// How rows are filtered and packed.
struct PngPacking {
  PngFiltering filtering = PngFiltering::byRows;
  /// 0 to 12; nothing chooses by the rows. Stripes use 9 at most.
  std::optional<int> level;
};

/// The packing for samples of this form.
PngPacking PngPackingFor(const PngForm& form, std::optional<int> level);

/// The level for filtered rows of `stride` bytes with their filter bytes. Unless it was given, it
/// is higher for drawings, which take little time, than for photographs, which hardly get smaller.
int PngLevelFor(const PngPacking& packing, std::span<const uint8_t> rows, size_t stride);

/// Filters a row: the filter byte and the bytes go to `target`. `candidate` has room for as many
/// bytes as the row.
void FilterPngRow(PngFiltering filtering, const uint8_t* row, const uint8_t* above, size_t bytes,
                  size_t pixelBytes, uint8_t* candidate, uint8_t* target);

}  // namespace rasterkit::detail
