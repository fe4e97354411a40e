#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/codecs/rows/stretch_numbers.h>
#include <rasterkit/codecs/tiff/tiff_numbers.h>
#include <rasterkit/kernels/rows/exchange_red_blue.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/half.h>

namespace rasterkit {
namespace {

template <class Number>
Number NumberAt(const uint8_t* row, int x) {
  Number number;
  std::memcpy(&number, row + static_cast<size_t>(x) * sizeof number, sizeof number);
  return number;
}

double UnsignedWord(const uint8_t* row, int x) {
  return NumberAt<uint16_t>(row, x);
}
double SignedWord(const uint8_t* row, int x) {
  return NumberAt<int16_t>(row, x);
}
double Half(const uint8_t* row, int x) {
  return HalfToDouble(NumberAt<uint16_t>(row, x));
}
double Float(const uint8_t* row, int x) {
  return static_cast<double>(NumberAt<float>(row, x));
}

/// An 8-bit raster of the same size with a gray ramp; palette and alpha mark are not copied.
Raster GrayRasterFor(const Raster& numbers) {
  Raster grays(pf8bit, numbers.Width(), numbers.Height());
  grays.CopyProperties(numbers);
  grays.palette = GrayPalette(256);
  grays.alphaFormat = afIgnored;
  return grays;
}

template <class NumberOf>
detail::NumberRange RangeOf(const Raster& numbers, NumberOf numberOf) {
  detail::NumberRange range;
  for (int y = 0; y < numbers.Height(); y++) {
    const uint8_t* row = numbers.Row(y);
    for (int x = 0; x < numbers.Width(); x++) {
      const double number = numberOf(row, x);
      if (!std::isfinite(number)) continue;
      const bool isFirst = !range.IsKnown();
      range.least = isFirst ? number : std::min(range.least, number);
      range.greatest = isFirst ? number : std::max(range.greatest, number);
    }
  }
  return range;
}

template <class NumberOf>
Raster Stretched(const Raster& numbers, const detail::NumberRange& range, NumberOf numberOf) {
  Raster grays = GrayRasterFor(numbers);
  for (int y = 0; y < numbers.Height(); y++) {
    const uint8_t* row = numbers.Row(y);
    uint8_t* target = grays.Row(y);
    for (int x = 0; x < numbers.Width(); x++) target[x] = detail::GrayOf(numberOf(row, x), range);
  }
  grays.ClearPadding();
  return grays;
}

template <class NumberOf>
Raster StretchedGrid(const Raster& numbers, CodecReport* report, NumberOf numberOf) {
  const detail::NumberRange range = RangeOf(numbers, numberOf);
  if (report) {
    report->warnings.push_back(
        range.IsKnown() ? fmt::format("numbers from {:g} to {:g} are shown as black to white",
                                      range.least, range.greatest)
                        : "the grid holds no number; all of it is shown white");
  }
  return Stretched(numbers, range, numberOf);
}

Raster WithPalette(Raster rows, HPALETTE palette) {
  rows.palette = std::move(palette);
  return rows;
}

/// Converts a raster of 15-bit rows that has another 16-bit format.
Raster As15Bit(Raster rows) {
  if (rows.Format() == pf15bit) return rows;
  Raster renamed(pf15bit, rows.Width(), rows.Height());
  renamed.CopyProperties(rows);
  for (int y = 0; y < rows.Height(); y++) {
    std::memcpy(renamed.Row(y), rows.Row(y), renamed.Stride());
  }
  return renamed;
}

Raster WithRedAndBlueExchanged(Raster rows) {
  for (int y = 0; y < rows.Height(); y++) {
    kernels::ExchangeRedBlue24(rows.Row(y), static_cast<size_t>(rows.Width()), rows.Row(y));
  }
  return rows;
}

}  // namespace

Raster PictureOfFrame(ImagingFrame frame, CodecReport* report) {
  switch (frame.format) {
    case GUID_WICPixelFormatBlackWhite:
      return WithPalette(std::move(frame.rows), GrayPalette(2));
    case GUID_WICPixelFormat4bppGray:
      return WithPalette(std::move(frame.rows), GrayPalette(16));
    case GUID_WICPixelFormat8bppGray:
      return WithPalette(std::move(frame.rows), GrayPalette(256));
    case GUID_WICPixelFormat24bppRGB:
      return WithRedAndBlueExchanged(std::move(frame.rows));
    case GUID_WICPixelFormat16bppBGR555:
      return As15Bit(std::move(frame.rows));
    case GUID_WICPixelFormat16bppGray:
      return Stretched(frame.rows, {0, 65535}, UnsignedWord);
    case GUID_WICPixelFormat16bppGrayFixedPoint:
      return StretchedGrid(frame.rows, report, SignedWord);
    case GUID_WICPixelFormat16bppGrayHalf:
      return StretchedGrid(frame.rows, report, Half);
    case GUID_WICPixelFormat32bppGrayFloat:
      return StretchedGrid(frame.rows, report, Float);
    default:
      return std::move(frame.rows);
  }
}

}  // namespace rasterkit
