#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/codecs/tiff/tiff_handle.h>

namespace rasterkit::detail {

/// The order of the bits of LZW codes. Early writers packed codes into the low bits first.
enum class LzwStyle { usual, old };

/// The style of a strip or tile, by its first bytes: the code that clears the table. The bits of
/// each byte are in the order of the file.
LzwStyle LzwStyleOf(std::span<const uint8_t> packed, bool lowBitsFirst);

/// The style of a file, by the majority of its first blocks, so that a damaged one does not decide.
/// libtiff keeps the style of the first block that a handle unpacks, which would make the pixels
/// depend on the order of the blocks and on the number of handles. `blocks` is the number of all
/// strips or tiles.
LzwStyle LzwStyleOfFile(TiffHandle& handle, uint32_t blocks);

/// True if the file has the low bits of each byte first.
bool HasLowBitsFirst(const TiffHandle& handle);

}  // namespace rasterkit::detail
