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

bool IsLab(ColorModel model) {
  return model == ColorModel::lab || model == ColorModel::iccLab;
}

/// The transform of a model that needs one, or whose profile has one.
std::shared_ptr<const InkTransform> TransformOf(const PixelLayout& layout, Changes& notes) {
  switch (layout.model) {
    case ColorModel::gray:
    case ColorModel::grayWhiteIsZero:
    case ColorModel::rgb:
    case ColorModel::palette:
      return nullptr;
    case ColorModel::cmyk: {
      if (!layout.profile) return nullptr;
      std::shared_ptr<const InkTransform> inks = InkTransform::OfInks(*layout.profile);
      if (!inks) notes.Note("the color profile does not fit its inks and is ignored");
      return inks;
    }
    case ColorModel::lab:
    case ColorModel::iccLab:
      if (layout.bits != 8 && layout.bits != 16) {
        throw UnsupportedError("L*a*b* is shown with 8 and 16 bits per sample only");
      }
      return InkTransform::OfLab();
    default:
      throw UnsupportedError("the bands of the picture are no colors that can be shown");
  }
}

/// Converts rows of samples to B G R, or B G R A if they have alpha.
class ColorRows : public ShownRows {
 public:
  ColorRows(const PixelLayout& layout, const std::shared_ptr<const InkTransform>& transform)
      : layout_(layout) {
    if (transform && IsLab(layout.model)) lab_.emplace(transform);
    if (transform && layout.model == ColorModel::cmyk) inks_.emplace(transform);
  }

  void Show(const Samples& samples, int y, uint8_t* target) override {
    const auto width = static_cast<size_t>(samples.Width());
    if (layout_.model == ColorModel::palette) {
      ShowIndexes(Unpacked(samples, y), width, target);
    } else if (layout_.model == ColorModel::cmyk) {
      ShowInks(samples, y, target);
    } else if (IsLab(layout_.model)) {
      ShowLab(Unpacked(samples, y), width, target);
    } else {
      ShowLights(samples, y, target);
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

  const double* Unpacked(const Samples& samples, int y) {
    numbers_.resize(static_cast<size_t>(samples.Width()) * Pitch());
    UnpackSamples(samples, y, Pitch(), numbers_.data());
    return numbers_.data();
  }

  /// Sets the alpha of a pixel, whose numbers stand in front of `alpha`.
  void SetAlpha(const double* pixel, uint8_t* target) const {
    if (HasAlpha()) target[3] = ShareToByte(Share(pixel[Pitch() - 1]));
  }

  void ShowLights(const Samples& samples, int y, uint8_t* target) {
    if (layout_.type == NumberType::uint8 && layout_.bits == 8) {
      ShowIntegers<uint8_t>(samples, y, target);
    } else if (layout_.type == NumberType::uint16 && layout_.bits == 16) {
      ShowIntegers<uint16_t>(samples, y, target);
    } else {
      ShowShares(Unpacked(samples, y), static_cast<size_t>(samples.Width()), target);
    }
  }

  template <typename T>
  void ShowIntegers(const Samples& samples, int y, uint8_t* target) const {
    const bool inPlanes = samples.Planes() > 1, hasAlpha = HasAlpha();
    const auto bands = static_cast<size_t>(layout_.bands);
    const size_t step = inPlanes ? sizeof(T) : bands * sizeof(T), bytes = TargetBytes();
    const size_t color = ColorBandsOf(layout_) == 1 ? 0 : 1;
    const auto first = [&](size_t band) {
      return inPlanes ? samples.Row(y, static_cast<int>(band)) : samples.Row(y) + band * sizeof(T);
    };
    const uint8_t* places[] = {first(0), first(color), first(2 * color)};
    const uint8_t* opacity = first(bands - 1);
    for (int x = 0; x < samples.Width(); x++, target += bytes, opacity += step) {
      T alpha = 0;
      if (hasAlpha) std::memcpy(&alpha, opacity, sizeof alpha);
      for (size_t i = 0; i < 3; i++) {
        T value;
        std::memcpy(&value, places[i], sizeof value);
        places[i] += step;
        target[2 - i] = Light(value, alpha);
      }
      if (hasAlpha) target[3] = ToByte(alpha);
    }
  }

  template <typename T>
  uint8_t Light(T value, T alpha) const {
    if (layout_.model == ColorModel::grayWhiteIsZero) value = static_cast<T>(~value);
    return layout_.alpha == AlphaKind::associated ? Unmultiplied(value, alpha) : ToByte(value);
  }

  void ShowShares(const double* pixel, size_t width, uint8_t* target) const {
    const size_t step = ColorBandsOf(layout_) == 1 ? 0 : 1;
    for (size_t x = 0; x < width; x++, pixel += Pitch(), target += TargetBytes()) {
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

  void ShowIndexes(const double* pixel, size_t width, uint8_t* target) const {
    for (size_t x = 0; x < width; x++, pixel += Pitch(), target += TargetBytes()) {
      const tagPALETTEENTRY entry = layout_.palette.Entry(static_cast<int>(pixel[0]));
      target[0] = entry.peBlue;
      target[1] = entry.peGreen;
      target[2] = entry.peRed;
      SetAlpha(pixel, target);
    }
  }

  void ShowInks(const Samples& samples, int y, uint8_t* target) {
    const auto width = static_cast<size_t>(samples.Width());
    const bool isPlain = layout_.type == NumberType::uint8 && layout_.bands == 4 &&
                         layout_.bits == 8 && samples.Planes() == 1;
    if (isPlain && !inks_) return CmykRowToBgr(samples.Row(y), target, width, false);
    words_.resize(4 * width);
    bgr_.resize(3 * width);
    const double* const pixels = Unpacked(samples, y);
    for (size_t x = 0; x < width; x++) {
      const double* pixel = pixels + x * Pitch();
      for (size_t i = 0; i < 4; i++) {
        words_[4 * x + i] = static_cast<uint16_t>(OfFull(Share(pixel[i]), 65535));
      }
      for (size_t i = 0; i < 3; i++) {
        bgr_[3 * x + i] = ShareToByte((1 - Share(pixel[2 - i])) * (1 - Share(pixel[3])));
      }
    }
    if (inks_) inks_->ToBgr(words_.data(), width, bgr_.data());
    SetColors(pixels, target);
  }

  /// L*a*b* of 8 or 16 bits: a* and b* are signed, in ICC L*a*b* they start at -128.
  void ShowLab(const double* pixels, size_t width, uint8_t* target) {
    points_.resize(3 * width);
    bgr_.resize(3 * width);
    for (size_t x = 0; x < width; x++) ToPoint(pixels + x * Pitch(), &points_[3 * x]);
    lab_->ToBgr(points_.data(), width, bgr_.data());
    SetColors(pixels, target);
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

  void SetColors(const double* pixel, uint8_t* target) const {
    for (size_t x = 0; x < bgr_.size() / 3; x++, pixel += Pitch(), target += TargetBytes()) {
      std::copy_n(&bgr_[3 * x], 3, target);
      SetAlpha(pixel, target);
    }
  }

  const PixelLayout layout_;
  const double full_ = FullScaleOf(layout_);
  std::optional<RememberedColors<uint16_t, 4>> inks_;
  std::optional<RememberedColors<double, 3>> lab_;
  std::vector<double> numbers_, points_;
  std::vector<uint16_t> words_;
  std::vector<uint8_t> bgr_;
};

}  // namespace

NewShownRows RowsOfColors(const PixelLayout& layout, Changes& notes) {
  return [layout, transform = TransformOf(layout, notes)] {
    return std::make_unique<ColorRows>(layout, transform);
  };
}

}  // namespace rasterkit::detail
