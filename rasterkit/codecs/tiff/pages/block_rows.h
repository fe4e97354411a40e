#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <rasterkit/codecs/tiff/pages/page_plan.h>
#include <rasterkit/runtime/memory/pixel_memory.h>

namespace rasterkit::detail {

/// The rows of pixels as the strips and tiles of a page need them, for one thread.
class BlockRows {
 public:
  /// The plan must outlive the object.
  explicit BlockRows(const PagePlan& plan) : plan_(plan) {}

  /// Takes the rows from these pixels, which begin with row `top` of the page and must stay.
  void TakeFrom(const Pixels& pixels, uint32_t top) {
    pixels_ = &pixels;
    top_ = top;
  }

  /// The samples of a block, all rows of which the pixels have, in the order of the processor,
  /// packed bit by bit where they are no whole bytes. The caller may change the bytes, which are
  /// valid until the next call. Beyond the edges of the picture, whole samples repeat those at the
  /// edge.
  std::span<uint8_t> Block(uint32_t block);

  /// Writes a row of the page in full width as it stands in a strip; for pages that are not planar.
  void StripRow(uint32_t y, uint8_t* target) { WriteRow(y, 0, 0, plan_.width, target); }

 private:
  void WriteRow(uint32_t y, uint32_t plane, uint32_t x, uint32_t count, uint8_t* target);
  void WriteRasterRow(const Raster& raster, uint32_t y, uint32_t plane, uint32_t x, uint32_t count,
                      uint8_t* target);
  void WriteSampleRow(const Samples& samples, uint32_t y, uint32_t plane, uint32_t x,
                      uint32_t count, uint8_t* target);
  void ExtendRow(uint32_t count, uint8_t* row) const;

  const Pixels* pixels_ = nullptr;
  uint32_t top_ = 0;
  const PagePlan& plan_;
  PixelMemory rows_;
  std::vector<uint8_t> gathered_;
};

}  // namespace rasterkit::detail
