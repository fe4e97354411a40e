#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "tests/support/exif_builder.h"

/// Uncompressed TIFF files of one strip, byte by byte, in either byte order.
namespace rasterkit::test {

struct PlainTiff {
  uint32_t width = 0, height = 0;
  /// Of each sample of a pixel.
  std::vector<uint16_t> bits = {8};
  /// 0 white is zero, 1 black is zero, 2 RGB, 3 palette, 5 CMYK.
  uint16_t photometric = 1;
  /// 1 unsigned, 2 signed, 3 floating point.
  uint16_t sampleFormat = 1;
  /// Rows of whole bytes, numbers in the file's byte order.
  std::string rows = {};
  /// All reds, then greens, then blues, of 16 bits.
  std::vector<uint16_t> colorMap = {};
  /// What samples beyond the colors mean: 0 nothing, 1 associated alpha, 2 unassociated alpha.
  std::vector<uint16_t> extraSamples = {};
  ByteOrder order = ByteOrder::intel;
  /// 1 to 8; 6 is a quarter turn clockwise.
  uint16_t orientation = 1;
};

inline TiffEntry Shorts(const TiffWriter& writer, uint16_t tag,
                        const std::vector<uint16_t>& values) {
  TiffEntry entry{tag, 3, static_cast<uint32_t>(values.size()), ""};
  for (const uint16_t value : values) entry.value += writer.Word(value);
  return entry;
}

inline std::string PlainTiffBytes(const PlainTiff& tiff) {
  const TiffWriter writer(tiff.order);
  const auto samples = static_cast<uint16_t>(tiff.bits.size());
  std::vector<TiffEntry> entries = {
      writer.LongEntry(256, tiff.width),
      writer.LongEntry(257, tiff.height),
      Shorts(writer, 258, tiff.bits),
      writer.Short(259, 1),
      writer.Short(262, tiff.photometric),
      writer.LongEntry(273, 8),
      writer.Short(274, tiff.orientation),
      writer.Short(277, samples),
      writer.LongEntry(278, tiff.height),
      writer.LongEntry(279, static_cast<uint32_t>(tiff.rows.size())),
      writer.Rationals(282, {{300, 1}}),
      writer.Rationals(283, {{150, 1}}),
      writer.Short(296, 2),
  };
  if (!tiff.colorMap.empty()) entries.push_back(Shorts(writer, 320, tiff.colorMap));
  if (!tiff.extraSamples.empty()) entries.push_back(Shorts(writer, 338, tiff.extraSamples));
  entries.push_back(Shorts(writer, 339, std::vector<uint16_t>(samples, tiff.sampleFormat)));
  const std::string pixels = tiff.rows + std::string(tiff.rows.size() % 2, '\0');
  const auto directoryAt = static_cast<uint32_t>(8 + pixels.size());
  return writer.Header(directoryAt) + pixels + writer.Directory(directoryAt, entries);
}

/// Numbers as bytes in the file's order.
template <class T>
std::string NumberBytes(const std::vector<T>& values, ByteOrder order) {
  std::string bytes;
  for (const T& value : values) {
    char raw[sizeof(T)];
    std::memcpy(raw, &value, sizeof(T));
    std::string number(raw, sizeof(T));
    if (order == ByteOrder::motorola) number.assign(number.rbegin(), number.rend());
    bytes += number;
  }
  return bytes;
}

}  // namespace rasterkit::test
