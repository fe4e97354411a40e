#pragma once

#include <string>

#include <rasterkit/tifftobmp/frame_bitmap.h>

namespace rasterkit::detail {

/// Decodes the first picture of a file by its content. Throws FileError if the file cannot be
/// opened, else the codec's error; every error names the file.
FrameBitmap ReadFrame(const std::string& fileName, ReadMode mode);

}  // namespace rasterkit::detail
