#pragma once

#include <rasterkit/bands/stage/stage.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Sends pixels through all stages: one band as high as the picture. Checks the limits of the call
/// (see RequireTime) before each stage. `run.progress` gets the progress of the whole.
RASTERKIT_EXPORT Pixels RunStages(Pixels source, const Stages& stages, const StageRun& run,
                                  Changes& changes);

/// The rows of the source that rows of the last stage's result need.
RASTERKIT_EXPORT RowRange RowsNeeded(const Stages& stages, RowRange target);

}  // namespace rasterkit
