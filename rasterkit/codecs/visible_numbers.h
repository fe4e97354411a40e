#pragma once

#include <functional>
#include <memory>
#include <string>

#include <rasterkit/codecs/shown_numbers.h>
#include <rasterkit/metadata/loss.h>
#include <rasterkit/raster/samples.h>

namespace rasterkit::detail {

/// The samples of a row as doubles: the colors of each pixel, then alpha if there is one; other
/// bands are skipped. `numbers` has `pitch` doubles per pixel. 64-bit integers above 2^53 are
/// rounded.
void UnpackSamples(const Samples& samples, int y, size_t pitch, double* numbers);

/// True if the last sample of a pixel is opacity.
bool HasAlphaBand(const PixelLayout& layout);

/// Colors of a pixel without alpha and further bands.
int ColorBandsOf(const PixelLayout& layout);

/// True if a stretch says how the numbers become 8 bits: all but unsigned ones of up to 8 bits.
bool IsStretched(const PixelLayout& layout);

/// Shows rows of samples as rows of a raster. For one thread.
class ShownRows {
 public:
  virtual ~ShownRows() = default;
  virtual void Show(const Samples& samples, int y, uint8_t* target) = 0;
};

/// Makes rows for one more thread.
using NewShownRows = std::function<std::unique_ptr<ShownRows>()>;

/// Grays without alpha as 8-bit gray: up to 8 unsigned bits, by their whole range.
NewShownRows RowsOfBytes(const PixelLayout& layout);
/// Other grays without alpha, by the range of a stretch; what was not measured is white.
NewShownRows RowsOfNumbers(const PixelLayout& layout, const std::string& noData,
                           const FoundRange& found);

/// Colors, and grays with alpha: 24-bit, or 32-bit with straight alpha, by their whole range. Says
/// in `notes` what could not be used. Throws UnsupportedError for bands that are no colors.
NewShownRows RowsOfColors(const PixelLayout& layout, Changes& notes);

/// The same for gray and RGB by the range of a stretch, one range for all color bands.
NewShownRows RowsOfStretchedColors(const PixelLayout& layout, const std::string& noData,
                                   const FoundRange& found);

}  // namespace rasterkit::detail
