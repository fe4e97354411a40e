#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include <rasterkit/codecs/tiff/rows/block_cache.h>
#include <rasterkit/codecs/tiff/rows/g4_strip_rows.h>
#include <rasterkit/codecs/tiff/rows/plain_parts.h>
#include <rasterkit/codecs/tiff/rows/tiff_picture.h>

namespace rasterkit::detail {

/// Reads any parts of a picture of strips or tiles. Compressed blocks are unpacked on several
/// threads; those of which only a part was read are kept as long as the next parts may need
/// them. Used by one thread at a time.
class TiffParts {
 public:
  /// The arguments must outlive this object. Pixels do not depend on the number of threads.
  TiffParts(TiffHandle& handle, const TiffLayout& layout, const TiffColors& colors,
            const TiffBlanks& blanks, int threads);
  ~TiffParts();

  /// Reads a part, whose top left pixel is the first one of `target`. Throws the errors of the
  /// stream.
  void Read(const TiffPart& part, const TiffTarget& target);
  /// The outcome of what was read so far. If nothing of it was there, other blocks are looked at:
  /// a part is refused as the whole page is, and only then.
  TiffOutcome Outcome();
  /// Tells that others have read the blocks of a part.
  void MarkRead(const TiffPart& part);
  /// True if rows are cheap only from top to bottom.
  bool IsRising() const { return g4_ != nullptr; }
  /// For others that read blocks of the same picture.
  TiffFaults& Faults() { return faults_; }
  /// How often a compressed block was unpacked.
  uint64_t UnpackedBlocks() const { return unpacked_; }

 private:
  class Worker;
  /// A block to unpack: into the target, or into the cache.
  struct Task {
    uint32_t position = 0;
    uint8_t* rows = nullptr;
    size_t stride = 0;
  };

  void ReadPacked(const TiffPart& part, const TiffTarget& target);
  void Unpack(const std::vector<Task>& tasks, const TiffTarget& target);
  void PutKept(uint32_t position, const TiffPart& part, const TiffTarget& target) const;
  bool HasRows(uint32_t position, std::vector<std::string>& notes);
  int UsefulThreads(size_t tasks) const;
  uint64_t Budget(uint64_t blockBytes) const;

  TiffHandle& handle_;
  const TiffLayout& layout_;
  const TiffColors& colors_;
  const TiffBlanks& blanks_;
  const int threads_;
  TiffFaults faults_;
  /// A bit for each position of a block.
  std::vector<bool> wasRead_;
  std::unique_ptr<PlainParts> plain_;
  std::unique_ptr<G4StripRows> g4_;
  std::vector<std::unique_ptr<Worker>> workers_;
  BlockCache kept_;
  uint64_t reading_ = 0;
  std::atomic<uint64_t> unpacked_{0};
};

/// Reads all strips or tiles of a picture.
TiffOutcome ReadTiffBlocks(TiffHandle& handle, const TiffLayout& layout, const TiffColors& colors,
                           const TiffBlanks& blanks, const TiffTarget& target, int threads);

}  // namespace rasterkit::detail
