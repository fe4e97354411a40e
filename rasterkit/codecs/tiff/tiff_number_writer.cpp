#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>

#include <rasterkit/codecs/rows/remembered_colors.h>
#include <rasterkit/codecs/tiff/tiff_numbers.h>
#include <rasterkit/codecs/tiff/tiff_row_writer.h>

namespace rasterkit::detail {

namespace {

/// Scales 0 to 1 to a whole number from 0 to `full`; halves are rounded up.
int OfFull(double share, int full) {
  return (static_cast<int>(share * (2 * full)) + 1) / 2;
}

uint8_t ShareToByte(double share) {
  return static_cast<uint8_t>(OfFull(share, 255));
}

/// Clamps to 0 to 1; NaN becomes 0.
double Clamp(double share) {
  return share > 0 ? std::min(share, 1.0) : 0.0;
}

/// Unpacks the needed samples of a row to doubles: the colors of a pixel, then alpha. Derived
/// classes convert them.
class NumberWriter : public TiffRowWriter {
 public:
  explicit NumberWriter(const TiffLayout& layout)
      : layout_(layout), pitch_(static_cast<size_t>(layout.channels + (layout.alphaAt ? 1 : 0))) {}

  void Write(const uint8_t* const* planes, size_t width, uint8_t* target) override {
    numbers_.resize(width * pitch_);
    const bool isPlanar = layout_.planes.size() > 1;
    for (size_t i = 0; i < pitch_; i++) {
      TiffSampleRange range{0, 1, width};
      if (!isPlanar) {
        range.step = static_cast<size_t>(layout_.pitch);
        range.first = i < Channels() ? i : static_cast<size_t>(*layout_.alphaAt);
      }
      UnpackNumbers(planes[isPlanar ? i : 0], layout_.bits, layout_.number, range,
                    numbers_.data() + i, pitch_);
    }
    WritePixels(numbers_.data(), width, target);
  }

 protected:
  virtual void WritePixels(const double* pixels, size_t width, uint8_t* target) = 0;

  size_t Channels() const { return static_cast<size_t>(layout_.channels); }
  /// Number of doubles per pixel.
  size_t Pitch() const { return pitch_; }
  const TiffLayout& Layout() const { return layout_; }
  double Share(double number) const { return Clamp(number / full_); }
  double Alpha(const double* pixel) const {
    return layout_.alphaAt ? Share(pixel[Channels()]) : 1.0;
  }
  /// Converts a color from 0 to 1 to a byte; divides premultiplied alpha out.
  uint8_t Byte(double share, double alpha) const {
    if (layout_.isAssociated && alpha > 0) share = std::min(share / alpha, 1.0);
    return ShareToByte(share);
  }

 private:
  const TiffLayout layout_;
  const size_t pitch_;
  const double full_ = FullScale(layout_.bits, layout_.number);
  std::vector<double> numbers_;
};

class ScaledRows : public NumberWriter {
 public:
  using NumberWriter::NumberWriter;

 protected:
  void WritePixels(const double* pixel, size_t width, uint8_t* target) override {
    const size_t step = Layout().channels == 1 ? 0 : 1;
    for (size_t x = 0; x < width; x++, pixel += Pitch(), target += 4) {
      const double alpha = Alpha(pixel);
      for (size_t i = 0; i < 3; i++) {
        const double share = Share(pixel[i * step]);
        target[2 - i] = Byte(Layout().isInverted ? 1 - share : share, alpha);
      }
      target[3] = ShareToByte(alpha);
    }
  }
};

class IndexedRows : public NumberWriter {
 public:
  IndexedRows(const TiffLayout& layout, const std::vector<tagPALETTEENTRY>& entries)
      : NumberWriter(layout), entries_(entries) {}

 protected:
  void WritePixels(const double* pixel, size_t width, uint8_t* target) override {
    for (size_t x = 0; x < width; x++, pixel += Pitch(), target += 4) {
      const tagPALETTEENTRY entry = entries_[static_cast<size_t>(pixel[0])];
      target[0] = entry.peBlue;
      target[1] = entry.peGreen;
      target[2] = entry.peRed;
      target[3] = ShareToByte(Alpha(pixel));
    }
  }

 private:
  const std::vector<tagPALETTEENTRY>& entries_;
};

class InkRows : public NumberWriter {
 public:
  InkRows(const TiffLayout& layout, std::shared_ptr<const InkTransform> inks)
      : NumberWriter(layout) {
    if (inks) inks_.emplace(std::move(inks));
  }

 protected:
  void WritePixels(const double* pixels, size_t width, uint8_t* target) override {
    if (inks_) ManagedColors(pixels, width);
    for (size_t x = 0; x < width; x++, pixels += Pitch(), target += 4) {
      const double alpha = Alpha(pixels);
      for (size_t i = 0; i < 3; i++) {
        const double light = (1 - Share(pixels[2 - i])) * (1 - Share(pixels[3]));
        target[i] = inks_ ? bgr_[3 * x + i] : ShareToByte(light);
      }
      target[3] = ShareToByte(alpha);
    }
  }

 private:
  void ManagedColors(const double* pixels, size_t width) {
    words_.resize(4 * width);
    bgr_.resize(3 * width);
    for (size_t x = 0; x < width; x++, pixels += Pitch()) {
      for (size_t i = 0; i < 4; i++) {
        words_[4 * x + i] = static_cast<uint16_t>(OfFull(Share(pixels[i]), 65535));
      }
    }
    inks_->ToBgr(words_.data(), width, bgr_.data());
  }

  std::optional<RememberedColors<uint16_t, 4>> inks_;
  std::vector<uint16_t> words_;
  std::vector<uint8_t> bgr_;
};

class LabRows : public NumberWriter {
 public:
  LabRows(const TiffLayout& layout, std::shared_ptr<const InkTransform> lab)
      : NumberWriter(layout) {
    if (lab) lab_.emplace(std::move(lab));
  }

 protected:
  void WritePixels(const double* pixels, size_t width, uint8_t* target) override {
    points_.resize(3 * width);
    bgr_.resize(3 * width);
    for (size_t x = 0; x < width; x++) ToPoint(pixels + x * Pitch(), &points_[3 * x]);
    if (lab_) lab_->ToBgr(points_.data(), width, bgr_.data());
    for (size_t x = 0; x < width; x++, pixels += Pitch(), target += 4) {
      std::copy_n(&bgr_[3 * x], 3, target);
      target[3] = ShareToByte(Alpha(pixels));
    }
  }

 private:
  /// a* and b* are signed; in ICC L*a*b* they start at -128.
  void ToPoint(const double* pixel, double* point) const {
    const double unit = Layout().bits == 16 ? 256 : 1;
    point[0] = pixel[0] / (256 * unit - 1) * 100;
    if (Layout().number == TiffNumber::signedInteger && pixel[0] < 0) {
      point[0] = (pixel[0] + 256 * unit) / (256 * unit - 1) * 100;
    }
    for (int i = 1; i < 3; i++) {
      double value = pixel[i] / unit;
      if (Layout().photometric == PHOTOMETRIC_ICCLAB) {
        value -= 128;
      } else if (value >= 128) {
        value -= 256;
      }
      point[i] = value;
    }
  }

  std::optional<RememberedColors<double, 3>> lab_;
  std::vector<double> points_;
  std::vector<uint8_t> bgr_;
};

/// Copies the first number of each pixel, to be stretched later.
class StretchedRows : public NumberWriter {
 public:
  using NumberWriter::NumberWriter;

 protected:
  void WritePixels(const double* pixel, size_t width, uint8_t* target) override {
    auto* numbers = reinterpret_cast<double*>(target);
    for (size_t x = 0; x < width; x++, pixel += Pitch()) {
      numbers[x] = Layout().isInverted ? -pixel[0] : pixel[0];
    }
  }
};

/// Writes the first number of each pixel as a float.
class FloatRows : public NumberWriter {
 public:
  using NumberWriter::NumberWriter;

 protected:
  void WritePixels(const double* pixel, size_t width, uint8_t* target) override {
    for (size_t x = 0; x < width; x++, pixel += Pitch(), target += sizeof(float)) {
      const auto value = static_cast<float>(pixel[0]);
      std::memcpy(target, &value, sizeof value);
    }
  }
};

}  // namespace

std::unique_ptr<TiffRowWriter> MakeNumberWriter(const TiffLayout& layout,
                                                const TiffColors& colors) {
  switch (layout.rows) {
    case TiffRowKind::indexed:
      return std::make_unique<IndexedRows>(layout, colors.entries);
    case TiffRowKind::cmyk:
      return std::make_unique<InkRows>(layout, colors.inks);
    case TiffRowKind::lab:
      return std::make_unique<LabRows>(layout, colors.inks);
    case TiffRowKind::float24:
      return std::make_unique<FloatRows>(layout);
    case TiffRowKind::stretched:
      return std::make_unique<StretchedRows>(layout);
    default:
      return std::make_unique<ScaledRows>(layout);
  }
}

}  // namespace rasterkit::detail
