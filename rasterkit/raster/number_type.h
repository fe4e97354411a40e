#pragma once

#include <cstddef>

namespace rasterkit {

/// Types of the numbers in a picture's samples, in the byte order of the processor.
enum class NumberType {
  uint8,
  int8,
  uint16,
  int16,
  uint32,
  int32,
  uint64,
  int64,
  float16,
  float32,
  float64
};

constexpr size_t BytesOf(NumberType type) {
  switch (type) {
    case NumberType::uint8:
    case NumberType::int8:
      return 1;
    case NumberType::uint16:
    case NumberType::int16:
    case NumberType::float16:
      return 2;
    case NumberType::uint32:
    case NumberType::int32:
    case NumberType::float32:
      return 4;
    default:
      return 8;
  }
}

}  // namespace rasterkit
