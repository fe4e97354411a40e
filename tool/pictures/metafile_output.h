#pragma once

#include <string>

#include "tool/command/batch.h"
#include "tool/command/output_options.h"

namespace rasterkit::tool {

/// Whether a file of this name holds a metafile: ".wmf", ".emf".
bool IsMetafileName(const std::string& file);

/// Writes the metafile `job.input` under `job.output`: as it is when it is of the output's kind,
/// else in that kind. Throws Failure for inputs that are no metafiles, for kinds that one cannot
/// become, and for a turn, which records do not take; other options for pixels get a warning.
JobResult ConvertMetafile(const Job& job, const PictureOptions& options);

}  // namespace rasterkit::tool
