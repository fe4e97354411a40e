#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/metafiles/records/metafile_facts.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Reads the facts of a metafile from all of its records. A WMF file without a size is played once,
/// without painting, to measure its drawing. Throws FormatError if the data is neither WMF nor EMF.
RASTERKIT_EXPORT MetafileFacts ReadMetafileFacts(std::span<const uint8_t> bytes);

}  // namespace rasterkit
