#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include <rasterkit/metafiles/records/metafile_facts.h>
#include <rasterkit/metafiles/records/play_report.h>
#include <rasterkit/raster/fill.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Draws a metafile so that its picture fills `place`; mirrors it if `place` has right before left
/// or bottom above top. Pixels that the metafile does not paint keep their color.
///
/// `target` must be pf32bit. Nothing outside `place` changes; every pixel inside gets alpha 255.
/// `keepGoing`, if set, is called every 64 records; playback stops if it returns false. Damaged
/// records are skipped and listed in the report. Throws FormatError if the data is neither WMF nor
/// EMF, UnsupportedError if the drawing consists of EMF+ records only.
RASTERKIT_EXPORT PlayReport PlayMetafile(std::span<const uint8_t> bytes, Raster& target,
                                         const PixelRect& place,
                                         const std::function<bool()>& keepGoing = {});

/// Draws a metafile whose facts are known, without reading them again: `facts` must be what
/// ReadMetafileFacts returns for `bytes`. Saves one more playback for a WMF file without a size.
RASTERKIT_EXPORT PlayReport PlayMetafile(std::span<const uint8_t> bytes, const MetafileFacts& facts,
                                         Raster& target, const PixelRect& place,
                                         const std::function<bool()>& keepGoing = {});

}  // namespace rasterkit
