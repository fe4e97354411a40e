#pragma once

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// Reads a Windows or OS/2 bitmap file that starts at the stream's position; uncompressed rows go
/// straight from the stream into the raster.
///
/// Every header is read (core, OS/2 2.x, info, v4, v5), 1 to 32 bits, RLE4, RLE8, colour masks,
/// rows in either order. Indexed files stay indexed, with as many palette entries as they have room
/// for (2 bits become 4); 5-5-5 is pf15bit, 5-6-5 pf16bit, other masks become pf24bit or, with 32
/// bits or alpha, pf32bit, each channel scaled to round(value * 255 / highest). Alpha is defined
/// where there is an alpha mask and any alpha that is not 0; else it is 255 and ignored. Resolution
/// and an embedded ICC profile come along.
///
/// Data that end early give the rows that are there, the rest 0, and a warning. Throws FormatError
/// for bytes that are no bitmap file or have not even one row, UnsupportedError for OS/2's own
/// compressions, LimitError for a picture beyond the memory budget.
RASTERKIT_EXPORT Raster DecodeBmp(TStream& stream, CodecReport* report = nullptr);

}  // namespace rasterkit
