#pragma once

#include <rasterkit/bands/flow/band_flow.h>
#include <rasterkit/pictures/picture_state.h>
#include <rasterkit/pictures/sources/picture_source.h>

namespace rasterkit::detail {

/// How pictures flow under the limits of the calling thread.
FlowSettings UsualFlow();

/// PNG files up to this size are unpacked and packed at once.
inline constexpr uint64_t kMostPngAtOnce = uint64_t{64} << 20;

/// Threads of a run that names no number.
int ProcessorThreads();

/// What a PNG file of such rows holds while it is packed, at most.
uint64_t PngWriteBytes(uint64_t after, int height);

/// What reading a picture and its steps holds at most, without the file that is written. `isWhole`:
/// all pixels of the result are held together.
FlowNeeds NeedsOf(const PictureSource& source, const PictureState& state, bool isWhole);

}  // namespace rasterkit::detail
