#pragma once

#include <string>

#include "tool/command/batch.h"
#include "tool/command/output_options.h"

namespace rasterkit::tool {

/// Returns whether the file name has a metafile extension (".wmf", ".emf").
bool IsMetafileName(const std::string& file);

/// Writes the metafile `job.input` to `job.output`: unchanged if the output has the same format,
/// else converted. Throws Failure if the input is not a metafile, if it cannot be converted, or if
/// a rotation is set, which metafiles do not support. Other options for pixels add a warning.
JobResult ConvertMetafile(const Job& job, const PictureOptions& options, bool isDryRun);

}  // namespace rasterkit::tool
