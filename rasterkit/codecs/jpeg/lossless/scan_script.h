#pragma once

#include <vector>

#include <rasterkit/codecs/jpeg/jpeg_errors.h>
#include <rasterkit/codecs/jpeg/jpeg_parts.h>
#include <rasterkit/codecs/rows/form.h>

namespace rasterkit::detail {

/// The scans in which a file with these segments is written again: its own ones in their order, if
/// the library can write them; else plain ones of a component each, if components cannot be
/// interleaved. Empty for the library's usual scans.
std::vector<jpeg_scan_info> ScanScriptFor(const JpegParts& parts, const JpegForm& form);

}  // namespace rasterkit::detail
