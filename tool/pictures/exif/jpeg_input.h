#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace rasterkit::tool {

/// Reads a file that begins like a JPEG file. Throws Failure(exitInputUnreadable) with the name of
/// the file and the reason.
std::vector<uint8_t> ReadJpegInput(const std::string& file);

}  // namespace rasterkit::tool
