#pragma once

#include <optional>
#include <vector>

#include <rasterkit/bands/flow/row_chain.h>

namespace rasterkit::detail {

/// The rows that a level holds for one band of the result. What it holds already stays.
struct LevelRows {
  RowRange wanted;
  /// Those of them that must be made.
  RowRange missing;
};

/// What all levels hold and make for one band of the result.
struct BandStep {
  /// Of the result.
  RowRange band;
  std::vector<LevelRows> levels;
};

/// How the rows of a result are divided.
struct BandDivision {
  RowRange rows;
  /// Of a band.
  int height = 1;
  /// Rows of the source that are read best together: reading ends at multiples of it, but never
  /// beyond the rows that the result needs.
  int blockRows = 1;
};

/// Says which rows each level makes for each band of the result. Rows that follow each other are
/// made once.
class BandPlan {
 public:
  /// The chain must outlive the plan. Throws RangeError if a work needs rows outside of its source.
  BandPlan(const RowChain& chain, const BandDivision& division);

  /// The next step; nothing after the last band.
  std::optional<BandStep> Next();
  /// Begins again.
  void Restart();

  /// Bands of the result.
  int Count() const { return count_; }
  /// The most rows that a level holds at once.
  int MostRows(size_t level) const { return mostRows_[level]; }
  /// The most rows that a level holds over from one band to the next.
  int MostKept(size_t level) const { return mostKept_[level]; }
  /// True if the rows of the source are read from top to bottom, each once.
  bool IsRising() const { return isRising_; }
  /// True if they are read from bottom to top.
  bool IsBackward() const { return isBackward_; }

 private:
  RowRange BandFrom(int first) const;
  RowRange NeededFor(size_t level, RowRange rows) const;
  void Hold(size_t level, RowRange wanted, LevelRows& rows);
  RowRange WithBlocks(RowRange wanted) const;
  void Measure();

  const RowChain& chain_;
  const BandDivision division_;
  /// Rows of the source that the whole result needs.
  RowRange all_;
  std::vector<RowRange> held_;
  int next_ = 0;
  int count_ = 0;
  std::vector<int> mostRows_, mostKept_;
  bool isRising_ = true, isBackward_ = false;
};

}  // namespace rasterkit::detail
