#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <vector>

#include <tiffio.h>

namespace rasterkit::test {

/// A classic little-endian file, directory first, tag by tag; for what libtiff would not write.
class RawTiff {
 public:
  RawTiff& Long(uint16_t tag, uint32_t value) {
    tags_[tag] = {4, 1, value};
    return *this;
  }
  RawTiff& Entry(uint16_t tag, uint16_t type, uint32_t count, uint32_t value) {
    tags_[tag] = {type, count, value};
    return *this;
  }
  static RawTiff Of(uint32_t width, uint32_t height, uint32_t bits, uint32_t compression) {
    RawTiff file;
    file.Long(TIFFTAG_IMAGEWIDTH, width).Long(TIFFTAG_IMAGELENGTH, height);
    file.Entry(TIFFTAG_BITSPERSAMPLE, 3, 1, bits).Entry(TIFFTAG_COMPRESSION, 3, 1, compression);
    file.Entry(TIFFTAG_PHOTOMETRIC, 3, 1, 1).Entry(TIFFTAG_SAMPLESPERPIXEL, 3, 1, 1);
    return file.Long(TIFFTAG_ROWSPERSTRIP, height);
  }
  std::vector<uint8_t> Bytes(size_t extra = 0, uint32_t next = 0) const {
    std::vector<uint8_t> bytes = {'I', 'I', 42, 0, 8, 0, 0, 0};
    const auto add = [&](uint64_t value, int count) {
      for (int i = 0; i < count; i++) bytes.push_back(static_cast<uint8_t>(value >> 8 * i));
    };
    add(tags_.size(), 2);
    for (const auto& [tag, field] : tags_) {
      add(tag, 2);
      add(field[0], 2);
      add(field[1], 4);
      add(field[2], 4);
    }
    add(next, 4);
    bytes.resize(bytes.size() + extra);
    return bytes;
  }

 private:
  std::map<uint16_t, std::array<uint32_t, 3>> tags_;
};

}  // namespace rasterkit::test
