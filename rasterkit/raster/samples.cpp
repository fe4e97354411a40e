#include <cstring>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/raster/samples.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit {

namespace {

uint64_t BytesOfRows(const PixelLayout& layout, int width, int height) {
  if (width < 1 || height < 1 || layout.bands < 1) {
    throw RangeError(
        fmt::format("{} x {} pixels with {} bands are no picture", width, height, layout.bands));
  }
  // At most 2^31 pixels per side and 8 bytes per sample; the product of all four could overflow.
  const uint64_t row = uint64_t{BytesOf(layout.type)} * static_cast<uint64_t>(layout.bands) *
                       static_cast<uint64_t>(width);
  const auto rows = static_cast<uint64_t>(height);
  const uint64_t bytes = row > UINT64_MAX / rows ? UINT64_MAX : row * rows;
  RequirePicture(
      static_cast<uint64_t>(width), rows, bytes,
      fmt::format("picture of {} x {} pixels with {} bands", width, height, layout.bands));
  return bytes;
}

}  // namespace

Samples::Samples(const PixelLayout& layout, int width, int height, bool inPlanes)
    : layout_(layout),
      width_(width),
      height_(height),
      planes_(inPlanes ? layout.bands : 1),
      memory_(static_cast<size_t>(BytesOfRows(layout, width, height))) {}

Samples::Samples(Samples&& other) noexcept {
  *this = std::move(other);
}

Samples& Samples::operator=(Samples&& other) noexcept {
  if (this == &other) return *this;
  resolution = std::exchange(other.resolution, {});
  layout_ = std::exchange(other.layout_, {});
  width_ = std::exchange(other.width_, 0);
  height_ = std::exchange(other.height_, 0);
  planes_ = std::exchange(other.planes_, 1);
  memory_ = std::move(other.memory_);
  return *this;
}

Samples Samples::Clone() const {
  if (width_ == 0) return {};
  Samples copy(layout_, width_, height_, planes_ > 1);
  copy.resolution = resolution;
  std::memcpy(copy.memory_.Data(), memory_.Data(), memory_.Size());
  return copy;
}

}  // namespace rasterkit
