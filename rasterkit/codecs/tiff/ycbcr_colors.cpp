#include <algorithm>
#include <cmath>
#include <new>
#include <span>

#include <rasterkit/codecs/tiff/ycbcr_colors.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

namespace {

/// The tables follow the structure in one block of memory.
constexpr size_t kTableBytes = sizeof(TIFFYCbCrToRGB) + sizeof(long) +
                               4 * 256 * sizeof(TIFFRGBValue) + 2 * 256 * sizeof(int) +
                               3 * 256 * sizeof(int32_t);

/// Numbers of a tag, which has a default.
std::span<float> Numbers(const TiffHandle& handle, uint32_t tag, size_t count) {
  float* numbers = nullptr;
  const bool isThere = TIFFGetFieldDefaulted(handle.Tiff(), tag, &numbers) != 0 && numbers;
  if (!isThere ||
      !std::all_of(numbers, numbers + count, [](float n) { return std::isfinite(n); })) {
    throw FormatError("TIFF: the coefficients of YCbCr colors are invalid");
  }
  return {numbers, count};
}

}  // namespace

YcbcrColors::YcbcrColors(const TiffHandle& handle) {
  const std::span<float> luma = Numbers(handle, TIFFTAG_YCBCRCOEFFICIENTS, 3);
  const std::span<float> levels = Numbers(handle, TIFFTAG_REFERENCEBLACKWHITE, 6);
  if (luma[1] == 0) throw FormatError("TIFF: the coefficients of YCbCr colors are invalid");
  tables_.reset(static_cast<TIFFYCbCrToRGB*>(_TIFFmalloc(static_cast<tmsize_t>(kTableBytes))));
  if (!tables_) throw std::bad_alloc();
  if (TIFFYCbCrToRGBInit(tables_.get(), luma.data(), levels.data()) < 0) {
    throw FormatError("TIFF: the coefficients of YCbCr colors are invalid");
  }
}

void YcbcrColors::ToBgr(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, size_t step,
                        size_t width, uint8_t* target) const {
  for (size_t x = 0; x < width; x++, target += 3) {
    uint32_t red = 0, green = 0, blue = 0;
    TIFFYCbCrtoRGB(tables_.get(), y[x], cb[x / step], cr[x / step], &red, &green, &blue);
    target[0] = static_cast<uint8_t>(blue);
    target[1] = static_cast<uint8_t>(green);
    target[2] = static_cast<uint8_t>(red);
  }
}

}  // namespace rasterkit::detail
