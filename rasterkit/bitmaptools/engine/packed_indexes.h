#pragma once

#include <cstdint>
#include <vector>

namespace rasterkit::detail {

/// Indexes that a worker sees in 1- and 4-bit rows. A byte is read at columns where one begins (in
/// 4-bit rows the first of its two pixels counts for both) and used until the next is read, also
/// beyond the end of a row. It starts as 0.
class PackedIndexes {
 public:
  PackedIndexes(const std::vector<int32_t>& columns, int32_t bits);

  /// Reads a row into one byte per column.
  void Read(const uint8_t* row, uint8_t* indexes);

  /// Tells whether the first indexes of a row come from the row before.
  bool DependsOnRowBefore() const { return inherited_ > 0; }

 private:
  struct Place {
    int32_t byte;
    uint8_t shift;
  };

  std::vector<Place> places_;
  size_t inherited_ = 0;
  uint8_t mask_;
  uint8_t lastByte_ = 0;
};

}  // namespace rasterkit::detail
