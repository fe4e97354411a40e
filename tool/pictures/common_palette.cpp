#include "tool/pictures/common_palette.h"

#include <algorithm>
#include <unordered_set>

#include <rasterkit/bands/colors/opacity_plane.h>

#include "tool/command/interruption.h"
#include "tool/pictures/change_picture.h"

namespace rasterkit::tool {
namespace {

constexpr size_t kMostEntries = 256;

/// Pixels of each picture, along each side, that take part in the choice among too many colors.
constexpr int kSampleSide = 128;

/// Colors in the order in which they are met.
class ColorList {
 public:
  void Add(const TBitmap& bitmap) {
    for (int y = 0; y < bitmap.Height() && !IsFull(); ++y) {
      const auto* const row = reinterpret_cast<const RGBrec*>(bitmap.ScanLine(y));
      for (int x = 0; x < bitmap.Width() && !IsFull(); ++x) Add(row[x]);
    }
  }

  bool IsFull() const { return entries_.size() > kMostEntries; }
  HPALETTE Palette() const { return HPALETTE(entries_); }

 private:
  void Add(const RGBrec& pixel) {
    if (known_.insert(RGB(pixel.r, pixel.g, pixel.b)).second) {
      entries_.push_back({pixel.r, pixel.g, pixel.b, 0});
    }
  }

  std::vector<tagPALETTEENTRY> entries_;
  std::unordered_set<TColor> known_;
};

/// Evenly spread pixels of a picture: a strip of the bitmap from which the palette is made.
TBitmap SamplesOf(const TBitmap& bitmap) {
  const int width = std::min(bitmap.Width(), kSampleSide);
  const int height = std::min(bitmap.Height(), kSampleSide);
  TBitmap samples;
  samples.ResetPixels(pf24bit, kSampleSide, height);
  for (int y = 0; y < height; ++y) {
    const auto* const from = reinterpret_cast<const RGBrec*>(
        bitmap.ScanLine(static_cast<int>(int64_t{y} * bitmap.Height() / height)));
    auto* const to = reinterpret_cast<RGBrec*>(samples.ScanLine(y));
    for (int x = 0; x < kSampleSide; ++x) {
      to[x] = from[static_cast<int>(int64_t{x % width} * bitmap.Width() / width)];
    }
  }
  return samples;
}

HPALETTE PaletteOf(const std::vector<TBitmap>& samples) {
  int height = 0;
  for (const TBitmap& part : samples) height += part.Height();
  TBitmap all;
  all.ResetPixels(pf24bit, kSampleSide, height);
  int y = 0;
  for (const TBitmap& part : samples) {
    for (int row = 0; row < part.Height(); ++row, ++y) {
      const auto* const from = reinterpret_cast<const RGBrec*>(part.ScanLine(row));
      std::copy_n(from, kSampleSide, reinterpret_cast<RGBrec*>(all.ScanLine(y)));
    }
  }
  all.SetPixelFormat(pf8bit);
  return all.Palette();
}

}  // namespace

CommonPalette ChooseCommonPalette(const std::vector<std::string>& files) {
  ColorList colors;
  std::vector<TBitmap> samples;
  for (const std::string& file : files) {
    StopIfInterrupted();
    std::unique_ptr<TBitmap> bitmap = LoadUpright(file);
    if (detail::HasTransparency(*bitmap)) detail::DropTransparency(bitmap, clWhite);
    bitmap->SetPixelFormat(pf24bit);
    colors.Add(*bitmap);
    samples.push_back(SamplesOf(*bitmap));
  }
  if (!colors.IsFull()) return {colors.Palette(), true};
  return {PaletteOf(samples), false};
}

Picture PictureWith(const HPALETTE& palette) {
  auto pixel = std::make_unique<TBitmap>();
  pixel->ResetPixels(pf8bit, 1, 1);
  pixel->SetPalette(palette);
  return Picture::Of(std::move(pixel));
}

}  // namespace rasterkit::tool
