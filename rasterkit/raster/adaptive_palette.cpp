#include <algorithm>
#include <cstdint>
#include <span>
#include <utility>

#include <rasterkit/kernels/palette/nearest_colors.h>
#include <rasterkit/raster/adaptive_palette.h>

namespace rasterkit {
namespace {

constexpr int kSettlingRounds = 6;

// Weight and weighted channel sums of points. The sums are integers, exact in 64 bits.
struct Sums {
  uint64_t weight = 0;
  std::array<uint64_t, 3> channel{};

  void Add(const ColorPoint& point) {
    weight += point.weight;
    for (size_t c = 0; c < 3; ++c) {
      channel[c] += point.weight * static_cast<uint64_t>(point.channel[c]);
    }
  }

  void Add(const Sums& other) {
    weight += other.weight;
    for (size_t c = 0; c < 3; ++c) channel[c] += other.channel[c];
  }

  Sums Minus(const Sums& other) const {
    Sums rest = *this;
    rest.weight -= other.weight;
    for (size_t c = 0; c < 3; ++c) rest.channel[c] -= other.channel[c];
    return rest;
  }

  // Part of the sum of squares that one color for all points accounts for.
  double Explained() const {
    if (weight == 0) return 0;
    double squares = 0;
    for (const uint64_t sum : channel) {
      squares += static_cast<double>(sum) * static_cast<double>(sum);
    }
    return squares / static_cast<double>(weight);
  }

  std::array<int, 3> Mean() const {
    std::array<int, 3> mean{};
    if (weight == 0) return mean;
    for (size_t c = 0; c < 3; ++c) mean[c] = static_cast<int>((channel[c] + weight / 2) / weight);
    return mean;
  }
};

// Points `first` to `last - 1` and their best cut: points whose channel `axis` is below `limit` go
// to one side, which reduces the error by `gain`.
struct Box {
  size_t first = 0, last = 0;
  size_t axis = 0;
  int limit = 0;
  double gain = 0;
};

constexpr size_t kChannelValues = 255 * 4 + 1;

// Finds the best cuts of boxes from the sums of their points per channel value, which is all that a
// cut depends on.
class Cutter {
 public:
  explicit Cutter(std::vector<ColorPoint>& points) : points_(points), slices_(kChannelValues) {}

  Box Prepare(size_t first, size_t last) {
    Box box{first, last};
    Sums all;
    for (const ColorPoint& point : Inside(box)) all.Add(point);
    for (size_t axis = 0; axis < 3; ++axis) FindCut(all, axis, box);
    return box;
  }

  // Partitions the points by side; returns where the second side begins.
  size_t Cut(const Box& box) {
    const std::span<ColorPoint> inside = Inside(box);
    const auto right = std::stable_partition(
        inside.begin(), inside.end(),
        [&](const ColorPoint& point) { return point.channel[box.axis] < box.limit; });
    return box.first + static_cast<size_t>(right - inside.begin());
  }

 private:
  std::span<ColorPoint> Inside(const Box& box) {
    return {points_.data() + box.first, box.last - box.first};
  }

  // Replaces the cut of `box` by the best one across `axis` if that is better.
  void FindCut(const Sums& all, size_t axis, Box& box) {
    size_t low = kChannelValues, high = 0;
    for (const ColorPoint& point : Inside(box)) {
      const auto value = static_cast<size_t>(point.channel[axis]);
      slices_[value].Add(point);
      low = std::min(low, value);
      high = std::max(high, value);
    }
    const double whole = all.Explained();
    Sums left;
    for (size_t value = low; value <= high; ++value) {
      const Sums slice = std::exchange(slices_[value], {});
      if (slice.weight == 0 || value == high) continue;
      left.Add(slice);
      const double gain = left.Explained() + all.Minus(left).Explained() - whole;
      if (gain <= box.gain) continue;
      box.gain = gain;
      box.axis = axis;
      box.limit = static_cast<int>(value) + 1;
    }
  }

  std::vector<ColorPoint>& points_;
  std::vector<Sums> slices_;  // by value; zero between calls
};

std::vector<Box> CutIntoBoxes(std::vector<ColorPoint>& points, size_t count) {
  Cutter cutter(points);
  std::vector<Box> boxes = {cutter.Prepare(0, points.size())};
  while (boxes.size() < count) {
    const auto best = std::ranges::max_element(boxes, {}, &Box::gain);
    if (best->gain <= 0) break;
    const Box box = *best;
    const size_t middle = cutter.Cut(box);
    *best = cutter.Prepare(box.first, middle);
    boxes.push_back(cutter.Prepare(middle, box.last));
  }
  return boxes;
}

kernels::ColorList ListOf(const std::vector<std::array<int, 3>>& means) {
  kernels::ColorList list{};
  list.count = means.size();
  for (size_t i = 0; i < means.size(); ++i) {
    list.blue[i] = means[i][0];
    list.green[i] = means[i][1];
    list.red[i] = means[i][2];
  }
  return list;
}

// Each round assigns every point to its nearest mean and moves the means to the centers of their
// points. A mean without points stays.
void Settle(const std::vector<ColorPoint>& points, std::vector<std::array<int, 3>>& means) {
  for (int round = 0; round < kSettlingRounds; ++round) {
    const kernels::ColorList list = ListOf(means);
    std::vector<Sums> sums(means.size());
    for (const ColorPoint& point : points) {
      sums[kernels::NearestInList(list, point.channel[0], point.channel[1], point.channel[2])].Add(
          point);
    }
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
  for (size_t i = 0; i < means.size(); ++i) {
    entries[i] = {FromQuarters(means[i][2]), FromQuarters(means[i][1]), FromQuarters(means[i][0]),
                  0};
  }
  return entries;
}

}  // namespace rasterkit
