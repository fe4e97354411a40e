#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

#include <fmt/format.h>

#include <rasterkit/codecs/rows/no_data_number.h>
#include <rasterkit/codecs/rows/stretch_numbers.h>
#include <rasterkit/codecs/visible_numbers.h>
#include <rasterkit/runtime/half.h>
#include <rasterkit/runtime/limits.h>

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

bool IsInverted(const PixelLayout& layout) {
  return layout.model == ColorModel::grayWhiteIsZero;
}

bool IsUnsigned(NumberType type) {
  return type == NumberType::uint8 || type == NumberType::uint16 || type == NumberType::uint32 ||
         type == NumberType::uint64;
}

/// The gray of each unsigned number of up to 16 bits.
std::vector<uint8_t> GraysOf(const PixelLayout& layout, const NoDataNumber& noData) {
  const uint32_t full = (1u << layout.bits) - 1;
  std::vector<uint8_t> grays(size_t{1} << (8 * BytesOf(layout.type)), 255);
  for (uint32_t i = 0; i < grays.size(); i++) {
    const uint32_t number = std::min(i, full);
    const uint32_t light = IsInverted(layout) ? full - number : number;
    const bool isData = layout.bits <= 8 || !noData.Is(i);
    if (isData) grays[i] = static_cast<uint8_t>((light * 510 + full) / (2 * full));
  }
  return grays;
}

/// Numbers with as many grays as the table has entries.
void ShowByTable(const Samples& samples, const std::vector<uint8_t>& grays, Raster& raster) {
  const bool isWord = grays.size() > 256;
  for (int y = 0; y < samples.Height(); y++) {
    RequireTime();
    const uint8_t* sample = samples.Row(y);
    uint8_t* target = raster.Row(y);
    for (int x = 0; x < samples.Width(); x++, sample += samples.PixelBytes()) {
      uint16_t word = *sample;
      if (isWord) std::memcpy(&word, sample, sizeof word);
      target[x] = grays[word];
    }
  }
}

/// Calls `use` with the numbers of each row, NaN for "no data".
template <class Use>
void ForEachRow(const Samples& samples, const NoDataNumber& noData, const Use& use) {
  const PixelLayout& layout = samples.Layout();
  const auto width = static_cast<size_t>(samples.Width());
  const bool isNegated = IsInverted(layout) && IsUnsigned(layout.type);
  std::vector<double> numbers(width);
  for (int y = 0; y < samples.Height(); y++) {
    RequireTime();
    UnpackOf(layout.type)(samples.Row(y), samples.PixelBytes(), width, 1, numbers.data());
    for (double& number : numbers) {
      if (noData.IsKnown() && noData.Is(number)) number = std::nan("");
      if (isNegated) number = -number;
    }
    use(y, numbers);
  }
}

void ShowStretched(const Samples& samples, const NoDataNumber& noData, Changes& changes,
                   Raster& raster) {
  NumberRange range;
  ForEachRow(samples, noData, [&](int, const std::vector<double>& numbers) {
    for (const double number : numbers) {
      if (!std::isfinite(number)) continue;
      const bool isFirst = !range.IsKnown();
      range.least = isFirst ? number : std::min(range.least, number);
      range.greatest = isFirst ? number : std::max(range.greatest, number);
    }
  });
  ForEachRow(samples, noData, [&](int y, const std::vector<double>& numbers) {
    uint8_t* target = raster.Row(y);
    for (const double number : numbers) *target++ = GrayOf(number, range);
  });
  const bool isNegated = IsInverted(samples.Layout()) && IsUnsigned(samples.Layout().type);
  const double sign = isNegated ? -1 : 1;
  changes.Note(range.IsKnown()
                   ? fmt::format("numbers from {:g} to {:g} are shown as black to white",
                                 sign * range.least, sign * range.greatest)
                   : "the grid holds no number; all of it is shown white");
}

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

Raster VisibleNumbers(const Samples& samples, const std::string& noData, Changes& changes) {
  const PixelLayout& layout = samples.Layout();
  Raster raster(pf8bit, samples.Width(), samples.Height());
  raster.palette = GrayPalette(256);
  const NoDataNumber missing(noData, layout.type);
  const bool isWhole =
      (layout.type == NumberType::uint8 || layout.type == NumberType::uint16) && layout.bits <= 16;
  if (isWhole) {
    ShowByTable(samples, GraysOf(layout, missing), raster);
  } else {
    ShowStretched(samples, missing, changes, raster);
  }
  if (missing.IsKnown() && layout.bits > 8) {
    changes.Lose(LossKind::noData, "the number " + noData + " for missing values",
                 "it is shown white");
  }
  raster.ClearPadding();
  return raster;
}

}  // namespace rasterkit::detail
