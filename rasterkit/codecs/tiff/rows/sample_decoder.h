#pragma once

#include <memory>
#include <string>

#include <rasterkit/codecs/tiff/pages/page_facts.h>
#include <rasterkit/codecs/tiff/rows/opened_tiff.h>
#include <rasterkit/raster/pixels.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// True if a raster holds the pixels of a page as DecodeTiff reads them.
bool IsRasterPage(const PageFacts& facts);

/// Opens the first page of a file with the numbers that it has. `facts` are those of the page,
/// which is no raster page.
std::unique_ptr<OpenedTiff> OpenTiffSamples(TStream& stream, const PageFacts& facts,
                                            const std::string& noData, TiffHolding holding,
                                            CodecReport& report);

/// Palette indexes of less than 8 bits as a raster of 4 or 8 bits.
Raster RasterOfIndexes(const Samples& indexes);
/// The same into a raster of that kind and size.
void CopyIndexes(const Samples& indexes, Raster& raster);

}  // namespace rasterkit::detail
