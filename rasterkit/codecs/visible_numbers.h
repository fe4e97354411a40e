#pragma once

#include <string>

#include <rasterkit/metadata/loss.h>
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

/// Grays without alpha as 8-bit gray: up to 15 bits and 16-bit unsigned integers by their whole
/// range, other numbers between the least and the greatest one. "No data" is white.
Raster VisibleNumbers(const Samples& samples, const std::string& noData, Changes& changes);

/// Colors, and grays with alpha: 24-bit, or 32-bit with straight alpha. Throws UnsupportedError for
/// bands that are no colors.
Raster VisibleColors(const Samples& samples, Changes& changes);

}  // namespace rasterkit::detail
