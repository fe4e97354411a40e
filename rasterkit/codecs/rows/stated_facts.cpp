#include <algorithm>
#include <cmath>
#include <span>

#include <rasterkit/codecs/rows/stated_facts.h>

namespace rasterkit::detail {
namespace {

constexpr double kMetersPerInch = 0.0254;

double DotsPerInch(uint32_t perMeter) {
  const double exact = perMeter * kMetersPerInch;
  const double whole = std::round(exact);
  return whole > 0 && std::abs(perMeter - whole / kMetersPerInch) <= 0.5 ? whole : exact;
}

/// The orientation in the main directory of an EXIF block.
std::optional<int> OrientationOf(std::span<const uint8_t> exif) {
  constexpr uint16_t kOrientation = 274, kWord = 3;
  constexpr size_t kHeaderBytes = 8, kEntryBytes = 12;
  if (exif.size() < kHeaderBytes) return std::nullopt;
  const bool isBig = exif[0] == 'M';
  const auto word = [&](size_t at) {
    const unsigned first = exif[at], second = exif[at + 1];
    return static_cast<uint16_t>(isBig ? first << 8 | second : second << 8 | first);
  };
  const size_t directory =
      isBig ? size_t{word(4)} << 16 | word(6) : size_t{word(6)} << 16 | word(4);
  if (directory > exif.size() - 2) return std::nullopt;
  for (size_t i = 0; i < word(directory); i++) {
    const size_t entry = directory + 2 + i * kEntryBytes;
    if (entry + kEntryBytes > exif.size()) break;
    if (word(entry) != kOrientation || word(entry + 2) != kWord) continue;
    const int value = word(entry + 8);
    if (value >= 1 && value <= 8) return value;
    break;
  }
  return std::nullopt;
}

}  // namespace

Resolution FromDotsPerMeter(uint32_t x, uint32_t y) {
  return {DotsPerInch(x), DotsPerInch(y)};
}

uint32_t DotsPerMeter(double dotsPerInch) {
  if (!(dotsPerInch > 0)) return 0;
  return static_cast<uint32_t>(
      std::clamp(std::round(dotsPerInch / kMetersPerInch), 1.0, 2147483647.0));
}

void TakeStatedFacts(PictureHeader& header, const Resolution& resolution, bool) {
  header.orientation = OrientationOf(header.metadata.exif);
  header.metadata.resolution = resolution;
}

}  // namespace rasterkit::detail
