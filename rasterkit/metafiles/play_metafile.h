#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include <rasterkit/metafiles/records/play_report.h>
#include <rasterkit/raster/fill.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Draws a metafile so that its picture fills `place`; mirrored where right lies before left or
/// bottom above top. What the metafile does not paint keeps its colour.
///
/// `target` has 32 bits; nothing outside `place` is touched, and all of it gets alpha 255.
/// `keepGoing` is asked now and then, when there is one, and ends the drawing by answering false.
/// Throws FormatError for bytes that are no metafile, UnsupportedError for one whose drawing is in
/// records of the newer kind ("EMF+") alone.
RASTERKIT_EXPORT PlayReport PlayMetafile(std::span<const uint8_t> bytes, Raster& target,
                                         const PixelRect& place,
                                         const std::function<bool()>& keepGoing = {});

}  // namespace rasterkit
