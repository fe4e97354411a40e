#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include <rasterkit/bands/affine_rows.h>
#include <rasterkit/kernels/rows/packed_pixels.h>

namespace rasterkit::detail {
namespace {

/// Column and row of the source for the pixels of a target row.
class Places {
 public:
  Places(const Affine& toOld, const ConstPixelGrid& source, bool isClamped, int y)
      : toOld_(toOld),
        right_(source.rows.width - 1),
        bottom_(source.rows.height - 1),
        isClamped_(isClamped),
        columnOfRow_(toOld.xPerRow * y + toOld.x),
        rowOfRow_(toOld.yPerRow * y + toOld.y) {}

  /// False if the pixel lies outside.
  bool Find(int x, int& column, int& row) const {
    const double u = std::nearbyint(toOld_.xPerColumn * x + columnOfRow_);
    const double v = std::nearbyint(toOld_.yPerColumn * x + rowOfRow_);
    const bool isInside = u >= 0 && u <= right_ && v >= 0 && v <= bottom_;
    if (!isInside && !isClamped_) return false;
    column = static_cast<int>(std::clamp(u, 0.0, right_));
    row = static_cast<int>(std::clamp(v, 0.0, bottom_));
    return true;
  }

 private:
  const Affine& toOld_;
  const double right_, bottom_;
  const bool isClamped_;
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

void GatherByAffine(const Affine& toOld, const ConstPixelGrid& source, const PixelGrid& target,
                    const uint8_t* background, bool isClamped, int first, int last) {
  for (int y = first; y < last; ++y) {
    const Places places(toOld, source, isClamped, y);
    uint8_t* row = target.rows.Row(y);
    if (source.bits < 8) {
      GatherPacked(places, source, *background, target.rows.width, row);
    } else {
      GatherBytes(places, source, source.BytesPerPixel(), background, target.rows.width, row);
    }
    kernels::ClearPadding(target.rows, y, source.bits);
  }
}

}  // namespace rasterkit::detail
