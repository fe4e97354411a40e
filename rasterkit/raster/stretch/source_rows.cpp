#include <algorithm>
#include <cstring>

#include <rasterkit/raster/stretch/source_rows.h>

namespace rasterkit::detail {
namespace {

template <size_t kBytes>
void Pick(const uint8_t* row, const std::vector<int>& columns, uint8_t* picked) {
  for (const int column : columns) {
    std::memcpy(picked, row + static_cast<size_t>(column) * kBytes, kBytes);
    picked += kBytes;
  }
}

void Pick(const uint8_t* row, size_t bytesPerPixel, const std::vector<int>& columns,
          uint8_t* picked) {
  switch (bytesPerPixel) {
    case 1:
      return Pick<1>(row, columns, picked);
    case 2:
      return Pick<2>(row, columns, picked);
    case 3:
      return Pick<3>(row, columns, picked);
    default:
      return Pick<4>(row, columns, picked);
  }
}

}  // namespace

SourceRows::SourceRows(const Raster& source, const AxisPositions& columns)
    : source_(source),
      columns_(columns.positions),
      table_(MakePixelTable(source.palette)),
      plainRun_(columns.IsPlainRun()) {
  const auto [low, high] = std::minmax(columns_.front(), columns_.back());
  // Starts at a whole byte in every format.
  firstColumn_ = low & ~7;
  columnCount_ = high + 1 - firstColumn_;
  const int bits = StoredBitsPerPixel(source.Format());
  gathersFirst_ = !plainRun_ && bits >= 8 && columns.Count() < columnCount_;
  if (gathersFirst_) {
    picked_.resize(columns_.size() * static_cast<size_t>(bits / 8));
    gathered_.resize(columns_.size());
    return;
  }
  if (source.Format() != pf32bit) converted_.resize(static_cast<size_t>(columnCount_));
  if (!plainRun_) gathered_.resize(columns_.size());
}

const RGBArec* SourceRows::Row(int y) {
  if (y != loaded_) Load(y);
  loaded_ = y;
  return row_;
}

void SourceRows::Load(int y) {
  const uint8_t* row = source_.Row(y);
  row_ = gathersFirst_ ? GatheredThenConverted(row) : ConvertedThenGathered(row);
}

const RGBArec* SourceRows::GatheredThenConverted(const uint8_t* row) {
  const TPixelFormat format = source_.Format();
  Pick(row, static_cast<size_t>(StoredBitsPerPixel(format) / 8), columns_, picked_.data());
  RowTo32(picked_.data(), format, static_cast<int>(columns_.size()), table_, gathered_.data());
  return gathered_.data();
}

const RGBArec* SourceRows::ConvertedThenGathered(const uint8_t* row) {
  const TPixelFormat format = source_.Format();
  const uint8_t* bytes =
      row + static_cast<size_t>(firstColumn_) * static_cast<size_t>(StoredBitsPerPixel(format)) / 8;
  const auto* pixels = reinterpret_cast<const RGBArec*>(bytes);
  if (format != pf32bit) {
    RowTo32(bytes, format, columnCount_, table_, converted_.data());
    pixels = converted_.data();
  }
  if (plainRun_) return pixels + (columns_.front() - firstColumn_);
  for (size_t i = 0; i < columns_.size(); ++i) gathered_[i] = pixels[columns_[i] - firstColumn_];
  return gathered_.data();
}

}  // namespace rasterkit::detail
