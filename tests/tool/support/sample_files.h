#pragma once

#include <string>

#include <rasterkit/raster/raster.h>

/// Files for the tool to work on, and its results read back.
namespace rasterkit::test {

void SavePngFile(const std::string& file, const Raster& raster);
void SaveBmpFile(const std::string& file, const Raster& raster);
/// Adds an EXIF segment if `orientation` is not 0.
void SaveJpegFile(const std::string& file, const Raster& raster, int orientation = 0);

/// Decodes by content.
Raster LoadFile(const std::string& file);

}  // namespace rasterkit::test
