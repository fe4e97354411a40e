#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <rasterkit/bands/stage/band.h>
#include <rasterkit/bands/stage/sides.h>
#include <rasterkit/raster/pixels.h>

namespace rasterkit::detail {

/// Rows of pixels whose numbers can be averaged, all bands of a pixel together: those of a raster
/// of 8 (gray), 24 or 32 bits, or of samples. a and b of L*a*b* are moved to the range of the
/// unsigned type, so that their order is that of the numbers.
class BandRows {
 public:
  /// Borrows a part of a picture of these sides.
  BandRows(const Band& band, Sides whole);

  /// Of the whole picture.
  Sides Whole() const { return whole_; }
  /// The part that is there.
  BandRect Rect() const { return rect_; }
  NumberType Type() const { return type_; }
  int Bands() const { return bands_; }
  /// The last band is opacity that colors are independent of.
  bool HasStraightAlpha() const { return hasStraightAlpha_; }
  size_t PixelBytes() const { return static_cast<size_t>(bands_) * BytesOf(type_); }
  /// Of the part.
  size_t RowBytes() const { return static_cast<size_t>(rect_.width) * PixelBytes(); }

  /// The part's pixels of row `y` of the picture; `room` is used where they do not stand together.
  const uint8_t* Load(int y, std::vector<uint8_t>& room) const;
  /// Address of one number of the picture's pixel (x, y), its sign not moved.
  const uint8_t* At(int x, int y, int band) const {
    x -= rect_.left;
    y -= rect_.top;
    const size_t size = BytesOf(type_);
    if (raster_ == nullptr && samples_->Planes() > 1) {
      return samples_->Row(y, band) + static_cast<size_t>(x) * size;
    }
    const uint8_t* row = raster_ != nullptr ? raster_->Row(y) : samples_->Row(y);
    return row + static_cast<size_t>(x) * PixelBytes() + static_cast<size_t>(band) * size;
  }
  bool HasMovedSign(int band) const { return hasSigns_ && (band == 1 || band == 2); }

 private:
  bool IsTogether() const { return raster_ != nullptr || samples_->Planes() == 1; }
  friend class StoredRows;
  void MoveSigns(uint8_t* row) const;

  const Raster* raster_ = nullptr;
  const Samples* samples_ = nullptr;
  Sides whole_;
  BandRect rect_;
  int bands_ = 1;
  NumberType type_ = NumberType::uint8;
  bool hasStraightAlpha_ = false, hasSigns_ = false;
};

/// Writes rows as BandRows reads them.
class StoredRows {
 public:
  /// Borrows the pixels.
  explicit StoredRows(Band& band);
  const BandRows& Rows() const { return rows_; }
  /// Writes the part's pixels of row `y` of the picture; `row` may be changed.
  void Store(int y, uint8_t* row);

 private:
  Band& band_;
  const BandRows rows_;
};

}  // namespace rasterkit::detail
