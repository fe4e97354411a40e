#include <algorithm>
#include <cmath>

#include <rasterkit/codecs/png/png_encoder.h>
#include <rasterkit/codecs/png/png_encoding.h>
#include <rasterkit/codecs/png/png_writer.h>
#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/codecs/rows/palette_entries_of_file.h>
#include <rasterkit/raster/row_conversion.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {

namespace {

using detail::PngWriter;

constexpr double kMetersPerInch = 0.0254;

/// The header of the file.
struct Layout {
  int bitDepth = 8;
  int colorType = PNG_COLOR_TYPE_RGB;
  std::vector<png_color> palette;
};

bool IsRamp(const HPALETTE& palette, int bits) {
  return palette == GrayPalette(1 << bits);
}

/// Indexed rasters with the full gray ramp become gray, which needs no palette and is read back the
/// same.
Layout LayoutOf(const Raster& raster) {
  Layout layout;
  if (IsIndexed(raster.Format())) {
    layout.bitDepth = StoredBitsPerPixel(raster.Format());
    layout.colorType = PNG_COLOR_TYPE_GRAY;
    if (!IsRamp(raster.palette, layout.bitDepth)) {
      layout.colorType = PNG_COLOR_TYPE_PALETTE;
      layout.palette = detail::PngPaletteOf(raster, detail::PaletteEntriesOfFile(raster));
    }
  } else if (raster.Format() == pf32bit && raster.alphaFormat == afDefined) {
    layout.colorType = PNG_COLOR_TYPE_RGB_ALPHA;
  }
  return layout;
}

png_uint_32 DotsPerMeter(double dotsPerInch) {
  return static_cast<png_uint_32>(
      std::clamp(std::round(dotsPerInch / kMetersPerInch), 1.0, 2147483647.0));
}

void SetHeader(png_structp png, png_infop info, const Raster& raster, const Layout& layout) {
  png_set_IHDR(png, info, static_cast<png_uint_32>(raster.Width()),
               static_cast<png_uint_32>(raster.Height()), layout.bitDepth, layout.colorType,
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (!layout.palette.empty()) {
    png_set_PLTE(png, info, layout.palette.data(), static_cast<int>(layout.palette.size()));
  }
  // A negative color is a system color, which a file cannot hold.
  if (raster.transparentColor && *raster.transparentColor >= 0) {
    detail::SetPngKeyColor(png, info, {layout.colorType, layout.bitDepth}, layout.palette,
                           *raster.transparentColor);
  }
  if (raster.resolution.IsKnown()) {
    png_set_pHYs(png, info, DotsPerMeter(raster.resolution.x), DotsPerMeter(raster.resolution.y),
                 PNG_RESOLUTION_METER);
  }
  const bool gray = layout.colorType == PNG_COLOR_TYPE_GRAY;
  if (detail::ProfileFits(raster.profile,
                          gray ? detail::ProfileSpace::gray : detail::ProfileSpace::rgb)) {
    png_set_iCCP(png, info, "ICC profile", PNG_COMPRESSION_TYPE_BASE, raster.profile->data(),
                 static_cast<png_uint_32>(raster.profile->size()));
  }
}

}  // namespace

void EncodePng(const Raster& raster, TStream& stream, int level) {
  const LimitsScope limits;
  if (raster.Width() == 0 || raster.Height() == 0) {
    throw FormatError("PNG: an empty picture cannot be written");
  }
  const Layout layout = LayoutOf(raster);
  const bool words = raster.Format() == pf15bit || raster.Format() == pf16bit;
  std::vector<RGBrec> bgrRow(words ? static_cast<size_t>(raster.Width()) : 0);
  const PixelTable noTable{};
  PngWriter writer(stream);
  png_structp png = writer.Png();
  writer.Run([&] {
    detail::SetPngCompression(png, {layout.colorType, layout.bitDepth}, level);
    SetHeader(png, writer.Info(), raster, layout);
    png_write_info(png, writer.Info());
    png_set_bgr(png);
    if (raster.Format() == pf32bit && layout.colorType == PNG_COLOR_TYPE_RGB) {
      png_set_filler(png, 0, PNG_FILLER_AFTER);
    }
    for (int y = 0; y < raster.Height(); y++) {
      RequireTime();
      if (words) RowTo24(raster.Row(y), raster.Format(), raster.Width(), noTable, bgrRow.data());
      png_write_row(png, words ? &bgrRow.data()->b : raster.Row(y));
    }
    png_write_end(png, writer.Info());
  });
}

}  // namespace rasterkit
