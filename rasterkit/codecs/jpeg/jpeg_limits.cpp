#include <algorithm>

#include <fmt/format.h>

#include <rasterkit/codecs/jpeg/jpeg_limits.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

/// Limit of the pixels of all scans together. A scan takes time for every block even if it holds
/// only a few bytes, so that a small file could take minutes. Real files of the largest size within
/// the default memory limit have about twelve scans.
constexpr uint64_t kScanPixelBudget = uint64_t{1} << 34;
/// Smallest cost of a scan, in pixels.
constexpr uint64_t kSmallestScan = 1 << 16;

uint64_t RoundUp(uint64_t value, int step) {
  const auto unit = static_cast<uint64_t>(step);
  return (value + unit - 1) / unit * unit;
}

}  // namespace

void RequireSupportedCoding(const JpegFrame& frame) {
  if (frame.lossless) throw UnsupportedError("JPEG: lossless files are not supported");
  if (frame.hierarchical) throw UnsupportedError("JPEG: hierarchical files are not supported");
  if (frame.bits != 8) {
    throw UnsupportedError(fmt::format("JPEG: {} bits per sample are not supported", frame.bits));
  }
  if (frame.width == 0 || frame.height == 0) {
    throw FormatError("JPEG: the frame header has no size");
  }
}

uint64_t CoefficientBytes(const jpeg_decompress_struct& codec) {
  uint64_t blocks = 0;
  for (int i = 0; i < codec.num_components; i++) {
    const jpeg_component_info& component = codec.comp_info[i];
    blocks += RoundUp(component.width_in_blocks, component.h_samp_factor) *
              RoundUp(component.height_in_blocks, component.v_samp_factor);
  }
  return blocks * sizeof(JBLOCK);
}

uint64_t StoredBlocks(const jpeg_decompress_struct& codec) {
  uint64_t blocks = 0;
  for (int i = 0; i < codec.num_components; i++) {
    const jpeg_component_info& component = codec.comp_info[i];
    blocks += uint64_t{component.width_in_blocks} * component.height_in_blocks;
  }
  return blocks;
}

int MostScans(const jpeg_decompress_struct& codec) {
  const uint64_t pixels = uint64_t{codec.image_width} * codec.image_height;
  return static_cast<int>(kScanPixelBudget / std::max(pixels, kSmallestScan));
}

}  // namespace rasterkit::detail
