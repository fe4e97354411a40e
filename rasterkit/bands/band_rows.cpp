#include <cstring>

#include <rasterkit/bands/band_rows.h>

namespace rasterkit::detail {
namespace {

void CopyBand(const uint8_t* source, size_t sourceStep, uint8_t* target, size_t targetStep,
              size_t size, int count) {
  for (int x = 0; x < count; ++x, source += sourceStep, target += targetStep) {
    std::memcpy(target, source, size);
  }
}

}  // namespace

BandRows::BandRows(Pixels& pixels)
    : raster_(std::get_if<Raster>(&pixels)),
      samples_(std::get_if<Samples>(&pixels)),
      width_(WidthOf(pixels)),
      height_(HeightOf(pixels)) {
  if (raster_ != nullptr) {
    bands_ = StoredBitsPerPixel(raster_->Format()) / 8;
    hasStraightAlpha_ = raster_->Format() == pf32bit;
    return;
  }
  const PixelLayout& layout = samples_->Layout();
  bands_ = layout.bands;
  type_ = layout.type;
  hasStraightAlpha_ = layout.alpha == AlphaKind::straight && bands_ > 1;
  hasSigns_ = layout.model == ColorModel::lab && bands_ >= 3 &&
              (type_ == NumberType::uint8 || type_ == NumberType::uint16);
}

void BandRows::MoveSigns(uint8_t* row) const {
  const size_t size = BytesOf(type_);
  for (int x = 0; x < width_; ++x, row += PixelBytes()) {
    // The sign is in the last byte: numbers are in the order of the processor, low byte first.
    row[2 * size - 1] ^= 0x80;
    row[3 * size - 1] ^= 0x80;
  }
}

const uint8_t* BandRows::Load(int y, std::vector<uint8_t>& room) const {
  if (raster_ != nullptr) return raster_->Row(y);
  if (IsTogether() && !hasSigns_) return samples_->Row(y);
  room.resize(RowBytes());
  if (IsTogether()) {
    std::memcpy(room.data(), samples_->Row(y), RowBytes());
  } else {
    const size_t size = BytesOf(type_);
    for (int band = 0; band < bands_; ++band) {
      CopyBand(samples_->Row(y, band), size, room.data() + static_cast<size_t>(band) * size,
               PixelBytes(), size, width_);
    }
  }
  if (hasSigns_) MoveSigns(room.data());
  return room.data();
}

void BandRows::Store(int y, uint8_t* row) {
  if (hasSigns_) MoveSigns(row);
  if (raster_ != nullptr) {
    std::memcpy(raster_->Row(y), row, RowBytes());
  } else if (IsTogether()) {
    std::memcpy(samples_->Row(y), row, RowBytes());
  } else {
    const size_t size = BytesOf(type_);
    for (int band = 0; band < bands_; ++band) {
      CopyBand(row + static_cast<size_t>(band) * size, PixelBytes(), samples_->Row(y, band), size,
               size, width_);
    }
  }
}

}  // namespace rasterkit::detail
