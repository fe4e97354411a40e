#include <algorithm>
#include <cstring>
#include <utility>

#include <rasterkit/dialogs/values/pixel_sample.h>
#include <rasterkit/raster/cut_out.h>

namespace rasterkit {
namespace {

/// Pixels across a square, the uncounted ones included: whole bytes in every format.
constexpr int kSide = 40;
/// Squares in a row and in a column of the sample.
constexpr int kSquares = 14;
constexpr int kSampleSide = kSide * kSquares;

}  // namespace

PixelSample::PixelSample(const TBitmap& picture) {
  const bool isSmall = int64_t{picture.Width()} * picture.Height() <= kSampleSide * kSampleSide;
  const bool hasSquares = picture.Width() >= kSide && picture.Height() >= kSide;
  isWhole_ = isSmall || !hasSquares;
  if (isWhole_) {
    // A long and narrow picture begins with enough of itself.
    constexpr int kMost = 1 << 16;
    const int width = std::min(picture.Width(), kMost), height = std::min(picture.Height(), kMost);
    isWhole_ = width == picture.Width() && height == picture.Height();
    pixels_ = TBitmap(CutOut(picture.Content(), {0, 0, width, height}));
    counted_ = {{0, 0, width, height}};
  } else {
    TakeSquares(picture);
  }
  pixels_.SetPixelFormat(picture.PixelFormat());
  if (picture.Transparent()) {
    pixels_.SetTransparentColor(picture.TransparentColor());
    pixels_.SetTransparent(true);
  }
}

void PixelSample::TakeSquares(const TBitmap& picture) {
  const Raster& source = picture.Content();
  Raster sample(source.Format(), kSampleSide, kSampleSide);
  sample.CopyProperties(source);
  const size_t bits = static_cast<size_t>(picture.StoredBits());
  const size_t bytes = kSide * bits / 8;
  for (int j = 0; j < kSquares; ++j) {
    const int top = static_cast<int>(int64_t{j} * (source.Height() - kSide) / (kSquares - 1));
    for (int i = 0; i < kSquares; ++i) {
      // Each row of squares begins elsewhere, so that upright lines do not fall between them.
      const int64_t shifted = int64_t{i * kSquares + 5 * j % kSquares} * (source.Width() - kSide) /
                              (kSquares * kSquares - 1);
      const int64_t left = shifted / 8 * 8;
      for (int y = 0; y < kSide; ++y) {
        std::memcpy(sample.Row(j * kSide + y) + static_cast<size_t>(i) * bytes,
                    source.Row(top + y) + static_cast<size_t>(left) * bits / 8, bytes);
      }
      counted_.push_back({i * kSide + 1, j * kSide + 1, (i + 1) * kSide - 1, (j + 1) * kSide - 1});
    }
  }
  sample.ClearPadding();
  pixels_ = TBitmap(std::move(sample));
}

}  // namespace rasterkit
