#pragma once

#include <rasterkit/bands/stage/stage.h>
#include <rasterkit/raster/pixels.h>

/// Stages that work in parts, driven as a flow drives them.
namespace rasterkit::test {

struct InBands {
  int rows = 1, threads = 1;
};

/// Sends a picture through a stage in bands: passes that look get bands, each band of the result
/// gets the part of the source that it needs and nothing else, and is made on several threads. What
/// the stage is told of the source is one pixel whose bytes are noise; so are those of a band
/// before it is made. Every second band is made twice.
Pixels MadeInBands(const Stage& stage, const Pixels& source, const InBands& how, Changes& changes);

}  // namespace rasterkit::test
