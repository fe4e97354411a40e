#pragma once

#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <tiffio.h>

namespace rasterkit::test {

/// A TIFF file to be written by libtiff, field by field.
struct TiffFile {
  uint32_t width = 1, height = 1;
  uint16_t bits = 8, samples = 1;
  uint16_t sampleFormat = SAMPLEFORMAT_UINT;
  uint16_t photometric = PHOTOMETRIC_MINISBLACK;
  uint16_t compression = COMPRESSION_NONE;
  uint16_t predictor = 1;
  bool isPlanar = false;
  /// 0: one strip.
  uint32_t rowsPerStrip = 0;
  /// 0: strips. Multiples of 16.
  uint32_t tileWidth = 0, tileHeight = 0;
  /// "w" with "l" or "b" for the byte order and "8" for BigTIFF.
  std::string mode = "w";
  std::vector<uint16_t> extraSamples;
  /// Red, green, blue, each of 2^bits words.
  std::vector<uint16_t> colorMap;
  /// Sets further tags before the pixels are written.
  std::function<void(TIFF*)> setTags;
  /// Rows of interleaved samples, or planes one after another. Each row takes whole bytes; words
  /// are in the processor's byte order.
  std::vector<uint8_t> pixels;
  /// Strips as they go to the file, instead of the pixels.
  std::vector<std::vector<uint8_t>> packedStrips;

  size_t RowBytes() const { return (size_t{width} * (isPlanar ? 1u : samples) * bits + 7) / 8; }
  size_t Planes() const { return isPlanar ? samples : 1; }
  size_t PixelBytes() const { return RowBytes() * height * Planes(); }

  /// The file as libtiff writes it; empty when it would not.
  std::vector<uint8_t> Bytes() const;
};

/// Strips as they lie in a file of one plane that libtiff can read.
std::vector<std::vector<uint8_t>> PackedStrips(const std::vector<uint8_t>& bytes);

/// The samples as libtiff alone unpacks them, arranged as `TiffFile::pixels`; those of JPEG colors
/// as RGB. `file` says how they lie.
std::vector<uint8_t> SamplesByLibrary(const TiffFile& file, const std::vector<uint8_t>& bytes);

/// All bits random; floats finite and between -2 and 2.
std::vector<uint8_t> RandomSamples(const TiffFile& file, std::mt19937& random);

/// Bits of one sample as stored, in the low bits.
uint64_t StoredSample(const TiffFile& file, uint32_t x, uint32_t y, uint32_t sample);

}  // namespace rasterkit::test
