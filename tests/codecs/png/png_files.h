#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <rasterkit/raster/raster.h>

/// PNG files put together chunk by chunk, without a PNG library.
namespace rasterkit::test {

using ByteList = std::vector<uint8_t>;

/// Big-endian.
ByteList Word32(uint32_t value);
ByteList operator+(ByteList a, const ByteList& b);

/// Length, name, data, checksum.
ByteList PngChunk(const std::string& name, const ByteList& data);

ByteList PngSignature();
ByteList PngHeader(uint32_t width, uint32_t height, int bitDepth, int colorType, int interlace = 0);
/// The picture data: `rows` holds each row's filter byte and samples; zlib level 9.
ByteList PngData(const ByteList& rows);
ByteList PngEnd();

/// A whole file of rows with filter 0; `rows` holds samples only. `before` comes between header and
/// data.
ByteList PngFile(uint32_t width, uint32_t height, int bitDepth, int colorType, const ByteList& rows,
                 const ByteList& before = {});

/// The bare library's interlaced file of a raster (indexed with its palette, 24-bit, or 32-bit with
/// alpha).
ByteList InterlacedPng(const Raster& raster);

ByteList Encoded(const Raster& raster, int level = -1);

}  // namespace rasterkit::test
