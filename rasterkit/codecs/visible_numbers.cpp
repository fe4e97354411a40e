#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include <rasterkit/codecs/shown_numbers.h>
#include <rasterkit/codecs/visible_numbers.h>
#include <rasterkit/runtime/half.h>

namespace rasterkit::detail {
namespace {

/// A half in its two bytes.
struct Half {
  uint16_t bits = 0;
};

double AsDouble(Half half) {
  return HalfToDouble(half.bits);
}
template <class Number>
double AsDouble(Number number) {
  return static_cast<double>(number);
}

/// Unpacks one band of a row to every `pitch`-th double.
template <class Number>
void UnpackBand(const uint8_t* sample, size_t step, size_t width, size_t pitch, double* numbers) {
  for (size_t x = 0; x < width; x++, sample += step, numbers += pitch) {
    Number number;
    std::memcpy(&number, sample, sizeof number);
    *numbers = AsDouble(number);
  }
}

using Unpack = void (*)(const uint8_t*, size_t, size_t, size_t, double*);

Unpack UnpackOf(NumberType type) {
  switch (type) {
    case NumberType::uint8:
      return UnpackBand<uint8_t>;
    case NumberType::int8:
      return UnpackBand<int8_t>;
    case NumberType::uint16:
      return UnpackBand<uint16_t>;
    case NumberType::int16:
      return UnpackBand<int16_t>;
    case NumberType::uint32:
      return UnpackBand<uint32_t>;
    case NumberType::int32:
      return UnpackBand<int32_t>;
    case NumberType::uint64:
      return UnpackBand<uint64_t>;
    case NumberType::int64:
      return UnpackBand<int64_t>;
    case NumberType::float16:
      return UnpackBand<Half>;
    case NumberType::float32:
      return UnpackBand<float>;
    case NumberType::float64:
      break;
  }
  return UnpackBand<double>;
}

/// The gray of each byte: samples of up to 8 bits, by their whole range.
std::vector<uint8_t> GraysOf(const PixelLayout& layout) {
  const uint32_t full = (1u << layout.bits) - 1;
  std::vector<uint8_t> grays(256);
  for (uint32_t i = 0; i < grays.size(); i++) {
    const uint32_t number = std::min(i, full);
    const uint32_t light = layout.model == ColorModel::grayWhiteIsZero ? full - number : number;
    grays[i] = static_cast<uint8_t>((light * 510 + full) / (2 * full));
  }
  return grays;
}

class BytesAsGrays : public ShownRows {
 public:
  explicit BytesAsGrays(std::shared_ptr<const std::vector<uint8_t>> grays)
      : grays_(std::move(grays)) {}

  void Show(const Samples& samples, int y, uint8_t* target) override {
    const uint8_t* const grays = grays_->data();
    const uint8_t* sample = samples.Row(y);
    for (int x = 0; x < samples.Width(); x++, sample += samples.PixelBytes()) {
      target[x] = grays[*sample];
    }
  }

 private:
  const std::shared_ptr<const std::vector<uint8_t>> grays_;
};

class NumbersAsGrays : public ShownRows {
 public:
  NumbersAsGrays(ShownNumbers numbers, std::shared_ptr<const GraySteps> steps, bool hasRange)
      : numbers_(std::move(numbers)), steps_(std::move(steps)), hasRange_(hasRange) {}

  void Show(const Samples& samples, int y, uint8_t* target) override {
    numbers_.Read(samples, y, 0, row_);
    for (size_t x = 0; x < row_.keys.size(); x++) {
      const bool isShown = row_.isMeasured[x] != 0 && hasRange_;
      target[x] = isShown ? steps_->Of(row_.keys[x]) : uint8_t{255};
    }
  }

 private:
  const ShownNumbers numbers_;
  const std::shared_ptr<const GraySteps> steps_;
  const bool hasRange_;
  ShownRow row_;
};

}  // namespace

bool HasAlphaBand(const PixelLayout& layout) {
  return layout.alpha == AlphaKind::straight || layout.alpha == AlphaKind::associated;
}

int ColorBandsOf(const PixelLayout& layout) {
  return layout.bands - layout.extraBands - (HasAlphaBand(layout) ? 1 : 0);
}

void UnpackSamples(const Samples& samples, int y, size_t pitch, double* numbers) {
  const PixelLayout& layout = samples.Layout();
  const auto width = static_cast<size_t>(samples.Width());
  const auto colors = static_cast<size_t>(ColorBandsOf(layout));
  for (size_t i = 0; i < pitch; i++) {
    const size_t band = i < colors ? i : static_cast<size_t>(layout.bands) - 1;
    const bool inPlanes = samples.Planes() > 1;
    const uint8_t* first = inPlanes ? samples.Row(y, static_cast<int>(band))
                                    : samples.Row(y) + band * BytesOf(layout.type);
    UnpackOf(layout.type)(first, samples.PixelBytes(), width, pitch, numbers + i);
  }
}

bool IsStretched(const PixelLayout& layout) {
  return layout.type != NumberType::uint8 || layout.bits > 8;
}

NewShownRows RowsOfBytes(const PixelLayout& layout) {
  return [grays = std::make_shared<const std::vector<uint8_t>>(GraysOf(layout))] {
    return std::make_unique<BytesAsGrays>(grays);
  };
}

NewShownRows RowsOfNumbers(const PixelLayout& layout, const std::string& noData,
                           const FoundRange& found) {
  const ShownNumbers numbers(layout, noData);
  auto steps =
      std::make_shared<const GraySteps>(numbers.Type(), found.range.value_or(ShownRange()));
  return [numbers, steps = std::move(steps), hasRange = found.range.has_value()] {
    return std::make_unique<NumbersAsGrays>(numbers, steps, hasRange);
  };
}

}  // namespace rasterkit::detail
