#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <rasterkit/bands/stage/filter.h>
#include <rasterkit/raster/pixels.h>

namespace rasterkit::detail {

/// Rows of pixels whose numbers can be averaged, all bands of a pixel together: those of a raster
/// of 8 (gray), 24 or 32 bits, or of samples. a and b of L*a*b* are moved to the range of the
/// unsigned type, so that their order is that of the numbers.
class BandRows {
 public:
  /// Borrows the pixels.
  explicit BandRows(Pixels& pixels);

  int Width() const { return width_; }
  int Height() const { return height_; }
  NumberType Type() const { return type_; }
  int Bands() const { return bands_; }
  /// The last band is opacity that colors are independent of.
  bool HasStraightAlpha() const { return hasStraightAlpha_; }
  size_t PixelBytes() const { return static_cast<size_t>(bands_) * BytesOf(type_); }
  size_t RowBytes() const { return static_cast<size_t>(width_) * PixelBytes(); }

  /// The pixels of row `y`; `room` is used where they do not stand together.
  const uint8_t* Load(int y, std::vector<uint8_t>& room) const;
  /// Address of one number, its sign not moved.
  const uint8_t* At(int x, int y, int band) const {
    const size_t size = BytesOf(type_);
    if (raster_ == nullptr && samples_->Planes() > 1) {
      return samples_->Row(y, band) + static_cast<size_t>(x) * size;
    }
    const uint8_t* row = raster_ != nullptr ? raster_->Row(y) : samples_->Row(y);
    return row + static_cast<size_t>(x) * PixelBytes() + static_cast<size_t>(band) * size;
  }
  bool HasMovedSign(int band) const { return hasSigns_ && (band == 1 || band == 2); }
  /// Writes pixels to row `y`; `row` may be changed.
  void Store(int y, uint8_t* row);

 private:
  bool IsTogether() const { return raster_ != nullptr || samples_->Planes() == 1; }
  void MoveSigns(uint8_t* row) const;

  Raster* raster_ = nullptr;
  Samples* samples_ = nullptr;
  int width_ = 0, height_ = 0, bands_ = 1;
  NumberType type_ = NumberType::uint8;
  bool hasStraightAlpha_ = false, hasSigns_ = false;
};

}  // namespace rasterkit::detail
