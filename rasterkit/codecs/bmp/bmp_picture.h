#pragma once

#include <memory>

#include <rasterkit/codecs/rows/picture_header.h>
#include <rasterkit/codecs/rows/picture_writing.h>
#include <rasterkit/codecs/rows/row_writer.h>
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

/// Begins to write such a file row by row. Null for a palette that is shorter than its format
/// allows, which the rows can make longer, and for a stream that takes bytes only in their order.
RASTERKIT_EXPORT std::unique_ptr<RowWriter> OpenBmpWriter(const Pixels& like, WrittenSize size,
                                                          const PictureWriting& writing,
                                                          TStream& stream);

}  // namespace rasterkit
