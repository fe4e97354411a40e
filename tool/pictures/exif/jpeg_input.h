#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace rasterkit::tool {

/// The bytes of a file that begins as a JPEG does. Throws Failure(exitInputUnreadable) that names
/// the file and the fault.
std::vector<uint8_t> ReadJpegInput(const std::string& file);

}  // namespace rasterkit::tool
