#pragma once

#include <cstdint>
#include <vector>

#include <rasterkit/codecs/jpeg/lossless/block_grid.h>
#include <rasterkit/codecs/jpeg/lossless/jpeg_coefficients.h>

namespace rasterkit::detail {

/// Blocks of a component across and down.
struct BlockCounts {
  int columns = 0, rows = 0;
};

/// Which blocks of a component a move takes, in the order of the result.
class BlockPath {
 public:
  /// `move` lies on the grid; `component` is of the source.
  BlockPath(const BlockGrid& grid, const JpegForm::Component& component, const PictureMove& move);

  /// Of the result.
  const BlockCounts& Counts() const { return counts_; }
  /// Fills the target's rows. Calls RequireTime between them.
  void Fill(const BlockRows& source, const BlockRows& target) const;

 private:
  void FillTile(const BlockRows& source, const BlockRows& target, int left, int row,
                int columns) const;

  PictureMove move_;
  BlockCounts counts_;
  /// The first block of the source, and the steps from there.
  int firstX_ = 0, firstY_ = 0, stepX_ = 1, stepY_ = 1;
};

}  // namespace rasterkit::detail
