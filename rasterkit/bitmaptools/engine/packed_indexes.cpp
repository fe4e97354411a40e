#include <cstddef>

#include <rasterkit/bitmaptools/engine/packed_indexes.h>

namespace rasterkit::detail {
namespace {

constexpr int32_t kNoByteYet = -1;

}  // namespace

PackedIndexes::PackedIndexes(const std::vector<int32_t>& columns, int32_t bits)
    : mask_(bits == 4 ? 15 : 1) {
  const int32_t perByte = 8 / bits;
  int32_t byte = kNoByteYet;
  places_.reserve(columns.size());
  for (const int32_t column : columns) {
    if (column % perByte == 0) byte = column / perByte;
    if (byte == kNoByteYet) ++inherited_;
    places_.push_back({byte, static_cast<uint8_t>(bits == 4 ? 4 : 7 - column % 8)});
  }
}

void PackedIndexes::Read(const uint8_t* row, uint8_t* indexes) {
  for (size_t i = 0; i < inherited_; ++i) {
    indexes[i] = static_cast<uint8_t>(lastByte_ >> places_[i].shift & mask_);
  }
  for (size_t i = inherited_; i < places_.size(); ++i) {
    indexes[i] = static_cast<uint8_t>(row[places_[i].byte] >> places_[i].shift & mask_);
  }
  if (inherited_ < places_.size()) lastByte_ = row[places_.back().byte];
}

}  // namespace rasterkit::detail
