#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include <rasterkit/bitmaptools/engine/packed_indexes.h>
#include <rasterkit/kernels/transfer/pick_pixels.h>

namespace rasterkit {

class TPixelThread;

namespace detail {

/// Indexes that a worker sees in the rows of a 1-, 4- or 8-bit source, one byte per column.
class SeenIndexes {
 public:
  SeenIndexes(const TPixelThread& worker, const std::vector<int32_t>& columns);

  /// Valid until the next call.
  const uint8_t* Read(const uint8_t* row);

  /// Tells whether the indexes of a row depend on the row before.
  bool DependsOnRowBefore() const { return packed_ && packed_->DependsOnRowBefore(); }

 private:
  int32_t firstColumn_;
  std::optional<PackedIndexes> packed_;
  std::optional<kernels::PixelPicker> picker_;
  std::vector<uint8_t> indexes_;
};

}  // namespace detail
}  // namespace rasterkit
