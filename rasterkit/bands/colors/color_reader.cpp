#include <cstring>

#include <rasterkit/bands/colors/color_reader.h>
#include <rasterkit/graphics/system_color.h>
#include <rasterkit/kernels/mix/blend_pixels.h>
#include <rasterkit/kernels/rows/convert_rows.h>

namespace rasterkit::detail {
namespace {

TColor ColorAt(const uint8_t* bgr) {
  return RGB(bgr[2], bgr[1], bgr[0]);
}

void Put(TColor color, uint8_t* bgr) {
  bgr[0] = static_cast<uint8_t>(color >> 16);
  bgr[1] = static_cast<uint8_t>(color >> 8);
  bgr[2] = static_cast<uint8_t>(color);
}

}  // namespace

ColorReader::ColorReader(const Raster& like, int width)
    : format_(like.Format()),
      width_(static_cast<size_t>(width)),
      hasAlpha_(format_ == pf32bit && like.alphaFormat == afDefined) {
  if (!hasAlpha_) key_ = like.transparentColor;
  if (IsIndexed(format_)) table_ = MakePixelTable(like.palette);
}

void ColorReader::To24(const uint8_t* row, uint8_t* bgr) const {
  RowTo24(row, format_, static_cast<int>(width_), table_, reinterpret_cast<RGBrec*>(bgr));
}

const uint8_t* ColorReader::Colors(const uint8_t* row, uint8_t* bgr) const {
  if (format_ == pf24bit) return row;
  To24(row, bgr);
  return bgr;
}

void ColorReader::Opacities(const uint8_t* row, const uint8_t* bgr, uint8_t* opacities) const {
  if (hasAlpha_) {
    for (size_t x = 0; x < width_; ++x) opacities[x] = row[4 * x + 3];
  } else if (key_) {
    for (size_t x = 0; x < width_; ++x) opacities[x] = ColorAt(bgr + 3 * x) == *key_ ? 0 : 255;
  } else {
    std::memset(opacities, 255, width_);
  }
}

void ColorReader::To32(const uint8_t* row, uint8_t* bgra, uint8_t* scratch) const {
  if (hasAlpha_) {
    std::memcpy(bgra, row, 4 * width_);
    return;
  }
  const uint8_t* const bgr = Colors(row, scratch);
  kernels::Row24To32(bgr, width_, bgra);
  if (key_) ClearColor(*key_, width_, bgra);
}

void ColorReader::Painted(const uint8_t* row, TColor background, uint8_t* bgr) const {
  background = ResolveColor(background);
  if (hasAlpha_) {
    for (size_t x = 0; x < width_; ++x) Put(background, bgr + 3 * x);
    return kernels::Blend32Over24(row, width_, {255, true}, bgr);
  }
  To24(row, bgr);
  if (!key_) return;
  const TColor key = ResolveColor(*key_);
  for (size_t x = 0; x < width_; ++x) {
    if (ColorAt(bgr + 3 * x) == key) Put(background, bgr + 3 * x);
  }
}

void PutOpacities(const uint8_t* opacities, size_t width, uint8_t* bgra) {
  for (size_t x = 0; x < width; ++x) bgra[4 * x + 3] = opacities[x];
}

void ClearColor(TColor color, size_t width, uint8_t* bgra) {
  for (size_t x = 0; x < width; ++x) {
    if (ColorAt(bgra + 4 * x) == color) bgra[4 * x + 3] = 0;
  }
}

}  // namespace rasterkit::detail
