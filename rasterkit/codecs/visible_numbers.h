#pragma once

#include <string>

#include <rasterkit/metadata/loss.h>
#include <rasterkit/raster/number_stretch.h>
#include <rasterkit/raster/raster.h>
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

/// Grays without alpha as 8-bit gray: up to 8 unsigned bits by their whole range, other numbers by
/// the stretch, which is noted. "No data" is white.
Raster VisibleNumbers(const Samples& samples, const std::string& noData,
                      const NumberStretch& stretch, Changes& changes);

/// Colors, and grays with alpha: 24-bit, or 32-bit with straight alpha, by their whole range.
/// Throws UnsupportedError for bands that are no colors.
Raster VisibleColors(const Samples& samples, Changes& changes);

/// The same for gray and RGB by a stretch, with one range for all color bands.
Raster StretchedColors(const Samples& samples, const std::string& noData,
                       const NumberStretch& stretch, Changes& changes);

}  // namespace rasterkit::detail
