#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Small files that state huge pictures. Their first rows are there.
namespace rasterkit::test {

/// A gray PNG file of 8 bits; `rows` black rows are packed as tightly as possible.
std::vector<uint8_t> OversizedPng(uint32_t width, uint32_t height, uint32_t rows);

/// A bitmap file with RLE8 and `rows` rows of runs as long as possible.
std::vector<uint8_t> OversizedRleBmp(int32_t width, int32_t height, uint32_t rows);

/// A bitmap file of 8 bits with `rows` rows.
std::vector<uint8_t> OversizedPlainBmp(int32_t width, int32_t height, uint32_t rows);

/// A color JPEG file of one scan with `rows` rows, at most 65500 x 65500 pixels.
std::vector<uint8_t> OversizedJpeg(uint16_t width, uint16_t height, uint16_t rows);

/// A GIF file with 256 colors. Its data are `dataBytes` bytes that no code needs.
std::vector<uint8_t> OversizedGif(uint16_t width, uint16_t height, size_t dataBytes);

/// A lossy WebP file with the data of `rows` rows, at most 16383 x 16383 pixels.
std::vector<uint8_t> OversizedWebp(uint16_t width, uint16_t height, uint16_t rows);

/// An EMF file of `side` x `side` pixels at 96 dpi, with comments until it has about `bytes` bytes.
std::vector<uint8_t> OversizedEmf(int32_t side, size_t bytes);

/// The file with zeros behind its end until it has `bytes` bytes.
std::vector<uint8_t> Padded(std::vector<uint8_t> file, size_t bytes);

struct NamedFile {
  std::string name;
  std::vector<uint8_t> bytes;
};

/// A PNG file of about 150 bytes, a bitmap file of 32 KB, a JPEG file of 5 KB and an EMF file of 72
/// KB, of 0.9 to 4.2 GB each.
std::vector<NamedFile> OversizedFiles();

}  // namespace rasterkit::test
