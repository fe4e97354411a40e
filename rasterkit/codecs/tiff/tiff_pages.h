#pragma once

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/rows/frame_options.h>
#include <rasterkit/codecs/rows/picture_header.h>
#include <rasterkit/codecs/rows/picture_writing.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

/// TIFF files with everything that they state, for pictures that lose nothing.
namespace rasterkit {

/// Reads all that is no pixel, of the first page and of what belongs to it. Throws FormatError if
/// the first directory cannot be read.
RASTERKIT_EXPORT PictureHeader ReadTiffHeader(TStream& stream);

/// Decodes the first page as the file has it (see PictureHeader::layout): colors of 1 to 8 bits as
/// a raster; more bits, other numbers, CMYK, L*a*b*, associated alpha, extra bands, "least is
/// white" grids of 16 bits as samples, unchanged. Throws as DecodeTiff does.
RASTERKIT_EXPORT Pixels DecodeTiffPixels(TStream& stream, const FrameOptions& options = {},
                                         CodecReport* report = nullptr);

/// Writes a file of one page at the stream's position.
RASTERKIT_EXPORT WrittenPicture WriteTiff(const Pixels& pixels, const PictureWriting& writing,
                                          TStream& stream);

/// Writes the first page of `source` with its encoded strips and tiles byte for byte, with the
/// metadata and position of `writing`.
RASTERKIT_EXPORT WrittenPicture CopyTiff(TStream& source, const PictureWriting& writing,
                                         TStream& stream);

}  // namespace rasterkit
