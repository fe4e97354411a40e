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

BandRows::BandRows(const Band& band, Sides whole)
    : raster_(std::get_if<Raster>(&band.pixels)),
      samples_(std::get_if<Samples>(&band.pixels)),
      whole_(whole),
      rect_(band.Rect()) {
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
  for (int x = 0; x < rect_.width; ++x, row += PixelBytes()) {
    // The sign is in the last byte: numbers are in the order of the processor, low byte first.
    row[2 * size - 1] ^= 0x80;
    row[3 * size - 1] ^= 0x80;
  }
}

const uint8_t* BandRows::Load(int y, std::vector<uint8_t>& room) const {
  y -= rect_.top;
  if (raster_ != nullptr) return raster_->Row(y);
  if (IsTogether() && !hasSigns_) return samples_->Row(y);
  room.resize(RowBytes());
  if (IsTogether()) {
    std::memcpy(room.data(), samples_->Row(y), RowBytes());
  } else {
    const size_t size = BytesOf(type_);
    for (int band = 0; band < bands_; ++band) {
      CopyBand(samples_->Row(y, band), size, room.data() + static_cast<size_t>(band) * size,
               PixelBytes(), size, rect_.width);
    }
  }
  if (hasSigns_) MoveSigns(room.data());
  return room.data();
}

StoredRows::StoredRows(Band& band)
    : band_(band), rows_(band, {WidthOf(band.pixels), HeightOf(band.pixels)}) {}

void StoredRows::Store(int y, uint8_t* row) {
  y -= band_.top;
  if (rows_.hasSigns_) rows_.MoveSigns(row);
  if (auto* raster = std::get_if<Raster>(&band_.pixels)) {
    std::memcpy(raster->Row(y), row, rows_.RowBytes());
    std::memset(raster->Row(y) + rows_.RowBytes(), 0, raster->Stride() - rows_.RowBytes());
    return;
  }
  auto& samples = std::get<Samples>(band_.pixels);
  if (rows_.IsTogether()) {
    std::memcpy(samples.Row(y), row, rows_.RowBytes());
    return;
  }
  const size_t size = BytesOf(rows_.type_);
  for (int band = 0; band < rows_.bands_; ++band) {
    CopyBand(row + static_cast<size_t>(band) * size, rows_.PixelBytes(), samples.Row(y, band), size,
             size, samples.Width());
  }
}

}  // namespace rasterkit::detail
