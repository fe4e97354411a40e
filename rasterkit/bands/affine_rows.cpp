#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include <rasterkit/bands/affine_rows.h>
#include <rasterkit/kernels/rows/packed_pixels.h>

namespace rasterkit::detail {
namespace {

/// Column and row in the source's part for the pixels of a row of the target's part.
class Places {
 public:
  Places(const AffineTask& task, const kernels::RotationParts& parts, int y)
      : task_(task),
        parts_(parts),
        right_(task.source.width - 1),
        bottom_(task.source.height - 1),
        columnOfRow_(task.toOld.xPerRow * (y + parts.targetTop) + task.toOld.x),
        rowOfRow_(task.toOld.yPerRow * (y + parts.targetTop) + task.toOld.y) {}

  /// False if the pixel lies outside.
  bool Find(int x, int& column, int& row) const {
    x += parts_.targetLeft;
    const double u = std::nearbyint(task_.toOld.xPerColumn * x + columnOfRow_);
    const double v = std::nearbyint(task_.toOld.yPerColumn * x + rowOfRow_);
    const bool isInside = u >= 0 && u <= right_ && v >= 0 && v <= bottom_;
    if (!isInside && !task_.isClamped) return false;
    column = static_cast<int>(std::clamp(u, 0.0, right_)) - parts_.sourceLeft;
    row = static_cast<int>(std::clamp(v, 0.0, bottom_)) - parts_.sourceTop;
    return true;
  }

 private:
  const AffineTask& task_;
  const kernels::RotationParts& parts_;
  const double right_, bottom_;
  const double columnOfRow_, rowOfRow_;
};

void GatherBytes(const Places& places, const ConstPixelGrid& source, size_t bytes,
                 const uint8_t* background, int width, uint8_t* target) {
  int column = 0, row = 0;
  for (int x = 0; x < width; ++x, target += bytes) {
    const bool isInside = places.Find(x, column, row);
    std::memcpy(target,
                isInside ? source.rows.Row(row) + static_cast<size_t>(column) * bytes : background,
                bytes);
  }
}

void GatherPacked(const Places& places, const ConstPixelGrid& source, uint8_t background, int width,
                  uint8_t* target) {
  std::vector<uint8_t> pixels(static_cast<size_t>(width), background);
  int column = 0, row = 0;
  for (int x = 0; x < width; ++x) {
    if (!places.Find(x, column, row)) continue;
    kernels::UnpackPixels(source.rows.Row(row), source.bits, column, 1,
                          &pixels[static_cast<size_t>(x)]);
  }
  kernels::PackPixels(pixels.data(), source.bits, 0, width, target);
}

}  // namespace

void GatherByAffine(const AffineTask& task, const ConstPixelGrid& source, const PixelGrid& target,
                    int first, int last, const kernels::RotationParts& parts) {
  for (int y = first; y < last; ++y) {
    const Places places(task, parts, y);
    uint8_t* row = target.rows.Row(y);
    if (source.bits < 8) {
      GatherPacked(places, source, *task.background, target.rows.width, row);
    } else {
      GatherBytes(places, source, source.BytesPerPixel(), task.background, target.rows.width, row);
    }
    kernels::ClearPadding(target.rows, y, source.bits);
  }
}

}  // namespace rasterkit::detail
