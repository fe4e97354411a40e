#pragma once

#include <cstdint>

#include <rasterkit/codecs/tiff/pages/tag_reader.h>

namespace rasterkit::detail {

/// The end of the JPEG file that starts at a place of a TIFF file without a size: after its end
/// marker or, if `hasStrips`, after the header of its scan, as its data are the strips. 0 if there
/// is no JPEG file.
uint64_t JpegEnd(const TagReader& reader, uint64_t at, bool hasStrips);

}  // namespace rasterkit::detail
