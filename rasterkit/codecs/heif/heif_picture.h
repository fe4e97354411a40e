#pragma once

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/rows/frame_options.h>
#include <rasterkit/codecs/rows/picture_header.h>
#include <rasterkit/raster/pixels.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

/// HEIF: HEIC, and AVIF if libheif has a decoder for it. Read alone, in the worker process alone.
namespace rasterkit {

/// Opens libheif, for good. Call it before other threads run and before the process is locked in.
/// Throws UnsupportedError if it is not installed.
RASTERKIT_EXPORT void OpenHeifLibrary();

/// Reads all that is no pixel. Sides are those of the upright picture: turns, mirrors and cuts of
/// the file are applied by the decoder. The orientation of EXIF and XMP states the same again and
/// becomes 1. Throws FormatError, and UnsupportedError if libheif is not open.
RASTERKIT_EXPORT PictureHeader ReadHeifHeader(TStream& stream);

/// Decodes the main picture: 8 bits per sample become 24-bit, or 32-bit with an alpha channel; more
/// bits become samples of 16-bit words.
RASTERKIT_EXPORT Pixels DecodeHeifPixels(TStream& stream, const FrameOptions& options = {},
                                         CodecReport* report = nullptr);

}  // namespace rasterkit
