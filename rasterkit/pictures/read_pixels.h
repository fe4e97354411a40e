#pragma once

#include <rasterkit/bands/stage/stage.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/picture_state.h>
#include <rasterkit/pictures/sources/picture_source.h>

namespace rasterkit::detail {

/// Pixels of a picture after its steps, with the resolution and profile that follow.
struct DecodedPicture {
  Pixels pixels;
  /// What was noticed and what was read around.
  CodecReport report;
};

/// Reads the pixels of the source and sends them through the stages. `run` gets the progress of
/// both. Works under the limits of the calling thread.
DecodedPicture ReadPixels(const PictureSource& source, const PictureState& state,
                          const StageRun& run, Changes& changes);

/// The same, to look at.
Raster VisibleRowsOf(const Picture& picture, const StageRun& run, Changes& changes);

/// Makes numbers of colors: a row of them has the samples of each pixel together, red before blue.
Samples SamplesOf(const Raster& rows);

}  // namespace rasterkit::detail
