#pragma once

#include <cstdint>

#include <rasterkit/codecs/rows/form.h>
#include <rasterkit/codecs/tiff/pages/tag_reader.h>
#include <rasterkit/raster/pixel_layout.h>

namespace rasterkit::detail {

/// What the tags of a directory say about its pixels.
struct PageFacts {
  uint32_t width = 0, height = 0;
  PixelLayout layout;
  TiffForm form;
};

/// Number of samples that are colors of a model; 0 for ColorModel::other.
int ColorsOf(ColorModel model);

/// Reads size, layout and form. Throws FormatError if the directory has no size, UnsupportedError
/// for complex numbers and sizes of samples that cannot be read.
PageFacts FactsOfPage(const TagReader& reader, const TagDirectory& directory);

/// Estimates the quality of a JPEG file's first quantization table: that of the usual table which
/// is nearest; 0 if there is no table.
int JpegQualityOf(std::span<const uint8_t> jpeg);

}  // namespace rasterkit::detail
