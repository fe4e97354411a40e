#pragma once

#include "apps/rasterkit/batch.h"
#include "apps/rasterkit/output_options.h"

namespace rasterkit::tool {

/// The way of one picture: load, set upright, turn, change the depth, write. Throws Failure.
JobResult ConvertPicture(const Job& job, const PictureOptions& options);

}  // namespace rasterkit::tool
