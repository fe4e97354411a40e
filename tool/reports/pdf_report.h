#pragma once

#include <string>

namespace rasterkit::tool {

/// Prints the pages of a PDF file on stdout: their sizes in points, millimeters and, at `dpi`,
/// pixels. With `json` as one object, which also reports a file that cannot be read. Returns the
/// exit code.
int ReportPages(const std::string& file, const std::string& password, double dpi, bool json);

}  // namespace rasterkit::tool
