#pragma once

#include <string_view>

#include <rasterkit/codecs/bmp/bmp_header.h>
#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// Unpacks RLE4 into pf4bit or RLE8 into pf8bit rows from the stream's position to the
/// end-of-picture code. Pixels that the codes skip get index 0; pixels outside the picture are
/// dropped. Data that end early give a warning.
void ReadBmpRle(TStream& stream, const BmpHeader& header, Raster& raster, CodecReport& report);

/// Throws FormatError if the picture is large and the codes of the file cannot paint it. Pixels
/// that codes skip do not count. `what` names the picture.
void RequirePlausibleBmpRle(const BmpHeader& header, uint64_t pictureBytes, std::string_view what);

/// Throws FormatError if a large picture has less data than its first row needs: a file of a few
/// bytes must not allocate gigabytes.
void RequireOneBmpRleRow(const BmpHeader& header, uint64_t pictureBytes);

}  // namespace rasterkit::detail
