#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <vector>

#include <rasterkit/bands/stage/filter.h>
#include <rasterkit/bands/stage/sides.h>
#include <rasterkit/raster/pixels.h>
#include <rasterkit/runtime/half.h>

/// Resizing of pictures of any number type, pixel by pixel, every source pixel with its weight.
namespace rasterkit::reference {

/// Sums of products of weights and numbers.
__extension__ using Whole = __int128;

/// Weight of source position `j` of `size` for target position `i` of `length`.
inline int64_t WeightAlong(int64_t i, int64_t length, int64_t j, int64_t size, Filter filter) {
  const bool isArea = filter == Filter::area || (filter == Filter::automatic && length <= size);
  if (isArea) {
    const int64_t from = std::max(i * size, j * length);
    const int64_t to = std::min((i + 1) * size, (j + 1) * length);
    return std::max<int64_t>(to - from, 0);
  }
  const int64_t unit = 2 * length;
  const int64_t center = std::clamp<int64_t>((2 * i + 1) * size - length, 0, (size - 1) * unit);
  return std::max<int64_t>(unit - std::abs(center - j * unit), 0);
}

inline bool IsWhole(NumberType type) {
  return type != NumberType::float16 && type != NumberType::float32 && type != NumberType::float64;
}

/// True if the filter averages the picture; 64-bit numbers are not.
inline bool IsAveraged(const Pixels& source, Filter filter) {
  if (const auto* raster = std::get_if<Raster>(&source)) {
    const bool isGray = raster->Format() == pf8bit && IsGrayRamp(raster->palette);
    return filter != Filter::automatic || !IsIndexed(raster->Format()) || isGray;
  }
  const NumberType type = std::get<Samples>(source).Layout().type;
  return type != NumberType::int64 && type != NumberType::uint64;
}

template <class T>
T As(const uint8_t* bytes) {
  T number;
  std::memcpy(&number, bytes, sizeof number);
  return number;
}

inline double NumberIn(NumberType type, const uint8_t* bytes) {
  switch (type) {
    case NumberType::uint8:
      return bytes[0];
    case NumberType::int8:
      return As<int8_t>(bytes);
    case NumberType::uint16:
      return As<uint16_t>(bytes);
    case NumberType::int16:
      return As<int16_t>(bytes);
    case NumberType::uint32:
      return As<uint32_t>(bytes);
    case NumberType::int32:
      return As<int32_t>(bytes);
    case NumberType::float16:
      return HalfToDouble(As<uint16_t>(bytes));
    case NumberType::float32:
      return static_cast<double>(As<float>(bytes));
    default:
      return As<double>(bytes);
  }
}

/// Bands of the pixels as they are averaged: colors B G R, and alpha where the source can be
/// transparent; one gray where all that the source can show is gray.
struct Bands {
  NumberType type = NumberType::uint8;
  int count = 1;
  bool hasStraightAlpha = false;
};

inline Bands BandsOf(const Pixels& source, const Pixels& made) {
  if (const auto* samples = std::get_if<Samples>(&source)) {
    const PixelLayout& layout = samples->Layout();
    return {layout.type, layout.bands, layout.alpha == AlphaKind::straight};
  }
  const auto& raster = std::get<Raster>(made);
  const int count = StoredBitsPerPixel(raster.Format()) / 8;
  return {NumberType::uint8, count, count == 4};
}

inline double BandAt(const Pixels& source, const Bands& bands, int x, int y, int band) {
  if (const auto* samples = std::get_if<Samples>(&source)) {
    const auto size = BytesOf(bands.type);
    const auto column = static_cast<size_t>(x);
    const uint8_t* bytes =
        samples->Planes() > 1
            ? samples->Row(y, band) + column * size
            : samples->Row(y) +
                  (column * static_cast<size_t>(bands.count) + static_cast<size_t>(band)) * size;
    return NumberIn(bands.type, bytes);
  }
  const auto& raster = std::get<Raster>(source);
  const TColor color = raster.PixelColor(x, y);
  if (band == 3) {
    if (raster.Format() == pf32bit && raster.alphaFormat == afDefined)
      return raster.Row(y)[4 * x + 3];
    return raster.transparentColor == color ? 0 : 255;
  }
  return color >> (16 - 8 * band) & 255;
}

template <class T>
void Append(std::vector<uint8_t>& bytes, T number) {
  const auto* first = reinterpret_cast<const uint8_t*>(&number);
  bytes.insert(bytes.end(), first, first + sizeof number);
}

/// Rounds as the type needs it: whole numbers to the nearest, halves up.
inline void AppendNumber(std::vector<uint8_t>& bytes, NumberType type, double number) {
  const double rounded = std::floor(number + 0.5);
  switch (type) {
    case NumberType::uint8:
      return Append(bytes, static_cast<uint8_t>(rounded));
    case NumberType::int8:
      return Append(bytes, static_cast<int8_t>(rounded));
    case NumberType::uint16:
      return Append(bytes, static_cast<uint16_t>(rounded));
    case NumberType::int16:
      return Append(bytes, static_cast<int16_t>(rounded));
    case NumberType::uint32:
      return Append(bytes, static_cast<uint32_t>(rounded));
    case NumberType::int32:
      return Append(bytes, static_cast<int32_t>(rounded));
    case NumberType::float16: {
      // Halves from 0 on are in the order of their bits.
      const double size = std::fabs(number);
      uint16_t below = 0, above = 0x7BFF;
      while (above - below > 1) {
        const auto middle = static_cast<uint16_t>((below + above) / 2);
        (HalfToDouble(middle) <= size ? below : above) = middle;
      }
      const double down = size - HalfToDouble(below), up = HalfToDouble(above) - size;
      const bool isAbove = up < down || (up == down && above % 2 == 0);
      const auto best =
          static_cast<uint16_t>((isAbove ? above : below) | (number < 0 ? 0x8000 : 0));
      return Append(bytes, best);
    }
    case NumberType::float32:
      return Append(bytes, static_cast<float>(number));
    default:
      return Append(bytes, number);
  }
}

/// Means of unsigned 8- and 16-bit numbers: an exact fraction.
inline Whole ExactQuotient(Whole sum, Whole divisor) {
  return (2 * sum + divisor) / (2 * divisor);
}

/// The bytes of pixel (x, y) of the picture resized to `target`. `made` tells the format alone.
inline std::vector<uint8_t> MeanBytes(const Pixels& source, const Pixels& made, Sides target,
                                      Filter filter, int x, int y, std::optional<double> noData) {
  const Bands bands = BandsOf(source, made);
  const int width = WidthOf(source), height = HeightOf(source);
  const bool isExact = bands.type == NumberType::uint8 || bands.type == NumberType::uint16;
  std::vector<uint8_t> bytes;
  for (int band = 0; band < bands.count; ++band) {
    const bool isColor = bands.hasStraightAlpha && band + 1 < bands.count;
    Whole exact = 0, exactWeights = 0, exactPlain = 0, allWeights = 0;
    long double sum = 0, weights = 0, plain = 0;
    for (int v = 0; v < height; ++v) {
      const int64_t down = WeightAlong(y, target.height, v, height, filter);
      for (int u = 0; down != 0 && u < width; ++u) {
        const int64_t weight = down * WeightAlong(x, target.width, u, width, filter);
        if (weight == 0) continue;
        const double number = BandAt(source, bands, u, v, band);
        if (noData && !bands.hasStraightAlpha &&
            number == static_cast<double>(bands.type == NumberType::float32
                                              ? static_cast<double>(static_cast<float>(*noData))
                                              : *noData)) {
          continue;
        }
        const double alpha = isColor ? BandAt(source, bands, u, v, bands.count - 1) : 1;
        allWeights += weight;
        if (isExact) {
          exact += Whole{weight} * static_cast<Whole>(alpha) * static_cast<Whole>(number);
          exactWeights += Whole{weight} * static_cast<Whole>(alpha);
          exactPlain += Whole{weight} * static_cast<Whole>(number);
        } else {
          sum += static_cast<long double>(weight) * alpha * number;
          weights += static_cast<long double>(weight) * alpha;
          plain += static_cast<long double>(weight) * number;
        }
      }
    }
    if (allWeights == 0) {
      AppendNumber(bytes, bands.type, *noData);
    } else if (isExact) {
      const Whole mean = exactWeights != 0 ? ExactQuotient(exact, exactWeights)
                                           : ExactQuotient(exactPlain, allWeights);
      AppendNumber(bytes, bands.type, static_cast<double>(mean));
    } else {
      // Sums are exact here, so that the quotient alone is rounded, to a double.
      AppendNumber(bytes, bands.type,
                   weights != 0 ? static_cast<double>(sum) / static_cast<double>(weights)
                                : static_cast<double>(plain) / static_cast<double>(allWeights));
    }
  }
  return bytes;
}

}  // namespace rasterkit::reference
