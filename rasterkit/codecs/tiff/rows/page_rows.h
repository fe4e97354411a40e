#pragma once

#include <cstdint>

#include <rasterkit/codecs/rows/row_reader.h>

namespace rasterkit::detail {

/// How often a reader of a TIFF page has unpacked a strip or tile; 0 for other readers.
uint64_t UnpackedTiffBlocks(const RowReader& reader);

}  // namespace rasterkit::detail
