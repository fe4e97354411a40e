#include <algorithm>

#include <rasterkit/codecs/png/png_palette_alpha.h>
#include <rasterkit/metadata/png/png_chunks.h>

namespace rasterkit::detail {

using Bytes = std::span<const uint8_t>;

bool NeedsAlphaChannel(Bytes colors, Bytes opacities) {
  const size_t count = colors.size() / 3;
  const auto opacityOf = [&](size_t i) { return i < opacities.size() ? opacities[i] : 255; };
  size_t clear = 0;
  while (clear < count && opacityOf(clear) != 0) clear++;
  for (size_t i = 0; i < count; i++) {
    const int opacity = opacityOf(i);
    if (opacity != 0 && opacity != 255) return true;
    const bool isKey =
        clear < count && std::ranges::equal(colors.subspan(3 * i, 3), colors.subspan(3 * clear, 3));
    // Pixels of the key color are the transparent ones, no more and no less.
    if (isKey != (opacity == 0)) return true;
  }
  return false;
}

bool NeedsAlphaChannel(Bytes file) {
  Bytes colors, opacities;
  PngChunks chunks(file);
  while (chunks.Next()) {
    const PngChunk& chunk = chunks.Chunk();
    if (chunk.kind == PngKind("IDAT")) break;
    constexpr size_t kColorTypeAt = 9;
    constexpr uint8_t kIndexed = 3;
    if (chunk.kind == PngKind("IHDR") &&
        (chunk.data.size() <= kColorTypeAt || chunk.data[kColorTypeAt] != kIndexed)) {
      return false;
    }
    if (chunk.kind == PngKind("PLTE")) colors = chunk.data;
    if (chunk.kind == PngKind("tRNS") && chunk.Holds()) opacities = chunk.data;
  }
  return NeedsAlphaChannel(colors, opacities);
}

}  // namespace rasterkit::detail
