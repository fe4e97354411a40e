#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace rasterkit::test {

/// A bitmap file, field by field, so that each test states only what matters to it and may lie
/// anywhere.
struct BmpFile {
  /// 12 makes a core header with 3-byte palette entries; shorter OS/2 headers are cut.
  uint32_t headerBytes = 40;
  int32_t width = 1, height = 1;
  uint16_t bits = 24;
  uint32_t compression = 0;
  int32_t pixelsPerMeterX = 0, pixelsPerMeterY = 0;
  uint32_t colorsUsed = 0;
  /// Red, green, blue, alpha, as far as given: within the header, or behind one that is too short.
  std::vector<uint32_t> masks = {};
  /// 0xRRGGBB.
  std::vector<uint32_t> palette = {};
  /// Rows with their padding, in the file's order, or compressed data.
  std::vector<uint8_t> pixels = {};
  /// Where the file says its pixels are; the truth when not given.
  std::optional<uint32_t> pixelOffset = {};
  /// Written after the pixels, with a header of 124 bytes only.
  std::vector<uint8_t> profile = {};
  /// What the header says of the profile; the truth when not given.
  std::optional<uint32_t> profileOffset = {}, profileBytes = {};
  /// 'MBED' for an embedded, 'LINK' for a linked profile.
  uint32_t colorSpace = 0x4D424544;

  std::vector<uint8_t> Bytes() const;

 private:
  std::vector<uint8_t> Head() const;
};

}  // namespace rasterkit::test
