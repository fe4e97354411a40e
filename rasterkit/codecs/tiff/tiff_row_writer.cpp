#include <cstring>
#include <limits>
#include <utility>

#include <rasterkit/codecs/rows/cmyk_rows.h>
#include <rasterkit/codecs/rows/sample_bytes.h>
#include <rasterkit/codecs/tiff/tiff_row_writer.h>
#include <rasterkit/kernels/rows/convert_rows.h>
#include <rasterkit/kernels/rows/exchange_red_blue.h>

namespace rasterkit::detail {

namespace {

/// Inverts all bits of `count` bytes, word by word; source and target may be the same.
void Invert(const uint8_t* source, size_t count, uint8_t* target) {
  size_t i = 0;
  for (uint64_t word = 0; i + sizeof word <= count; i += sizeof word) {
    std::memcpy(&word, source + i, sizeof word);
    word = ~word;
    std::memcpy(target + i, &word, sizeof word);
  }
  for (; i < count; i++) target[i] = static_cast<uint8_t>(~source[i]);
}

class SameRows : public TiffRowWriter {
 public:
  explicit SameRows(const TiffLayout& layout)
      : bits_(static_cast<size_t>(layout.bits)), isInverted_(layout.isInverted) {}

  void Write(const uint8_t* const* planes, size_t width, uint8_t* target) override {
    const size_t bytes = (width * bits_ + 7) / 8;
    if (isInverted_) {
      Invert(planes[0], bytes, target);
    } else if (target != planes[0]) {
      std::memcpy(target, planes[0], bytes);
    }
  }

 private:
  const size_t bits_;
  const bool isInverted_;
};

class FirstSamples : public TiffRowWriter {
 public:
  explicit FirstSamples(const TiffLayout& layout)
      : bytes_(static_cast<size_t>(layout.Bytes())),
        step_(bytes_ * static_cast<size_t>(layout.pitch)),
        flip_(layout.isInverted ? 0xFF : 0) {}

  void Write(const uint8_t* const* planes, size_t width, uint8_t* target) override {
    const uint8_t* sample = planes[0];
    for (size_t x = 0; x < width; x++, sample += step_) {
      for (size_t i = 0; i < bytes_; i++) *target++ = sample[i] ^ flip_;
    }
  }

 private:
  const size_t bytes_, step_;
  const uint8_t flip_;
};

class RgbRows : public TiffRowWriter {
 public:
  explicit RgbRows(const TiffLayout& layout) : pitch_(static_cast<size_t>(layout.pitch)) {}

  void Write(const uint8_t* const* planes, size_t width, uint8_t* target) override {
    const uint8_t* pixel = planes[0];
    if (pitch_ == 3) return kernels::ExchangeRedBlue24(pixel, width, target);
    for (size_t x = 0; x < width; x++, pixel += pitch_, target += 3) {
      target[0] = pixel[2];
      target[1] = pixel[1];
      target[2] = pixel[0];
    }
  }

 private:
  const size_t pitch_;
};

class RgbPlanes : public TiffRowWriter {
 public:
  void Write(const uint8_t* const* planes, size_t width, uint8_t* target) override {
    kernels::JoinPlanes24(planes[0], planes[1], planes[2], width, target);
  }
};

class RgbaRows : public TiffRowWriter {
 public:
  void Write(const uint8_t* const* planes, size_t width, uint8_t* target) override {
    kernels::ExchangeRedBlue32(planes[0], width, target);
  }
};

template <typename T>
T Load(const uint8_t* bytes) {
  T value;
  std::memcpy(&value, bytes, sizeof value);
  return value;
}

/// Gray or RGB of whole bytes or words, interleaved in one row.
template <typename T>
class IntegerRows : public TiffRowWriter {
 public:
  explicit IntegerRows(TiffLayout layout) : layout_(std::move(layout)) {}

  void Write(const uint8_t* const* planes, size_t width, uint8_t* target) override {
    const uint8_t* row = planes[0];
    const size_t step = sizeof(T) * static_cast<size_t>(layout_.pitch);
    const bool isGray = layout_.channels == 1;
    const size_t green = isGray ? 0 : sizeof(T);
    const size_t alphaAt = sizeof(T) * static_cast<size_t>(layout_.alphaAt.value_or(0));
    for (size_t x = 0; x < width; x++, row += step, target += 4) {
      const T alpha = layout_.alphaAt ? Load<T>(row + alphaAt) : std::numeric_limits<T>::max();
      target[2] = Color(Load<T>(row), alpha);
      target[1] = Color(Load<T>(row + green), alpha);
      target[0] = Color(Load<T>(row + 2 * green), alpha);
      target[3] = ToByte(alpha);
    }
  }

 private:
  uint8_t Color(T value, T alpha) const {
    if (layout_.isInverted) value = static_cast<T>(std::numeric_limits<T>::max() - value);
    return layout_.isAssociated ? Unmultiplied(value, alpha) : ToByte(value);
  }

  const TiffLayout layout_;
};

/// Interleaves the samples of separate planes for a writer that needs it.
class JoinedPlanes : public TiffRowWriter {
 public:
  JoinedPlanes(const TiffLayout& layout, std::unique_ptr<TiffRowWriter> writer)
      : planes_(layout.planes.size()),
        bytes_(static_cast<size_t>(layout.Bytes())),
        writer_(std::move(writer)) {}

  void Write(const uint8_t* const* planes, size_t width, uint8_t* target) override {
    joined_.resize(width * planes_ * bytes_);
    JoinSamples(planes, planes_, bytes_, width, joined_.data());
    const uint8_t* row = joined_.data();
    writer_->Write(&row, width, target);
  }

 private:
  const size_t planes_, bytes_;
  std::unique_ptr<TiffRowWriter> writer_;
  std::vector<uint8_t> joined_;
};

class Cmyk8Rows : public TiffRowWriter {
 public:
  void Write(const uint8_t* const* planes, size_t width, uint8_t* target) override {
    bgr_.resize(3 * width);
    CmykRowToBgr(planes[0], bgr_.data(), width, false);
    kernels::Row24To32(bgr_.data(), width, target);
  }

 private:
  std::vector<uint8_t> bgr_;
};

bool IsPlain(const TiffLayout& layout, int bits, int samples) {
  return layout.bits == bits && layout.pitch == samples && layout.planes.size() == 1;
}

std::unique_ptr<TiffRowWriter> MakeIntegerWriter(const TiffLayout& layout) {
  if (IsPlain(layout, 8, 4) && layout.alphaAt == 3 && layout.channels == 3 &&
      !layout.isAssociated) {
    return std::make_unique<RgbaRows>();
  }
  std::unique_ptr<TiffRowWriter> writer;
  if (layout.bits == 8) {
    writer = std::make_unique<IntegerRows<uint8_t>>(layout);
  } else {
    writer = std::make_unique<IntegerRows<uint16_t>>(layout);
  }
  if (layout.planes.size() == 1) return writer;
  return std::make_unique<JoinedPlanes>(layout, std::move(writer));
}

}  // namespace

bool WorksInPlace(const TiffLayout& layout) {
  if (layout.planes.size() != 1) return false;
  if (layout.rows == TiffRowKind::samples) return layout.HasWholeSamples();
  return layout.rows == TiffRowKind::same || (layout.rows == TiffRowKind::rgb && layout.pitch == 3);
}

void JoinSamples(const uint8_t* const* planes, size_t count, size_t bytes, size_t width,
                 uint8_t* target) {
  for (size_t plane = 0; plane < count; plane++) {
    const uint8_t* source = planes[plane];
    uint8_t* place = target + plane * bytes;
    for (size_t x = 0; x < width; x++, source += bytes, place += count * bytes) {
      std::memcpy(place, source, bytes);
    }
  }
}

std::unique_ptr<TiffRowWriter> MakeRowWriter(const TiffLayout& layout, const TiffColors& colors) {
  switch (layout.rows) {
    case TiffRowKind::same:
      return std::make_unique<SameRows>(layout);
    case TiffRowKind::firstSample:
      return std::make_unique<FirstSamples>(layout);
    case TiffRowKind::samples:
      return MakeSampleWriter(layout);
    case TiffRowKind::rgb:
      if (layout.planes.size() == 3) return std::make_unique<RgbPlanes>();
      return std::make_unique<RgbRows>(layout);
    case TiffRowKind::integers:
      return MakeIntegerWriter(layout);
    case TiffRowKind::cmyk:
      if (IsPlain(layout, 8, 4) && !colors.inks && layout.number == TiffNumber::unsignedInteger) {
        return std::make_unique<Cmyk8Rows>();
      }
      break;
    default:
      break;
  }
  return MakeNumberWriter(layout, colors);
}

}  // namespace rasterkit::detail
