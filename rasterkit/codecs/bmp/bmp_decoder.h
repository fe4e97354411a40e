#pragma once

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// Reads a Windows or OS/2 bitmap file that starts at the stream's position. Uncompressed rows go
/// straight from the stream into the raster.
///
/// Reads all headers (core, OS/2 2.x, info, v4, v5), 1 to 32 bits per pixel, RLE4, RLE8, color
/// masks and both orders of rows. Indexed files stay indexed, with as many palette entries as the
/// file has (2 bits become 4). 5-5-5 becomes pf15bit, 5-6-5 pf16bit; other masks become pf24bit,
/// or pf32bit if they have 32 bits or alpha, with channels scaled to round(value * 255 / highest).
/// Alpha is defined if there is an alpha mask and an alpha above 0; else it is 255 and ignored.
/// Resolution and an embedded ICC profile are kept.
///
/// A truncated file gives the rows present, 0 in the others, and a warning. Throws FormatError if
/// the bytes are not a bitmap file or contain no complete row, UnsupportedError for the
/// compressions of OS/2, LimitError if the picture exceeds the memory limit.
RASTERKIT_EXPORT Raster DecodeBmp(TStream& stream, CodecReport* report = nullptr);

namespace detail {

/// Tells whether the stream holds, at its position, a bitmap file of 0 x 0 pixels, which
/// `DecodeBmp` refuses. The position stays. False for a pipe.
bool IsEmptyBmp(TStream& stream);

}  // namespace detail
}  // namespace rasterkit
