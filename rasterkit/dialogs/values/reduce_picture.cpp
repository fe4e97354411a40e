#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include <rasterkit/dialogs/values/reduce_picture.h>
#include <rasterkit/raster/stretch/blit.h>
#include <rasterkit/raster/stretch/halftone.h>

namespace rasterkit {
namespace {

/// Pixels of the picture that a band of the result covers: few enough for some milliseconds.
constexpr int64_t kPixelsOfBand = 2'000'000;
constexpr int kLongestSide = 1 << 22;

/// Where colors come from and how they become means.
enum class Kind { opaque, alpha, keyed };

Kind KindOf(const TBitmap& picture) {
  if (picture.PixelFormat() == pf32bit && picture.AlphaFormat() == afDefined) return Kind::alpha;
  return picture.Transparent() ? Kind::keyed : Kind::opaque;
}

bool IsTooLong(const TRect& place, const Raster& source) {
  return std::max({place.Right - place.Left, place.Bottom - place.Top, source.Width(),
                   source.Height()}) > kLongestSide;
}

/// Rows `first` to `last` - 1 of the target from the rows of the source that they cover.
void MeanAlphaRows(Raster& target, const PixelRect& place, const Raster& source, int first,
                   int last) {
  const int64_t length = place.bottom - place.top, height = source.Height();
  const auto row = [&](int64_t y) { return (y - place.top) * height / length; };
  const auto from = static_cast<int>(std::clamp<int64_t>(row(first) - 1, 0, height - 1));
  const auto to = static_cast<int>(std::clamp<int64_t>(row(last) + 2, from + 1, height));
  // The rows are only read.
  auto* const rows = const_cast<uint8_t*>(source.Row(from));
  const Raster part = Raster::InMemory(rows, source, source.Width(), to - from);
  CopyHalftone(target, place, part, {source.Width(), source.Height(), 0, from}, {first, last});
}

class Reducing {
 public:
  explicit Reducing(const Reduction& reduction) : reduction_(reduction) {}

  void Begin(const TBitmap& picture) {
    kind_ = KindOf(picture);
    if (kind_ == Kind::keyed) key_ = picture.TransparentColor();
    target_ =
        Raster(kind_ == Kind::opaque ? pf24bit : pf32bit, reduction_.width, reduction_.height);
    target_.alphaFormat = kind_ == Kind::opaque ? afIgnored : afDefined;
    for (int y = 0; y < target_.Height(); ++y) std::memset(target_.Row(y), 0, target_.Stride());
    const int64_t shown = std::max(reduction_.place.Bottom - reduction_.place.Top, 1);
    const int64_t pixels = int64_t{picture.Width()} * picture.Height() / shown;
    bandRows_ =
        static_cast<int>(std::clamp<int64_t>(kPixelsOfBand / std::max<int64_t>(pixels, 1), 1, 256));
  }

  bool IsDone() const { return next_ >= target_.Height(); }

  void MakeBand(const TBitmap& picture) {
    const int first = next_, last = std::min(first + bandRows_, target_.Height());
    next_ = last;
    const TRect& at = reduction_.place;
    const Raster& source = picture.Content();
    if (kind_ == Kind::alpha && !reduction_.isQuick && !IsTooLong(at, source)) {
      const int from = std::max(first, at.Top), to = std::min(last, at.Bottom);
      if (from >= to) return;
      return MeanAlphaRows(target_, {at.Left, at.Top, at.Right, at.Bottom}, source, from, to);
    }
    Raster band = Raster::InMemory(target_.Row(first), target_, target_.Width(), last - first);
    const PixelRect place{at.Left, at.Top - first, at.Right, at.Bottom - first};
    if (kind_ == Kind::alpha) {
      return BlitCopied(band, place, source, {0, 0, source.Width(), source.Height()});
    }
    if (kind_ == Kind::keyed) return BlitStretched(band, place, source, key_);
    if (reduction_.isQuick) return BlitStretched(band, place, source);
    BlitHalftone(band, place, source);
  }

  TBitmap Take() { return TBitmap(std::move(target_)); }

 private:
  const Reduction reduction_;
  Kind kind_ = Kind::opaque;
  TColor key_ = 0;
  Raster target_;
  int bandRows_ = 1, next_ = 0;
};

}  // namespace

TBitmap ReducePicture(const BorrowedPixels& picture, const Reduction& reduction,
                      const std::atomic<bool>& isCanceled) {
  Reducing reducing(reduction);
  bool isThere = picture.Read([&](const TBitmap& pixels) { reducing.Begin(pixels); });
  while (isThere && !isCanceled && !reducing.IsDone()) {
    isThere = picture.Read([&](const TBitmap& pixels) { reducing.MakeBand(pixels); });
  }
  return isThere && !isCanceled ? reducing.Take() : TBitmap();
}

TBitmap ReducePicture(const TBitmap& picture, const Reduction& reduction) {
  Reducing reducing(reduction);
  reducing.Begin(picture);
  while (!reducing.IsDone()) reducing.MakeBand(picture);
  return reducing.Take();
}

}  // namespace rasterkit
