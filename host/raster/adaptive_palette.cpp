#include <algorithm>
#include <cstdint>
#include <span>

#include <rasterkit/host/raster/adaptive_palette.h>

namespace rasterkit {
namespace {

constexpr int kSettlingRounds = 6;

// Weight and weighted channel sums of some points. The sums are whole numbers, exact in 64 bits.
struct Sums {
  uint64_t weight = 0;
  std::array<uint64_t, 3> channel{};

  void Add(const ColorPoint& point) {
    weight += point.weight;
    for (size_t c = 0; c < 3; ++c)
      channel[c] += point.weight * static_cast<uint64_t>(point.channel[c]);
  }

  Sums Minus(const Sums& other) const {
    Sums rest = *this;
    rest.weight -= other.weight;
    for (size_t c = 0; c < 3; ++c) rest.channel[c] -= other.channel[c];
    return rest;
  }

  // The part of the squares that one colour for all the points explains.
  double Explained() const {
    if (weight == 0) return 0;
    double squares = 0;
    for (const uint64_t sum : channel)
      squares += static_cast<double>(sum) * static_cast<double>(sum);
    return squares / static_cast<double>(weight);
  }

  std::array<int, 3> Mean() const {
    std::array<int, 3> mean{};
    for (size_t c = 0; c < 3; ++c) mean[c] = static_cast<int>((channel[c] + weight / 2) / weight);
    return mean;
  }
};

// Points `first` to `last - 1`, and how much the error falls when they are cut at `cut`.
struct Box {
  size_t first = 0, last = 0, cut = 0;
  double gain = 0;
};

size_t WidestAxis(std::span<const ColorPoint> points) {
  size_t widest = 0;
  double most = -1;
  for (size_t c = 0; c < 3; ++c) {
    double weight = 0, sum = 0, squares = 0;
    for (const ColorPoint& point : points) {
      const auto w = static_cast<double>(point.weight);
      weight += w;
      sum += w * point.channel[c];
      squares += w * point.channel[c] * point.channel[c];
    }
    const double spread = squares - sum * sum / weight;
    if (spread <= most) continue;
    most = spread;
    widest = c;
  }
  return widest;
}

// Sorts the box's points along its widest axis and finds its best cut.
void PrepareCut(std::vector<ColorPoint>& points, Box& box) {
  const std::span<ColorPoint> inside(points.data() + box.first, box.last - box.first);
  const size_t axis = WidestAxis(inside);
  std::ranges::stable_sort(inside, {}, [axis](const ColorPoint& p) { return p.channel[axis]; });
  Sums all;
  for (const ColorPoint& point : inside) all.Add(point);
  const double whole = all.Explained();
  Sums left;
  for (size_t i = 0; i + 1 < inside.size(); ++i) {
    left.Add(inside[i]);
    const double gain = left.Explained() + all.Minus(left).Explained() - whole;
    if (gain <= box.gain) continue;
    box.gain = gain;
    box.cut = box.first + i + 1;
  }
}

std::vector<Box> CutIntoBoxes(std::vector<ColorPoint>& points, size_t count) {
  std::vector<Box> boxes = {{0, points.size(), 0, 0}};
  PrepareCut(points, boxes.front());
  while (boxes.size() < count) {
    const auto best = std::ranges::max_element(boxes, {}, &Box::gain);
    if (best->gain <= 0) break;
    Box right{best->cut, best->last, 0, 0};
    *best = {best->first, best->cut, 0, 0};
    PrepareCut(points, *best);
    PrepareCut(points, right);
    boxes.push_back(right);
  }
  return boxes;
}

size_t NearestMean(const ColorPoint& point, const std::vector<std::array<int, 3>>& means) {
  // Distance in the high bits, number in the low eight: one minimum finds both, the lowest among
  // equals. 3 * 1020 squared takes 22 bits.
  uint32_t best = UINT32_MAX;
  for (size_t i = 0; i < means.size(); ++i) {
    const int blue = means[i][0] - point.channel[0];
    const int green = means[i][1] - point.channel[1];
    const int red = means[i][2] - point.channel[2];
    const auto distance = static_cast<uint32_t>(blue * blue + green * green + red * red);
    best = std::min(best, distance << 8 | static_cast<uint32_t>(i));
  }
  return best & 255;
}

// Each round gives every point to its nearest mean and moves the means to the middle of their
// points; a mean without points stays.
void Settle(const std::vector<ColorPoint>& points, std::vector<std::array<int, 3>>& means) {
  for (int round = 0; round < kSettlingRounds; ++round) {
    std::vector<Sums> sums(means.size());
    for (const ColorPoint& point : points) sums[NearestMean(point, means)].Add(point);
    bool moved = false;
    for (size_t i = 0; i < means.size(); ++i) {
      if (sums[i].weight == 0) continue;
      const std::array<int, 3> mean = sums[i].Mean();
      moved = moved || mean != means[i];
      means[i] = mean;
    }
    if (!moved) return;
  }
}

uint8_t FromQuarters(int value) {
  return static_cast<uint8_t>((value + 2) / 4);
}

}  // namespace

std::vector<tagPALETTEENTRY> ChooseAdaptivePalette(std::vector<ColorPoint> points, size_t count) {
  std::vector<tagPALETTEENTRY> entries(count);
  if (points.empty()) return entries;
  std::vector<std::array<int, 3>> means;
  for (const Box& box : CutIntoBoxes(points, count)) {
    Sums sums;
    for (size_t i = box.first; i < box.last; ++i) sums.Add(points[i]);
    means.push_back(sums.Mean());
  }
  Settle(points, means);
  for (size_t i = 0; i < means.size(); ++i)
    entries[i] = {FromQuarters(means[i][2]), FromQuarters(means[i][1]), FromQuarters(means[i][0]),
                  0};
  return entries;
}

}  // namespace rasterkit
