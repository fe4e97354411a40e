#pragma once

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/rows/frame_options.h>
#include <rasterkit/codecs/tiff/pages/page_facts.h>
#include <rasterkit/raster/pixels.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// True if a raster holds the pixels of a page as DecodeTiff reads them.
bool IsRasterPage(const PageFacts& facts);

/// Decodes the first page of a file with the numbers that it has. `facts` are those of the page,
/// which is no raster page.
Samples DecodeSamples(TStream& stream, const PageFacts& facts, const std::string& noData,
                      const FrameOptions& options, CodecReport& report);

/// Palette indexes of less than 8 bits as a raster of 4 or 8 bits.
Raster RasterOfIndexes(const Samples& indexes);

}  // namespace rasterkit::detail
