#include <algorithm>
#include <cstring>

#include <rasterkit/raster/stretch/source_rows.h>

namespace rasterkit::detail {
namespace {

constexpr int kBytesOfWords = 2;

/// Pixels of 15 and 16 bits.
void PickWords(const uint8_t* row, const std::vector<int>& columns, uint8_t* picked) {
  for (const int column : columns) {
    std::memcpy(picked, row + static_cast<size_t>(column) * kBytesOfWords, kBytesOfWords);
    picked += kBytesOfWords;
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
    if (bits / 8 != kBytesOfWords) {
      picker_.emplace(columns_, bits / 8, bits / 8, source.Width());
    }
    return;
  }
  if (source.Format() != pf32bit) converted_.resize(static_cast<size_t>(columnCount_));
  if (plainRun_) return;
  gathered_.resize(columns_.size());
  std::vector<int> converted = columns_;
  for (int& column : converted) column -= firstColumn_;
  constexpr int kPixel = sizeof(RGBArec);
  picker_.emplace(converted, kPixel, kPixel, columnCount_);
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
  if (picker_) {
    picker_->Pick(row, picked_.data());
  } else {
    PickWords(row, columns_, picked_.data());
  }
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
  picker_->Pick(reinterpret_cast<const uint8_t*>(pixels),
                reinterpret_cast<uint8_t*>(gathered_.data()));
  return gathered_.data();
}

}  // namespace rasterkit::detail
