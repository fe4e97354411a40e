#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include <rasterkit/kernels/gray/gray.h>
#include <rasterkit/kernels/rows/convert_rows.h>
#include <rasterkit/raster/adaptive_palette.h>
#include <rasterkit/raster/index_convert.h>
#include <rasterkit/raster/row_conversion.h>

namespace rasterkit {
namespace {

using IndexMap = std::array<uint8_t, 256>;

IndexCounts CountIndexes(const Raster& source) {
  IndexCounts counts{};
  std::vector<uint8_t> indexes(static_cast<size_t>(source.Width()));
  for (int y = 0; y < source.Height(); ++y) {
    UnpackIndexes(source.Row(y), source.Format(), source.Width(), indexes.data());
    for (const uint8_t index : indexes) ++counts[index];
  }
  return counts;
}

Raster MapIndexes(const Raster& source, TPixelFormat format, const IndexPlan& plan) {
  Raster target(format, source.Width(), source.Height());
  target.CopyProperties(source);
  target.palette = plan.palette;
  if (plan.isThreshold) target.alphaFormat = afIgnored;
  std::vector<uint8_t> indexes(static_cast<size_t>(source.Width()));
  for (int y = 0; y < source.Height(); ++y) {
    UnpackIndexes(source.Row(y), source.Format(), source.Width(), indexes.data());
    for (uint8_t& index : indexes) index = plan.map[index];
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

// Cuts the palette, or fills it up with black, to the number of entries of the format.
HPALETTE ResizedPalette(const HPALETTE& palette, size_t count) {
  const TColorTable table = PaletteTable(palette);
  return HPALETTE(std::span(table).first(count));
}

struct ColorMap {
  IndexMap map{};
  std::vector<tagPALETTEENTRY> entries;
};

// Numbers the distinct colors of the used indexes in index order; no value if there are more than
// `limit`.
std::optional<ColorMap> MapColors(const IndexCounts& counts, const HPALETTE& palette,
                                  size_t limit) {
  ColorMap result;
  for (int i = 0; i < 256; ++i) {
    if (counts[static_cast<size_t>(i)] == 0) continue;
    tagPALETTEENTRY entry = palette.Entry(i);
    entry.peFlags = 0;
    const auto found = std::ranges::find(result.entries, entry);
    if (found == result.entries.end() && result.entries.size() == limit) return std::nullopt;
    result.map[static_cast<size_t>(i)] = static_cast<uint8_t>(found - result.entries.begin());
    if (found == result.entries.end()) result.entries.push_back(entry);
  }
  return result;
}

// Adaptive palette for the colors of the palette, weighted by their numbers of pixels.
ColorMap MapNearest(const IndexCounts& counts, const HPALETTE& palette, size_t limit) {
  std::vector<ColorPoint> points;
  for (int i = 0; i < 256; ++i) {
    const tagPALETTEENTRY entry = palette.Entry(i);
    const uint64_t count = counts[static_cast<size_t>(i)];
    if (count > 0) {
      points.push_back(MakeColorPoint(entry.peRed, entry.peGreen, entry.peBlue, count));
    }
  }
  ColorMap result;
  result.entries = ChooseAdaptivePalette(std::move(points), limit);
  for (int i = 0; i < 256; ++i) {
    result.map[static_cast<size_t>(i)] =
        static_cast<uint8_t>(NearestEntry(result.entries, EntryColor(palette.Entry(i))));
  }
  return result;
}

// Puts the darker of two colors first. A single color is paired with black if it is light, else
// with white.
void ArrangeTwoColors(ColorMap& colors) {
  std::vector<tagPALETTEENTRY>& entries = colors.entries;
  if (entries.empty()) return;
  if (entries.size() == 1) {
    entries.push_back(IsLight(entries[0]) ? tagPALETTEENTRY{} : tagPALETTEENTRY{255, 255, 255, 0});
  }
  const auto weight = [](const tagPALETTEENTRY& e) {
    return 297 * e.peRed + 589 * e.peGreen + 114 * e.peBlue;
  };
  if (weight(entries[0]) <= weight(entries[1])) return;
  std::swap(entries[0], entries[1]);
  for (uint8_t& index : colors.map) index ^= 1;
}

/// Gray above 127 is white.
IndexPlan ThresholdPlan(const HPALETTE& palette) {
  IndexPlan plan;
  plan.palette = DefaultPalette(pf1bit);
  plan.isThreshold = true;
  for (int i = 0; i < 256; ++i) {
    plan.map[static_cast<size_t>(i)] = IsLight(palette.Entry(i)) ? 1 : 0;
  }
  return plan;
}

}  // namespace

IndexPlan PlanOfIndexes(const IndexCounts& counts, const HPALETTE& palette, TPixelFormat from,
                        TPixelFormat to) {
  const auto limit = static_cast<size_t>(1) << StoredBitsPerPixel(to);
  const auto beyond = counts.begin() + static_cast<ptrdiff_t>(limit);
  const bool fits =
      to > from || std::all_of(beyond, counts.end(), [](uint64_t count) { return count == 0; });
  if (fits) return {KeepIndexes(), ResizedPalette(palette, limit), false};

  std::optional<ColorMap> colors = MapColors(counts, palette, limit);
  if (!colors && to == pf1bit) return ThresholdPlan(palette);
  if (!colors) colors = MapNearest(counts, palette, limit);
  if (to == pf1bit) ArrangeTwoColors(*colors);
  colors->entries.resize(limit);
  return {colors->map, HPALETTE(colors->entries), false};
}

Raster ConvertIndexed(const Raster& source, TPixelFormat format) {
  const IndexCounts counts = format > source.Format() ? IndexCounts() : CountIndexes(source);
  return MapIndexes(source, format, PlanOfIndexes(counts, source.palette, source.Format(), format));
}

Raster ThresholdToMono(const Raster& source) {
  Raster target(pf1bit, source.Width(), source.Height());
  const HPALETTE blackAndWhite = target.palette;
  target.CopyProperties(source);
  target.palette = blackAndWhite;
  target.alphaFormat = afIgnored;
  const PixelTable table = MakePixelTable(source.palette);
  const auto width = static_cast<size_t>(source.Width());
  std::vector<RGBArec> pixels(width);
  std::vector<uint8_t> grays(width);
  for (int y = 0; y < source.Height(); ++y) {
    if (source.Format() == pf24bit) {
      kernels::GrayOfRow24(source.Row(y), width, grays.data());
    } else {
      RowTo32(source.Row(y), source.Format(), source.Width(), table, pixels.data());
      kernels::GrayOfRow32(reinterpret_cast<const uint8_t*>(pixels.data()), width, grays.data());
    }
    kernels::BitsAbove(grays.data(), width, 127, target.Row(y));
  }
  target.ClearPadding();
  return target;
}

}  // namespace rasterkit
