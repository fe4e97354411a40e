#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/codecs/jpeg/jpeg_parts.h>
#include <rasterkit/codecs/rows/form.h>

namespace rasterkit::detail {

/// How the file is coded, from its segments. Throws FormatError if the frame header is too short.
JpegForm FormOfJpeg(const JpegParts& parts);

/// The same for a file whose scans are walked too: tables can stand between them.
JpegForm ReadJpegForm(std::span<const uint8_t> file);

/// Color transform of the last Adobe segment, as decoders take it; nothing without one.
std::optional<int> AdobeTransformOf(const JpegParts& parts);

/// True if a payload of APP14 is an Adobe segment with a color transform.
bool IsAdobeSegment(std::span<const uint8_t> payload);

}  // namespace rasterkit::detail
