#pragma once

#include <string>

namespace rasterkit::tool {

/// Prints what the header of a JPEG file says, as text or as one JSON object on a line. An input
/// that cannot be read is reported as the verb's other errors are; then the result is false.
bool ReportExif(const std::string& file, bool json);

}  // namespace rasterkit::tool
