#include <algorithm>
#include <limits>

#include <fmt/format.h>

#include <rasterkit/codecs/rows/frame_format.h>
#include <rasterkit/codecs/rows/plausible_size.h>
#include <rasterkit/codecs/tiff/tiff_layout.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {

namespace {

uint64_t Plus(uint64_t a, uint64_t b) {
  return b > std::numeric_limits<uint64_t>::max() - a ? std::numeric_limits<uint64_t>::max()
                                                      : a + b;
}

/// Most bytes per compressed byte by the rules of the codec, with slack for truncated files.
uint64_t LargestRatio(const TiffLayout& layout) {
  switch (layout.compression) {
    case COMPRESSION_NONE:
      return kPlainSlack;
    case COMPRESSION_PACKBITS:
      return 64 * kCutSlack;
    case COMPRESSION_LZW:
      return 2728 * kCutSlack;
    case COMPRESSION_ADOBE_DEFLATE:
    case COMPRESSION_DEFLATE:
    case COMPRESSION_PIXARLOG:
      return kDeflateRatio * kCutSlack;
    case COMPRESSION_JPEG:
    case COMPRESSION_OJPEG:
      // A block of 8 x 8 samples takes a bit; colors may have a quarter of the samples per side.
      return 2048 * kCutSlack;
    case COMPRESSION_CCITTFAX4:
    case COMPRESSION_CCITTFAX3:
      // A blank row takes a bit.
      return SaturatedProduct(8 * kCutSlack, layout.grid.rowBytes + 1);
    default:
      return 65536;
  }
}

/// Blocks that a sparse file does not leave out.
uint64_t StoredBlockCount(TiffHandle& handle, const TiffLayout& layout) {
  if (!layout.joinedStrips.empty()) return layout.joinedStrips.size();
  uint64_t count = 0;
  for (const uint16_t plane : layout.planes) {
    for (uint32_t i = 0; i < layout.grid.PerPlane(); i++) {
      const uint32_t block = plane * layout.grid.PerPlane() + i;
      const bool isStored = TIFFGetStrileOffset(handle.Tiff(), block) != 0 ||
                            TIFFGetStrileByteCount(handle.Tiff(), block) != 0;
      count += isStored ? 1 : 0;
    }
  }
  return count;
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

void RequirePlausibleSize(TiffHandle& handle, const TiffLayout& layout, TiffHolding holding) {
  const std::string what =
      fmt::format("TIFF picture of {} x {} pixels", layout.width, layout.height);
  constexpr uint32_t kMostPixels = std::numeric_limits<int>::max();
  if (layout.width > kMostPixels || layout.height > kMostPixels) {
    throw LimitError(what + ": too wide or too high");
  }
  const TiffBlockGrid& grid = layout.grid;
  const uint64_t targetRow =
      layout.rows == TiffRowKind::samples
          ? SaturatedProduct(layout.width, static_cast<uint64_t>(layout.SampleBytes()) *
                                               static_cast<uint64_t>(layout.pitch))
          : StrideBytes(layout.width, PixelBits(layout.format));
  uint64_t need = SaturatedProduct(targetRow, layout.height);
  uint64_t decoded = need;
  if (holding == TiffHolding::parts) need = targetRow;
  if (layout.rows == TiffRowKind::stretched) {
    need =
        Plus(need, SaturatedProduct(SaturatedProduct(sizeof(double), layout.width), layout.height));
  }
  if (layout.rows == TiffRowKind::library) {
    const uint64_t band =
        SaturatedProduct(SaturatedProduct(4, layout.width), std::min(layout.height, grid.height));
    need = Plus(need, band);
  } else {
    const uint64_t block =
        SaturatedProduct(SaturatedProduct(grid.rowBytes, grid.height), layout.planes.size());
    // Uncompressed rows are read in pieces; compressed blocks are unpacked completely.
    if (layout.compression != COMPRESSION_NONE) need = Plus(need, block);
    decoded = std::max(decoded, SaturatedProduct(block, grid.PerPlane()));
  }
  RequirePicture(layout.width, layout.height, need, what);
  // Counting the bytes of a huge directory takes time.
  if (decoded <= kAlwaysPlausible && decoded <= PictureMemoryLimit()) return;
  if (holding == TiffHolding::parts && layout.rows != TiffRowKind::library) {
    // What a sparse file leaves out takes no memory where it is not read.
    const uint64_t block = SaturatedProduct(grid.rowBytes, grid.height);
    const uint64_t stored = StoredBlockCount(handle, layout);
    const uint64_t all = uint64_t{grid.PerPlane()} * layout.planes.size();
    if (stored < all) decoded = std::min(decoded, SaturatedProduct(block, stored));
  }
  RequirePlausible({decoded, decoded, PackedBytes(handle, layout), LargestRatio(layout)}, what);
}

}  // namespace rasterkit::detail
