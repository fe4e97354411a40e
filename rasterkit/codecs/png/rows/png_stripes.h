#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include <rasterkit/codecs/png/rows/png_packing.h>
#include <rasterkit/runtime/memory/pixel_memory.h>

namespace rasterkit::detail {

/// The rows of a picture, as they are packed.
struct PngRowShape {
  size_t bytes = 0, pixelBytes = 1;
  int count = 0;
};

/// Packs rows in stripes of fixed height on several threads. Each stripe is packed with the 32 KiB
/// before it as its dictionary and ends on a byte, so that the stripes join to one stream. The
/// bytes do not depend on the number of threads.
class PngStripes {
 public:
  /// `write` gets the packed bytes in order.
  PngStripes(const PngRowShape& shape, const PngPacking& packing, int threads,
             std::function<void(std::span<const uint8_t>)> write);

  /// Takes the next row.
  void Add(const uint8_t* row);

 private:
  struct Stripe {
    int first = 0, count = 0;
    std::vector<uint8_t> packed;
    uint32_t sum = 1;
  };

  void PackAll();
  void Filter(const Stripe& stripe);
  void Pack(Stripe& stripe, bool isLast) const;
  void WriteAll(std::vector<Stripe>& stripes);
  /// A row of the batch; -1 is the row above it.
  uint8_t* Raw(int y) { return raw_.Data() + static_cast<size_t>(y + 1) * shape_.bytes; }

  const PngRowShape shape_;
  const PngPacking packing_;
  const int threads_, stripeRows_, batchRows_;
  const std::function<void(std::span<const uint8_t>)> write_;
  PixelMemory raw_;
  /// The end of the filtered rows before the batch, and those of the batch.
  PixelMemory filtered_;
  size_t dictionaryBytes_ = 0;
  int held_ = 0, done_ = 0;
  uint32_t sum_ = 1;
};

}  // namespace rasterkit::detail
