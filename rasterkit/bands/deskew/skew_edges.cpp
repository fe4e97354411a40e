#include <algorithm>
#include <array>
#include <cstdlib>

#include <rasterkit/bands/deskew/skew_edges.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

constexpr int kWhite = 255, kGrays = 256;

int GrayOf(int red, int green, int blue) {
  constexpr int kRed = 77, kGreen = 150, kBlue = 29, kShift = 8;
  return (kRed * red + kGreen * green + kBlue * blue) >> kShift;
}

/// Grays of one row.
class GrayRow {
 public:
  explicit GrayRow(const Raster& picture) : picture_(picture) {
    const TColorTable table = PaletteTable(picture.palette);
    for (size_t i = 0; i < table.size(); ++i) {
      entries_[i] = GrayOf(table[i].peRed, table[i].peGreen, table[i].peBlue);
    }
  }

  /// Adds each pixel to the sum of its block.
  void AddTo(std::vector<uint32_t>& sums, int y, int block) const {
    const uint8_t* row = picture_.Row(y);
    int x = 0;
    for (uint32_t& sum : sums) {
      for (int i = 0; i < block; ++i, ++x) sum += static_cast<uint32_t>(At(row, x));
    }
  }

 private:
  int At(const uint8_t* row, int x) const {
    switch (picture_.Format()) {
      case pf1bit:
        return entries_[row[x / 8] >> (7 - x % 8) & 1];
      case pf4bit:
        return entries_[row[x / 2] >> (x % 2 == 0 ? 4 : 0) & 15];
      case pf8bit:
        return entries_[row[x]];
      case pf24bit:
        return GrayOf(row[3 * x + 2], row[3 * x + 1], row[3 * x]);
      default:
        return OfFour(row + static_cast<ptrdiff_t>(4) * x);
    }
  }
  int OfFour(const uint8_t* pixel) const {
    const int gray = GrayOf(pixel[2], pixel[1], pixel[0]);
    if (picture_.alphaFormat != afDefined) return gray;
    const int alpha = pixel[3];
    return (gray * alpha + kWhite * (kWhite - alpha)) / kWhite;
  }

  const Raster& picture_;
  std::array<int, kGrays> entries_{};
};

/// How often each gray is there.
class Histogram {
 public:
  explicit Histogram(const SkewGrays& grays) : all_(grays.grays.size()) {
    for (const uint8_t gray : grays.grays) ++counts_[gray];
  }

  /// The range of grays without the rarest ones.
  int Range() const { return Bound(kWhite, -1) - Bound(0, 1); }

  /// Thousandths of the pixels that lie around the gray for which they are most.
  int MostAround(int distance) const {
    constexpr size_t kWhole = 1000;
    size_t most = 0;
    for (int gray = 0; gray < kGrays; ++gray) {
      const int end = std::min(gray + distance + 1, kGrays);
      size_t around = 0;
      for (int i = std::max(gray - distance, 0); i < end; ++i) around += Count(i);
      most = std::max(most, around);
    }
    return all_ == 0 ? 0 : static_cast<int>(most * kWhole / all_);
  }

 private:
  size_t Count(int gray) const { return counts_[static_cast<size_t>(gray)]; }
  int Bound(int from, int step) const {
    constexpr size_t kRare = 2000;
    size_t seen = 0;
    int gray = from;
    while (gray + step >= 0 && gray + step < kGrays) {
      seen += Count(gray);
      if (seen > all_ / kRare) break;
      gray += step;
    }
    return gray;
  }

  size_t all_;
  std::array<size_t, kGrays> counts_{};
};

}  // namespace

SkewGrays SkewGraysOf(const Raster& picture) {
  if (picture.Format() == pf15bit || picture.Format() == pf16bit) {
    return SkewGraysOf(ConvertRaster(picture, pf24bit));
  }
  const int longest = std::max(picture.Width(), picture.Height());
  const int block = std::max(1, (longest + kMostSkewSide - 1) / kMostSkewSide);
  SkewGrays result;
  result.width = picture.Width() / block;
  result.height = picture.Height() / block;
  result.grays.reserve(static_cast<size_t>(result.width) * static_cast<size_t>(result.height));
  const GrayRow row(picture);
  std::vector<uint32_t> sums(static_cast<size_t>(result.width));
  for (int y = 0; y < result.height; ++y) {
    RequireTime();
    std::fill(sums.begin(), sums.end(), 0);
    for (int i = 0; i < block; ++i) row.AddTo(sums, y * block + i, block);
    const auto area = static_cast<uint32_t>(block) * static_cast<uint32_t>(block);
    for (const uint32_t sum : sums) result.grays.push_back(static_cast<uint8_t>(sum / area));
  }
  return result;
}

SkewEdges SkewEdgesOf(const SkewGrays& grays) {
  constexpr int kLeastRange = 24, kPart = 4, kBackgroundPart = 8;
  const Histogram histogram(grays);
  const int range = histogram.Range();
  SkewEdges edges{grays.width, grays.height, histogram.MostAround(range / kBackgroundPart), {}, {}};
  if (range < kLeastRange) return edges;
  const int least = range / kPart;
  for (int y = 0; y + 1 < grays.height; ++y) {
    RequireTime();
    for (int x = 0; x + 1 < grays.width; ++x) {
      const int here = grays.At(x, y);
      const int below = std::abs(grays.At(x, y + 1) - here);
      const int beside = std::abs(grays.At(x + 1, y) - here);
      if (below >= least && below > 2 * beside) edges.across.push_back({x, y});
      if (beside >= least && beside > 2 * below) edges.down.push_back({x, y});
    }
  }
  return edges;
}

}  // namespace rasterkit::detail
