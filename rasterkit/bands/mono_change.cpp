#include <rasterkit/bands/color_changes.h>
#include <rasterkit/bands/colors/opacity_plane.h>
#include <rasterkit/bitmaptools/pixels/gray_mono.h>

namespace rasterkit::detail {
namespace {

__extension__ using Wide = unsigned __int128;

/// A whole number below 2^384; enough for pictures of 2^48 pixels.
class WholeNumber {
 public:
  explicit WholeNumber(Wide value) {
    for (size_t i = 0; i < 4; ++i) digits_[i] = static_cast<uint32_t>(value >> (32 * i));
  }

  WholeNumber Times(Wide factor) const {
    WholeNumber product(0);
    for (size_t i = 0; i < 4; ++i) {
      uint64_t carried = 0;
      const uint64_t digit = static_cast<uint32_t>(factor >> (32 * i));
      for (size_t j = 0; i + j < kDigits; ++j) {
        carried += product.digits_[i + j] + digit * digits_[j];
        product.digits_[i + j] = static_cast<uint32_t>(carried);
        carried >>= 32;
      }
    }
    return product;
  }

  /// -1, 0 or 1.
  int Compare(const WholeNumber& other) const {
    for (size_t i = kDigits; i-- > 0;) {
      if (digits_[i] != other.digits_[i]) return digits_[i] < other.digits_[i] ? -1 : 1;
    }
    return 0;
  }

 private:
  static constexpr size_t kDigits = 12;
  /// The lowest first.
  std::array<uint32_t, kDigits> digits_{};
};

/// The variance between dark and light pixels as a fraction, times the square of all pixels: the
/// square of `root` over `counts`.
struct Spread {
  Wide root = 0, counts = 1;

  int Compare(const Spread& other) const {
    return WholeNumber(root)
        .Times(root)
        .Times(other.counts)
        .Compare(WholeNumber(other.root).Times(other.root).Times(counts));
  }
};

struct Channels {
  int red, green, blue;
  explicit Channels(TColor color)
      : red(color & 255), green(color >> 8 & 255), blue(color >> 16 & 255) {}
};

}  // namespace

int OtsuThreshold(const std::array<uint64_t, 256>& counts) {
  constexpr int kMiddle = 128;
  uint64_t allCount = 0, allSum = 0;
  for (uint64_t gray = 0; gray < counts.size(); ++gray) {
    allCount += counts[gray];
    allSum += counts[gray] * gray;
  }
  Spread best;
  int first = kMiddle, last = kMiddle;
  uint64_t count = 0, sum = 0;
  for (int gray = 1; gray < 256; ++gray) {
    const auto darker = static_cast<size_t>(gray - 1);
    count += counts[darker];
    sum += counts[darker] * darker;
    if (count == 0 || count == allCount) continue;
    const Wide light = Wide{allSum} * count, dark = Wide{allCount} * sum;
    const Spread spread{light - dark, Wide{count} * (allCount - count)};
    const int order = spread.Compare(best);
    if (order > 0) {
      best = spread;
      first = last = gray;
    } else if (order == 0 && last == gray - 1 && counts[darker] == 0) {
      last = gray;
    }
  }
  return (first + last) / 2;
}

void Change(const MakeMono& change, BitmapPointer& bitmap) {
  if (HasTransparency(*bitmap)) {
    DropTransparency(bitmap, clWhite);
    bitmap->SetTransparent(false);
  }
  const Channels dark(change.dark), light(change.light);
  ColorBmpTo1Bit(bitmap.get(), change.threshold.value(), dark.red, dark.green, dark.blue, light.red,
                 light.green, light.blue);
  bitmap->SetProfile({});
}

}  // namespace rasterkit::detail
