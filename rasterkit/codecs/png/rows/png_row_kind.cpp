#include <algorithm>
#include <bit>
#include <optional>
#include <vector>

#include <rasterkit/codecs/png/png_header.h>
#include <rasterkit/codecs/png/png_palette_alpha.h>
#include <rasterkit/codecs/png/rows/png_row_kind.h>

namespace rasterkit::detail {
namespace {

TPixelFormat FormatOf(const PngFacts& facts) {
  if (facts.HasAlpha()) return pf32bit;
  if (facts.colorType == PNG_COLOR_TYPE_RGB) return pf24bit;
  return facts.bitDepth == 1 ? pf1bit : facts.bitDepth <= 4 ? pf4bit : pf8bit;
}

HPALETTE FilePalette(const PngReader& reader) {
  png_colorp colors = nullptr;
  int count = 0;
  png_get_PLTE(reader.Png(), reader.Info(), &colors, &count);
  std::vector<tagPALETTEENTRY> entries;
  entries.reserve(static_cast<size_t>(count));
  for (int i = 0; i < count; i++) {
    entries.push_back({colors[i].red, colors[i].green, colors[i].blue, 0});
  }
  return HPALETTE(entries);
}

HPALETTE PaletteOf(const PngReader& reader, const PngFacts& facts) {
  if (facts.IsPalette()) return FilePalette(reader);
  if (facts.IsGray()) return GrayPalette(1 << std::min(facts.bitDepth, 8));
  return {};
}

/// Scales a sample to 8 bits, rounded.
uint8_t ScaleSample(unsigned value, int bitDepth) {
  const unsigned full = (1u << bitDepth) - 1;
  return static_cast<uint8_t>((std::min(value, full) * 255u + full / 2) / full);
}

/// The transparent color of the file. Partly transparent palette entries become opaque, with a
/// warning, because a raster has one key color only.
std::optional<TColor> TransparentColorOf(const PngReader& reader, const PngFacts& facts,
                                         const HPALETTE& palette, CodecReport& report) {
  if (facts.HasAlpha()) return clWhite;
  png_bytep alphas = nullptr;
  int count = 0;
  png_color_16p color = nullptr;
  if (!png_get_tRNS(reader.Png(), reader.Info(), &alphas, &count, &color)) return std::nullopt;
  if (!facts.IsPalette()) {
    const auto scaled = [&](unsigned value) { return ScaleSample(value, facts.bitDepth); };
    if (facts.IsGray()) return RGB(scaled(color->gray), scaled(color->gray), scaled(color->gray));
    return RGB(scaled(color->red), scaled(color->green), scaled(color->blue));
  }
  std::optional<TColor> result;
  bool lost = false;
  for (int i = 0; i < count; i++) {
    const TColor entry = EntryColor(palette.Entry(i));
    if (alphas[i] == 0 && !result) result = entry;
    if (alphas[i] != 255 && !(alphas[i] == 0 && entry == result)) lost = true;
  }
  if (lost) {
    report.warnings.emplace_back(
        result ? "PNG: one palette color stays transparent, the others become opaque"
               : "PNG: the partly transparent palette colors become opaque");
  }
  return result;
}

Raster ColorsLike(const PngReader& reader, const PngFacts& facts, CodecReport& report) {
  Raster raster(FormatOf(facts), 1, 1);
  raster.palette = PaletteOf(reader, facts);
  raster.resolution = PngResolution(reader);
  // Gray with alpha becomes color pixels, which a gray profile does not describe.
  raster.profile = PngProfile(reader, facts.IsGray() ? ProfileSpace::gray : ProfileSpace::rgb);
  raster.transparentColor = TransparentColorOf(reader, facts, raster.palette, report);
  if (facts.HasAlpha()) raster.alphaFormat = afDefined;
  return raster;
}

Raster PaletteAlphaLike(const PngReader& reader) {
  Raster raster(pf32bit, 1, 1);
  raster.alphaFormat = afDefined;
  raster.transparentColor = clWhite;
  raster.resolution = PngResolution(reader);
  raster.profile = PngProfile(reader, ProfileSpace::rgb);
  return raster;
}

Samples WordsLike(const PngReader& reader, const PngFacts& facts) {
  const bool isColor = (facts.colorType & PNG_COLOR_MASK_COLOR) != 0;
  const bool hasAlpha = facts.HasAlpha() || HasPngKeyColor(reader, facts);
  PixelLayout layout;
  layout.type = NumberType::uint16;
  layout.bits = 16;
  layout.model = isColor ? ColorModel::rgb : ColorModel::gray;
  layout.alpha = hasAlpha ? AlphaKind::straight : AlphaKind::none;
  layout.bands = (isColor ? 3 : 1) + (hasAlpha ? 1 : 0);
  layout.profile = PngProfile(reader, isColor ? ProfileSpace::rgb : ProfileSpace::gray);
  Samples samples(layout, 1, 1);
  samples.resolution = PngResolution(reader);
  return samples;
}

}  // namespace

PngRowKind PngRowKindOf(const PngMap& map) {
  if (ReadPngSize(map.front).form.bits == 16) return PngRowKind::words;
  return NeedsAlphaChannel(map.front) ? PngRowKind::paletteAlpha : PngRowKind::colors;
}

Pixels PngRowsLike(const PngReader& reader, const PngFacts& facts, PngRowKind kind,
                   CodecReport& report) {
  if (kind == PngRowKind::words) return WordsLike(reader, facts);
  if (kind == PngRowKind::paletteAlpha) return PaletteAlphaLike(reader);
  return ColorsLike(reader, facts, report);
}

void RequestPngRows(PngReader& reader, const PngFacts& facts, PngRowKind kind) {
  png_structp png = reader.Png();
  const bool hasKeyColor = HasPngKeyColor(reader, facts);
  reader.Run([&] {
    if (kind == PngRowKind::words) {
      if (hasKeyColor) png_set_tRNS_to_alpha(png);
      if (std::endian::native == std::endian::little) png_set_swap(png);
    } else if (kind == PngRowKind::paletteAlpha) {
      png_set_palette_to_rgb(png);
      png_set_tRNS_to_alpha(png);
      png_set_bgr(png);
      // For a file whose opacities the library leaves out.
      png_set_filler(png, 0xFF, PNG_FILLER_AFTER);
    } else {
      // Exact: libpng's division by 257 rounds to nearest.
      if (facts.bitDepth == 16) png_set_scale_16(png);
      if (facts.colorType == PNG_COLOR_TYPE_GRAY_ALPHA) png_set_gray_to_rgb(png);
      if (facts.HasAlpha() || facts.colorType == PNG_COLOR_TYPE_RGB) png_set_bgr(png);
    }
  });
}

bool HasPngKeyColor(const PngReader& reader, const PngFacts& facts) {
  png_bytep alphas = nullptr;
  int count = 0;
  png_color_16p color = nullptr;
  // A chunk in front of a palette counts as valid, but libpng has dropped what it holds.
  return !facts.HasAlpha() &&
         png_get_tRNS(reader.Png(), reader.Info(), &alphas, &count, &color) != 0 && count > 0;
}

void ExpandTwoBits(uint8_t* row, int width) {
  for (int i = (width - 1) / 4; i >= 0; i--) {
    const int samples = row[i];
    row[2 * i + 1] = static_cast<uint8_t>((samples << 2 & 0x30) | (samples & 0x03));
    row[2 * i] = static_cast<uint8_t>((samples >> 2 & 0x30) | (samples >> 4 & 0x03));
  }
}

}  // namespace rasterkit::detail
