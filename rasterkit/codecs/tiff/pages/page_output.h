#pragma once

#include <memory>
#include <optional>
#include <vector>

#include <rasterkit/codecs/tiff/pages/page_plan.h>
#include <rasterkit/codecs/tiff/pages/tag_file_writer.h>

namespace rasterkit::detail {

class BlockCoder;
class BlockRows;

/// Compresses and writes the blocks of a page as its rows come. The bytes depend neither on the
/// division of the rows nor on the number of threads.
class PageOutput {
 public:
  /// Plan and file must outlive the object.
  PageOutput(const PagePlan& plan, int threads, TagFileWriter& file);
  ~PageOutput();

  /// Writes the next rows. A planar page takes all of its rows at once.
  void Write(const Pixels& rows);
  /// Returns the tags of the structure. Throws RangeError if rows are missing.
  TagMap Finish();

 private:
  /// Blocks that lie one after another, and the rows that hold them.
  struct Run {
    const Pixels* rows = nullptr;
    uint32_t top = 0, firstBlock = 0, blocks = 0;
  };
  struct Worker;

  void WritePlain(const Pixels& rows, uint32_t count);
  void AddPlainRow(uint32_t y, BlockRows& source);
  void FlushPlain();
  const uint8_t* StoredRow(const Pixels& rows, uint32_t y) const;
  void WriteBlocks(const Pixels& rows, uint32_t count);
  void Encode(const std::vector<Run>& runs);
  void Hold(const Pixels& rows, uint32_t first, uint32_t count);
  bool IsPlain() const;
  bool IsTurned() const;
  int UsefulThreads(uint32_t blocks) const;
  Worker& WorkerAt(size_t index);

  const PagePlan& plan_;
  const int threads_;
  TagFileWriter& file_;
  std::vector<uint64_t> places_, counts_;
  std::vector<std::unique_ptr<Worker>> workers_;
  /// Rows of the page that were given.
  uint32_t given_ = 0;
  /// The rows of blocks that are not complete, from `heldTop_` on.
  std::optional<Pixels> held_;
  uint32_t heldTop_ = 0, heldRows_ = 0;
  /// Rows of plain strips that wait to be written.
  std::vector<uint8_t> waiting_;
  size_t waitingBytes_ = 0;
};

/// Writes all blocks of a page and returns the tags of its structure.
TagMap WriteBlocks(const Pixels& pixels, const PagePlan& plan, int threads, TagFileWriter& file);

}  // namespace rasterkit::detail
