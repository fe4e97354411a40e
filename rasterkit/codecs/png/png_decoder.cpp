#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include <rasterkit/codecs/png/png_decoder.h>
#include <rasterkit/codecs/png/png_decoding.h>
#include <rasterkit/codecs/rows/missing_rows.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {

namespace {

using Bytes = std::span<const uint8_t>;
using detail::PngReader;
using Header = detail::PngFacts;

TPixelFormat FormatOf(const Header& header) {
  if (header.HasAlpha()) return pf32bit;
  if (header.colorType == PNG_COLOR_TYPE_RGB) return pf24bit;
  return header.bitDepth == 1 ? pf1bit : header.bitDepth <= 4 ? pf4bit : pf8bit;
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

HPALETTE PaletteOf(const PngReader& reader, const Header& header) {
  if (header.IsPalette()) return FilePalette(reader);
  if (header.IsGray()) return GrayPalette(1 << std::min(header.bitDepth, 8));
  return {};
}

/// Scales a sample to 8 bits, rounded.
uint8_t ScaleSample(unsigned value, int bitDepth) {
  const unsigned full = (1u << bitDepth) - 1;
  return static_cast<uint8_t>((std::min(value, full) * 255u + full / 2) / full);
}

/// The transparent color of the file. Partly transparent palette entries become opaque, with a
/// warning, because a raster has one key color only.
std::optional<TColor> TransparentColorOf(const PngReader& reader, const Header& header,
                                         const HPALETTE& palette, CodecReport& report) {
  if (header.HasAlpha()) return clWhite;
  png_bytep alphas = nullptr;
  int count = 0;
  png_color_16p color = nullptr;
  if (!png_get_tRNS(reader.Png(), reader.Info(), &alphas, &count, &color)) return std::nullopt;
  if (!header.IsPalette()) {
    const auto scaled = [&](unsigned value) { return ScaleSample(value, header.bitDepth); };
    if (header.IsGray()) return RGB(scaled(color->gray), scaled(color->gray), scaled(color->gray));
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

/// Makes libpng deliver rows in the layout of the raster, except for 2-bit samples: see
/// ExpandTwoBits.
void RequestRows(png_structp png, const Header& header) {
  // Exact: libpng's division by 257 rounds to nearest.
  if (header.bitDepth == 16) png_set_scale_16(png);
  if (header.colorType == PNG_COLOR_TYPE_GRAY_ALPHA) png_set_gray_to_rgb(png);
  if (header.HasAlpha() || header.colorType == PNG_COLOR_TYPE_RGB) png_set_bgr(png);
}

/// Expands a row of 2-bit samples to 4-bit ones in place, from its end so that nothing is
/// overwritten unread. Samples beyond the last pixel go to the padding.
void ExpandTwoBits(uint8_t* row, int width) {
  for (int i = (width - 1) / 4; i >= 0; i--) {
    const int samples = row[i];
    row[2 * i + 1] = static_cast<uint8_t>((samples << 2 & 0x30) | (samples & 0x03));
    row[2 * i] = static_cast<uint8_t>((samples >> 2 & 0x30) | (samples >> 4 & 0x03));
  }
}

}  // namespace

Raster DecodePng(Bytes bytes, CodecReport* report) {
  const LimitsScope limits;
  CodecReport noticed;
  PngReader reader(bytes);
  const Header header = detail::ReadPngFacts(reader, bytes);
  const TPixelFormat format = FormatOf(header);
  detail::RequirePngSize(
      header, StrideBytes(header.width, StoredBitsPerPixel(format)) * header.height, bytes.size());

  Raster raster(format, static_cast<int>(header.width), static_cast<int>(header.height));
  raster.palette = PaletteOf(reader, header);
  raster.resolution = detail::PngResolution(reader);
  // Gray with alpha becomes color pixels, which a gray profile does not describe.
  const auto space = header.IsGray() ? detail::ProfileSpace::gray : detail::ProfileSpace::rgb;
  raster.profile = detail::PngProfile(reader, space);
  raster.transparentColor = TransparentColorOf(reader, header, raster.palette, noticed);
  if (header.HasAlpha()) raster.alphaFormat = afDefined;

  reader.Run([&] { RequestRows(reader.Png(), header); });
  const int missing = detail::DecodePngRows(reader, header, [&](int y) { return raster.Row(y); });
  for (int y = 0; header.bitDepth == 2 && y < missing; y++) {
    ExpandTwoBits(raster.Row(y), raster.Width());
  }
  if (missing == raster.Height() && !reader.RanDry()) detail::CheckPngEnd(reader);
  detail::FillMissingRows(raster, missing);
  raster.ClearPadding();

  detail::NotePngDamage(reader, header, missing, noticed);
  if (report) report->Append(noticed);
  return raster;
}

}  // namespace rasterkit
