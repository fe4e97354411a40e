#pragma once

#include <string>

namespace rasterkit::tool {

/// Prints the pages of a TIFF file, or the one page of another file: on lines, or as one JSON
/// object. Returns the exit code. Throws Failure.
int ReportDocument(const std::string& file, bool json);

}  // namespace rasterkit::tool
