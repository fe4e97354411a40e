#pragma once

#include <string>

#include "apps/rasterkit/batch.h"

namespace rasterkit::tool {

/// Whether a file of this name holds a metafile: ".wmf", ".emf".
bool IsMetafileName(const std::string& file);

/// Writes the metafile `job.input` under `job.output`: as it is when it is of the output's kind,
/// else in that kind. Throws Failure for inputs that are no metafiles, and for kinds that one
/// cannot become.
JobResult ConvertMetafile(const Job& job);

}  // namespace rasterkit::tool
