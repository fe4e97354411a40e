#include <cstring>
#include <limits>
#include <string>
#include <utility>

#include <rasterkit/raster/pixel_words.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit {
namespace {

void RequireSize(int width, int height) {
  if (width >= 0 && height >= 0) return;
  throw RangeError("a picture cannot be " + std::to_string(width) + " x " + std::to_string(height) +
                   " pixels");
}

// Bytes of all rows. Saturates instead of wrapping, so that the budget refuses sizes beyond 64
// bits.
uint64_t RowsBytes(uint64_t stride, uint64_t height) {
  if (height != 0 && stride > std::numeric_limits<uint64_t>::max() / height) {
    return std::numeric_limits<uint64_t>::max();
  }
  return stride * height;
}

}  // namespace

Raster::Raster(TPixelFormat format, int width, int height) {
  if (format < pf1bit || format > pf32bit) throw RangeError("a raster needs a pixel format");
  RequireSize(width, height);
  const uint64_t stride = StrideBytes(width, StoredBitsPerPixel(format));
  const uint64_t bytes = RowsBytes(stride, static_cast<uint64_t>(height));
  RequirePicture(
      static_cast<uint64_t>(width), static_cast<uint64_t>(height), bytes,
      "picture of " + std::to_string(width) + " x " + std::to_string(height) + " pixels");
  if (bytes > std::numeric_limits<size_t>::max()) {
    throw LimitError("a picture of this size cannot be addressed");
  }
  if (bytes > 0) memory_ = PixelMemory(static_cast<size_t>(bytes));
  format_ = format;
  width_ = width;
  height_ = height;
  stride_ = static_cast<size_t>(stride);
  palette = DefaultPalette(format);
}

Raster Raster::InMemory(uint8_t* rows, const Raster& like, int width, int height) {
  RequireSize(width, height);
  Raster made;
  made.format_ = like.format_;
  made.width_ = width;
  made.height_ = height;
  made.stride_ = static_cast<size_t>(StrideBytes(width, StoredBitsPerPixel(like.format_)));
  made.memory_ = PixelMemory::Borrowed(rows, made.stride_ * static_cast<size_t>(height));
  made.CopyProperties(like);
  return made;
}

Raster::Raster(Raster&& other) noexcept {
  *this = std::move(other);
}

Raster& Raster::operator=(Raster&& other) noexcept {
  if (this == &other) return *this;
  Properties() = std::exchange(other.Properties(), {});
  format_ = std::exchange(other.format_, pf32bit);
  width_ = std::exchange(other.width_, 0);
  height_ = std::exchange(other.height_, 0);
  stride_ = std::exchange(other.stride_, 0);
  memory_ = std::move(other.memory_);
  return *this;
}

Raster Raster::Clone() const {
  Raster copy(format_, width_, height_);
  if (stride_ * static_cast<size_t>(height_) > 0) {
    std::memcpy(copy.Row(0), Row(0), stride_ * static_cast<size_t>(height_));
  }
  copy.CopyProperties(*this);
  return copy;
}

void Raster::ClearPadding() {
  const size_t bits =
      static_cast<size_t>(width_) * static_cast<size_t>(StoredBitsPerPixel(format_));
  const size_t usedBytes = RowBytes();
  const size_t bitsInLastByte = bits % 8;
  if (stride_ == usedBytes && bitsInLastByte == 0) return;
  for (int y = 0; y < height_; ++y) {
    uint8_t* row = Row(y);
    if (bitsInLastByte != 0) {
      row[usedBytes - 1] &= static_cast<uint8_t>(0xFF << (8 - bitsInLastByte));
    }
    std::memset(row + usedBytes, 0, stride_ - usedBytes);
  }
}

TColor Raster::PixelColor(int x, int y) const {
  const uint8_t* row = Row(y);
  const auto column = static_cast<size_t>(x);
  switch (format_) {
    case pf1bit:
      return EntryColor(palette.Entry(row[column / 8] >> (7 - column % 8) & 1));
    case pf4bit:
      return EntryColor(palette.Entry(row[column / 2] >> (column % 2 == 0 ? 4 : 0) & 15));
    case pf8bit:
      return EntryColor(palette.Entry(row[column]));
    case pf15bit:
      return ColorFromWord555(LoadWord(row + column * 2));
    case pf16bit:
      return ColorFromWord565(LoadWord(row + column * 2));
    case pf24bit:
      row += column * 3;
      return RGB(row[2], row[1], row[0]);
    default:
      row += column * 4;
      return RGB(row[2], row[1], row[0]);
  }
}

}  // namespace rasterkit
