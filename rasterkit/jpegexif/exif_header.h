#pragma once

#include <cstdint>
#include <string_view>

#include <rasterkit/jpegexif/byte_order.h>

/// Header of an EXIF section; `data` are its bytes from the length on (see TImageData).
namespace rasterkit::detail {

/// Position of the TIFF header, from which all offsets of the directories count.
inline constexpr int64_t kTiffPos = 9;

/// Tells whether an APP1 section is an EXIF section, not XMP or something else.
bool IsExifSection(std::string_view data);

/// Sets the byte order that the TIFF header states. Returns false, without a change, if it states
/// none.
bool TakeByteOrder(std::string_view data, TEndInd& order);

/// Position of the main directory: directly after the TIFF header if that states none.
int64_t MainDirectoryPos(std::string_view data, const TEndInd& order);

}  // namespace rasterkit::detail
