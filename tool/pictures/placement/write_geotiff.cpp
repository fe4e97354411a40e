#include "tool/pictures/placement/write_geotiff.h"

#include "tool/command/exit_code.h"
#include "tool/pictures/change_picture.h"

namespace rasterkit::tool {
namespace {

/// A position that the input states and that cannot be read must not be passed over.
void RequirePosition(const PictureWork& work) {
  const Placement& placement = work.picture.GetPlacement();
  if (placement.IsKnown()) return;
  if (!placement.warnings.empty()) {
    throw Failure(exitInputUnreadable, work.job.input + ": " + placement.warnings.front());
  }
  work.Refuse("has no position; use --origin and --pixel-size, or a world file");
}

}  // namespace

JobResult WriteGeoTiff(const Job& job, const PlacementOptions& options) {
  PictureOptions reading;
  reading.worldFile = options.worldFile;
  reading.edit = options.edit;
  reading.recorder = options.recorder;
  JobResult result = ChangePicture(job, reading, false, [&](PictureWork& work) {
    if (options.given) {
      work.Add(PlaceStep{*options.given});
      if (options.placedBy) {
        work.notes = PointNotes(*options.placedBy);
        work.warnings =
            PointWarnings(*options.placedBy, work.picture.Width(), work.picture.Height());
      }
    } else {
      RequirePosition(work);
    }
  });
  result.placedBy = options.placedBy;
  return result;
}

}  // namespace rasterkit::tool
