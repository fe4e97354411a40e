#include <array>
#include <bit>
#include <cstring>

#include <rasterkit/codecs/rows/alpha_rows.h>

namespace rasterkit::detail {
namespace {

// Works on whole pixels, which the compiler vectorizes; it does not for every fourth byte.
constexpr auto kAlpha = std::bit_cast<uint32_t>(std::array<uint8_t, 4>{0, 0, 0, 255});

uint32_t LoadPixel(const uint8_t* place) {
  uint32_t pixel = 0;
  std::memcpy(&pixel, place, sizeof pixel);
  return pixel;
}

}  // namespace

void MakeOpaque(uint8_t* row, size_t width) {
  for (size_t x = 0; x < width; ++x) {
    const uint32_t pixel = LoadPixel(row + 4 * x) | kAlpha;
    std::memcpy(row + 4 * x, &pixel, sizeof pixel);
  }
}

bool HasAnyAlpha(const uint8_t* row, size_t width) {
  uint32_t seen = 0;
  for (size_t x = 0; x < width; ++x) seen |= LoadPixel(row + 4 * x);
  return (seen & kAlpha) != 0;
}

}  // namespace rasterkit::detail
