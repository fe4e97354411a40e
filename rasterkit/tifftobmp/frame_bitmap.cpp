#include <cstring>
#include <utility>

#include <rasterkit/bitmaptools/pixels/palette_tools.h>
#include <rasterkit/bitmaptools/pixels/transparency.h>
#include <rasterkit/raster/format_of_bits.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/tifftobmp/frame_bitmap.h>
#include <rasterkit/tifftobmp/wic_formats.h>

namespace rasterkit::detail {
namespace {

/// Copies the rows to another format with the same number of bits. The copy is rare, because codecs
/// usually deliver the requested format.
Raster RowsAs(TPixelFormat format, const Raster& rows) {
  Raster renamed(format, rows.Width(), rows.Height());
  renamed.CopyProperties(rows);
  for (int y = 0; y < rows.Height(); ++y) {
    std::memcpy(renamed.Row(y), rows.Row(y), rows.RowBytes());
  }
  renamed.ClearPadding();
  return renamed;
}

Raster TakeRows(Raster& rows, int bits) {
  if (StoredBitsPerPixel(rows.Format()) != bits) throw FormatError("Invalid image");
  const TPixelFormat format = FormatOfBits(bits);
  return rows.Format() == format ? std::move(rows) : RowsAs(format, rows);
}

HPALETTE PaletteOf(const ImagingFrame& frame, const BitmapTraits& traits) {
  if (traits.mark == FrameMark::gray) return GrayPalette(1 << traits.bits);
  const HPALETTE& ofCodec = frame.rows.palette;
  const TPixelFormat format = FormatOfBits(traits.bits);
  // A black and white frame needs no palette of its own: a new 1-bit bitmap has black and white.
  const bool hasPalette = IsIndexed(format) && frame.format != GUID_WICPixelFormatBlackWhite;
  if (!hasPalette || !ofCodec) return DefaultPalette(format);
  return CreateColorPalette(PaletteTable(ofCodec), ofCodec.Count());
}

}  // namespace

FrameBitmap BitmapOfFrame(ImagingFrame frame, ReadMode mode) {
  const BitmapTraits traits = TraitsOf(frame);
  if (mode == ReadMode::raster && traits.floatFormat == ffNoFloat) return {};
  HPALETTE palette = PaletteOf(frame, traits);
  Raster rows = TakeRows(frame.rows, traits.bits);
  rows.palette = std::move(palette);
  // A color that the file marks as transparent stays visible; only alpha counts.
  rows.transparentColor.reset();
  auto bitmap = std::make_unique<TBitmap>(std::move(rows));
  bitmap->SetTransparent(traits.mark == FrameMark::alpha);
  if (mode == ReadMode::picture) ResetTransparent(*bitmap);
  bitmap->SetModified(false);
  return {std::move(bitmap), traits.floatFormat};
}

}  // namespace rasterkit::detail
