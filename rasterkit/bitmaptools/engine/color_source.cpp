#include <rasterkit/bitmaptools/engine/color_source.h>
#include <rasterkit/bitmaptools/engine/pixel_thread.h>
#include <rasterkit/bitmaptools/engine/transfer_palettes.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/kernels/rows/convert_rows.h>
#include <rasterkit/kernels/transfer/pixel_masks.h>

namespace rasterkit::detail {

ColorSource::ColorSource(const TPixelThread& worker, const std::vector<int32_t>& columns,
                         bool wantsWhite)
    : sourceBytes_(worker.nSrcBytes),
      firstColumn_(columns.front()),
      count_(columns.size()),
      wantsWhite_(wantsWhite),
      buffer_(3 * count_),
      white_(wantsWhite ? 3 * count_ : 0) {
  if (sourceBytes_ >= 3) {
    picker_.emplace(columns, sourceBytes_, 3, worker.SrcBmp->Width());
    return;
  }
  indexRows_.emplace(worker, columns);
  indexWhite_.resize(count_);
  // The colors of a 1-bit source are not used: every pixel that is not white is black.
  const bool isMono = sourceBytes_ == 0 && worker.nSrcBit != 4;
  palette_ = isMono ? std::array<uint8_t, 1024>{} : SourceColors(worker);
  for (int i = 0; i < 256; ++i) {
    whiteIndexes_[static_cast<size_t>(i)] =
        IsWhiteSourceIndex(worker, static_cast<uint8_t>(i)) ? 255 : 0;
  }
}

void ColorSource::Read(const uint8_t* row) {
  if (row == lastRow_ && !(indexRows_ && indexRows_->DependsOnRowBefore())) return;
  lastRow_ = row;
  if (indexRows_) {
    ReadIndexed(row);
  } else {
    ReadColors(row);
  }
}

void ColorSource::ReadColors(const uint8_t* row) {
  colors_ = buffer_.data();
  if (!picker_->IsOneToOne()) {
    picker_->Pick(row, buffer_.data());
  } else {
    const uint8_t* pixels = row + static_cast<ptrdiff_t>(firstColumn_) * sourceBytes_;
    if (sourceBytes_ == 3) {
      colors_ = pixels;
    } else {
      kernels::Row32To24(pixels, count_, buffer_.data());
    }
  }
  if (wantsWhite_) kernels::NearWhite24(colors_, count_, true, white_.data());
}

void ColorSource::ReadIndexed(const uint8_t* row) {
  const uint8_t* indexes = indexRows_->Read(row);
  kernels::Row8To24(indexes, count_, palette_.data(), buffer_.data());
  colors_ = buffer_.data();
  if (wantsWhite_) FindWhite(indexes);
}

void ColorSource::FindWhite(const uint8_t* indexes) {
  for (size_t i = 0; i < count_; ++i) indexWhite_[i] = whiteIndexes_[indexes[i]];
  kernels::ExpandGrays24(indexWhite_.data(), count_, white_.data());
}

}  // namespace rasterkit::detail
