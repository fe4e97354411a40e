#include <algorithm>
#include <array>
#include <cstring>

#include <rasterkit/codecs/png/rows/png_packing.h>

namespace rasterkit::detail {
namespace {

constexpr int kPalette = 3;

/// The entries of a palette have no order, so that differences of indexes do not help; packed
/// samples have too few levels.
bool IsUnordered(const PngForm& form) {
  return form.colorType == kPalette || form.bits < 8;
}

/// True if more than half of the bytes are those of the pixel on the left.
bool IsFlat(const uint8_t* row, size_t bytes, size_t pixelBytes) {
  constexpr size_t kPiece = 192;
  size_t same = 0;
  for (size_t i = pixelBytes; i < bytes;) {
    const size_t end = std::min(bytes, i + kPiece);
    uint8_t count = 0;
    for (; i < end; i++) count = static_cast<uint8_t>(count + (row[i] == row[i - pixelBytes]));
    same += count;
  }
  return 2 * same > bytes;
}

}  // namespace

PngPacking PngPackingFor(const PngForm& form, std::optional<int> level) {
  return {IsUnordered(form) ? PngFiltering::none : PngFiltering::byRows, level};
}

/// Measured with 12 megapixels of photographs and with a plan reduced to gray; see
/// docs/benchmarks.md.
int PngLevelFor(const PngPacking& packing, std::span<const uint8_t> rows, size_t stride) {
  if (packing.level) return *packing.level;
  constexpr int kOfPhotographs = 1, kOfDrawings = 4;
  size_t plain = 0;
  for (size_t at = 0; at < rows.size(); at += stride) {
    if (rows[at] == kernels::kFilterNone) plain++;
  }
  return 2 * plain * stride > rows.size() ? kOfDrawings : kOfPhotographs;
}

void FilterPngRow(PngFiltering filtering, const uint8_t* row, const uint8_t* above, size_t bytes,
                  size_t pixelBytes, uint8_t* candidate, uint8_t* target) {
  using kernels::FilterRow;
  if (filtering == PngFiltering::none || IsFlat(row, bytes, pixelBytes)) {
    target[0] = kernels::kFilterNone;
    std::memcpy(target + 1, row, bytes);
    return;
  }
  target[0] = kernels::kFilterUp;
  const uint64_t up = FilterRow(kernels::kFilterUp, row, above, bytes, pixelBytes, target + 1);
  // The difference to the row above is the most regular one: photographs that were JPEG files
  // become larger with a filter whose sum is a little less.
  uint64_t least = up - up * 3 / 10;
  constexpr std::array kOthers = {kernels::kFilterSub, kernels::kFilterPaeth,
                                  kernels::kFilterAverage};
  for (const kernels::PngFilter filter : kOthers) {
    const uint64_t sum = FilterRow(filter, row, above, bytes, pixelBytes, candidate);
    if (sum >= least) continue;
    least = sum;
    target[0] = filter;
    std::memcpy(target + 1, candidate, bytes);
  }
}

}  // namespace rasterkit::detail
