#pragma once

#include <rasterkit/codecs/png/png_decoding.h>
#include <rasterkit/codecs/png/png_map.h>
#include <rasterkit/runtime/files/stream.h>
#include <rasterkit/runtime/memory/pixel_memory.h>

namespace rasterkit::detail {

/// Most bytes of filtered rows that are packed or unpacked in one call.
inline constexpr uint64_t kPngBytesInOneCall = uint64_t{64} << 20;
/// Unpacking in one call takes at most this part of the memory of the process: steps and encoders
/// need some, too.
inline constexpr uint64_t kPngPartInOneCall = 4;

/// Bytes of the rows with their filter bytes, of a picture that is not interlaced.
uint64_t FilteredPngBytes(uint64_t width, uint64_t height, unsigned bitsPerPixel);

/// Inflates all pixels of a file in one call and checks everything up to the end of the file. Empty
/// if the picture is too large, also for the limit of the process, or interlaced, if its bytes
/// cannot hold it, or if anything is not as a perfect file has it: libpng must then read the file,
/// and judge it.
PixelMemory InflatePng(TStream& stream, const PngMap& map, const PngFacts& facts);

}  // namespace rasterkit::detail
