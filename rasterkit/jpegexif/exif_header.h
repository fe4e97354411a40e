#pragma once

#include <cstdint>
#include <string_view>

#include <rasterkit/jpegexif/byte_order.h>

/// The beginning of an EXIF section; `data` are its bytes from the length on (see TImageData).
namespace rasterkit::detail {

/// Place of the TIFF header, from which all offsets of the directories count.
inline constexpr int64_t kTiffPos = 9;

/// True when the bytes of an APP1 section are an EXIF section, not XMP or something else.
bool IsExifSection(std::string_view data);

/// Sets the byte order that the TIFF header names; false, and nothing is set, when it names none.
bool TakeByteOrder(std::string_view data, TEndInd& order);

/// Place of the main directory: right behind the TIFF header when that names none.
int64_t MainDirectoryPos(std::string_view data, const TEndInd& order);

}  // namespace rasterkit::detail
