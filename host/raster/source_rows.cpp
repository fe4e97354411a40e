#include <algorithm>
#include <cstring>

#include <rasterkit/host/raster/source_rows.h>

namespace rasterkit::detail {

SourceRows::SourceRows(const Raster& source, const AxisPositions& columns)
    : source_(source),
      columns_(columns.positions),
      table_(MakePixelTable(source.palette)),
      plainRun_(columns.IsPlainRun()) {
  const auto [low, high] = std::minmax(columns_.front(), columns_.back());
  // From a whole byte on, whatever the format.
  firstColumn_ = low & ~7;
  columnCount_ = high + 1 - firstColumn_;
  if (source.Format() != pf32bit) converted_.resize(static_cast<size_t>(columnCount_));
  if (!plainRun_) gathered_.resize(columns_.size());
}

const RGBArec* SourceRows::Row(int y) {
  if (y != loaded_) Load(y);
  loaded_ = y;
  return row_;
}

void SourceRows::Load(int y) {
  const TPixelFormat format = source_.Format();
  const size_t skipped =
      static_cast<size_t>(firstColumn_) * static_cast<size_t>(StoredBitsPerPixel(format)) / 8;
  const uint8_t* bytes = source_.Row(y) + skipped;
  const auto* pixels = reinterpret_cast<const RGBArec*>(bytes);
  if (format != pf32bit) {
    RowTo32(bytes, format, columnCount_, table_, converted_.data());
    pixels = converted_.data();
  }
  if (plainRun_) {
    row_ = pixels + (columns_.front() - firstColumn_);
    return;
  }
  for (size_t i = 0; i < columns_.size(); ++i) gathered_[i] = pixels[columns_[i] - firstColumn_];
  row_ = gathered_.data();
}

}  // namespace rasterkit::detail
