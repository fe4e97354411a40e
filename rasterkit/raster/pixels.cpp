#include <limits>

#include <rasterkit/raster/pixels.h>

namespace rasterkit {
namespace {

bool IsRamp(const HPALETTE& palette, int bits, bool isReversed) {
  const int count = 1 << bits;
  if (palette.Count() != count) return false;
  for (int i = 0; i < count; ++i) {
    const int step = isReversed ? count - 1 - i : i;
    const auto gray = static_cast<uint8_t>(step * 255 / (count - 1));
    if (EntryColor(palette.Entry(i)) != RGB(gray, gray, gray)) return false;
  }
  return true;
}

void DescribeIndexes(const Raster& raster, PixelLayout& layout) {
  layout.bits = StoredBitsPerPixel(raster.Format());
  layout.bands = 1;
  if (IsRamp(raster.palette, layout.bits, false)) {
    layout.model = ColorModel::gray;
  } else if (IsRamp(raster.palette, layout.bits, true)) {
    layout.model = ColorModel::grayWhiteIsZero;
  } else {
    layout.model = ColorModel::palette;
    layout.palette = raster.palette;
  }
}

PixelLayout LayoutOfRaster(const Raster& raster) {
  PixelLayout layout;
  layout.profile = raster.profile;
  if (raster.transparentColor) layout.alpha = AlphaKind::transparentColor;
  switch (raster.Format()) {
    case pf1bit:
    case pf4bit:
    case pf8bit:
      DescribeIndexes(raster, layout);
      break;
    case pf15bit:
      layout.bits = 5;
      break;
    case pf16bit:
      layout.bits = 6;
      break;
    case pf24bit:
      break;
    default:
      layout.bands = 4;
      if (raster.alphaFormat == afDefined) {
        layout.alpha = AlphaKind::straight;
      } else {
        layout.extraBands = 1;
      }
      break;
  }
  return layout;
}

}  // namespace

PixelLayout LayoutOf(const Pixels& pixels) {
  if (const auto* samples = std::get_if<Samples>(&pixels)) return samples->Layout();
  return LayoutOfRaster(std::get<Raster>(pixels));
}

Pixels NewPixels(const Pixels& like, int width, int height) {
  if (const auto* samples = std::get_if<Samples>(&like)) {
    Samples made(samples->Layout(), width, height, samples->Planes() > 1);
    made.resolution = samples->resolution;
    return made;
  }
  const auto& raster = std::get<Raster>(like);
  Raster made(raster.Format(), width, height);
  made.CopyProperties(raster);
  return made;
}

uint64_t BytesOfPixels(const Pixels& like, int width, int height) {
  uint64_t row = 0;
  auto rows = static_cast<uint64_t>(height);
  if (const auto* samples = std::get_if<Samples>(&like)) {
    row = static_cast<uint64_t>(width) * samples->PixelBytes();
    rows *= static_cast<uint64_t>(samples->Planes());
  } else {
    row = StrideBytes(width, StoredBitsPerPixel(std::get<Raster>(like).Format()));
  }
  constexpr uint64_t kMost = std::numeric_limits<uint64_t>::max();
  return row != 0 && rows > kMost / row ? kMost : row * rows;
}

Pixels PixelsInMemory(uint8_t* memory, const Pixels& like, int width, int height) {
  if (const auto* samples = std::get_if<Samples>(&like)) {
    return Samples::InMemory(memory, *samples, width, height);
  }
  return Raster::InMemory(memory, std::get<Raster>(like), width, height);
}

}  // namespace rasterkit
