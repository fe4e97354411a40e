#pragma once

#include <rasterkit/codecs/bmp/bmp_header.h>
#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// Unpacks RLE4 into pf4bit or RLE8 into pf8bit rows from the stream's position to the
/// end-of-picture code. What the code leaves out is index 0, what it puts beyond the picture is
/// dropped; data that end early give a warning.
void ReadBmpRle(TStream& stream, const BmpHeader& header, Raster& raster, CodecReport& report);

/// Throws FormatError when a picture that would take much memory has less data than its first row
/// needs: the few bytes of such a file must not cost gigabytes.
void RequireOneBmpRleRow(const BmpHeader& header, uint64_t pictureBytes);

}  // namespace rasterkit::detail
