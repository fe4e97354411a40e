#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include <rasterkit/bands/flow/row_chain.h>
#include <rasterkit/runtime/memory/pixel_memory.h>

namespace rasterkit::detail {

/// Makes parts of one level of a chain from parts of its source, without windows between. Several
/// threads may make parts at the same time; they share the reader.
class PartMaker {
 public:
  /// All works up to the level make parts of parts. The chain must outlive this object.
  /// `rows`: of the parts that are made.
  PartMaker(const RowChain& chain, size_t level, int rows);

  /// Columns into which rows of the level are divided.
  int Columns() const;
  /// Bytes that one thread needs for a part of so many rows.
  uint64_t BytesOfPart(int rows) const;
  /// Makes the part of rows of `target` that lies in a column. Threads may
  /// make different columns of the same target.
  void Make(Band& target, RowRange rows, int column);

 private:
  /// Memory for the parts of one thread, one block per level.
  using Blocks = std::vector<PixelMemory>;

  /// A part in the middle of the level, with what it needs of all levels below.
  struct Part {
    BandRect source;
    uint64_t bytes;
  };
  Part PartFor(int width, int rows) const;
  Band PartOf(size_t level, const BandRect& rect, Blocks& blocks);
  Band NewPart(size_t level, const BandRect& rect, Blocks& blocks) const;
  std::unique_ptr<Blocks> TakeBlocks();

  const RowChain& chain_;
  const size_t level_;
  int columnWidth_ = 0;
  std::mutex readerMutex_, blocksMutex_;
  std::vector<std::unique_ptr<Blocks>> freeBlocks_;
};

}  // namespace rasterkit::detail
