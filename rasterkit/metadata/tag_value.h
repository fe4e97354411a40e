#pragma once

#include <cstdint>
#include <vector>

namespace rasterkit {

/// One tag of a TIFF directory with its values.
struct TagValue {
  uint16_t tag = 0;
  /// Type of the values: 1 byte, 2 text, 3 word, 4 long, 5 rational, 7 undefined, 12 double, 16
  /// 64-bit and so on.
  uint16_t type = 0;
  /// Number of values, as stated.
  uint64_t count = 0;
  /// The values in little-endian order, whatever the order of the file is.
  std::vector<uint8_t> bytes;
  friend bool operator==(const TagValue&, const TagValue&) = default;
};

}  // namespace rasterkit
