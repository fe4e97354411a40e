#pragma once

#include <rasterkit/pictures/run_scope.h>
#include <rasterkit/pictures/write_plan.h>

namespace rasterkit::detail {

/// Reads the pixels of a picture and writes its file to a stream. The report lacks side files.
Report WriteTo(TStream& target, const PictureSource& source, const PictureState& state,
               const WritePlan& plan, const SaveOptions& options, RunScope& run);

}  // namespace rasterkit::detail
