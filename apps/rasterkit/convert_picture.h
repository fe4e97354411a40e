#pragma once

#include <functional>

#include "apps/rasterkit/batch.h"
#include "apps/rasterkit/output_options.h"
#include "apps/rasterkit/picture_file.h"

namespace rasterkit::tool {

/// The last step: writes a finished picture under the job's output name. `picture.photo` still says
/// how the file's rows lay before they were set upright.
using PictureWriter = std::function<void(LoadedPicture& picture, const Job& job)>;

/// The way of one picture: load, set upright, turn, change the depth, write (with SavePicture
/// unless told otherwise). Throws Failure.
JobResult ConvertPicture(const Job& job, const PictureOptions& options,
                         const PictureWriter& write = {});

}  // namespace rasterkit::tool
