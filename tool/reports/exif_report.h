#pragma once

#include <string>

namespace rasterkit::tool {

/// Prints the header of a JPEG file, as text or as one JSON object on a line. Returns false if the
/// input cannot be read; the error is then printed on stderr.
bool ReportExif(const std::string& file, bool json);

}  // namespace rasterkit::tool
