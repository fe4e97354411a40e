#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include <rasterkit/host/kernels/gray.h>
#include <rasterkit/host/raster/index_convert.h>
#include <rasterkit/host/raster/quantize.h>
#include <rasterkit/host/raster/row_conversion.h>

namespace rasterkit {
namespace {

using IndexMap = std::array<uint8_t, 256>;

std::array<bool, 256> UsedIndexes(const Raster& source) {
  std::array<bool, 256> used{};
  std::vector<uint8_t> indexes(static_cast<size_t>(source.Width()));
  for (int y = 0; y < source.Height(); ++y) {
    UnpackIndexes(source.Row(y), source.Format(), source.Width(), indexes.data());
    for (const uint8_t index : indexes) used[index] = true;
  }
  return used;
}

Raster MapIndexes(const Raster& source, TPixelFormat format, const IndexMap& map,
                  HPALETTE palette) {
  Raster target(format, source.Width(), source.Height());
  target.CopyProperties(source);
  target.palette = std::move(palette);
  std::vector<uint8_t> indexes(static_cast<size_t>(source.Width()));
  for (int y = 0; y < source.Height(); ++y) {
    UnpackIndexes(source.Row(y), source.Format(), source.Width(), indexes.data());
    for (uint8_t& index : indexes) index = map[index];
    PackIndexes(indexes.data(), format, source.Width(), target.Row(y));
  }
  target.ClearPadding();
  return target;
}

bool IsLight(const tagPALETTEENTRY& entry) {
  return kernels::GrayOf(entry.peRed, entry.peGreen, entry.peBlue) > 127;
}

IndexMap KeepIndexes() {
  IndexMap map;
  for (size_t i = 0; i < map.size(); ++i) map[i] = static_cast<uint8_t>(i);
  return map;
}

// The palette cut or filled up with black to the entries of the format.
HPALETTE ResizedPalette(const HPALETTE& palette, size_t count) {
  const TColorTable table = PaletteTable(palette);
  return HPALETTE(std::span(table).first(count));
}

struct ColorMap {
  IndexMap map{};
  std::vector<tagPALETTEENTRY> entries;
};

// Numbers the distinct colours of the used indexes in index order; nothing when there are more than
// `limit`.
std::optional<ColorMap> MapColors(const std::array<bool, 256>& used, const HPALETTE& palette,
                                  size_t limit) {
  ColorMap result;
  for (int i = 0; i < 256; ++i) {
    if (!used[static_cast<size_t>(i)]) continue;
    tagPALETTEENTRY entry = palette.Entry(i);
    entry.peFlags = 0;
    const auto found = std::ranges::find(result.entries, entry);
    if (found == result.entries.end() && result.entries.size() == limit) return std::nullopt;
    result.map[static_cast<size_t>(i)] = static_cast<uint8_t>(found - result.entries.begin());
    if (found == result.entries.end()) result.entries.push_back(entry);
  }
  return result;
}

// Puts the darker of two colours first; a single colour stands beside the opposite of black and
// white.
void ArrangeTwoColors(ColorMap& colors) {
  std::vector<tagPALETTEENTRY>& entries = colors.entries;
  if (entries.empty()) return;
  if (entries.size() == 1)
    entries.push_back(IsLight(entries[0]) ? tagPALETTEENTRY{} : tagPALETTEENTRY{255, 255, 255, 0});
  const auto weight = [](const tagPALETTEENTRY& e) {
    return 297 * e.peRed + 589 * e.peGreen + 114 * e.peBlue;
  };
  if (weight(entries[0]) <= weight(entries[1])) return;
  std::swap(entries[0], entries[1]);
  for (uint8_t& index : colors.map) index ^= 1;
}

}  // namespace

Raster ConvertIndexed(const Raster& source, TPixelFormat format) {
  const auto limit = static_cast<size_t>(1) << StoredBitsPerPixel(format);
  if (format > source.Format())
    return MapIndexes(source, format, KeepIndexes(), ResizedPalette(source.palette, limit));

  const std::array<bool, 256> used = UsedIndexes(source);
  if (std::none_of(used.begin() + static_cast<ptrdiff_t>(limit), used.end(),
                   [](bool u) { return u; }))
    return MapIndexes(source, format, KeepIndexes(), ResizedPalette(source.palette, limit));

  if (std::optional<ColorMap> colors = MapColors(used, source.palette, limit)) {
    if (format == pf1bit) ArrangeTwoColors(*colors);
    colors->entries.resize(limit);
    return MapIndexes(source, format, colors->map, HPALETTE(colors->entries));
  }
  return format == pf1bit ? ThresholdToMono(source) : QuantizeRaster(source, format);
}

Raster ThresholdToMono(const Raster& source) {
  Raster target(pf1bit, source.Width(), source.Height());
  const HPALETTE blackAndWhite = target.palette;
  target.CopyProperties(source);
  target.palette = blackAndWhite;
  target.alphaFormat = afIgnored;
  const PixelTable table = MakePixelTable(source.palette);
  std::vector<RGBArec> pixels(static_cast<size_t>(source.Width()));
  std::vector<uint8_t> bits(pixels.size());
  for (int y = 0; y < source.Height(); ++y) {
    RowTo32(source.Row(y), source.Format(), source.Width(), table, pixels.data());
    for (size_t x = 0; x < pixels.size(); ++x)
      bits[x] = kernels::GrayOf(pixels[x].r, pixels[x].g, pixels[x].b) > 127 ? 1 : 0;
    PackIndexes(bits.data(), pf1bit, source.Width(), target.Row(y));
  }
  target.ClearPadding();
  return target;
}

}  // namespace rasterkit
