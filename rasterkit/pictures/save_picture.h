#pragma once

#include <rasterkit/pictures/run_scope.h>
#include <rasterkit/pictures/write_plan.h>

namespace rasterkit::detail {

/// The part of a call that writing one picture is.
struct WorkPart {
  double from = 0, end = 1;
};

/// Reads the pixels of a picture and writes them to a file or a page. The report lacks side files,
/// bytes and memory.
Report WriteOne(PictureTarget& target, const PictureSource& source, const PictureState& state,
                const WritePlan& plan, const SaveOptions& options, RunScope& run, WorkPart part);

/// The same for a file of one picture, with bytes and memory.
Report WriteTo(TStream& target, const PictureSource& source, const PictureState& state,
               const WritePlan& plan, const SaveOptions& options, RunScope& run);

}  // namespace rasterkit::detail
