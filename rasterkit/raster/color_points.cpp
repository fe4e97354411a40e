#include <algorithm>
#include <cmath>

#include <rasterkit/raster/color_points.h>
#include <rasterkit/raster/row_conversion.h>

namespace rasterkit {
namespace {

// Up to this number, colors are kept exactly.
constexpr size_t kManyColors = 16384;

// About this number of pixels is sampled.
constexpr double kSamplePixels = 1 << 17;

// Distinct colors by open addressing, half full at most.
class DistinctColors {
 public:
  DistinctColors() : slots_(kManyColors * 2, 0) {}

  bool Add(const RGBArec& pixel) {
    const uint32_t color =
        static_cast<uint32_t>(pixel.r) << 16 | static_cast<uint32_t>(pixel.g) << 8 | pixel.b;
    if (color != lastColor_) {
      uint32_t slot = color * 0x9E3779B1u >> 17;
      while (slots_[slot] != 0 && colors_[slots_[slot] - 1] != color) {
        slot = (slot + 1) % (kManyColors * 2);
      }
      if (slots_[slot] == 0) {
        if (colors_.size() == kManyColors) return false;
        colors_.push_back(color);
        points.push_back(MakeColorPoint(pixel.r, pixel.g, pixel.b, 0));
        slots_[slot] = static_cast<uint32_t>(colors_.size());
      }
      lastColor_ = color;
      last_ = slots_[slot] - 1;
    }
    ++points[last_].weight;
    return true;
  }

  std::vector<ColorPoint> points;

 private:
  std::vector<uint32_t> slots_;  // number of the color plus 1; 0 is free
  std::vector<uint32_t> colors_;
  uint32_t lastColor_ = ~0u;
  size_t last_ = 0;
};

struct GridBox {
  uint64_t count = 0, blue = 0, green = 0, red = 0;
};

std::vector<ColorPoint> MeansOf(const std::vector<GridBox>& boxes) {
  std::vector<ColorPoint> points;
  for (const GridBox& box : boxes) {
    if (box.count == 0) continue;
    const auto mean = [&](uint64_t sum) {
      return static_cast<int16_t>((sum * 4 + box.count / 2) / box.count);
    };
    points.push_back({{mean(box.blue), mean(box.green), mean(box.red)}, box.count});
  }
  return points;
}

}  // namespace

// A picture may have fewer rows than half a step.
ColorSample::ColorSample(int width, int height) : width_(static_cast<size_t>(width)) {
  const double all = static_cast<double>(width) * height;
  step_ = static_cast<uint32_t>(std::max(1.0, std::floor(std::sqrt(all / kSamplePixels))));
  first_ = std::min(static_cast<int>(step_ / 2), (height - 1) / 2);
}

void ColorSample::Add(const RGBArec* pixels) {
  for (size_t x = (number_++ * 0x9E3779B1u >> 16) % step_; x < width_; x += step_) {
    pixels_.push_back(pixels[x]);
  }
}

std::vector<ColorPoint> ColorSample::Points() const {
  DistinctColors colors;
  const auto add = [&](const RGBArec& pixel) { return colors.Add(pixel); };
  if (std::ranges::all_of(pixels_, add)) return std::move(colors.points);

  std::vector<GridBox> boxes(32 * 32 * 32);
  for (const RGBArec& pixel : pixels_) {
    GridBox& box = boxes[static_cast<size_t>(pixel.r >> 3) << 10 |
                         static_cast<size_t>(pixel.g >> 3) << 5 | pixel.b >> 3];
    ++box.count;
    box.blue += pixel.b;
    box.green += pixel.g;
    box.red += pixel.r;
  }
  return MeansOf(boxes);
}

std::vector<ColorPoint> CollectColorPoints(const Raster& source) {
  const PixelTable table = MakePixelTable(source.palette);
  std::vector<RGBArec> pixels(static_cast<size_t>(source.Width()));
  ColorSample sample(source.Width(), source.Height());
  for (int y = 0; y < source.Height(); ++y) {
    if (!sample.Has(y)) continue;
    RowTo32(source.Row(y), source.Format(), source.Width(), table, pixels.data());
    sample.Add(pixels.data());
  }
  return sample.Points();
}

}  // namespace rasterkit
