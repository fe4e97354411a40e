#pragma once

#include <optional>

#include <rasterkit/codecs/rows/form.h>
#include <rasterkit/codecs/rows/picture_move.h>

namespace rasterkit::detail {

/// Pixels of a side of a block.
inline constexpr int kBlockPixels = 8;

/// Where the blocks of a picture stand.
struct BlockGrid {
  /// Largest sampling factors.
  int mostH = 1, mostV = 1;
  /// Pixels of a unit (MCU), at whose borders all components have borders of blocks.
  int unitWidth = kBlockPixels, unitHeight = kBlockPixels;
};

/// Nothing for sampling factors that are not allowed.
std::optional<BlockGrid> BlockGridOf(const JpegForm& form);

/// True if the columns of the source stand in reverse order in the result, as columns or rows.
bool ReversesSourceColumns(const PictureMove& move);
/// The same for rows.
bool ReversesSourceRows(const PictureMove& move);

}  // namespace rasterkit::detail
