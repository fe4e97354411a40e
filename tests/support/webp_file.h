#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <rasterkit/raster/raster.h>

/// WebP files: pictures packed by the library, containers put together chunk by chunk.
namespace rasterkit::test {

/// The file of a pf24bit or pf32bit raster as the library writes it.
std::vector<uint8_t> LosslessWebp(const Raster& raster);
/// `quality` 0 to 100.
std::vector<uint8_t> LossyWebp(const Raster& raster, float quality = 75);

/// What stands in a file behind its first twelve bytes.
std::vector<uint8_t> ChunksOfWebp(const std::vector<uint8_t>& file);

/// Name, little-endian length, data, a byte of padding where the length is odd.
std::vector<uint8_t> WebpChunk(const std::string& name, const std::vector<uint8_t>& data);

/// Marks of a file's first chunk.
enum WebpFlag : uint8_t {
  webpAnimation = 0x02,
  webpXmp = 0x04,
  webpExif = 0x08,
  webpAlpha = 0x10,
  webpProfile = 0x20
};

std::vector<uint8_t> WebpHeaderChunk(int flags, uint32_t width, uint32_t height);

/// A picture of an animation; `left` and `top` are even, `chunks` those of a still of that size.
std::vector<uint8_t> WebpFrameChunk(uint32_t left, uint32_t top, uint32_t width, uint32_t height,
                                    const std::vector<uint8_t>& chunks);

/// The whole file of these chunks.
std::vector<uint8_t> WebpFile(const std::vector<uint8_t>& chunks);

}  // namespace rasterkit::test
