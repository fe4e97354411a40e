#pragma once

#include <string>
#include <vector>

#include "tool/command/batch.h"
#include "tool/command/output_options.h"

namespace rasterkit::tool {

/// scan-07.tif for scan.pdf and ".tif": the page number has as many digits as the number of pages.
std::string NameOfPage(const std::string& input, int page, int count, const std::string& extension);

/// One job for each of several pages, where the options choose them, the outputs lie in a folder
/// and are no TIFF files. Other jobs stay. Throws Failure(exitWrongUsage) if two outputs have the
/// same name.
std::vector<Job> JobsOfPages(std::vector<Job> jobs, const OutputOptions& output,
                             const PictureOptions& options);

}  // namespace rasterkit::tool
