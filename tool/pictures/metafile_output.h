#pragma once

#include <string>

#include "tool/command/batch.h"
#include "tool/command/output_options.h"

namespace rasterkit::tool {

/// True if a file of this name is a metafile: ".wmf", ".emf".
bool IsMetafileName(const std::string& file);

/// Writes the metafile `job.input` to `job.output`: unchanged if it has the type of the output,
/// else converted. Throws Failure if the input is not a metafile, if its type cannot be converted,
/// and for --angle, because records cannot be turned. Other options for pixels cause a warning.
JobResult ConvertMetafile(const Job& job, const PictureOptions& options);

}  // namespace rasterkit::tool
