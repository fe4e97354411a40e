#pragma once

#include <rasterkit/codecs/rows/picture_header.h>
#include <rasterkit/codecs/rows/picture_writing.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

/// Windows bitmap files with everything that they state, for pictures that lose nothing.
namespace rasterkit {

/// Reads all that is no pixel of the file that starts at the stream's position. Throws as DecodeBmp
/// does for damaged headers.
RASTERKIT_EXPORT PictureHeader ReadBmpHeader(TStream& stream);

/// Writes a file at the stream's position with resolution, profile and alpha; everything else of
/// the metadata is a loss. Throws UnsupportedError for samples, which must have been converted.
RASTERKIT_EXPORT WrittenPicture WriteBmp(const Pixels& pixels, const PictureWriting& writing,
                                         TStream& stream);

}  // namespace rasterkit
