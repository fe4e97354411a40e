#include <bit>
#include <string>

#include <rasterkit/codecs/bmp/bmp_masks.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

/// Wider channels are scaled one by one: their tables would be larger than most pictures.
constexpr int kWidestTable = 16;

}  // namespace

BmpChannel::BmpChannel(uint32_t mask, int pixelBits)
    : mask_(mask), shift_(mask == 0 ? 0 : std::countr_zero(mask)) {
  const uint32_t highest = mask_ >> shift_;
  if ((highest & (uint64_t{highest} + 1)) != 0 ||
      static_cast<int>(std::bit_width(mask)) > pixelBits) {
    throw FormatError("BMP: the color mask " + std::to_string(mask) +
                      " is not a run of bits within " + std::to_string(pixelBits));
  }
  if (static_cast<int>(std::bit_width(highest)) > kWidestTable) return;
  scaled_.resize(size_t{highest} + 1);
  for (uint32_t value = 0; value <= highest; ++value) scaled_[value] = Scale(value);
}

uint8_t BmpChannel::Scale(uint32_t value) const {
  const uint64_t highest = mask_ >> shift_;
  if (highest == 0) return 0;
  // The highest value is odd, so the quotient never lies halfway between two integers.
  return static_cast<uint8_t>((uint64_t{value} * 255 + highest / 2) / highest);
}

BmpMaskedRows::BmpMaskedRows(const BmpMasks& masks, int pixelBits)
    : pixelBytes_(pixelBits / 8),
      hasAlpha_(masks.alpha != 0),
      red_(masks.red, pixelBits),
      green_(masks.green, pixelBits),
      blue_(masks.blue, pixelBits),
      alpha_(masks.alpha, pixelBits) {
  if ((masks.red | masks.green | masks.blue) == 0) {
    throw FormatError("BMP: all color masks are empty");
  }
}

uint32_t BmpMaskedRows::Pixel(const uint8_t* source) const {
  uint32_t pixel = 0;
  for (int i = 0; i < pixelBytes_; ++i) pixel |= uint32_t{source[i]} << (8 * i);
  return pixel;
}

void BmpMaskedRows::To24(const uint8_t* source, uint8_t* target, size_t width) const {
  for (size_t x = 0; x < width; ++x, source += pixelBytes_, target += 3) {
    const uint32_t pixel = Pixel(source);
    target[0] = blue_.Of(pixel);
    target[1] = green_.Of(pixel);
    target[2] = red_.Of(pixel);
  }
}

void BmpMaskedRows::To32(const uint8_t* source, uint8_t* target, size_t width) const {
  for (size_t x = 0; x < width; ++x, source += pixelBytes_, target += 4) {
    const uint32_t pixel = Pixel(source);
    target[0] = blue_.Of(pixel);
    target[1] = green_.Of(pixel);
    target[2] = red_.Of(pixel);
    target[3] = hasAlpha_ ? alpha_.Of(pixel) : 255;
  }
}

}  // namespace rasterkit::detail
