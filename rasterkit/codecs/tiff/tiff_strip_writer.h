#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/codecs/tiff/tiff_output.h>
#include <rasterkit/codecs/tiff/tiff_plan.h>
#include <rasterkit/runtime/memory/pixel_memory.h>

namespace rasterkit::detail {

/// Rows of a raster in the order of the file, a strip at a time, for one thread.
class TiffStripRows {
 public:
  /// Raster and plan must outlive the object.
  TiffStripRows(const Raster& raster, const TiffPlan& plan) : raster_(raster), plan_(plan) {}

  /// The rows without padding; valid until the next call.
  std::span<const uint8_t> Strip(uint32_t strip);

 private:
  void WriteRow(const uint8_t* row, uint8_t* target) const;

  const Raster& raster_;
  const TiffPlan& plan_;
  PixelMemory rows_;
};

/// Sets the tags of the compression, for each handle that compresses strips of the picture.
void SetStripTags(TiffOutput& output, const TiffPlan& plan);

/// Sets the tags that describe the samples, once per file.
void SetColorTags(TiffOutput& output, const TiffPlan& plan);

/// Compresses and writes all strips on up to `threads` threads; the bytes do not depend on their
/// number.
void WriteStrips(TiffOutput& output, const Raster& raster, const TiffPlan& plan, int threads);

}  // namespace rasterkit::detail
