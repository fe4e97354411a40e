#pragma once

#include <cstdio>
#include <string>

#include <jpeglib.h>

namespace rasterkit::detail {

/// Names the first component of which scans, or the last bits of coefficients, are missing: "JPEG:
/// scans of component 2 are missing"; empty if all are there. Call it when all scans are read and
/// the library has not finished.
std::string MissingScans(const jpeg_decompress_struct& codec);

}  // namespace rasterkit::detail
