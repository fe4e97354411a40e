#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/metafiles/records/metafile_facts.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Looks through the records of a metafile, told by its first bytes. Throws FormatError for bytes
/// that are none.
RASTERKIT_EXPORT MetafileFacts ReadMetafileFacts(std::span<const uint8_t> bytes);

}  // namespace rasterkit
