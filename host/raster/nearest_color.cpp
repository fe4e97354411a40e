#include <algorithm>

#include <rasterkit/host/raster/nearest_color.h>

namespace rasterkit {
namespace {

constexpr int kCellSize = 8;

constexpr int Square(int value) {
  return value * value;
}

// Squared distance on one axis from `value` to the nearest and to the farthest point of a cell that
// starts at `low`.
struct AxisRange {
  int nearest, farthest;
};

AxisRange DistanceToCell(int value, int low) {
  const int high = low + kCellSize - 1;
  const int outside = std::max({low - value, value - high, 0});
  return {Square(outside), Square(std::max(std::abs(value - low), std::abs(value - high)))};
}

}  // namespace

NearestColor::NearestColor(std::span<const tagPALETTEENTRY> entries)
    : cells_(32 * 32 * 32), answers_(1 << 16) {
  for (size_t i = 0; i < std::min<size_t>(entries.size(), 256); ++i) {
    const auto sameColor = [&](const Entry& entry) {
      return entry.red == entries[i].peRed && entry.green == entries[i].peGreen &&
             entry.blue == entries[i].peBlue;
    };
    if (std::ranges::any_of(entries_, sameColor)) continue;  // the lower index wins anyway
    entries_.push_back(
        {entries[i].peRed, entries[i].peGreen, entries[i].peBlue, static_cast<uint8_t>(i)});
  }
  if (entries_.empty()) entries_.push_back({});
  answers_[0] = Find({});
}

uint8_t NearestColor::Find(const RGBArec& pixel) {
  Cell& cell = cells_[static_cast<size_t>(pixel.r / kCellSize * 1024 + pixel.g / kCellSize * 32 +
                                          pixel.b / kCellSize)];
  if (cell.count == 0) Explore(cell, pixel.r & ~7, pixel.g & ~7, pixel.b & ~7);
  const uint8_t* candidate = candidates_.data() + cell.first;
  const uint8_t* end = candidate + cell.count;
  int best = INT32_MAX;
  uint8_t index = 0;
  for (; candidate != end; ++candidate) {
    const Entry& entry = entries_[*candidate];
    const int distance =
        Square(entry.red - pixel.r) + Square(entry.green - pixel.g) + Square(entry.blue - pixel.b);
    if (distance >= best) continue;
    best = distance;
    index = entry.index;
  }
  return index;
}

// An entry is out when even its nearest point of the cell lies beyond the farthest point of
// another.
void NearestColor::Explore(Cell& cell, int red, int green, int blue) {
  std::array<int, 256> nearest;
  int bound = INT32_MAX;
  for (size_t i = 0; i < entries_.size(); ++i) {
    const AxisRange r = DistanceToCell(entries_[i].red, red);
    const AxisRange g = DistanceToCell(entries_[i].green, green);
    const AxisRange b = DistanceToCell(entries_[i].blue, blue);
    nearest[i] = r.nearest + g.nearest + b.nearest;
    bound = std::min(bound, r.farthest + g.farthest + b.farthest);
  }
  cell.first = static_cast<uint32_t>(candidates_.size());
  for (size_t i = 0; i < entries_.size(); ++i)
    if (nearest[i] <= bound) candidates_.push_back(static_cast<uint8_t>(i));
  cell.count = static_cast<uint32_t>(candidates_.size()) - cell.first;
}

}  // namespace rasterkit
