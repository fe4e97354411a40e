#include <rasterkit/bitmaptools/engine/pixel_thread.h>
#include <rasterkit/bitmaptools/engine/seen_indexes.h>
#include <rasterkit/graphics/bitmap.h>

namespace rasterkit::detail {

SeenIndexes::SeenIndexes(const TPixelThread& worker, const std::vector<int32_t>& columns)
    : firstColumn_(columns.front()), indexes_(columns.size()) {
  if (worker.nSrcBytes == 0) {
    packed_.emplace(columns, worker.nSrcBit == 4 ? 4 : 1);
  } else {
    picker_.emplace(columns, 1, 1, worker.SrcBmp->Width());
  }
}

const uint8_t* SeenIndexes::Read(const uint8_t* row) {
  if (packed_) {
    packed_->Read(row, indexes_.data());
  } else if (picker_->IsOneToOne()) {
    return row + firstColumn_;
  } else {
    picker_->Pick(row, indexes_.data());
  }
  return indexes_.data();
}

}  // namespace rasterkit::detail
