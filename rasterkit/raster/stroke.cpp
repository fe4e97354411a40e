#include <algorithm>
#include <cstdlib>
#include <vector>

#include <rasterkit/raster/pixel_words.h>
#include <rasterkit/raster/stroke.h>

namespace rasterkit {
namespace {

void XorRect(Raster& raster, const PixelRect& rect, TColor color) {
  const int index = IsIndexed(raster.Format()) ? NearestEntry(EntriesInReach(raster), color) : 0;
  for (int y = rect.top; y < rect.bottom; ++y) {
    uint8_t* row = raster.Row(y);
    for (auto x = static_cast<size_t>(rect.left); x < static_cast<size_t>(rect.right); ++x) {
      const auto toggle = [](uint8_t& byte, int bits) { byte ^= static_cast<uint8_t>(bits); };
      switch (raster.Format()) {
        case pf1bit:
          toggle(row[x / 8], (index & 1) << (7 - x % 8));
          break;
        case pf4bit:
          toggle(row[x / 2], (index & 15) << (x % 2 == 0 ? 4 : 0));
          break;
        case pf8bit:
          toggle(row[x], index);
          break;
        case pf15bit:
          StoreWord(row + 2 * x, LoadWord(row + 2 * x) ^ Word555FromColor(color));
          break;
        case pf16bit:
          StoreWord(row + 2 * x, LoadWord(row + 2 * x) ^ Word565FromColor(color));
          break;
        default: {
          uint8_t* pixel = row + x * (raster.Format() == pf24bit ? 3 : 4);
          toggle(pixel[0], color >> 16);
          toggle(pixel[1], color >> 8);
          toggle(pixel[2], color);
        }
      }
    }
  }
}

// Keeps products of two coordinates within 64 bits; no picture needs a wider pen.
constexpr int kFarthest = 1 << 28;
constexpr int kWidestPen = 1 << 15;

PixelPoint Within(const PixelPoint& point) {
  return {std::clamp(point.x, -kFarthest, kFarthest), std::clamp(point.y, -kFarthest, kFarthest)};
}

int64_t DivideToFloor(int64_t value, int64_t divisor) {
  return value / divisor - (value % divisor < 0 ? 1 : 0);
}

// Pixels that a round pen covers in one row of its square.
struct PenRow {
  int first, count;
};

// Pixels of a square whose centers lie in the inscribed circle.
std::vector<PenRow> MakePen(int width) {
  std::vector<PenRow> rows;
  const auto squared = [](int64_t value) { return value * value; };
  for (int y = 0; y < width; ++y) {
    int first = 0;
    while (squared(2 * first - width + 1) + squared(2 * y - width + 1) > squared(width)) ++first;
    rows.push_back({first, width - 2 * first});
  }
  return rows;
}

// Pixels that the pen has touched, so that each is painted once.
class Coverage {
 public:
  Coverage(int width, int height, int penWidth)
      : width_(width),
        height_(height),
        pen_(MakePen(penWidth)),
        marks_(static_cast<size_t>(width) * static_cast<size_t>(height)) {}

  // Steps along the longer direction, only where the pen can touch the raster.
  void AddLine(const PixelPoint& from, const PixelPoint& to) {
    const int64_t dx = int64_t{to.x} - from.x, dy = int64_t{to.y} - from.y;
    const bool steep = std::abs(dy) > std::abs(dx);
    const int64_t length = steep ? dy : dx, rise = steep ? dx : dy;
    const int64_t start = steep ? from.y : from.x, side = steep ? from.x : from.y;
    const auto margin = static_cast<int64_t>(pen_.size());
    const int64_t first = std::max(std::min(start, start + length), -margin);
    const int64_t last =
        std::min(std::max(start, start + length), (steep ? height_ : width_) + margin);
    for (int64_t along = first; along <= last; ++along) {
      const int64_t across = side + Across(along - start, rise, length);
      if (across < -margin || across > (steep ? width_ : height_) + margin) continue;
      Stamp(static_cast<int>(steep ? across : along), static_cast<int>(steep ? along : across));
    }
  }

  void Paint(Raster& raster, TColor color, PaintMode mode) const {
    for (int y = 0; y < height_; ++y) {
      const uint8_t* marks = marks_.data() + static_cast<size_t>(y) * static_cast<size_t>(width_);
      for (int x = 0; x < width_; ++x) {
        const int first = x;
        while (x < width_ && marks[x] != 0) ++x;
        if (first < x) PaintRect(raster, {first, y, x, y + 1}, color, mode);
      }
    }
  }

 private:
  // step * rise / length, rounded to nearest, halves up.
  static int64_t Across(int64_t step, int64_t rise, int64_t length) {
    if (length == 0) return 0;
    const int64_t sign = length < 0 ? -1 : 1;
    return DivideToFloor(2 * sign * step * rise + sign * length, 2 * sign * length);
  }

  void Stamp(int centerX, int centerY) {
    const int half = (static_cast<int>(pen_.size()) - 1) / 2;
    int y = centerY - half;
    for (const PenRow& row : pen_) {
      const int first = std::max(centerX - half + row.first, 0);
      const int last = std::min(centerX - half + row.first + row.count, width_);
      if (y >= 0 && y < height_ && first < last) {
        uint8_t* marks = marks_.data() + static_cast<size_t>(y) * static_cast<size_t>(width_);
        std::fill(marks + first, marks + last, uint8_t{1});
      }
      ++y;
    }
  }

  int width_, height_;
  std::vector<PenRow> pen_;
  std::vector<uint8_t> marks_;
};

}  // namespace

void PaintRect(Raster& raster, const PixelRect& rect, TColor color, PaintMode mode) {
  if (mode == PaintMode::copy) {
    FillRaster(raster, rect, color);
  } else {
    XorRect(raster, ClipRect(rect, raster.Width(), raster.Height()), color);
  }
}

void StrokePolyline(Raster& raster, std::span<const PixelPoint> points, int width, TColor color,
                    PaintMode mode) {
  Coverage coverage(raster.Width(), raster.Height(), std::clamp(width, 1, kWidestPen));
  for (size_t i = 0; i + 1 < points.size(); ++i) {
    coverage.AddLine(Within(points[i]), Within(points[i + 1]));
  }
  coverage.Paint(raster, color, mode);
}

}  // namespace rasterkit
