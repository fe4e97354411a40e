#include <cstring>
#include <limits>
#include <string>
#include <utility>

#include <rasterkit/raster/samples.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit {
namespace {

constexpr uint64_t kTooMany = std::numeric_limits<uint64_t>::max();

/// Saturates instead of wrapping, so that the budget refuses sizes beyond 64 bits.
uint64_t Times(uint64_t a, uint64_t b) {
  return b != 0 && a > kTooMany / b ? kTooMany : a * b;
}

std::string Describe(const PixelLayout& layout, int width, int height) {
  return "picture of " + std::to_string(width) + " x " + std::to_string(height) + " pixels with " +
         std::to_string(layout.bands) + (layout.bands == 1 ? " band" : " bands");
}

}  // namespace

Samples::Samples(const PixelLayout& layout, int width, int height, bool inPlanes) {
  if (width < 1 || height < 1 || layout.bands < 1) {
    throw RangeError("there is no " + Describe(layout, width, height));
  }
  const auto columns = static_cast<uint64_t>(width), rows = static_cast<uint64_t>(height);
  const uint64_t pixel = Times(static_cast<uint64_t>(layout.bands), BytesOf(layout.type));
  const uint64_t bytes = Times(Times(columns, rows), pixel);
  RequirePicture(columns, rows, bytes, Describe(layout, width, height));
  if (bytes > std::numeric_limits<size_t>::max()) {
    throw LimitError("a picture of this size cannot be addressed");
  }
  memory_ = PixelMemory(static_cast<size_t>(bytes));
  layout_ = layout;
  width_ = width;
  height_ = height;
  planes_ = inPlanes ? layout.bands : 1;
}

Samples Samples::InMemory(uint8_t* rows, const Samples& like, int width, int height) {
  Samples made;
  made.layout_ = like.layout_;
  made.resolution = like.resolution;
  made.width_ = width;
  made.height_ = height;
  made.planes_ = like.planes_;
  made.memory_ = PixelMemory::Borrowed(rows, made.Offset(0, made.planes_));
  return made;
}

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
  // One band in planes has one plane as one that is not.
  std::memcpy(copy.Row(0), Row(0), Offset(0, planes_));
  copy.resolution = resolution;
  return copy;
}

}  // namespace rasterkit
