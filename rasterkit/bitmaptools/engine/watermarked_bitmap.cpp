#include <algorithm>
#include <array>
#include <vector>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/kernels/gray/gray.h>
#include <rasterkit/kernels/mix/watermark.h>
#include <rasterkit/runtime/rounding.h>

namespace rasterkit {
namespace {

/// Position on the watermark for each position of the picture, along one axis: the position times
/// the scale in single precision, truncated. The product is exact; the scale may be a little too
/// large, which matters from 2^24 pixels on.
class Positions {
 public:
  Positions(int markSize, int size)
      : scale_(static_cast<float>(double(markSize) / size)), last_(markSize - 1) {}

  int Of(int position) const {
    return static_cast<int>(std::min<int64_t>(Trunc(position * double{scale_}), last_));
  }

 private:
  float scale_;
  int last_;
};

/// Strength of the watermark at each pixel of a picture's rows.
class Strengths {
 public:
  Strengths(const TBitmap& watermark, int width, int height)
      : watermark_(watermark), rows_(watermark.Height(), height), row_(static_cast<size_t>(width)) {
    const TColorTable table = PaletteTable(watermark.Palette());
    for (size_t i = 0; i < table.size(); ++i) reds_[i] = table[i].peRed;
    const Positions columns(watermark.Width(), width);
    columns_.reserve(row_.size());
    for (int x = 0; x < width; ++x) columns_.push_back(columns.Of(x));
  }

  const uint8_t* Row(int y) {
    const int markRow = rows_.Of(y);
    if (markRow != loaded_) Load(markRow);
    return row_.data();
  }

 private:
  void Load(int markRow) {
    const uint8_t* indexes = watermark_.ScanLine(markRow);
    for (size_t x = 0; x < row_.size(); ++x) row_[x] = reds_[indexes[columns_[x]]];
    loaded_ = markRow;
  }

  const TBitmap& watermark_;
  Positions rows_;
  std::vector<int> columns_;
  std::array<uint8_t, 256> reds_;
  std::vector<uint8_t> row_;
  int loaded_ = -1;
};

}  // namespace

void detail::PressWatermark(const TBitmap& watermark, int top, int height, TBitmap& rows) {
  const auto width = static_cast<size_t>(rows.Width());
  Strengths strengths(watermark, rows.Width(), height);
  std::vector<uint8_t> grays(width);
  for (int y = 0; y < rows.Height(); ++y) {
    uint8_t* row = rows.ScanLine(y);
    kernels::GrayOfRow24(row, width, grays.data());
    kernels::PressWatermark24(row, grays.data(), strengths.Row(top + y), width);
  }
}

std::unique_ptr<TBitmap> WaterMarkedBitmap(const TGraphic& graphic, TBitmap& watermark) {
  auto result = std::make_unique<TBitmap>();
  result->Assign(&graphic);
  result->SetPixelFormat(pf24bit);
  watermark.SetPixelFormat(pf8bit);
  if (!result->Empty() && !watermark.Empty()) {
    detail::PressWatermark(watermark, 0, result->Height(), *result);
  }
  return result;
}

}  // namespace rasterkit
