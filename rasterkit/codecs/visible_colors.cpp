#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>
#include <vector>

#include <rasterkit/codecs/rows/cmyk_rows.h>
#include <rasterkit/codecs/rows/remembered_colors.h>
#include <rasterkit/codecs/rows/sample_bytes.h>
#include <rasterkit/codecs/visible_numbers.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

/// Scales 0 to 1 to a whole number from 0 to `full`; halves are rounded up.
int OfFull(double share, int full) {
  return (static_cast<int>(share * (2 * full)) + 1) / 2;
}

uint8_t ShareToByte(double share) {
  return static_cast<uint8_t>(OfFull(share, 255));
}

bool IsSigned(NumberType type) {
  return type == NumberType::int8 || type == NumberType::int16 || type == NumberType::int32 ||
         type == NumberType::int64;
}

/// The number of full brightness.
double FullScaleOf(const PixelLayout& layout) {
  switch (layout.type) {
    case NumberType::float16:
    case NumberType::float32:
    case NumberType::float64:
      return 1;
    default:
      return std::ldexp(1.0, IsSigned(layout.type) ? layout.bits - 1 : layout.bits) - 1;
  }
}

/// Converts rows of samples to B G R, or B G R A if they have alpha.
class ColorRows {
 public:
  ColorRows(const Samples& samples, Raster& raster)
      : samples_(samples), layout_(samples.Layout()), raster_(raster) {}

  void Show(Changes& changes) {
    switch (layout_.model) {
      case ColorModel::gray:
      case ColorModel::grayWhiteIsZero:
      case ColorModel::rgb:
        return ShowLights();
      case ColorModel::palette:
        return ForEachRow([&](const double* pixels, int y) { ShowIndexes(pixels, y); });
      case ColorModel::cmyk:
        return ShowInks(changes);
      case ColorModel::lab:
      case ColorModel::iccLab:
        return ShowLab();
      default:
        throw UnsupportedError("the bands of the picture are no colors that can be shown");
    }
  }

 private:
  bool HasAlpha() const { return HasAlphaBand(layout_); }
  size_t Pitch() const { return static_cast<size_t>(ColorBandsOf(layout_)) + (HasAlpha() ? 1 : 0); }
  size_t TargetBytes() const { return HasAlpha() ? 4 : 3; }
  double Share(double number) const {
    const double share = number / full_;
    return share > 0 ? std::min(share, 1.0) : 0.0;
  }

  /// Calls `show` with the numbers of each row.
  template <class Show>
  void ForEachRow(const Show& show) {
    numbers_.resize(static_cast<size_t>(samples_.Width()) * Pitch());
    for (int y = 0; y < samples_.Height(); y++) {
      RequireTime();
      UnpackSamples(samples_, y, Pitch(), numbers_.data());
      show(numbers_.data(), y);
    }
  }

  /// Sets the alpha of a pixel, whose numbers stand in front of `alpha`.
  void SetAlpha(const double* pixel, uint8_t* target) const {
    if (HasAlpha()) target[3] = ShareToByte(Share(pixel[Pitch() - 1]));
  }

  void ShowLights() {
    if (layout_.type == NumberType::uint8 && layout_.bits == 8) return ShowIntegers<uint8_t>();
    if (layout_.type == NumberType::uint16 && layout_.bits == 16) return ShowIntegers<uint16_t>();
    ForEachRow([&](const double* pixels, int y) { ShowShares(pixels, y); });
  }

  template <typename T>
  void ShowIntegers() {
    const bool inPlanes = samples_.Planes() > 1;
    const auto bands = static_cast<size_t>(layout_.bands);
    const size_t step = inPlanes ? sizeof(T) : bands * sizeof(T);
    const size_t color = ColorBandsOf(layout_) == 1 ? 0 : 1;
    const auto first = [&](int y, size_t band) {
      return inPlanes ? samples_.Row(y, static_cast<int>(band))
                      : samples_.Row(y) + band * sizeof(T);
    };
    for (int y = 0; y < samples_.Height(); y++) {
      RequireTime();
      const uint8_t* places[] = {first(y, 0), first(y, color), first(y, 2 * color)};
      const uint8_t* opacity = first(y, bands - 1);
      uint8_t* target = raster_.Row(y);
      for (int x = 0; x < samples_.Width(); x++, target += TargetBytes(), opacity += step) {
        T alpha = 0;
        if (HasAlpha()) std::memcpy(&alpha, opacity, sizeof alpha);
        for (size_t i = 0; i < 3; i++) {
          T value;
          std::memcpy(&value, places[i], sizeof value);
          places[i] += step;
          target[2 - i] = Light(value, alpha);
        }
        if (HasAlpha()) target[3] = ToByte(alpha);
      }
    }
  }

  template <typename T>
  uint8_t Light(T value, T alpha) const {
    if (layout_.model == ColorModel::grayWhiteIsZero) value = static_cast<T>(~value);
    return layout_.alpha == AlphaKind::associated ? Unmultiplied(value, alpha) : ToByte(value);
  }

  void ShowShares(const double* pixel, int y) {
    const size_t step = ColorBandsOf(layout_) == 1 ? 0 : 1;
    uint8_t* target = raster_.Row(y);
    for (int x = 0; x < samples_.Width(); x++, pixel += Pitch(), target += TargetBytes()) {
      const double alpha = HasAlpha() ? Share(pixel[Pitch() - 1]) : 1;
      for (size_t i = 0; i < 3; i++) {
        double share = Share(pixel[i * step]);
        if (layout_.model == ColorModel::grayWhiteIsZero) share = 1 - share;
        if (layout_.alpha == AlphaKind::associated && alpha > 0) {
          share = std::min(share / alpha, 1.0);
        }
        target[2 - i] = ShareToByte(share);
      }
      SetAlpha(pixel, target);
    }
  }

  void ShowIndexes(const double* pixel, int y) {
    uint8_t* target = raster_.Row(y);
    for (int x = 0; x < samples_.Width(); x++, pixel += Pitch(), target += TargetBytes()) {
      const tagPALETTEENTRY entry = layout_.palette.Entry(static_cast<int>(pixel[0]));
      target[0] = entry.peBlue;
      target[1] = entry.peGreen;
      target[2] = entry.peRed;
      SetAlpha(pixel, target);
    }
  }

  void ShowInks(Changes& changes) {
    std::optional<RememberedColors<uint16_t, 4>> managed;
    if (layout_.profile) {
      std::shared_ptr<const InkTransform> inks = InkTransform::OfInks(*layout_.profile);
      if (inks) {
        managed.emplace(std::move(inks));
      } else {
        changes.Note("the color profile does not fit its inks and is ignored");
      }
    }
    const bool isPlain = layout_.type == NumberType::uint8 && layout_.bands == 4 &&
                         layout_.bits == 8 && samples_.Planes() == 1;
    if (isPlain && !managed) {
      for (int y = 0; y < samples_.Height(); y++) {
        RequireTime();
        CmykRowToBgr(samples_.Row(y), raster_.Row(y), static_cast<size_t>(samples_.Width()), false);
      }
      return;
    }
    const auto width = static_cast<size_t>(samples_.Width());
    std::vector<uint16_t> words(4 * width);
    std::vector<uint8_t> bgr(3 * width);
    ForEachRow([&](const double* pixels, int y) {
      for (size_t x = 0; x < width; x++) {
        const double* pixel = pixels + x * Pitch();
        for (size_t i = 0; i < 4; i++) {
          words[4 * x + i] = static_cast<uint16_t>(OfFull(Share(pixel[i]), 65535));
        }
        for (size_t i = 0; i < 3; i++) {
          bgr[3 * x + i] = ShareToByte((1 - Share(pixel[2 - i])) * (1 - Share(pixel[3])));
        }
      }
      if (managed) managed->ToBgr(words.data(), width, bgr.data());
      SetColors(bgr, pixels, y);
    });
  }

  /// L*a*b* of 8 or 16 bits: a* and b* are signed, in ICC L*a*b* they start at -128.
  void ShowLab() {
    if (layout_.bits != 8 && layout_.bits != 16) {
      throw UnsupportedError("L*a*b* is shown with 8 and 16 bits per sample only");
    }
    RememberedColors<double, 3> managed(InkTransform::OfLab());
    const auto width = static_cast<size_t>(samples_.Width());
    std::vector<double> points(3 * width);
    std::vector<uint8_t> bgr(3 * width);
    ForEachRow([&](const double* pixels, int y) {
      for (size_t x = 0; x < width; x++) ToPoint(pixels + x * Pitch(), &points[3 * x]);
      managed.ToBgr(points.data(), width, bgr.data());
      SetColors(bgr, pixels, y);
    });
  }

  void ToPoint(const double* pixel, double* point) const {
    const double unit = layout_.bits == 16 ? 256 : 1;
    point[0] = pixel[0] / (256 * unit - 1) * 100;
    if (IsSigned(layout_.type) && pixel[0] < 0) {
      point[0] = (pixel[0] + 256 * unit) / (256 * unit - 1) * 100;
    }
    for (int i = 1; i < 3; i++) {
      double value = pixel[i] / unit;
      if (layout_.model == ColorModel::iccLab) {
        value -= 128;
      } else if (value >= 128) {
        value -= 256;
      }
      point[i] = value;
    }
  }

  void SetColors(const std::vector<uint8_t>& bgr, const double* pixel, int y) {
    uint8_t* target = raster_.Row(y);
    for (size_t x = 0; x < bgr.size() / 3; x++, pixel += Pitch(), target += TargetBytes()) {
      std::copy_n(&bgr[3 * x], 3, target);
      SetAlpha(pixel, target);
    }
  }

  const Samples& samples_;
  const PixelLayout& layout_;
  Raster& raster_;
  const double full_ = FullScaleOf(layout_);
  std::vector<double> numbers_;
};

}  // namespace

Raster VisibleColors(const Samples& samples, Changes& changes) {
  const bool hasAlpha = HasAlphaBand(samples.Layout());
  Raster raster(hasAlpha ? pf32bit : pf24bit, samples.Width(), samples.Height());
  if (hasAlpha) raster.alphaFormat = afDefined;
  ColorRows(samples, raster).Show(changes);
  raster.ClearPadding();
  return raster;
}

}  // namespace rasterkit::detail
