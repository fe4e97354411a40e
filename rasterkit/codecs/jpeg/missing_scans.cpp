#include <algorithm>

#include <fmt/format.h>

#include <rasterkit/codecs/jpeg/missing_scans.h>

namespace rasterkit::detail {
namespace {

/// True if all bits of all coefficients of a progressive file were there.
bool HasAllBits(const jpeg_decompress_struct& codec, int component) {
  const int* bits = codec.coef_bits[component];
  return std::all_of(bits, bits + DCTSIZE2, [](int lowest) { return lowest == 0; });
}

bool IsWhole(const jpeg_decompress_struct& codec, int component) {
  // A table is kept when the first scan of its component begins.
  if (codec.comp_info[component].quant_table == nullptr) return false;
  return codec.progressive_mode == FALSE || HasAllBits(codec, component);
}

}  // namespace

std::string MissingScans(const jpeg_decompress_struct& codec) {
  for (int i = 0; i < codec.num_components; i++) {
    if (!IsWhole(codec, i)) return fmt::format("JPEG: scans of component {} are missing", i + 1);
  }
  return {};
}

}  // namespace rasterkit::detail
