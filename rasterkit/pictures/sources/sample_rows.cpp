#include <algorithm>
#include <cstring>

#include <rasterkit/pictures/sources/sample_rows.h>

namespace rasterkit::detail {
namespace {

/// Well mixed bytes that are the same everywhere.
class Bytes {
 public:
  uint8_t Next() {
    state_ = state_ * 1664525u + 1013904223u;
    return static_cast<uint8_t>(state_ >> 24);
  }

 private:
  uint32_t state_ = 1;
};

bool IsIndexedModel(ColorModel model) {
  return model == ColorModel::gray || model == ColorModel::grayWhiteIsZero ||
         model == ColorModel::palette;
}

TPixelFormat FormatOf(const PixelLayout& layout) {
  if (IsIndexedModel(layout.model)) {
    if (layout.bits == 1) return pf1bit;
    return layout.bits <= 4 ? pf4bit : pf8bit;
  }
  if (layout.bands == 4) return pf32bit;
  if (layout.bits == 5) return pf15bit;
  return layout.bits == 6 ? pf16bit : pf24bit;
}

HPALETTE ReversedRamp(int count) {
  std::vector<tagPALETTEENTRY> entries;
  const HPALETTE ramp = GrayPalette(count);
  for (int i = count; i-- > 0;) entries.push_back(ramp.Entry(i));
  return HPALETTE(entries);
}

HPALETTE PaletteOf(const PixelLayout& layout) {
  const int count = 1 << StoredBitsPerPixel(FormatOf(layout));
  if (layout.model == ColorModel::gray) return GrayPalette(count);
  if (layout.model == ColorModel::grayWhiteIsZero) return ReversedRamp(count);
  return layout.palette;
}

/// Indexes lie within the palette, so that each pixel has a color.
void FillIndexes(Raster& rows, int entries, Bytes& bytes) {
  const int bits = StoredBitsPerPixel(rows.Format());
  const int perByte = 8 / bits;
  for (int y = 0; y < rows.Height(); ++y) {
    std::memset(rows.Row(y), 0, rows.Stride());
    for (int x = 0; x < rows.Width(); ++x) {
      const int index = bytes.Next() % std::max(entries, 1);
      const int shift = 8 - bits * (x % perByte + 1);
      rows.Row(y)[x / perByte] = static_cast<uint8_t>(rows.Row(y)[x / perByte] | (index << shift));
    }
  }
}

Raster RasterLike(const PixelLayout& layout, int width, int height) {
  const TPixelFormat format = FormatOf(layout);
  Raster rows(format, width, height);
  Bytes bytes;
  if (IsIndexed(format)) {
    rows.palette = PaletteOf(layout);
    FillIndexes(rows, std::min(rows.palette.Count(), 1 << layout.bits), bytes);
  } else {
    for (int y = 0; y < height; ++y) {
      std::generate_n(rows.Row(y), rows.Stride(), [&] { return bytes.Next(); });
    }
    rows.ClearPadding();
  }
  if (layout.alpha == AlphaKind::straight) rows.alphaFormat = afDefined;
  if (layout.alpha == AlphaKind::transparentColor) rows.transparentColor = rows.PixelColor(0, 0);
  rows.profile = layout.profile;
  return rows;
}

}  // namespace

Pixels SampleRows(const PixelLayout& layout, bool isRaster, int width, int height) {
  if (isRaster) return RasterLike(layout, width, height);
  Samples rows(layout, width, height);
  const int limit = layout.type == NumberType::uint8 && layout.bits < 8 ? 1 << layout.bits : 256;
  Bytes bytes;
  for (int y = 0; y < height; ++y) {
    std::generate_n(rows.Row(y), rows.Stride(),
                    [&] { return static_cast<uint8_t>(bytes.Next() % limit); });
  }
  return rows;
}

}  // namespace rasterkit::detail
