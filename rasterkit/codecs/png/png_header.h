#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/codecs/rows/form.h>
#include <rasterkit/metadata/png/png_chunks.h>
#include <rasterkit/raster/pixel_layout.h>

namespace rasterkit::detail {

/// The header chunk of a PNG file.
struct PngSize {
  uint32_t width = 0, height = 0;
  PngForm form;

  bool IsPalette() const { return form.colorType == 3; }
  bool IsGray() const { return form.colorType == 0 || form.colorType == 4; }
  bool HasAlpha() const { return form.colorType == 4 || form.colorType == 6; }
  /// Samples per pixel.
  int Bands() const { return (IsPalette() || IsGray() ? 1 : 3) + (HasAlpha() ? 1 : 0); }
};

/// Reads the header chunk. Throws FormatError if the file does not start with a valid one.
PngSize ReadPngSize(std::span<const uint8_t> file);

/// The kind of pixels, without palette and profile.
PixelLayout PngLayout(const PngSize& size);

/// True if ReadPngHeader keeps the chunk in Metadata::pngChunks: descriptions of the colors, the
/// background, the time of change, the histogram, and all unknown chunks that are safe to copy.
bool IsKeptPngChunk(const PngChunk& chunk);

/// True for chunks that ReadPngHeader puts to their own places in Metadata.
bool IsPngMetadata(const PngChunk& chunk);

/// True for the frames of an animation.
bool IsPngAnimation(uint32_t kind);

}  // namespace rasterkit::detail
