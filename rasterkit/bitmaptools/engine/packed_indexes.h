#pragma once

#include <cstdint>
#include <vector>

namespace rasterkit::detail {

/// The indexes that a worker sees in 1- and 4-bit rows: a byte is read at columns that begin one
/// (4-bit rows have two pixels there, of which the first counts for both), and stays in force until
/// the next, over the end of a row too. It starts as 0.
class PackedIndexes {
 public:
  PackedIndexes(const std::vector<int32_t>& columns, int32_t bits);

  /// One byte for each column.
  void Read(const uint8_t* row, uint8_t* indexes);

  /// True when the first indexes of a row come from the row before.
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
