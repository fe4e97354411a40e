#pragma once

#include <memory>
#include <vector>

#include <rasterkit/bands/stage/band_work.h>
#include <rasterkit/codecs/rows/row_reader.h>

/// How pictures flow; internal to this folder.
namespace rasterkit::detail {

/// A source of rows and the works that change them. Level 0 is the source, level `n` the result of
/// the work `n - 1`.
struct RowChain {
  std::shared_ptr<RowReader> source;
  std::vector<std::shared_ptr<BandWork>> works;
  /// The level whose bands are made of parts of the source, column by column; 0 if there is none.
  /// Levels below it have no windows.
  size_t firstLevel = 0;

  size_t LastLevel() const { return works.size(); }
  const Pixels& LikeOf(size_t level) const {
    return level == 0 ? source->Like() : works[level - 1]->Like();
  }
  Sides SizeOf(size_t level) const {
    if (level == 0) return {source->Width(), source->Height()};
    return works[level - 1]->Size();
  }
  const Pixels& Like() const { return LikeOf(LastLevel()); }
  Sides Size() const { return SizeOf(LastLevel()); }

  /// Bytes of one row of a level.
  uint64_t RowBytes(size_t level) const {
    return BytesOfPixels(LikeOf(level), SizeOf(level).width, 1);
  }
};

}  // namespace rasterkit::detail
