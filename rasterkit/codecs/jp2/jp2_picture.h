#pragma once

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/rows/frame_options.h>
#include <rasterkit/codecs/rows/picture_header.h>
#include <rasterkit/raster/pixels.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

/// JPEG 2000: files of boxes (JP2, JPX) and raw codestreams. Read alone.
namespace rasterkit {

/// Reads all that is no pixel; nothing is decoded. Throws FormatError for a damaged header,
/// UnsupportedError for color spaces that are not read.
RASTERKIT_EXPORT PictureHeader ReadJp2Header(TStream& stream);

/// Decodes the first picture. Gray of 1, 4, 8 bits, colors and palettes of 8 bits become a raster,
/// other numbers are samples: up to 31 bits, signed or not, with any number of bands. Coarser
/// components are repeated; luminance with chroma becomes RGB. Tiles that are missing are white and
/// reported as damage.
RASTERKIT_EXPORT Pixels DecodeJp2Pixels(TStream& stream, const FrameOptions& options = {},
                                        CodecReport* report = nullptr);

}  // namespace rasterkit
