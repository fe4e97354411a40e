#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <rasterkit/metafiles/records/metafile_facts.h>

namespace rasterkit::detail {

/// Converts a WMF file to an EMF file of the same size, record by record: lines stay lines and text
/// stays text. Damaged records are skipped, as in playback. `facts` must be what ReadMetafileFacts
/// returns for `bytes`. Throws FormatError if the data is not WMF, LimitError if the result exceeds
/// the picture memory budget or the drawing exceeds its work budget.
std::vector<uint8_t> ConvertWmfToEmf(std::span<const uint8_t> bytes, const MetafileFacts& facts);

}  // namespace rasterkit::detail
