#include <algorithm>
#include <limits>

#include <fmt/format.h>

#include <rasterkit/codecs/rows/frame_format.h>
#include <rasterkit/codecs/tiff/tiff_layout.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {

namespace {

/// Pictures up to this many bytes may be empty, as sparse grids and blank pages are.
uint64_t AlwaysAllowed() {
  return std::min(PictureMemoryLimit(), uint64_t{256} << 20);
}

uint64_t Times(uint64_t a, uint64_t b) {
  return a != 0 && b > std::numeric_limits<uint64_t>::max() / a
             ? std::numeric_limits<uint64_t>::max()
             : a * b;
}

uint64_t Plus(uint64_t a, uint64_t b) {
  return b > std::numeric_limits<uint64_t>::max() - a ? std::numeric_limits<uint64_t>::max()
                                                      : a + b;
}

/// Most bytes per compressed byte by the rules of the codec, doubled, so that the first half of a
/// truncated file is shown.
uint64_t LargestRatio(const TiffLayout& layout) {
  switch (layout.compression) {
    case COMPRESSION_NONE:
      // With less, there is almost nothing to show.
      return 64;
    case COMPRESSION_PACKBITS:
      return 128;
    case COMPRESSION_LZW:
      return 4096;
    case COMPRESSION_ADOBE_DEFLATE:
    case COMPRESSION_DEFLATE:
    case COMPRESSION_PIXARLOG:
      return 2100;
    case COMPRESSION_JPEG:
    case COMPRESSION_OJPEG:
      return 4096;
    case COMPRESSION_CCITTFAX4:
    case COMPRESSION_CCITTFAX3:
      // A blank row takes a bit.
      return Times(8, layout.grid.rowBytes + 1);
    default:
      return 65536;
  }
}

/// Compressed bytes of the picture that are within the file.
uint64_t PackedBytes(TiffHandle& handle, const TiffLayout& layout) {
  const uint64_t size = handle.Source().Size();
  uint64_t sum = 0;
  for (const TiffExtent& extent : layout.joinedStrips) {
    sum += extent.offset < size ? std::min(extent.count, size - extent.offset) : 0;
  }
  if (!layout.joinedStrips.empty()) return std::min(sum, size);
  for (const uint16_t plane : layout.planes) {
    for (uint32_t i = 0; i < layout.grid.PerPlane() && sum < size; i++) {
      const uint32_t block = plane * layout.grid.PerPlane() + i;
      const uint64_t offset = TIFFGetStrileOffset(handle.Tiff(), block);
      if (offset < size) {
        sum += std::min<uint64_t>(TIFFGetStrileByteCount(handle.Tiff(), block), size - offset);
      }
    }
  }
  return std::min(sum, size);
}

}  // namespace

void RequirePlausibleSize(TiffHandle& handle, const TiffLayout& layout) {
  const std::string what =
      fmt::format("TIFF picture of {} x {} pixels", layout.width, layout.height);
  constexpr uint32_t kMostPixels = std::numeric_limits<int>::max();
  if (layout.width > kMostPixels || layout.height > kMostPixels) {
    throw LimitError(what + ": too wide or too high");
  }
  const TiffBlockGrid& grid = layout.grid;
  const uint64_t targetRow = StrideBytes(layout.width, PixelBits(layout.format));
  uint64_t need = Times(targetRow, layout.height);
  uint64_t decoded = need;
  if (layout.rows == TiffRowKind::stretched) {
    need = Plus(need, Times(Times(sizeof(double), layout.width), layout.height));
  }
  if (layout.rows == TiffRowKind::library) {
    const uint64_t band = Times(Times(4, layout.width), std::min(layout.height, grid.height));
    need = Plus(need, band);
  } else {
    const uint64_t block = Times(Times(grid.rowBytes, grid.height), layout.planes.size());
    // Uncompressed rows are read in pieces; compressed blocks are unpacked completely.
    if (layout.compression != COMPRESSION_NONE) need = Plus(need, block);
    decoded = std::max(decoded, Times(block, grid.PerPlane()));
  }
  RequirePictureMemory(need, what);
  if (decoded <= AlwaysAllowed()) return;
  if (Times(PackedBytes(handle, layout), LargestRatio(layout)) < decoded) {
    throw FormatError(what + ": the file is far too small to hold it");
  }
}

}  // namespace rasterkit::detail
