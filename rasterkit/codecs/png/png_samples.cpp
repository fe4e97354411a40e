#include <algorithm>
#include <bit>
#include <cstring>
#include <iterator>

#include <rasterkit/codecs/png/png_decoder.h>
#include <rasterkit/codecs/png/png_decoding.h>
#include <rasterkit/codecs/png/png_header.h>
#include <rasterkit/codecs/png/png_palette_alpha.h>
#include <rasterkit/codecs/png/png_picture.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

using detail::PngFacts;
using detail::PngReader;

bool HasKeyColor(const PngReader& reader, const PngFacts& facts) {
  return !facts.HasAlpha() && png_get_valid(reader.Png(), reader.Info(), PNG_INFO_tRNS) != 0;
}

/// The layout of 16-bit samples. A transparent color becomes an alpha channel, which says the same.
PixelLayout LayoutOf(const PngReader& reader, const PngFacts& facts) {
  const bool isColor = (facts.colorType & PNG_COLOR_MASK_COLOR) != 0;
  const bool hasAlpha = facts.HasAlpha() || HasKeyColor(reader, facts);
  PixelLayout layout;
  layout.type = NumberType::uint16;
  layout.bits = 16;
  layout.model = isColor ? ColorModel::rgb : ColorModel::gray;
  layout.alpha = hasAlpha ? AlphaKind::straight : AlphaKind::none;
  layout.bands = (isColor ? 3 : 1) + (hasAlpha ? 1 : 0);
  layout.profile =
      PngProfile(reader, isColor ? detail::ProfileSpace::rgb : detail::ProfileSpace::gray);
  return layout;
}

Samples DecodeWords(std::span<const uint8_t> file, CodecReport* report) {
  const LimitsScope limits;
  CodecReport noticed;
  PngReader reader(file);
  const PngFacts facts = detail::ReadPngFacts(reader, file);
  const PixelLayout layout = LayoutOf(reader, facts);
  const uint64_t need =
      uint64_t{facts.width} * facts.height * static_cast<uint64_t>(layout.bands) * 2;
  detail::RequirePngSize(facts, need, file.size());

  Samples samples(layout, static_cast<int>(facts.width), static_cast<int>(facts.height));
  samples.resolution = detail::PngResolution(reader);
  const bool hasKeyColor = HasKeyColor(reader, facts);
  reader.Run([&] {
    if (hasKeyColor) png_set_tRNS_to_alpha(reader.Png());
    if (std::endian::native == std::endian::little) png_set_swap(reader.Png());
  });
  const int missing = detail::DecodePngRows(reader, facts, [&](int y) { return samples.Row(y); });
  if (missing == samples.Height() && !reader.RanDry()) detail::CheckPngEnd(reader);
  // White and opaque.
  for (int y = missing; y < samples.Height(); y++) {
    std::memset(samples.Row(y), 0xFF, samples.Stride());
  }
  detail::NotePngDamage(reader, facts, missing, noticed);
  if (report) report->Append(noticed);
  return samples;
}

}  // namespace

Pixels DecodePngPixels(std::span<const uint8_t> file, CodecReport* report) {
  if (detail::ReadPngSize(file).form.bits == 16) return DecodeWords(file, report);
  if (detail::NeedsAlphaChannel(file)) return detail::DecodePaletteAlpha(file, report);
  return DecodePng(file, report);
}

}  // namespace rasterkit
