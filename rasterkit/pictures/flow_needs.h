#pragma once

#include <rasterkit/bands/flow/band_flow.h>
#include <rasterkit/pictures/picture_state.h>
#include <rasterkit/pictures/sources/picture_source.h>

namespace rasterkit::detail {

/// How pictures flow under the limits of the calling thread.
FlowSettings UsualFlow();

/// What reading a picture and its steps holds at most, without the file that is written. `isWhole`:
/// all pixels of the result are held together.
FlowNeeds NeedsOf(const PictureSource& source, const PictureState& state, bool isWhole);

}  // namespace rasterkit::detail
